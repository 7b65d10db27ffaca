#include "StockForms.h"

#include "frmStore.h"
#include "frmStoreAdmin.h"
#include "frmStoreFilter.h"

#include "platform/Forms.h"

void registerStockForms()
{
    Forms::add(QStringLiteral("frmStore"), [] { return new frmStore; });
    Forms::add(QStringLiteral("frmStoreAdmin"), [] { return new frmStoreAdmin; });
    Forms::add(QStringLiteral("frmStoreFilter"), [] { return new frmStoreFilter; });
}
