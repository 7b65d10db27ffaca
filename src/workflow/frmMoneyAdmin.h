#pragma once
#include "ClerkListWindow.h"

// The cashier's list: what each ticket owes and what was paid, with the money operations.
class frmMoneyAdmin : public ClerkListWindow {
    Q_OBJECT
public:
    explicit frmMoneyAdmin(QWidget *parent = nullptr);

    void SetMyDBGrid();

public slots:
    void ShowTotal() override;

    void InMoney();
    void OutMoney();
    void InAllMoney();
    void OutAllMoney();
};
