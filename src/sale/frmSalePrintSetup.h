#pragma once
#include <QDialog>

class PageDesigner;
class QAction;
class QMenu;
class QToolBar;
class rptSale;

// "打印参数设置": the shop arranges the printed ticket on its own paper. It works on a copy of
// the ticket layout read from sale.rpx and writes it back there when saved.
class frmSalePrintSetup : public QDialog {
    Q_OBJECT
public:
    frmSalePrintSetup();

    rptSale *report() const { return m_report; }
    PageDesigner *designer() const { return ardMain; }

public slots:
    void SaveLayout();
    void PageSetup();
    void popIfPrint_Click();
    void popFont_Click();

protected:
    void reject() override;

private:
    void ardMain_RightClick(const QString &field, const QPoint &globalPos);

    rptSale *m_report;
    QToolBar *acbMain;
    PageDesigner *ardMain;
    QMenu *mnuDo;
    QAction *popIfPrint;
    QAction *popFont;
    QString m_field; // the field the menu was opened on
    bool m_closing = false;
};
