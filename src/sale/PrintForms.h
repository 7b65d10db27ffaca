#pragma once

// Puts the ticket designer (frmSalePrintSetup) and the sale filter (frmSaleFilter) into the
// forms registry, and makes the gateway's PrintSale and PreviewSale print the ticket page.
void registerPrintForms();
