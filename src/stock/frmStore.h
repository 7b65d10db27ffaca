#pragma once
#include <QDialog>

class DataCombo;
class LineGrid;
class LineTable;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;
class QRadioButton;
struct VoucherInput;

// "库存管理": one stock voucher, goods into the store or out of it. Mode 1 keys new vouchers
// one after another (the date and the direction stay for the next); mode 2 changes a stored
// one and closes on save. A generated or carried-forward voucher is shown with its note and
// cannot be saved. The opener sets mActionType and mCurID; the window loads when shown.
class frmStore : public QDialog {
    Q_OBJECT
    Q_PROPERTY(int mActionType MEMBER mActionType)
    Q_PROPERTY(int mCurID MEMBER mCurID)
public:
    explicit frmStore(QWidget *parent = nullptr);

    int mActionType = 0;
    int mCurID = 0;

    // The lines behind dbgDetail.
    LineTable *xayDetail() const { return m_lines; }

    // Loads the window for the mode its opener set; false when the voucher to show is gone
    // or has no lines left, and the window then closes.
    bool Form_Load();

public slots:
    int exec() override;
    // Escape and the close box leave as btnExit does: nothing is saved.
    void reject() override;

    void SumArray();

    void btnSave_Click();
    void btnExit_Click();

protected:
    void showEvent(QShowEvent *event) override;

private:
    void buildLayout();
    bool loadVoucher();
    void ClearVoucher();
    void UpdateSaveButton();
    VoucherInput input() const;
    void closeWindow();

    LineTable *m_lines;
    bool m_loaded = false;

    QRadioButton *optType0 = nullptr;
    QRadioButton *optType1 = nullptr;
    QLineEdit *txtPaperID = nullptr;
    QLineEdit *txtCreateDate = nullptr;
    QLineEdit *txtTotalAmount = nullptr;
    QLineEdit *txtTotalMoney = nullptr;
    QPlainTextEdit *txtDetail = nullptr;
    DataCombo *cmbStation = nullptr;
    QLabel *lblStation = nullptr;
    QLabel *lblInfo = nullptr;
    LineGrid *dbgDetail = nullptr;
    QPushButton *btnSave = nullptr;
    QPushButton *btnExit = nullptr;
};
