#pragma once
#include "ClerkListWindow.h"

// The delivery list: goods ordered and handed out, empties due and back, with the delivery
// operations.
class frmAmountAdmin : public ClerkListWindow {
    Q_OBJECT
public:
    explicit frmAmountAdmin(QWidget *parent = nullptr);

    void SetMyDBGrid();

public slots:
    void ShowTotal() override;

    void OutAmount();
    void OutAllAmount();
    void InAmount();
    void InAllAmount();
};
