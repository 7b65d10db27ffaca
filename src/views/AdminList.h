#pragma once
#include "data/RecordsetModel.h"

#include <QDialog>
#include <QIcon>
#include <QPair>

class DbGrid;
class QPushButton;

// The list half of the list-and-card windows (operators, products, delivery workers): the
// window's statement in the grid every list shows, each row marked in use or suspended by its
// icon, and New / Edit / Exit buttons that open the card window by name and list the rows
// again when it closes.
class AdminListWindow : public QDialog {
    Q_OBJECT
public:
    // A column: its head caption and the field it shows.
    using Column = QPair<QString, QString>;

    // listSQL brings ID and Status besides the fields shown.
    AdminListWindow(const QString &formName, const QString &title, const QString &cardName,
                    const QString &listSQL, const QList<Column> &columns, QWidget *parent = nullptr);

    // The two row icons; the shell hands over its bundled ones at start-up.
    static void setRowIcons(const QIcon &inUse, const QIcon &suspended);

public slots:
    void RefreshList();

protected:
    void reject() override;

private:
    void btnNew_Click();
    void btnEdit_Click();

    QString m_cardName;
    QString m_listSQL;
    RecordsetModel *m_model;
    DbGrid *lsvMain;
    QPushButton *btnNew;
    QPushButton *btnEdit;
    QPushButton *btnExit;
    int LastIndex = 0; // 1-based position of the row last edited; 0 for none
};
