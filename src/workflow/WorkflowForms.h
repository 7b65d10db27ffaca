#pragma once

// Puts the windows of this group (frmSaleAdmin,frmMoneyAdmin,frmAmountAdmin,frmContainerAdmin) into the forms registry.
void registerWorkflowForms();
