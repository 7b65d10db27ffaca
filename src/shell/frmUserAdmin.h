#pragma once
#include "views/AdminList.h"

// The operators, enabled and disabled, with their remarks.
class frmUserAdmin : public AdminListWindow {
    Q_OBJECT
public:
    frmUserAdmin();
};
