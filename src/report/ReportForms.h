#pragma once

// Puts the period report windows (frmSetReport, frmReport, frmChart) into the forms registry.
void registerReportForms();
