#pragma once

// Puts the windows of this group (frmSale) into the forms registry.
void registerTicketForms();
