#include "TicketForms.h"

#include "frmSale.h"

#include "platform/Forms.h"

void registerTicketForms()
{
    Forms::add(QStringLiteral("frmSale"), [] { return new frmSale; });
}
