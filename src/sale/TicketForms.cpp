#include "TicketForms.h"

#include "platform/Forms.h"

void registerTicketForms()
{
}
