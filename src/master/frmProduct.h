#pragma once
#include "platform/CardWindow.h"

class DataCombo;
class QCheckBox;
class QLineEdit;
class QPushButton;

// The card of one product: what it is called, sold by, costs, and which bottle it comes in;
// or, for a bottle, the mark that it is one.
class frmProduct : public CardWindow {
    Q_OBJECT
public:
    frmProduct();

public slots:
    void RefreshControl();
    void ResetInput();

protected:
    void Form_Load() override;

private:
    void chkIsContainer_Click();
    void btnSave_Click();

    QLineEdit *txtName;
    QLineEdit *txtUnit;
    QLineEdit *txtPrice;
    QLineEdit *txtDetail;
    QCheckBox *chkDisable;
    QCheckBox *chkIsDefault;
    QCheckBox *chkIsContainer;
    DataCombo *cmbContainer;
};
