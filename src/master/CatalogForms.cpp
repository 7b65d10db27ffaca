#include "CatalogForms.h"

#include "platform/Forms.h"

void registerCatalogForms()
{
}
