#pragma once
#include <QDialog>

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class DataCombo;

// The customer card. A new card stays open after a save for the next customer and leaves
// the last new customer's ID in the session for whoever opened it; an edited card closes
// on save. The opener sets mActionType (1 new, 2 edit) and mCurID before showing it.
class frmCustomer : public QDialog {
    Q_OBJECT
    Q_PROPERTY(int mActionType MEMBER mActionType)
    Q_PROPERTY(int mCurID MEMBER mCurID)
public:
    explicit frmCustomer(QWidget *parent = nullptr);

    int mActionType = 0;
    int mCurID = 0;

    // False when the customer to edit is gone, and the card then closes.
    bool Form_Load();

    // Shows the card modally on a new customer (1) or on the customer of that ID (2); gives
    // the ID of the last new customer saved, 0 when none was.
    static int openFor(int action, int id = 0);
    // The card as the ticket opens it: a new customer at the ticket's phone and address, his
    // account numbered by the system, since the ticket looks him up by that number. Gives
    // the ID of the last new customer saved, 0 when none was.
    Q_INVOKABLE int openForTicket(const QString &phone, const QString &address);

public slots:
    int exec() override;
    // Escape and the close box leave the way btnExit does.
    void reject() override;
    void btnSave_Click();
    void btnDate_Click();
    void btnExit_Click();
    void chkAutoID_Click();

protected:
    void showEvent(QShowEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void updateSaveButton();
    bool saveNew();
    bool saveEdit();
    void closeCard();

    bool m_loaded = false;
    QLineEdit *txtName;
    QLineEdit *txtAccount;
    QCheckBox *chkAutoID;
    QLineEdit *txtAddress;
    QLineEdit *txtPhone;
    QComboBox *cmbCustType;
    QLineEdit *txtCreateDate;
    QPushButton *btnDate;
    QCheckBox *chkDisable;
    QLineEdit *txtDetail;
    DataCombo *cmbStation;
    QLabel *lblStation;
    QPushButton *btnSave;
    QPushButton *btnExit;
};
