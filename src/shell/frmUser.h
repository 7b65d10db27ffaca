#pragma once
#include "platform/CardWindow.h"

class DataCombo;
class QCheckBox;
class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;

// The card of one operator: name, initial password, remark, rights, disabled mark.
class frmUser : public CardWindow {
    Q_OBJECT
public:
    frmUser();

public slots:
    QString GetRoleString() const;
    void SetRoleString(const QString &roles);
    void ResetInput();

protected:
    void Form_Load() override;

private:
    void btnSave_Click();

    QLineEdit *txtName;
    QLineEdit *txtPassword;
    QLineEdit *txtDetail;
    QListWidget *lsbRole;
    QCheckBox *chkDisable;
    QLabel *lblStation;
    DataCombo *cmbStation;
};
