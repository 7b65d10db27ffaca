#pragma once
#include <QDate>
#include <QDateTime>
#include <QString>
#include <QVariant>

// The classic BASIC value rules that every window relies on when it turns text into numbers
// and dates and back. Numbers on screen are text fields; these routines keep the program's
// reading and writing of them in one place.
//
// Conversions that raise a run-time error throw VbError: overflow() beyond the target's range,
// typeMismatch() for text that is not a number or a date, and number 94 ("无效使用 Null") for
// a null database value. Val never throws.

// The lenient reading: the leading number of a text, 0 when there is none. Blanks, tabs and
// line feeds are skipped wherever they stand ("1 2" is 12); the number may have a sign, one
// decimal point and an exponent (e/E/d/D); "&H1F" and "&O17" read hex and octal.
// A number beyond the range of a double reads as the largest double of its sign, so that a
// wild entry never turns into infinity; CInt/CLng of it still overflow.
double Val(const QString &text);

// Blanks (U+0020) cut from both ends, the start or the end; tabs, line feeds, the ideographic
// space and the no-break space stay, as the classic routines leave them.
QString Trim(const QString &text);
QString LTrim(const QString &text);
QString RTrim(const QString &text);

// The strict conversions. Text may carry blanks around it, a sign, thousands separators, a
// leading "￥" and an exponent ("-￥1,234.50" reads back what Format wrote); nothing else.
// Bools give -1 and 0; an invalid (empty) QVariant gives 0.
qint16 CInt(const QVariant &value);   // banker's rounding, -32768..32767
qint32 CLng(const QVariant &value);   // banker's rounding, 32-bit range
double CCur(const QVariant &value);   // banker's rounding at the fourth decimal
double CDbl(const QVariant &value);

// The same readings as checks that never throw, for validation.
bool IsNumeric(const QString &text);
bool isCInt(const QString &text);
bool isCLng(const QString &text);
bool isDate(const QString &text);

// Numbers as text with a format pattern: digit placeholders "0" (always shown) and "#" (shown
// when significant), "." and "," (thousands grouping), "%", literal text (\x or "..."), and up
// to four sections "positive;negative;zero". Named formats: "Currency" (￥1,234.50 and
// -￥1,234.50), "Fixed", "Standard", "Percent", "General Number". Rounding is half away from
// zero at the shown decimals, on the number's 15-digit decimal form (2.675 -> "2.68").
// A minus sign goes in front of the whole text. A value that rounds to zero shows no sign.
// Not a number or infinite: the empty text.
QString Format(double value, const QString &pattern);

// The plain number text with no leading blank: 15 significant digits, no leading zero before
// the point (0.5 -> ".5", -0.25 -> "-.25"), and the exponent form from 1E+15 up and below
// 0.0001 ("1E+15", "1E-05"). Str is the same text: nothing in the program wants the leading
// blank of the classic Str.
QString NumText(double value);
QString Str(double value);

// The default date text, "yyyy-MM-dd", and with the time, "yyyy-MM-dd HH:mm:ss". A null date
// gives the empty text.
QString DateText(const QDate &date);
QString DateTimeText(const QDateTime &dateTime);

// Reading date text: yyyy-M-d, yyyy/M/d, M-d-yyyy and M/d/yyyy, each optionally followed by a
// time H:m or H:m:s with an optional AM/PM: the same forms the dialect translator reads between
// # marks, so text that passes here can be spliced into a statement. Dates that do not exist
// (2026-02-30) are unreadable. readDate/readDateTime give false and leave *out untouched; CDate throws
// typeMismatch().
bool readDate(const QString &text, QDate *out);
bool readDateTime(const QString &text, QDateTime *out);
QDate CDate(const QString &text);

// Date literals for statements: "#2026-03-05#" and "#2026-03-05 14:30:00#". The gateway's
// dialect translator turns them into what the engine wants. A null date gives "##", which the
// translator refuses like any unreadable date.
QString JetDate(const QDate &date);
QString JetDateTime(const QDateTime &dateTime);
