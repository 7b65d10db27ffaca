#include "CustomerForms.h"

#include "platform/Forms.h"

void registerCustomerForms()
{
}
