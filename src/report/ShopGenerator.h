#pragma once
#include <QDate>
#include <QString>
#include <functional>

// A made-up shop of a chosen size, the same every time for a seed, for measuring how the
// windows, the stock-take, the closing and the reports hold up on years of tickets. It writes
// into a database freshly made by the program's creation step (Database::open on a new file).
namespace ShopGenerator {
struct Size {
    int days = 3650;          // the shop's age; tickets on every day up to lastDay
    int ticketsPerDay = 200;
    int customers = 20000;
    int products = 40;        // a quarter of them are bottles
    int workers = 20;
    int openDays = 1;         // the last closing was this many days before lastDay
    int stuckTickets = 100;   // tickets spread over the years that never settle: half owe, half lack a bottle
    quint32 seed = 20261123;
    QDate lastDay = QDate(2026, 11, 23);
};

// Fills the open database in one transaction on the engine's own interface. progress, when
// given, hears the share done (0 to 1) now and then. False with the engine's text in *error.
bool fill(const Size &size, QString *error = nullptr, const std::function<void(double)> &progress = {});
}
