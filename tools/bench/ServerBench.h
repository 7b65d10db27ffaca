#pragma once
#include <QString>
#include <QTextStream>

// The everyday work of the file's bench on the same shop moved up to a PostgreSQL server:
// through the program's code on the server, and the statements it sent there straight
// through the client library.
namespace ServerBench {
struct Settings {
    QString file;       // the shop's file; moved up when the server's database is empty
    QString serverFile; // the connection file naming that database
    int runs = 7;
    int ticketsPerDay = 200;
};
// Prints how far the move is and the server's table. 0 when everything ran.
int run(const Settings &settings, QTextStream &out);
}
