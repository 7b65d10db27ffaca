#pragma once
#include <QDialog>

class QLineEdit;
class QPushButton;

// The operator changes his own password, typed twice.
class frmChangePwd : public QDialog {
    Q_OBJECT
public:
    frmChangePwd();

public slots:
    void RefreshControl();

protected:
    void reject() override;

private:
    void btnOk_Click();

    QLineEdit *txtPassword1;
    QLineEdit *txtPassword2;
    QPushButton *btnOk;
    QPushButton *btnCancel;
};
