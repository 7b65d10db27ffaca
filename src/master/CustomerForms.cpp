#include "CustomerForms.h"

#include "frmCustFilter.h"
#include "frmCustomer.h"
#include "frmCustomerAdmin.h"
#include "frmSelCustomer.h"

#include "platform/Forms.h"

void registerCustomerForms()
{
    Forms::add(QStringLiteral("frmCustomer"), [] { return new frmCustomer; });
    Forms::add(QStringLiteral("frmSelCustomer"), [] { return new frmSelCustomer; });
    Forms::add(QStringLiteral("frmCustomerAdmin"), [] { return new frmCustomerAdmin; });
    Forms::add(QStringLiteral("frmCustFilter"), [] { return new frmCustFilter; });
}
