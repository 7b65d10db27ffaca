#pragma once
#include "views/AdminList.h"

// The delivery workers, in service and suspended.
class frmSenderAdmin : public AdminListWindow {
    Q_OBJECT
public:
    frmSenderAdmin();
};
