#pragma once
#include <QDate>
#include <QDateTime>

// The one source of today's date and the current time. Tests set it to a fixed moment.
namespace Clock {
QDateTime now();
QDate today();
void set(const QDateTime &fixed);
void reset();
}
