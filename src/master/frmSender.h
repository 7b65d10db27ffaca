#pragma once
#include "platform/CardWindow.h"

class DataCombo;
class QCheckBox;
class QLabel;
class QLineEdit;
class QPushButton;

// The card of one delivery worker: name, phone, delivery charge, remark, suspended mark.
class frmSender : public CardWindow {
    Q_OBJECT
public:
    frmSender();

public slots:
    void ResetInput();

protected:
    void Form_Load() override;

private:
    void btnSave_Click();

    QLineEdit *txtName;
    QLineEdit *txtPhone;
    QLineEdit *txtPrice;
    QLineEdit *txtDetail;
    QCheckBox *chkDisable;
    QLabel *lblStation;
    DataCombo *cmbStation;
};
