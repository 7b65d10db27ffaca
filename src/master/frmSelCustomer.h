#pragma once
#include <QDialog>

class QPushButton;
class QTableView;
class RecordsetModel;

// Choosing one of the customers that share a phone number. The chosen row's account is left
// in the session; SelectCustomer runs the whole choice and gives it back, 0 for none.
class frmSelCustomer : public QDialog {
    Q_OBJECT
    Q_PROPERTY(QString mCurSQL READ mCurSQL WRITE setCurSQL)
public:
    explicit frmSelCustomer(QWidget *parent = nullptr);

    QString mCurSQL() const { return m_sql; }
    // Shows the customers that the statement selects.
    void setCurSQL(const QString &sql);

public slots:
    int SelectCustomer(const QString &sql);
    void btnOk_Click();
    void btnCancel_Click();

private:
    QString m_sql;
    QTableView *dbgMain;
    RecordsetModel *m_rows;
    QPushButton *btnOk;
    QPushButton *btnCancel;
};
