#pragma once
#include <QDate>
#include <QString>
#include <functional>

// The everyday work the bench times, the same on the file and on a server, driven through
// the program's windows and classes: the sale list, the address search keystroke by
// keystroke, the customer lookups, a ticket save, the stock-take and the period reports of
// the year up to the shop's last day. Each operation goes to measure with its name, its
// target in ms, an untimed preparation and the timed work.
namespace EverydayWork {
using Measure = std::function<void(const QString &what, double target, const std::function<void()> &prepare,
                                   const std::function<void()> &work)>;
void run(const Measure &measure, const QDate &last);
// Start to the login window: the shop opened again by open (the splash's two seconds aside),
// the company name read, the login window shown.
void startUp(const Measure &measure, const std::function<void()> &open);
}
