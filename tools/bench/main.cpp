// tarvik-bench: how long the stock-take, the closing and the period reports take on a shop
// of years. Makes the shop once (through the program's own creation step), then measures on
// a copy, so that every run starts from the same file.
#include "data/Database.h"
#include "data/Gateway.h"
#include "data/Session.h"
#include "platform/Prompter.h"
#include "report/PeriodClosing.h"
#include "report/ReportQuery.h"
#include "report/ShopGenerator.h"
#include "report/TodayReportGenerator.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QSqlQuery>
#include <QTextStream>
#include <ctime>

namespace {
QTextStream out(stdout);

// Answers the closing's input box with the cut-off and every question with Yes; prints
// any other message, since on a healthy shop there is none.
class AnsweringPrompter : public Prompter {
public:
    QString cutOff;
    QMessageBox::StandardButton message(const QString &title, const QString &text, QMessageBox::Icon,
                                        QMessageBox::StandardButtons buttons, QMessageBox::StandardButton) override
    {
        if (!(buttons & QMessageBox::Yes) && title != QStringLiteral("提示"))
            out << "  message [" << title << "] " << text << Qt::endl;
        return buttons & QMessageBox::Yes ? QMessageBox::Yes : QMessageBox::Ok;
    }
    std::optional<QString> input(const QString &, const QString &, const QString &) override { return cutOff; }
};

double cpuMs()
{
    timespec t{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
    return t.tv_sec * 1e3 + t.tv_nsec / 1e6;
}

// The machine is shared: the processor time of the work is printed beside the wall time.
double g_cpu = 0;

template <typename Work> double timed(Work work)
{
    QElapsedTimer t;
    const double cpu = cpuMs();
    t.start();
    work();
    g_cpu = cpuMs() - cpu;
    return t.nsecsElapsed() / 1e6;
}

void report(const QString &what, double ms, const QString &note = QString())
{
    out << QStringLiteral("%1 %2 ms (cpu %3 ms)").arg(what, -40).arg(ms, 8, 'f', 1).arg(g_cpu, 8, 'f', 1);
    if (!note.isEmpty())
        out << "  " << note;
    out << Qt::endl;
}

int rowsOf(const QString &sql)
{
    RecordsetPtr rs = OpenRecordset(sql);
    return rs ? rs->recordCount() : -1;
}
}

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Times the stock-take, the closing and the period reports."));
    parser.addHelpOption();
    parser.addPositionalArgument(QStringLiteral("file"), QStringLiteral("the shop's database; made when missing"));
    QCommandLineOption days(QStringLiteral("days"), QStringLiteral("age of a new shop in days"), QStringLiteral("n"),
                            QStringLiteral("3650"));
    QCommandLineOption perDay(QStringLiteral("tickets-per-day"), QStringLiteral("tickets a day in a new shop"),
                              QStringLiteral("n"), QStringLiteral("200"));
    QCommandLineOption stuck(QStringLiteral("stuck-per-mille"),
                             QStringLiteral("tickets in a thousand of a new shop that never settle"), QStringLiteral("n"),
                             QStringLiteral("20"));
    QCommandLineOption analyze(QStringLiteral("analyze"), QStringLiteral("gather the engine's statistics first"));
    QCommandLineOption bare(QStringLiteral("without-indexes"),
                            QStringLiteral("measure with the indexes the shop had before"));
    parser.addOptions({days, perDay, stuck, analyze, bare});
    parser.process(app);
    if (parser.positionalArguments().size() != 1)
        parser.showHelp(1);
    const QString file = parser.positionalArguments().first();

    ShopGenerator::Size size;
    size.days = parser.value(days).toInt();
    size.ticketsPerDay = parser.value(perDay).toInt();
    size.stuckPerMille = parser.value(stuck).toInt();
    QString error;
    if (!QFileInfo::exists(file)) {
        const double ms = timed([&] {
            if (!Database::open(file, &error) || !ShopGenerator::fill(size, &error)) {
                out << "cannot make the shop: " << error << Qt::endl;
                ::exit(1);
            }
            Database::close();
        });
        report(QStringLiteral("made a shop of %1 days").arg(size.days), ms);
    }

    const QString copy = file + QStringLiteral(".run");
    QFile::remove(copy);
    QFile::remove(copy + QStringLiteral("-wal"));
    QFile::remove(copy + QStringLiteral("-shm"));
    if (!QFile::copy(file, copy)) {
        out << "cannot copy " << file << Qt::endl;
        return 1;
    }
    double openMs = timed([&] {
        if (!Database::open(copy, &error)) {
            out << "cannot open: " << error << Qt::endl;
            ::exit(1);
        }
    });
    report(QStringLiteral("open (indexes made when missing)"), openMs);
    QSqlQuery q(Database::connection());
    if (parser.isSet(bare)) {
        q.exec(QStringLiteral("SELECT name FROM sqlite_master WHERE type='index' AND name LIKE 'idx_report_%'"));
        QStringList names;
        while (q.next())
            names << q.value(0).toString();
        for (const QString &name : names)
            q.exec(QStringLiteral("DROP INDEX ") + name);
        q.exec(QStringLiteral("CREATE INDEX idx_saledetail_product ON Sale_detail(ProductID)"));
        out << "dropped " << names.join(QLatin1Char(' ')) << ", made idx_saledetail_product" << Qt::endl;
    }
    if (parser.isSet(analyze))
        report(QStringLiteral("ANALYZE"), timed([&] { q.exec(QStringLiteral("ANALYZE")); }));
    q.exec(QStringLiteral("SELECT count(*), sum(FinishFlag='0') FROM Sale"));
    q.next();
    out << "tickets " << q.value(0).toLongLong() << ", open " << q.value(1).toLongLong();
    q.exec(QStringLiteral("SELECT (SELECT count(*) FROM Sale_detail), (SELECT count(*) FROM Store), "
                          "(SELECT count(*) FROM Store_detail)"));
    q.next();
    out << ", lines " << q.value(0).toLongLong() << ", vouchers " << q.value(1).toLongLong() << ", voucher lines "
        << q.value(2).toLongLong() << Qt::endl;

    AnsweringPrompter prompter;
    Prompter::install(&prompter);
    Session::UserID = 1;
    const QDate last = size.lastDay;

    auto stockTake = [&](const QString &what) {
        TodayReportGenerator generator;
        generator.ReportDate = last;
        const double ms = timed([&] { generator.GetTodayReport(); });
        QString stock;
        for (const ReportRow &row : generator.xayReport)
            if (row[0] == QStringLiteral("今日库存余额："))
                stock = row[1] + QStringLiteral(" / ") + row[2];
        report(what, ms, QStringLiteral("sold %1 / %2, stock %3").arg(generator.xayReport[0][1], generator.xayReport[0][2], stock));
    };
    stockTake(QStringLiteral("stock-take of the last day"));

    // One normal day: the oldest day still open.
    const QDate day = last.addDays(-size.openDays + 1);
    prompter.cutOff = day.toString(QStringLiteral("MM-dd-yyyy"));
    std::optional<int> closed;
    const double closingMs = timed([&] { closed = PeriodClosing().FinishToday(); });
    report(QStringLiteral("closing of %1").arg(prompter.cutOff), closingMs,
           QStringLiteral("%1 tickets finished").arg(closed ? *closed : -1));
    stockTake(QStringLiteral("stock-take after the closing"));

    struct Kind {
        qint32 type;
        QDate start;
        QString what;
    };
    const QList<Kind> kinds = {
        {0, last.addMonths(-1), QStringLiteral("day report over a month")},
        {3, last.addYears(-1), QStringLiteral("month report over a year")},
        {1, last.addYears(-1), QStringLiteral("customer day report over a year")},
        {4, last.addYears(-10), QStringLiteral("customer month report over ten years")},
        {2, last.addMonths(-1), QStringLiteral("worker day report over a month")},
        {5, last.addYears(-1), QStringLiteral("worker month report over a year")},
    };
    for (const Kind &k : kinds) {
        const ReportQuery query(k.type, k.start, last, 7);
        int rows = 0;
        const double ms = timed([&] { rows = rowsOf(query.fullSql()); });
        report(k.what, ms, QStringLiteral("%1 rows").arg(rows));
    }
    Prompter::install(nullptr);
    Database::close();
    return 0;
}
