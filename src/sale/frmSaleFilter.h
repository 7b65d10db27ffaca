#pragma once
#include <QDialog>
#include <QList>

class DataCombo;
class QCheckBox;
class QComboBox;
class QLineEdit;
class QPushButton;
class QRadioButton;

// "销售单据过滤器": turns the ticked conditions into a run of clauses and hands them to the
// ticket list in front, which runs them at its next refresh. Every opening starts over.
class frmSaleFilter : public QDialog {
    Q_OBJECT
public:
    frmSaleFilter();

    // The clauses the dialog would hand over now.
    QString filterText() const;

public slots:
    void RefreshControl();
    void btnPickDate_Click();
    void btnOk_Click();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void reject() override;

private:
    enum class Kind { Text, Number, Date, List };
    struct Condition {
        QCheckBox *check;
        QWidget *field;
        QComboBox *op; // nullptr where the comparison is fixed
        Kind kind;
    };
    QLineEdit *edit(const char *name);
    QComboBox *operatorList(int index);
    QString op(const QLineEdit *field) const;
    // The value check on leaving a field: false (after the message) when it cannot be read.
    bool checkValue(QLineEdit *field);

    QCheckBox *chkAddress, *chkAccount, *chkUserID, *chkCreateDate, *chkID, *chkTotalMoney,
        *chkTotalAmount, *chkMoneyBalance, *chkContainerBalance, *chkSenderID, *chkStation;
    QLineEdit *txtAddress, *txtAccount, *txtCreateDate, *txtID, *txtTotalMoney, *txtTotalAmount,
        *txtMoneyBalance, *txtContainerBalance;
    DataCombo *cmbUserID, *cmbSenderID, *cmbStation;
    QList<QComboBox *> cmbOperator;
    QPushButton *btnPickDate, *btnOk, *btnCancel;
    QList<QRadioButton *> optFinish, optSearchType;
    QList<Condition> m_conditions;
    bool m_checking = false;
};
