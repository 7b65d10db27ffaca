#pragma once
#include <QDate>
#include <QDialog>

class DataCombo;
class QLabel;
class QLineEdit;
class QPushButton;

// What a confirmed report dialog hands to the report window.
struct ReportChoice {
    qint32 type = 0;
    qint32 id = 0; // the customer of kinds 1 and 4, the delivery worker of kinds 2 and 5
    QDate start;
    QDate end;
    qint32 station = 0;
};

// The choice of a period report: its period, and the customer or the delivery worker it is
// about. The caller sets curReportType before showing it; mResult says whether OK was pressed,
// and the caller reads the fields before unloading the dialog.
class frmSetReport : public QDialog {
    Q_OBJECT
    Q_PROPERTY(qint32 curReportType MEMBER curReportType)
    Q_PROPERTY(bool mResult MEMBER mResult)
public:
    explicit frmSetReport(QWidget *parent = nullptr);

    qint32 curReportType = 0;
    bool mResult = false;

    // Sets the fields for the kind; runs when the dialog first shows, once the kind is set.
    void Form_Load();
    // The confirmed choice: the customer found by the account typed, the worker by the combo.
    // The account's lookup shows the read message and throws when its statement fails.
    ReportChoice choice() const;

public slots:
    void RefreshControl();
    void reject() override;

protected:
    void showEvent(QShowEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    bool validateField(QLineEdit *field);
    void pickDate(QLineEdit *field);
    void btnOk_Click();

    QLineEdit *txtStartDate;
    QPushButton *btnPickStart;
    QLineEdit *txtEndDate;
    QPushButton *btnPickEnd;
    QLineEdit *txtAccount;
    DataCombo *cmbSender;
    QLabel *lblStation;
    DataCombo *cmbStation;
    QPushButton *btnOk;
    QPushButton *btnCancel;
    bool m_loaded = false;
    bool m_checking = false;
};
