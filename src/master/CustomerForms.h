#pragma once

// Puts the windows of this group (frmCustomer,frmSelCustomer,frmCustomerAdmin,frmCustFilter) into the forms registry.
void registerCustomerForms();
