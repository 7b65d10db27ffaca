#pragma once
#include <QString>

// The message for a field whose text cannot be read as what it has to be. Kind 1: a 32-bit
// whole number (shown as "not a valid number"), 2: a date, 3: a 16-bit whole number.
QString FieldErrorText(const QString &text, int kind);

// Shows that message: title "错误", stop icon, OK.
void ShowFieldError(const QString &text, int kind);
