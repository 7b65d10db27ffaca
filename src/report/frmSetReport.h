#pragma once
#include <QDialog>

class DataCombo;
class QLabel;
class QLineEdit;
class QPushButton;

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
