#include "ServerBench.h"

#include "EverydayWork.h"
#include "PgClient.h"
#include "ShopMover.h"

#include "data/Database.h"
#include "data/Gateway.h"
#include "data/Session.h"
#include "platform/Clock.h"
#include "platform/Prompter.h"
#include "report/PeriodClosing.h"

#include <QSqlDriver>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <algorithm>
#include <ctime>
#include <functional>
#include <libpq-fe.h>
#include <sqlite3.h>

namespace {
// Answers the closing's input box with the cut-off and every question with Yes.
class AnsweringPrompter : public Prompter {
public:
    explicit AnsweringPrompter(QTextStream &out) : m_out(out) {}
    QString cutOff;
    QMessageBox::StandardButton message(const QString &title, const QString &text, QMessageBox::Icon,
                                        QMessageBox::StandardButtons buttons, QMessageBox::StandardButton) override
    {
        if (!(buttons & QMessageBox::Yes) && title != QStringLiteral("提示"))
            m_out << "  message [" << title << "] " << text << Qt::endl;
        return buttons & QMessageBox::Yes ? QMessageBox::Yes : QMessageBox::Ok;
    }
    std::optional<QString> input(const QString &, const QString &, const QString &) override { return cutOff; }

private:
    QTextStream &m_out;
};

// The statements the gateway hands the server while an operation is recorded.
QStringList g_recorded;
void record(const QString &engineSql) { g_recorded << engineSql; }
QStringList recorded(const std::function<void()> &work)
{
    g_recorded.clear();
    Gateway::setStatementObserver(record);
    work();
    Gateway::setStatementObserver(nullptr);
    return g_recorded;
}

// The same statements without the savepoints the gateway wraps each statement of a
// transaction in on the server.
QStringList withoutSavepoints(const QStringList &statements)
{
    QStringList bare;
    for (const QString &sql : statements)
        if (!sql.startsWith(QLatin1String("SAVEPOINT ")) && !sql.startsWith(QLatin1String("RELEASE SAVEPOINT "))
            && !sql.startsWith(QLatin1String("ROLLBACK TO SAVEPOINT ")))
            bare << sql;
    return bare;
}

double msSince(const QElapsedTimer &t) { return t.nsecsElapsed() / 1e6; }

double cpuMs()
{
    timespec t{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
    return t.tv_sec * 1e3 + t.tv_nsec / 1e6;
}

double median(QList<double> v)
{
    if (v.isEmpty())
        return 0;
    std::sort(v.begin(), v.end());
    const qsizetype n = v.size();
    return n % 2 ? v[n / 2] : (v[n / 2 - 1] + v[n / 2]) / 2;
}

// Processor time (ns) of a server process, when the server runs on this machine; -1 otherwise.
qint64 serverNs(int pid)
{
    QFile f(QStringLiteral("/proc/%1/schedstat").arg(pid));
    if (pid <= 0 || !f.open(QIODevice::ReadOnly))
        return -1;
    bool ok = false;
    const qint64 ns = f.readAll().split(' ').value(0).toLongLong(&ok);
    return ok ? ns : -1;
}

// The server process serving the program's connection.
int programBackend()
{
    const QVariant handle = Database::connection().driver()->handle();
    return handle.isValid() && qstrcmp(handle.typeName(), "pg_conn*") == 0
               ? PQbackendPID(*static_cast<PGconn *const *>(handle.constData()))
               : 0;
}

// The wall time of a piece of work, and the processor time of this process and of the server
// process serving it together (-1 when the server's is out of sight). A connection the work
// makes itself is counted from its start (whole).
struct Took {
    double wall = 0, cpu = -1;
};
Took timed(const std::function<void()> &work, const std::function<int()> &backend, bool connects)
{
    const qint64 before = connects ? 0 : serverNs(backend());
    QElapsedTimer t;
    const double cpu = cpuMs();
    t.start();
    work();
    Took took;
    took.wall = msSince(t);
    const double own = cpuMs() - cpu;
    const qint64 after = serverNs(backend());
    if (before >= 0 && after >= 0)
        took.cpu = own + (after - before) / 1e6;
    return took;
}

struct Row {
    QString what;
    double target = 0;
    QString note;
    int statements = 0, savepoints = 0;
    // The program, the client library with the same statements, and without the savepoints.
    QList<double> program, raw, bare;
    QList<double> programCpu, rawCpu;
    void add(const Took &p, const Took &r)
    {
        program << p.wall;
        raw << r.wall;
        if (p.cpu >= 0 && r.cpu >= 0) {
            programCpu << p.cpu;
            rawCpu << r.cpu;
        }
    }
};

QString ms(double value) { return QString::number(value, 'f', 2); }

void printTable(QTextStream &out, const QList<Row> &rows, const QString &title)
{
    out << Qt::endl << "### " << title << Qt::endl << Qt::endl;
    out << "| operation | statements (savepoints) | median ms | spread ms (min–max) | client library median ms | ratio "
           "| cpu ms | client library cpu ms | ratio (cpu) | client library without savepoints ms | target ms | note |"
        << Qt::endl;
    out << "|---|---:|---:|---:|---:|---:|---:|---:|---:|---:|---:|---|" << Qt::endl;
    const QString none = QStringLiteral("–");
    for (const Row &r : rows) {
        if (r.program.isEmpty())
            continue;
        const double m = median(r.program), raw = median(r.raw);
        const double cpu = median(r.programCpu), rawCpu = median(r.rawCpu);
        const bool cpuKnown = !r.programCpu.isEmpty();
        const auto [lo, hi] = std::minmax_element(r.program.cbegin(), r.program.cend());
        out << "| " << r.what << " | " << r.statements << " (" << r.savepoints << ") | " << ms(m) << " | " << ms(*lo)
            << "–" << ms(*hi) << " | " << ms(raw) << " | " << (raw > 0 ? QString::number(m / raw, 'f', 2) : none)
            << " | " << (cpuKnown ? ms(cpu) : none) << " | " << (cpuKnown ? ms(rawCpu) : none) << " | "
            << (cpuKnown && rawCpu > 0 ? QString::number(cpu / rawCpu, 'f', 2) : none) << " | "
            << (r.bare.isEmpty() ? none : ms(median(r.bare))) << " | " << QString::number(r.target, 'f', 0) << " | "
            << (m > r.target ? QStringLiteral("**over target** ") : QString()) << r.note << " |" << Qt::endl;
    }
}

QString quotedName(const QString &name)
{
    return QLatin1Char('"') + QString(name).replace(QLatin1Char('"'), QStringLiteral("\"\"")) + QLatin1Char('"');
}

// Rows of the tables that tell one shop from another, in the file.
QList<qint64> fileCounts(const QString &file, const QStringList &tables)
{
    QList<qint64> counts;
    sqlite3 *db = nullptr;
    if (sqlite3_open_v2(file.toUtf8().constData(), &db, SQLITE_OPEN_READONLY, nullptr) == SQLITE_OK) {
        for (const QString &table : tables) {
            sqlite3_stmt *s = nullptr;
            const QByteArray sql = "SELECT count(*) FROM " + table.toUtf8();
            qint64 n = -1;
            if (sqlite3_prepare_v2(db, sql.constData(), -1, &s, nullptr) == SQLITE_OK && sqlite3_step(s) == SQLITE_ROW)
                n = sqlite3_column_int64(s, 0);
            sqlite3_finalize(s);
            counts << n;
        }
    }
    sqlite3_close(db);
    return counts;
}

class Bench {
public:
    Bench(const ServerBench::Settings &settings, QTextStream &out) : m_settings(settings), out(out), m_prompter(out) {}
    int run();

private:
    bool fail(const QString &why)
    {
        out << why << Qt::endl;
        return false;
    }
    bool bringUp();
    bool copyDatabase(const QString &name);
    void dropDatabase(const QString &name);
    Database::Server named(const QString &database) const
    {
        Database::Server s = m_server;
        s.database = database;
        return s;
    }
    void measure(const QString &what, double target, const std::function<void()> &prepare,
                 const std::function<void()> &work, const QString &note = QString(), bool rawConnects = false);
    bool everydayWork();
    bool closing();

    const ServerBench::Settings &m_settings;
    QTextStream &out;
    AnsweringPrompter m_prompter;
    Database::Server m_server;
    PgClient m_admin; // on the moved shop's database, which the runs never change
    QString m_work;
    QString m_copyClause;
    QDate m_last;
    QList<Row> m_rows;
    PgClient m_raw;
};

// Moves the file up into the empty database, or finds it there from an earlier run.
bool Bench::bringUp()
{
    const QStringList tables = {QStringLiteral("Sale"), QStringLiteral("Sale_detail"), QStringLiteral("Store"),
                                QStringLiteral("Store_detail"), QStringLiteral("Customer")};
    const QList<qint64> inFile = fileCounts(m_settings.file, tables);
    if (!m_admin.connect(m_server))
        return fail(QStringLiteral("cannot reach the server: ") + m_admin.error());
    // The runs work on copies of the database, which only its owner may make.
    if (m_admin.value(QStringLiteral("SELECT datdba = (SELECT oid FROM pg_roles WHERE rolname = current_user) "
                                     "FROM pg_database WHERE datname = current_database()"))
            .toString()
        != QLatin1String("t"))
        return fail(QStringLiteral("the bench's login does not own the database %1; give it an empty database of "
                                   "its own (createdb)")
                        .arg(m_server.name()));
    if (m_admin.value(QStringLiteral("SELECT to_regclass('sale') IS NOT NULL")).toString() == QLatin1String("t")) {
        QList<qint64> onServer;
        for (const QString &table : tables)
            onServer << m_admin.value(QStringLiteral("SELECT count(*) FROM ") + table).toLongLong();
        if (onServer == inFile) {
            out << "the server's database " << m_server.name() << " already holds this shop: reused" << Qt::endl;
            return true;
        }
        if (std::any_of(onServer.cbegin(), onServer.cend(), [](qint64 n) { return n != 0; }))
            return fail(QStringLiteral("the server's database %1 holds another shop; give the bench an empty database "
                                       "(createdb) in the connection file")
                            .arg(m_server.name()));
    }
    ShopMover mover;
    QElapsedTimer t;
    t.start();
    QString shownTable;
    int shown = -1;
    mover.progress = [&](const QString &table, qint64 done, qint64 total) {
        const int percent = total > 0 ? int(done * 100 / total) : 100;
        if (table != shownTable || percent / 25 != shown / 25) {
            shownTable = table;
            shown = percent;
            out << "  moving up: " << table << " " << percent << "% (" << qRound(msSince(t) / 1000) << " s)" << Qt::endl;
        }
    };
    m_admin.disconnect();
    if (!mover.copy(m_settings.file, m_server))
        return fail(QStringLiteral("cannot move the shop up: ") + mover.error());
    if (!mover.allAgree()) {
        for (const QString &line : mover.checks())
            out << "  " << line << Qt::endl;
        return fail(QStringLiteral("the shop on the server differs from the file"));
    }
    out << "moved the shop up to " << m_server.name() << " in " << QString::number(msSince(t) / 1000, 'f', 1)
        << " s; every table agrees" << Qt::endl;
    // What the server's own vacuum would do shortly after: statistics for the planner and
    // the visibility map for index-only reads.
    if (!m_admin.connect(m_server)
        || !m_admin.exec(QStringLiteral("VACUUM ANALYZE Station, SysUser, SysValue, Product, Sender, Customer, Sale, "
                                        "Sale_detail, Store, Store_detail, Call")))
        return fail(QStringLiteral("cannot gather the server's statistics: ") + m_admin.error());
    return true;
}

bool Bench::copyDatabase(const QString &name)
{
    dropDatabase(name);
    return m_admin.exec(QStringLiteral("CREATE DATABASE %1 TEMPLATE %2%3")
                            .arg(quotedName(name), quotedName(m_server.database), m_copyClause))
           || fail(QStringLiteral("cannot copy the shop's database (the bench's login must own it): ") + m_admin.error());
}

void Bench::dropDatabase(const QString &name) { m_admin.exec(QStringLiteral("DROP DATABASE IF EXISTS ") + quotedName(name)); }

// Once recorded, then runs times: the program, the client library with the statements it
// sent, and where there are savepoints the same without them.
void Bench::measure(const QString &what, double target, const std::function<void()> &prepare,
                    const std::function<void()> &work, const QString &note, bool rawConnects)
{
    Row r{what, target, note, 0, 0, {}, {}, {}, {}, {}};
    prepare();
    const QStringList statements = recorded(work);
    const QStringList bare = withoutSavepoints(statements);
    r.statements = int(statements.size());
    r.savepoints = int(statements.size() - bare.size());
    const Database::Server workServer = named(m_work);
    auto replay = [&](const QStringList &sent) {
        if (!rawConnects)
            return timed([&] {
                if (!m_raw.replay(sent))
                    out << "  client library: " << m_raw.error() << Qt::endl;
            }, [&] { return m_raw.backendPid(); }, false);
        PgClient fresh;
        return timed([&] {
            if (!fresh.connect(workServer) || !fresh.replay(sent))
                out << "  client library: " << fresh.error() << Qt::endl;
        }, [&] { return fresh.backendPid(); }, true);
    };
    for (int i = 0; i < m_settings.runs; ++i) {
        prepare();
        r.add(timed(work, programBackend, rawConnects), replay(statements));
        if (r.savepoints > 0)
            r.bare << replay(bare).wall;
    }
    m_rows << r;
}

bool Bench::everydayWork()
{
    const Database::Server server = named(m_work);
    QString error;
    if (!Database::openServer(server, &error))
        return fail(QStringLiteral("cannot open the shop on the server: ") + error);
    if (!m_raw.connect(server))
        return fail(QStringLiteral("cannot reach the server: ") + m_raw.error());

    EverydayWork::startUp(
        [&](const QString &what, double target, const std::function<void()> &prepare, const std::function<void()> &work) {
            measure(what, target, prepare, work,
                    QStringLiteral("the opening's own statements are not recorded: the client library connects and "
                                   "runs the company name's read"),
                    true);
        },
        [&] {
            QString why;
            if (!Database::openServer(server, &why))
                out << "  cannot open: " << why << Qt::endl;
        });

    EverydayWork::run([&](const QString &what, double target, const std::function<void()> &prepare,
                          const std::function<void()> &work) { measure(what, target, prepare, work); },
                      m_last);
    m_raw.disconnect();
    Database::close();
    return true;
}

// Each run closes the last day on a fresh copy of the shop; the client library replays the
// statements on a second copy, and without the savepoints on a third.
bool Bench::closing()
{
    Row r{QStringLiteral("closing of the last day (%1 tickets)").arg(m_settings.ticketsPerDay), 500, {}, 0, 0, {}, {}, {}, {}, {}};
    const QString program = m_server.database + QStringLiteral("_bench_close"),
                  raw = m_server.database + QStringLiteral("_bench_raw"),
                  bare = m_server.database + QStringLiteral("_bench_bare");
    m_prompter.cutOff = m_last.toString(QStringLiteral("MM-dd-yyyy"));
    bool ok = true;
    for (int i = 0; ok && i < qMin(m_settings.runs, 3); ++i) {
        QElapsedTimer copying;
        copying.start();
        if (!copyDatabase(program) || !copyDatabase(raw) || !copyDatabase(bare)) {
            ok = false;
            break;
        }
        out << "  closing run " << i + 1 << ": three copies of the shop made in "
            << QString::number(msSince(copying) / 1000, 'f', 1) << " s" << Qt::endl;
        QString error;
        if (!Database::openServer(named(program), &error)) {
            ok = fail(QStringLiteral("cannot open: ") + error);
            break;
        }
        std::optional<int> closed;
        g_recorded.clear();
        Gateway::setStatementObserver(record);
        const Took programRun = timed([&] { closed = PeriodClosing().FinishToday(); }, programBackend, false);
        Gateway::setStatementObserver(nullptr);
        Database::close();
        const QStringList statements = g_recorded, without = withoutSavepoints(statements);
        Took replayed[2];
        for (int k = 0; k < 2; ++k) {
            PgClient client;
            if (!client.connect(named(k == 0 ? raw : bare))) {
                ok = fail(QStringLiteral("cannot reach the server: ") + client.error());
                break;
            }
            const QStringList &sent = k == 0 ? statements : without;
            replayed[k] = timed([&] {
                if (!client.replay(sent))
                    out << "  client library: " << client.error() << Qt::endl;
            }, [&] { return client.backendPid(); }, false);
        }
        if (!ok)
            break;
        r.add(programRun, replayed[0]);
        r.bare << replayed[1].wall;
        r.statements = int(statements.size());
        r.savepoints = int(statements.size() - without.size());
        r.note = QStringLiteral("%1 finished; the program's runs are recorded").arg(closed ? *closed : -1);
    }
    for (const QString &name : {program, raw, bare})
        dropDatabase(name);
    m_rows << r;
    return ok;
}

int Bench::run()
{
    QString error;
    if (!Database::readServerFile(m_settings.serverFile, &m_server, &error)) {
        fail(error);
        return 1;
    }
    if (!bringUp())
        return 1;
    const QString version = m_admin.value(QStringLiteral("SHOW server_version")).toString();
    // A copy made file by file skips writing the whole shop into the server's log (15 on).
    if (m_admin.serverVersion() >= 150000)
        m_copyClause = QStringLiteral(" STRATEGY FILE_COPY");
    m_work = m_server.database + QStringLiteral("_bench");
    QElapsedTimer t;
    t.start();
    if (!copyDatabase(m_work))
        return 1;
    out << "the runs work on a copy of the shop (" << m_work << "), made in "
        << QString::number(msSince(t) / 1000, 'f', 1) << " s" << Qt::endl;
    {
        PgClient work;
        if (!work.connect(named(m_work))) {
            fail(work.error());
            return 1;
        }
        m_last = QDate::fromString(work.value(QStringLiteral("SELECT max(CreateDate)::date FROM Sale")).toString(), Qt::ISODate);
    }
    Clock::set(QDateTime(m_last, QTime(9, 0)));
    Prompter::install(&m_prompter);
    Session::UserID = 1;
    const bool done = everydayWork() && closing();
    Prompter::install(nullptr);
    dropDatabase(m_work);
    printTable(out, m_rows,
               QStringLiteral("PostgreSQL %1 on %2: %3 runs each (closing: %4)")
                   .arg(version, m_server.host)
                   .arg(m_settings.runs)
                   .arg(qMin(m_settings.runs, 3)));
    return done ? 0 : 1;
}
}

int ServerBench::run(const Settings &settings, QTextStream &out) { return Bench(settings, out).run(); }
