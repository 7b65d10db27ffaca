#include "Clock.h"

namespace {
QDateTime g_fixed;
}

QDateTime Clock::now() { return g_fixed.isValid() ? g_fixed : QDateTime::currentDateTime(); }
QDate Clock::today() { return now().date(); }
void Clock::set(const QDateTime &fixed) { g_fixed = fixed; }
void Clock::reset() { g_fixed = QDateTime(); }
