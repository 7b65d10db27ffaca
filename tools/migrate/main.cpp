// tarvik-migrate <Tarvik.mdb> <Tarvik-server.ini>
// Moves a shop's file up to the empty database on its server, shows how far it is, and
// compares every table afterwards. Exit code 0 when everything arrived.
#include "ShopMover.h"

#include <QCoreApplication>
#include <cstdio>
#include <unistd.h>

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    if (argc != 3) {
        std::fprintf(stderr, "用法: tarvik-migrate <Tarvik.mdb> <Tarvik-server.ini>\n");
        return 2;
    }
    Database::Server server;
    QString error;
    if (!Database::readServerFile(QString::fromLocal8Bit(argv[2]), &server, &error)) {
        std::fprintf(stderr, "%s\n", qPrintable(error));
        return 2;
    }
    ShopMover mover;
    const bool terminal = isatty(fileno(stdout));
    mover.progress = [terminal](const QString &table, qint64 done, qint64 total) {
        const int percent = total > 0 ? int(done * 100 / total) : 100;
        std::printf("%s%-14s %10lld / %-10lld %3d%%%s", terminal ? "\r" : "", qPrintable(table), done, total, percent,
                    terminal && done < total ? "" : "\n");
        std::fflush(stdout);
    };
    if (!mover.copy(QString::fromLocal8Bit(argv[1]), server)) {
        std::fprintf(stderr, "\n没有搬迁：%s\n", qPrintable(mover.error()));
        return 1;
    }
    std::printf("\n核对：\n");
    for (const QString &line : mover.checks())
        std::printf("  %s\n", qPrintable(line));
    std::printf(mover.allAgree() ? "全部一致，数据已搬到 %s。\n" : "有不一致的地方，请检查上面的核对结果 (%s)。\n",
                qPrintable(server.name()));
    return mover.allAgree() ? 0 : 1;
}
