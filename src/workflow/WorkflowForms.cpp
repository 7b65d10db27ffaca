#include "WorkflowForms.h"

#include "frmAmountAdmin.h"
#include "frmContainerAdmin.h"
#include "frmMoneyAdmin.h"
#include "frmSaleAdmin.h"

#include "platform/Forms.h"

void registerWorkflowForms()
{
    Forms::add(QStringLiteral("frmSaleAdmin"), [] { return new frmSaleAdmin; });
    Forms::add(QStringLiteral("frmMoneyAdmin"), [] { return new frmMoneyAdmin; });
    Forms::add(QStringLiteral("frmAmountAdmin"), [] { return new frmAmountAdmin; });
    Forms::add(QStringLiteral("frmContainerAdmin"), [] { return new frmContainerAdmin; });
}
