#pragma once

// The stock windows under their names: the voucher, its list and the list's filter.
void registerStockForms();
