#pragma once
#include "ClerkListWindow.h"

// The empties list: the delivery list's columns, with the operations on empties.
class frmContainerAdmin : public ClerkListWindow {
    Q_OBJECT
public:
    explicit frmContainerAdmin(QWidget *parent = nullptr);

    void SetMyDBGrid();

public slots:
    void ShowTotal() override;

    void InContainer();
    void InAllContainer();
    void OutContainer();
    void OutAllContainer();
};
