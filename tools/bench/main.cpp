// tarvik-bench: how long the shop's everyday work takes on a shop of years, against the
// embedded engine running the very same statements on its own interface.
//
// Makes the shop once (through the program's own creation step, the same for a seed), then
// measures on a copy so that every run starts from the same file. Each operation runs through
// the program's code (the windows or the classes under them) while the engine's trace records
// the statements it sent; those statements then run again on a plain engine connection.
#include "data/Database.h"
#include "data/Gateway.h"
#include "data/Session.h"
#include "platform/Clock.h"
#include "platform/Prompter.h"
#include "report/PeriodClosing.h"
#include "report/ShopGenerator.h"
#include "shell/Shell.h"

#include "EverydayWork.h"
#include "KillSoak.h"
#include "ServerBench.h"
#include "TicketSaver.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QSqlDriver>
#include <QSqlQuery>
#include <QTextStream>
#include <algorithm>
#include <ctime>
#include <sqlite3.h>

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

sqlite3 *engineOf(QSqlDatabase db)
{
    const QVariant handle = db.driver()->handle();
    return handle.isValid() && qstrcmp(handle.typeName(), "sqlite3*") == 0 ? *static_cast<sqlite3 *const *>(handle.constData())
                                                                           : nullptr;
}

// The statements the program hands the engine, with their values in place.
QStringList g_trace;
bool g_tracing = false;
int traceStatement(unsigned, void *, void *p, void *)
{
    if (!g_tracing)
        return 0;
    char *sql = sqlite3_expanded_sql(static_cast<sqlite3_stmt *>(p));
    if (sql && qstrncmp(sql, "--", 2) != 0)
        g_trace << QString::fromUtf8(sql);
    sqlite3_free(sql);
    return 0;
}
void watch(sqlite3 *engine) { sqlite3_trace_v2(engine, SQLITE_TRACE_STMT, traceStatement, nullptr); }

double msSince(const QElapsedTimer &t) { return t.nsecsElapsed() / 1e6; }

// The machine is shared: the processor time of this process is kept beside the wall time,
// and the ratio is taken on it.
double cpuMs()
{
    timespec t{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
    return t.tv_sec * 1e3 + t.tv_nsec / 1e6;
}

// A plain engine connection, set up as the program sets up its own.
sqlite3 *rawOpen(const QString &file)
{
    sqlite3 *db = nullptr;
    if (sqlite3_open_v2(file.toUtf8().constData(), &db, SQLITE_OPEN_READWRITE, nullptr) != SQLITE_OK) {
        sqlite3_close(db);
        return nullptr;
    }
    sqlite3_busy_timeout(db, 10000);
    sqlite3_exec(db, "PRAGMA mmap_size=1073741824", nullptr, nullptr, nullptr);
    return db;
}

// Runs the statements on the engine alone, reading every value of every row as the
// snapshot does.
bool rawRun(sqlite3 *db, const QStringList &statements)
{
    for (const QString &sql : statements) {
        sqlite3_stmt *s = nullptr;
        const QByteArray text = sql.toUtf8();
        if (sqlite3_prepare_v2(db, text.constData(), int(text.size()), &s, nullptr) != SQLITE_OK) {
            out << "  raw engine refused: " << sql << ": " << sqlite3_errmsg(db) << Qt::endl;
            return false;
        }
        const int columns = sqlite3_column_count(s);
        volatile qint64 sink = 0;
        int rc;
        while ((rc = sqlite3_step(s)) == SQLITE_ROW) {
            for (int i = 0; i < columns; ++i) {
                switch (sqlite3_column_type(s, i)) {
                case SQLITE_INTEGER: sink = sink + sqlite3_column_int64(s, i); break;
                case SQLITE_FLOAT: sink = sink + qint64(sqlite3_column_double(s, i)); break;
                case SQLITE_TEXT: sink = sink + sqlite3_column_bytes16(s, i) + (sqlite3_column_text16(s, i) != nullptr); break;
                default: break;
                }
            }
        }
        sqlite3_finalize(s);
        if (rc != SQLITE_DONE) {
            out << "  raw engine failed: " << sql << ": " << sqlite3_errmsg(db) << Qt::endl;
            return false;
        }
    }
    return true;
}

struct Row {
    QString what;
    QList<double> program, raw, programCpu, rawCpu;
    int statements = 0;
    double target = 0;
    QString note;
};

double median(QList<double> v)
{
    if (v.isEmpty())
        return 0;
    std::sort(v.begin(), v.end());
    const qsizetype n = v.size();
    return n % 2 ? v[n / 2] : (v[n / 2 - 1] + v[n / 2]) / 2;
}

void printTable(const QList<Row> &rows, const QString &title)
{
    out << Qt::endl << "### " << title << Qt::endl << Qt::endl;
    out << "| operation | statements | median ms | spread ms (min–max) | raw median ms | cpu ms | raw cpu ms | ratio (cpu) "
           "| target ms | note |"
        << Qt::endl;
    out << "|---|---:|---:|---:|---:|---:|---:|---:|---:|---|" << Qt::endl;
    for (const Row &r : rows) {
        const double m = median(r.program), raw = median(r.raw), cpu = median(r.programCpu),
                     rawCpu = median(r.rawCpu);
        const auto [lo, hi] = std::minmax_element(r.program.cbegin(), r.program.cend());
        out << "| " << r.what << " | " << r.statements << " | " << QString::number(m, 'f', 2) << " | "
            << QString::number(*lo, 'f', 2) << "–" << QString::number(*hi, 'f', 2) << " | "
            << QString::number(raw, 'f', 2) << " | " << QString::number(cpu, 'f', 2) << " | "
            << QString::number(rawCpu, 'f', 2) << " | "
            << (rawCpu > 0 ? QString::number(cpu / rawCpu, 'f', 2) : QStringLiteral("–"))
            << " | " << (r.target > 0 ? QString::number(r.target, 'f', 0) : QStringLiteral("–")) << " | "
            << (r.target > 0 && m > r.target ? QStringLiteral("**over target** ") : QString()) << r.note << " |"
            << Qt::endl;
    }
}

bool copyFresh(const QString &from, const QString &to)
{
    for (const char *suffix : {"", "-wal", "-shm", "-journal"})
        QFile::remove(to + QLatin1String(suffix));
    return QFile::copy(from, to);
}

[[noreturn]] void die(const QString &why)
{
    out << why << Qt::endl;
    ::exit(1);
}
}

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Times the shop's everyday work on a made-up shop of years."));
    parser.addHelpOption();
    parser.addPositionalArgument(QStringLiteral("file"), QStringLiteral("the shop's database; made when missing"),
                                 QStringLiteral("[file]"));
    QCommandLineOption days(QStringLiteral("days"), QStringLiteral("age of a new shop in days"), QStringLiteral("n"),
                            QStringLiteral("3650"));
    QCommandLineOption perDay(QStringLiteral("tickets-per-day"), QStringLiteral("tickets a day in a new shop"),
                              QStringLiteral("n"), QStringLiteral("200"));
    QCommandLineOption stuck(QStringLiteral("stuck"), QStringLiteral("tickets of a new shop that never settle"),
                             QStringLiteral("n"), QStringLiteral("100"));
    QCommandLineOption customers(QStringLiteral("customers"), QStringLiteral("customers of a new shop"),
                                 QStringLiteral("n"), QStringLiteral("20000"));
    QCommandLineOption seed(QStringLiteral("seed"), QStringLiteral("seed of a new shop"), QStringLiteral("n"),
                            QStringLiteral("20261123"));
    QCommandLineOption runs(QStringLiteral("runs"), QStringLiteral("runs of each operation"), QStringLiteral("n"),
                            QStringLiteral("7"));
    QCommandLineOption soak(QStringLiteral("soak"),
                            QStringLiteral("instead of timing: kill a program saving tickets again and again, checking the file after each kill"));
    QCommandLineOption kills(QStringLiteral("kills"), QStringLiteral("kills of the soak"), QStringLiteral("n"),
                             QStringLiteral("200"));
    QCommandLineOption saver(QStringLiteral("save-tickets"),
                             QStringLiteral("save tickets into the file until killed (the soak's saver)"), QStringLiteral("file"));
    QCommandLineOption server(QStringLiteral("server"),
                              QStringLiteral("also move the shop up into the empty database this connection file names "
                                             "and time the same work there"),
                              QStringLiteral("Tarvik-server.ini"));
    parser.addOptions({days, perDay, stuck, customers, seed, runs, soak, kills, saver, server});
    parser.process(app);
    if (parser.isSet(saver))
        return TicketSaver::run(parser.value(saver), 0, QStringLiteral("S%1").arg(QCoreApplication::applicationPid()));
    if (parser.isSet(soak))
        return KillSoak::run(QCoreApplication::applicationFilePath(), parser.value(kills).toInt(), out);

    const QString file = parser.positionalArguments().value(0, QStringLiteral("tarvik-bench-shop.mdb"));
    ShopGenerator::Size size;
    size.days = parser.value(days).toInt();
    size.ticketsPerDay = parser.value(perDay).toInt();
    size.stuckTickets = parser.value(stuck).toInt();
    size.customers = parser.value(customers).toInt();
    size.seed = parser.value(seed).toUInt();
    const int n = qMax(1, parser.value(runs).toInt());
    QString error;
    if (!QFileInfo::exists(file)) {
        QElapsedTimer t;
        t.start();
        if (!Database::open(file, &error))
            die(QStringLiteral("cannot make the shop: ") + error);
        int shown = -1;
        const bool made = ShopGenerator::fill(size, &error, [&](double done) {
            const int percent = int(done * 100);
            if (percent / 10 != shown / 10) {
                shown = percent;
                out << "  making the shop: " << percent << "% (" << qRound(msSince(t) / 1000) << " s)" << Qt::endl;
            }
        });
        if (!made)
            die(QStringLiteral("cannot make the shop: ") + error);
        Database::close();
        out << "made a shop of " << size.days << " days in " << QString::number(msSince(t) / 1000, 'f', 1) << " s"
            << Qt::endl;
    }

    const QString copy = file + QStringLiteral(".run");
    if (!copyFresh(file, copy))
        die(QStringLiteral("cannot copy ") + file);
    Shell::registerAllForms();
    AnsweringPrompter prompter;
    Prompter::install(&prompter);
    Session::UserID = 1;

    if (!Database::open(copy, &error))
        die(QStringLiteral("cannot open: ") + error);
    QDate last;
    {
        QSqlQuery q(Database::connection());
        q.exec(QStringLiteral("SELECT count(*), sum(FinishFlag='0'), max(CreateDate) FROM Sale"));
        q.next();
        last = QDate::fromString(q.value(2).toString(), Qt::ISODate);
        out << "tickets " << q.value(0).toLongLong() << ", open " << q.value(1).toLongLong();
        q.exec(QStringLiteral("SELECT (SELECT count(*) FROM Sale_detail), (SELECT count(*) FROM Customer), "
                              "(SELECT count(*) FROM Store), (SELECT count(*) FROM Store_detail)"));
        q.next();
        out << ", lines " << q.value(0).toLongLong() << ", customers " << q.value(1).toLongLong() << ", vouchers "
            << q.value(2).toLongLong() << ", voucher lines " << q.value(3).toLongLong() << Qt::endl;
    }
    // The closing runs start from the shop as the program left it at opening (its indexes and
    // statistics in place), before any write of the runs below.
    const QString prepared = file + QStringLiteral(".prepared");
    Database::close();
    if (!copyFresh(copy, prepared) || !Database::open(copy, &error))
        die(QStringLiteral("cannot copy ") + copy);
    Clock::set(QDateTime(last, QTime(9, 0)));
    watch(engineOf(Database::connection()));
    sqlite3 *raw = rawOpen(copy);
    if (!raw)
        die(QStringLiteral("cannot open the shop on the engine alone"));

    QList<Row> rows;
    // Reads: once to learn the statements, then n runs of the program and n of the engine.
    auto measure = [&](const QString &what, double target, const std::function<void()> &prepare,
                       const std::function<void()> &work, const QString &note = QString(), bool rawOpens = false) {
        Row r{what, {}, {}, {}, {}, 0, target, note};
        prepare();
        g_trace.clear();
        g_tracing = true;
        work();
        g_tracing = false;
        const QStringList statements = g_trace;
        r.statements = int(statements.size());
        for (int i = 0; i < n; ++i) {
            prepare();
            QElapsedTimer t;
            double cpu = cpuMs();
            t.start();
            work();
            r.program << msSince(t);
            r.programCpu << cpuMs() - cpu;
            cpu = cpuMs();
            t.restart();
            if (rawOpens) {
                sqlite3 *fresh = rawOpen(copy);
                rawRun(fresh, statements);
                sqlite3_close(fresh);
            } else {
                rawRun(raw, statements);
            }
            r.raw << msSince(t);
            r.rawCpu << cpuMs() - cpu;
        }
        rows << r;
    };

    EverydayWork::startUp(
        [&](const QString &what, double target, const std::function<void()> &prepare, const std::function<void()> &work) {
            measure(what, target, prepare, work,
                    QStringLiteral("the splash's two seconds aside; the opening's own statements are not traced, so the "
                                   "engine alone opens the file and runs only the company name's read"),
                    true);
        },
        [&] {
            if (!Database::open(copy, &error))
                die(QStringLiteral("cannot open: ") + error);
            watch(engineOf(Database::connection()));
        });

    EverydayWork::run([&](const QString &what, double target, const std::function<void()> &prepare,
                          const std::function<void()> &work) { measure(what, target, prepare, work); },
                      last);
    sqlite3_close(raw);
    Database::close();

    // The closing changes the shop: each run closes the last day on a fresh copy, and the
    // engine alone replays the statements on a second copy.
    {
        Row r{QStringLiteral("closing of the last day (%1 tickets)").arg(size.ticketsPerDay), {}, {}, {}, {}, 0, 500, {}};
        const QString second = file + QStringLiteral(".raw");
        prompter.cutOff = last.toString(QStringLiteral("MM-dd-yyyy"));
        for (int i = 0; i < qMin(n, 3); ++i) {
            if (!copyFresh(prepared, copy) || !copyFresh(prepared, second))
                die(QStringLiteral("cannot copy ") + prepared);
            if (!Database::open(copy, &error))
                die(QStringLiteral("cannot open: ") + error);
            watch(engineOf(Database::connection()));
            g_trace.clear();
            g_tracing = true;
            std::optional<int> closed;
            QElapsedTimer t;
            double cpu = cpuMs();
            t.start();
            closed = PeriodClosing().FinishToday();
            r.program << msSince(t);
            r.programCpu << cpuMs() - cpu;
            g_tracing = false;
            Database::close();
            // What the program asked before its transaction (the counts) is part of it too.
            sqlite3 *mirror = rawOpen(second);
            cpu = cpuMs();
            t.restart();
            rawRun(mirror, g_trace);
            r.raw << msSince(t);
            r.rawCpu << cpuMs() - cpu;
            sqlite3_close(mirror);
            r.statements = int(g_trace.size());
            r.note = QStringLiteral("%1 finished; the program's runs are traced").arg(closed ? *closed : -1);
        }
        for (const char *suffix : {"", "-wal", "-shm"})
            QFile::remove(second + QLatin1String(suffix));
        rows << r;
    }
    for (const QString &made : {copy, prepared})
        for (const char *suffix : {"", "-wal", "-shm"})
            QFile::remove(made + QLatin1String(suffix));
    Prompter::install(nullptr);
    printTable(rows, QStringLiteral("%1 runs each (closing: %2) on %3").arg(n).arg(qMin(n, 3)).arg(QFileInfo(file).fileName()));
    if (parser.isSet(server))
        return ServerBench::run({file, parser.value(server), n, size.ticketsPerDay}, out);
    return 0;
}
