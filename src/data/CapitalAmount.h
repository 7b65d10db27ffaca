#pragma once
#include <QString>

// Amounts of money in Chinese capital numerals for the printed ticket ("壹仟零壹元").
// The routine covers eight whole digits and two decimals, without rounding, and keeps the
// classic quirks of the printed ticket (see CapitalAmount.cpp).

// The capital of one digit, 0 to 9; the empty text for anything else.
QString CapitalDigit(int digit);

QString CapitalAmount(double value);
