#pragma once
#include <QString>

// The program writes every statement in the classic desktop-database dialect: #date#
// literals, & joining texts, Year()/Month(), case-blind names. This is the one place that
// turns such text into what the running engine accepts. It is a pure function: it never
// fails, and text inside quotes passes through untouched.
namespace JetDialect {
enum class Target { SQLite, PostgreSQL };
QString translate(const QString &statement, Target target);
// A whole table set to one value ("update Store set FinishFlag='1'" at every closing) leaves
// the rows that already hold it alone, so a closing rewrites a day's vouchers rather than
// years of them; what is stored afterwards is the same. Takes and gives engine text; any
// other statement passes unchanged.
QString spareUnchanged(const QString &engineSql, Target target);
// True when the text between two # marks is a date (with an optional time) this dialect reads.
bool isDate(QStringView text);
}
