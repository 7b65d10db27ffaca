#pragma once
#include "SaleListWindow.h"

// The home window: today's tickets and every ticket still open, with all the ticket
// operations. It stays open for the whole session.
class frmSaleAdmin : public SaleListWindow {
    Q_OBJECT
public:
    explicit frmSaleAdmin(QWidget *parent = nullptr);

    void SetMyDBGrid();

public slots:
    void ShowTotal() override;

    void DeleteData();
    void DeleteAll();
    void InMoney();
    void InAllMoney();
    void OutMoney();
    void OutAllMoney();
    void OutAmount();
    void OutAllAmount();
    void InAmount();
    void InAllAmount();
    void InContainer();
    void InAllContainer();
    void OutContainer();
    void OutAllContainer();

protected:
    void closeEvent(QCloseEvent *event) override;
};
