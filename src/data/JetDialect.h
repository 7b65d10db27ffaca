#pragma once
#include <QString>

// The program writes every statement in the classic desktop-database dialect: #date#
// literals, & joining texts, Year()/Month(), case-blind names. This is the one place that
// turns such text into what the running engine accepts. It is a pure function: it never
// fails, and text inside quotes passes through untouched.
namespace JetDialect {
enum class Target { SQLite, PostgreSQL };
QString translate(const QString &statement, Target target);
// True when the text between two # marks is a date (with an optional time) this dialect reads.
bool isDate(QStringView text);
}
