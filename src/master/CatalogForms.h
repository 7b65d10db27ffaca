#pragma once

// Puts the windows of this group (frmProductAdmin,frmProduct,frmSenderAdmin,frmSender) into the forms registry.
void registerCatalogForms();
