#pragma once
#include "views/ListWindow.h"

// The list of stock vouchers, in and out, hand-made and generated, oldest first. Closed
// vouchers are grey, negative quantities and money red; the footers total the filter.
class frmStoreAdmin : public ListWindow {
    Q_OBJECT
public:
    explicit frmStoreAdmin(QWidget *parent = nullptr);

    void SetMyDBGrid();

    // How the list shows a voucher's direction and its money.
    static QString directionText(const QVariant &direction);
    static QString moneyText(const QVariant &money);

public slots:
    void ShowTotal() override;
    void DeleteData();
    void DeleteAll();

protected:
    RowStyle FetchRowStyle(int bookmark) override;
    QColor FetchCellColor(int column, const QVariant &value) override;
};
