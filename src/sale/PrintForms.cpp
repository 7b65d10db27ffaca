#include "PrintForms.h"

#include "platform/Forms.h"

void registerPrintForms()
{
}
