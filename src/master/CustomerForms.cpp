#include "CustomerForms.h"

#include "frmCustomer.h"
#include "frmSelCustomer.h"

#include "platform/Forms.h"

void registerCustomerForms()
{
    Forms::add(QStringLiteral("frmCustomer"), [] { return new frmCustomer; });
    Forms::add(QStringLiteral("frmSelCustomer"), [] { return new frmSelCustomer; });
}
