#include "frmContainerAdmin.h"

#include "TicketOperations.h"

frmContainerAdmin::frmContainerAdmin(QWidget *parent)
    : ClerkListWindow(QStringLiteral("frmContainerAdmin"), QStringLiteral("空瓶回收"), Amount | Container, parent)
{
    SetMyDBGrid();
    Form_Load();
}

// The title is the delivery list's: both clerks work from the same sheet.
void frmContainerAdmin::SetMyDBGrid() { setDeliveryColumns(QStringLiteral(":::今日出货单据列表:::")); }

void frmContainerAdmin::ShowTotal() { showDeliveryTotal(); }

void frmContainerAdmin::InContainer() { ops()->InContainer(); }
void frmContainerAdmin::InAllContainer() { ops()->InAllContainer(); }
void frmContainerAdmin::OutContainer() { ops()->OutContainer(); }
void frmContainerAdmin::OutAllContainer() { ops()->OutAllContainer(); }
