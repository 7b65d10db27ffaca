#pragma once
#include "platform/AdminList.h"

// The product catalogue, bottles included, in use and suspended.
class frmProductAdmin : public AdminListWindow {
    Q_OBJECT
public:
    frmProductAdmin();

protected:
    QList<Row> listRows() override;
};
