#pragma once
#include <QDialog>

class QCheckBox;
class QComboBox;
class QLineEdit;

// The settings of ticket entry, list refresh and caller ID. The main window loads it hidden
// at start-up, so that its load makes the main window's caller-ID line and opens the chosen
// device; each later load (after OK or Cancel unloaded it) makes a new line and opens the
// device stored then.
class frmSystemSetup : public QDialog {
    Q_OBJECT
public:
    frmSystemSetup();

protected:
    void reject() override;

private:
    void Form_Load();
    void btnOk_Click();

    QList<QCheckBox *> chkAutoDo;
    QCheckBox *chkSearchAddress;
    QCheckBox *chkAutoDataRefresh;
    QComboBox *cboModem;
    QLineEdit *txtAreaCode;
    QLineEdit *txtNumberLen;
    QLineEdit *txtNcidServer;
};

// Empties the business tables after two confirmations, then ends the program.
void ResetSystem();
