#pragma once
#include "views/ListWindow.h"

// The customers of the shop, suspended ones included, and the one place where a customer is
// suspended or taken back into use. Customers are never deleted.
class frmCustomerAdmin : public ListWindow {
    Q_OBJECT
public:
    explicit frmCustomerAdmin(QWidget *parent = nullptr);

    void BuildMyDBGrid();

public slots:
    // Suspends the customer in the current row, or takes a suspended one back: one command
    // for both ways, asked first.
    void DeleteData();
    // The command bar asks for DeleteAll, which this list does not offer; under this name it
    // only says that all customers cannot be suspended at once.
    void DeletaAll();

protected:
    RowStyle FetchRowStyle(int bookmark) override;
};
