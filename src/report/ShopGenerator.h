#pragma once
#include <QDate>
#include <QString>

// A made-up shop of a chosen size, the same every time, for measuring how the stock-take,
// the closing and the period reports hold up on years of tickets. It writes into a database
// freshly made by the program's creation step (Database::open on a new file).
namespace ShopGenerator {
struct Size {
    int days = 3650;          // the shop's age; tickets on every day up to lastDay
    int ticketsPerDay = 200;
    int customers = 20000;
    int products = 40;        // a quarter of them are bottles
    int workers = 20;
    int openDays = 30;        // the last closing was this many days before lastDay
    int stuckPerMille = 20;   // tickets in a thousand that never settle: half owe, half lack a bottle
    QDate lastDay = QDate(2026, 11, 23);
};

// Fills the open database. False with the engine's text in *error.
bool fill(const Size &size, QString *error = nullptr);
}
