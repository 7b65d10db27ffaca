#include "PrintForms.h"

#include "frmSaleFilter.h"
#include "frmSalePrintSetup.h"
#include "rptSale.h"

#include "data/Gateway.h"
#include "platform/Forms.h"
#include "platform/PageLayout.h"

void registerPrintForms()
{
    installSongFontSubstitutes();
    Forms::add(QStringLiteral("frmSalePrintSetup"), [] { return new frmSalePrintSetup; });
    Forms::add(QStringLiteral("frmSaleFilter"), [] { return new frmSaleFilter; });
    setSalePrinter(&printTicket);
}
