#pragma once

// Puts the windows of this group (frmCustomer,frmSelCustomer) into the forms registry.
void registerCustomerForms();
