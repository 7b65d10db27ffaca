#pragma once

// Puts the windows of the daily stock-take (frmTodayReport, frmSetTodayReport) into the
// forms registry.
void registerTodayForms();
