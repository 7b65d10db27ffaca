#pragma once
#include "views/LineTable.h"

#include <QDialog>

class QLabel;
class QLineEdit;
class QListView;
class QPlainTextEdit;
class QPushButton;
class QTabWidget;
class QTableView;
class DataCombo;
class Transaction;
class RecordsetModel;
class LineGrid;

// The ticket window: a new ticket (mode 1, stays open for the next one), an open ticket to
// change (mode 2, closes on save) or a finished one to look at (mode 0). The opener sets
// mActionType and mCurID; the window loads when it is first shown.
class frmSale : public QDialog {
    Q_OBJECT
    Q_PROPERTY(int mActionType MEMBER mActionType)
    Q_PROPERTY(int mCurID MEMBER mCurID)
    Q_PROPERTY(int InputReady MEMBER InputReady)
    Q_PROPERTY(bool AutoOutAmount MEMBER AutoOutAmount)
    Q_PROPERTY(bool AutoInMoney MEMBER AutoInMoney)
    Q_PROPERTY(bool AutoInContainer MEMBER AutoInContainer)
public:
    explicit frmSale(QWidget *parent = nullptr);

    int mActionType = 0;
    int mCurID = 0;
    int InputReady = 0;
    bool AutoOutAmount = false;
    bool AutoInMoney = false;
    bool AutoInContainer = false;

    // The lines behind dbgDetail.
    LineTable *xayDetail() const { return m_lines; }

    // Loads the window for the mode its opener set; false when the ticket to show is gone or
    // has no lines, and the window then closes.
    bool Form_Load();

public slots:
    int exec() override;
    // Escape and the window's close box leave the way btnExit does.
    void reject() override;

    void ResetInput();
    qint32 GetNewSaleID();
    void SumArray();
    bool GetCustomerInfo(int mGetType);

    void btnAddCustomer_Click();
    void btnSave_Click();
    void btnSavePrint_Click();
    void btnReset_Click();
    void btnPreview_Click();
    void btnPrintSetup_Click();
    void btnExit_Click();

protected:
    void showEvent(QShowEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void buildLayout();
    void setUpDetailGrid();
    void loadTicket();
    void UpdateSaveButtons();
    void ClearCustomerFields();
    void closeWindow();
    // What leaving a field does: its lookup or its check. False when the field keeps the focus.
    bool leaveField(QObject *field);
    // Ctrl+S and Ctrl+P: finish the field in hand as leaving it would, then press the button.
    void saveByKey(QPushButton *button);

    // Handlers of the customer fields and the address list.
    void txtCustAddress_Change();
    void showAddressList();
    void chooseAddress(const QModelIndex &index);
    bool validateCustAccount();
    bool validateActualFigure(QLineEdit *field, QLineEdit *total, const QString &message);
    bool validateTransferFee();
    void cmbSender_Change();

    // The save of each mode; false when the save stopped.
    bool saveNew();
    bool saveEdit();
    bool writeLines();
    bool committed(Transaction &tx);

    // Runs a handler and turns a run-time error of the classic rules into a message instead
    // of letting it end the program.
    template <class F> void guarded(F &&f);

    LineTable *m_lines = nullptr;
    bool m_loaded = false;
    bool m_closeRequested = false;

    QTabWidget *SSTab1 = nullptr;
    QLineEdit *txtSaleID = nullptr;
    QLineEdit *txtCreateDate = nullptr;
    QLineEdit *txtCustAccount = nullptr;
    QLineEdit *txtCustPhone = nullptr;
    QLineEdit *txtCustAddress = nullptr;
    QListView *dtlCustomer = nullptr;
    QLineEdit *txtCustName = nullptr;
    QLineEdit *txtCustType = nullptr;
    QLineEdit *txtCustCreateDate = nullptr;
    LineGrid *dbgDetail = nullptr;
    DataCombo *cmbSender = nullptr;
    QLineEdit *txtTransferFee = nullptr;
    QLineEdit *txtTotalAmount = nullptr;
    QLineEdit *txtOutAmount = nullptr;
    QLineEdit *txtTotalMoney = nullptr;
    QLineEdit *txtInMoney = nullptr;
    QLineEdit *txtTotalContainer = nullptr;
    QLineEdit *txtInContainer = nullptr;
    QPlainTextEdit *txtDetail = nullptr;
    QLineEdit *txtHistoryAmount = nullptr;
    QLineEdit *txtHistoryMoney = nullptr;
    QLineEdit *txtHistoryMoneyBalance = nullptr;
    QLineEdit *txtHistoryContainerBalance = nullptr;
    QLineEdit *txtHistoryTimes = nullptr;
    DataCombo *cmbStation = nullptr;
    QLabel *lblStation = nullptr;
    QTableView *dbgHistory = nullptr;
    RecordsetModel *m_history = nullptr;
    RecordsetModel *m_addresses = nullptr;
    QPushButton *btnAddCustomer = nullptr;
    QPushButton *btnSave = nullptr;
    QPushButton *btnSavePrint = nullptr;
    QPushButton *btnReset = nullptr;
    QPushButton *btnPreview = nullptr;
    QPushButton *btnPrintSetup = nullptr;
    QPushButton *btnExit = nullptr;
};
