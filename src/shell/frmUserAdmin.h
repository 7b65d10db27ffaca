#pragma once
#include "platform/AdminList.h"

// The operators, enabled and disabled, with their remarks.
class frmUserAdmin : public AdminListWindow {
    Q_OBJECT
public:
    frmUserAdmin();

protected:
    QList<Row> listRows() override;
};
