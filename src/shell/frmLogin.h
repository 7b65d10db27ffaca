#pragma once
#include "data/Recordset.h"

#include <QDialog>

class DataCombo;
class QLineEdit;
class QPushButton;

// The login dialog: choose an enabled operator, type the password. It hides itself; the
// entry routine then reads LoginSucceeded and the chosen operator.
class frmLogin : public QDialog {
    Q_OBJECT
    Q_PROPERTY(bool LoginSucceeded READ LoginSucceeded)
public:
    frmLogin();
    bool LoginSucceeded() const { return m_loginSucceeded; }
    // The bound value of cmbUser: the chosen operator's ID as text.
    QString boundUser() const;

public slots:
    bool CheckOnlineUsers();

protected:
    void reject() override;

private:
    void cmdOK_Click();
    void cmdCancel_Click();

    DataCombo *cmbUser;
    QLineEdit *txtPassword;
    QPushButton *cmdOK;
    QPushButton *cmdCancel;
    RecordsetPtr m_users;
    bool m_loginSucceeded = false;
};
