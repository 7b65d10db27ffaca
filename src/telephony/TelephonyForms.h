#pragma once

// Registers the call log windows under their names.
void registerTelephonyForms();
