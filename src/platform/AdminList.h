#pragma once
#include <QDialog>
#include <QIcon>
#include <QList>
#include <QStringList>

class QPushButton;
class QTreeWidget;

// The list half of the list-and-card windows (operators, products, delivery workers): a
// list of rows with an in-use or suspended icon, and New / Edit / Exit buttons that open the
// card window by name and list the rows again when it closes. The window that derives from
// it says which rows to list; the card does the rest.
class AdminListWindow : public QDialog {
    Q_OBJECT
public:
    struct Row {
        QString key;          // "U" and the row's ID
        bool inUse = true;    // Status = '1'
        QStringList columns;
    };

    AdminListWindow(const QString &title, const QString &cardName, const QStringList &headers,
                    QWidget *parent = nullptr);

    // The two row icons; the shell hands over its bundled ones at start-up.
    static void setRowIcons(const QIcon &inUse, const QIcon &suspended);

public slots:
    void RefreshList();

protected:
    // The rows to list, in the order of the window's statement.
    virtual QList<Row> listRows() = 0;
    // The load step: to be called at the end of the deriving window's constructor.
    void Form_Load();
    void reject() override;

private:
    void btnNew_Click();
    void btnEdit_Click();

    QString m_cardName;
    QTreeWidget *lsvMain;
    QPushButton *btnNew;
    QPushButton *btnEdit;
    QPushButton *btnExit;
    int LastIndex = 0; // 1-based position of the row last edited; 0 for none
};
