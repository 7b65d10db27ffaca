#pragma once
#include "views/AdminList.h"

// The product catalogue, bottles included, in use and suspended.
class frmProductAdmin : public AdminListWindow {
    Q_OBJECT
public:
    frmProductAdmin();
};
