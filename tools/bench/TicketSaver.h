#pragma once
#include <QString>

// Saves tickets into a database file, one transaction each, the way the ticket window does
// (header, its number read back, the lines, commit). Prints "saved <id> <remark>" after each
// commit the program reported as done; any message ends it. tickets 0 saves until killed.
// The exit code: 0 when all were saved, 1 on a failure, 2 when the file cannot be opened.
namespace TicketSaver {
int run(const QString &file, int tickets, const QString &remarkPrefix);
}
