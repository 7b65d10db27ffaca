#pragma once
#include "platform/AdminList.h"

// The delivery workers, in service and suspended.
class frmSenderAdmin : public AdminListWindow {
    Q_OBJECT
public:
    frmSenderAdmin();

protected:
    QList<Row> listRows() override;
};
