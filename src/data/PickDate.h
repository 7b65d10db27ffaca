#pragma once
#include <QDate>

// Puts frmPickDate into the forms registry. A date taken in it becomes Session::PickedDate,
// also for windows that show the dialog themselves; a cancel leaves PickedDate as it was.
void registerPickDateForm();

// The calendar dialog: the chosen date, or the null date when it was closed without choosing.
QDate PickDate();
