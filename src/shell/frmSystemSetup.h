#pragma once
#include <QDialog>
#include <QList>
#include <functional>

class QCheckBox;
class QComboBox;
class QLineEdit;

// The settings of ticket entry, list refresh and caller ID. The main window loads it hidden
// at start-up, so that its load opens the caller-ID line.
class frmSystemSetup : public QDialog {
    Q_OBJECT
public:
    frmSystemSetup();

    // The caller-ID devices (number and name, in order) and how the chosen one is opened.
    // Until the telephone line is wired in, the serial ports are listed and nothing opens.
    struct LineDevice {
        int number;
        QString name;
    };
    static void setLineDevices(std::function<QList<LineDevice>()> lister);
    static void setLineOpener(std::function<void(int deviceNumber)> opener);

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
};

// Empties the business tables after two confirmations, then ends the program.
void ResetSystem();
