#pragma once
#include <QString>

// Values the user typed are joined into statement text as they stand, with no escaping.
// Wrapping them here lets the gateway see where a typed value begins and ends: a typed text
// holding a quote, or a typed number that is not a plain number, makes the statement fail
// with the gateway's message, so such a value can never change what a statement does. A typed
// date must be a date the dialect reads, or the statement fails the same way.
namespace Sql {
constexpr QChar TextOpen = QChar(0xFDD0);
constexpr QChar TextClose = QChar(0xFDD1);
constexpr QChar NumberOpen = QChar(0xFDD2);
constexpr QChar NumberClose = QChar(0xFDD3);
constexpr QChar DateOpen = QChar(0xFDD4);
constexpr QChar DateClose = QChar(0xFDD5);

// A typed text, to stand between the statement's own quotes: "... Address='" + Sql::text(a) + "'".
inline QString text(const QString &typed) { return TextOpen + typed + TextClose; }
// A typed number, spliced with no quotes: "... where Account=" + Sql::number(t).
inline QString number(const QString &typed) { return NumberOpen + typed + NumberClose; }
// A typed date, to stand between the statement's own # marks: "... CreateDate<=#" + Sql::date(d) + "#".
inline QString date(const QString &typed) { return DateOpen + typed + DateClose; }
}
