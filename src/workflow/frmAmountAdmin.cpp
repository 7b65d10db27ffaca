#include "frmAmountAdmin.h"

#include "TicketOperations.h"

frmAmountAdmin::frmAmountAdmin(QWidget *parent)
    : ClerkListWindow(QStringLiteral("frmAmountAdmin"), QStringLiteral("销售发货"), Amount | Container, parent)
{
    SetMyDBGrid();
    Form_Load();
}

void frmAmountAdmin::SetMyDBGrid() { setDeliveryColumns(QStringLiteral(":::今日出货单据列表:::")); }

void frmAmountAdmin::ShowTotal() { showDeliveryTotal(); }

void frmAmountAdmin::OutAmount() { ops()->OutAmount(); }
void frmAmountAdmin::OutAllAmount() { ops()->OutAllAmount(); }
void frmAmountAdmin::InAmount() { ops()->InAmount(); }
void frmAmountAdmin::InAllAmount() { ops()->InAllAmount(); }
