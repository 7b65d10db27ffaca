// Saves tickets into the database file given, for the tests that run two at once or kill one.
#include "TicketSaver.h"

#include <QCoreApplication>
#include <cstdio>

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    if (argc != 4) {
        std::fprintf(stderr, "usage: ticket_saver_helper <file> <tickets, 0 for no end> <remark prefix>\n");
        return 2;
    }
    return TicketSaver::run(QString::fromLocal8Bit(argv[1]), QByteArray(argv[2]).toInt(), QString::fromLocal8Bit(argv[3]));
}
