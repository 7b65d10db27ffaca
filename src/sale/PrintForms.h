#pragma once

// Puts the windows of this group (rptSale,frmSalePrintSetup,frmSaleFilter) into the forms registry.
void registerPrintForms();
