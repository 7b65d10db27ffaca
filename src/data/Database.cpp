#include "Database.h"

#include "SchemaSteps.h"
#include "ServerEngine.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QSqlDriver>
#include <QSqlError>
#include <QSqlQuery>
#include <QStandardPaths>
#include <sqlite3.h>

namespace {
QString g_path;   // the file in use, or the server's name
bool g_onServer = false;
int g_busyTimeout = 10000;

// Text compares case-blind, as the program's statements expect. Dates are ISO text, money
// real numbers, flags one-character text. No reference is enforced: the program keeps them.
const char *const Schema[] = {
    R"(CREATE TABLE Sale (
        ID INTEGER PRIMARY KEY AUTOINCREMENT,
        CustomerID INTEGER, SenderID INTEGER, UserID INTEGER,
        TotalAmount REAL DEFAULT 0, TotalMoney REAL DEFAULT 0, TotalContainer REAL DEFAULT 0,
        InMoney REAL DEFAULT 0, OutAmount REAL DEFAULT 0, InContainer REAL DEFAULT 0,
        TransferFee REAL DEFAULT 0,
        Detail TEXT COLLATE NOCASE, CreateDate TEXT, FinishFlag TEXT COLLATE NOCASE DEFAULT '0',
        StationID INTEGER))",
    R"(CREATE TABLE Sale_detail (
        SaleID INTEGER, ProductID INTEGER, Price REAL, MyAmount REAL, MyMoney REAL,
        IsContainer TEXT COLLATE NOCASE))",
    R"(CREATE TABLE Store (
        ID INTEGER PRIMARY KEY AUTOINCREMENT,
        PaperID TEXT COLLATE NOCASE, CreateDate TEXT, TotalAmount REAL, TotalMoney REAL,
        Detail TEXT COLLATE NOCASE, UserID INTEGER, Direction TEXT COLLATE NOCASE,
        HandInput TEXT COLLATE NOCASE, FinishFlag TEXT COLLATE NOCASE, StationID INTEGER))",
    R"(CREATE TABLE Store_detail (
        StoreID INTEGER, ProductID INTEGER, Price REAL, MyAmount REAL, MyMoney REAL))",
    R"(CREATE TABLE Customer (
        ID INTEGER PRIMARY KEY AUTOINCREMENT,
        Account INTEGER, Name TEXT COLLATE NOCASE, Address TEXT COLLATE NOCASE,
        Phone TEXT COLLATE NOCASE, Detail TEXT COLLATE NOCASE, CustType INTEGER,
        Status TEXT COLLATE NOCASE, UserID INTEGER, CreateDate TEXT, StationID INTEGER))",
    R"(CREATE TABLE Product (
        ID INTEGER PRIMARY KEY AUTOINCREMENT,
        Name TEXT COLLATE NOCASE, Unit TEXT COLLATE NOCASE, Detail TEXT COLLATE NOCASE,
        IsDefault TEXT COLLATE NOCASE, Status TEXT COLLATE NOCASE,
        IsContainer TEXT COLLATE NOCASE, ContainerID INTEGER DEFAULT 0, Price REAL))",
    R"(CREATE TABLE Sender (
        ID INTEGER PRIMARY KEY AUTOINCREMENT,
        Name TEXT COLLATE NOCASE, Phone TEXT COLLATE NOCASE, Detail TEXT COLLATE NOCASE,
        Status TEXT COLLATE NOCASE, Price REAL, StationID INTEGER))",
    R"(CREATE TABLE Station (
        ID INTEGER PRIMARY KEY AUTOINCREMENT,
        Name TEXT COLLATE NOCASE, Status TEXT COLLATE NOCASE))",
    R"(CREATE TABLE SysUser (
        ID INTEGER PRIMARY KEY AUTOINCREMENT,
        Name TEXT COLLATE NOCASE, Pwd TEXT, rolestring TEXT COLLATE NOCASE,
        Detail TEXT COLLATE NOCASE, Status TEXT COLLATE NOCASE, StationID INTEGER))",
    R"(CREATE TABLE SysValue (Name TEXT COLLATE NOCASE, myValue TEXT))",
    R"(CREATE TABLE Call (
        ID INTEGER PRIMARY KEY AUTOINCREMENT,
        PhoneNumber TEXT COLLATE NOCASE, CreateDate TEXT))",
};

// What the stock-take and the closing read on a shop of years: the open tickets up to a day
// and their lines by product, and the vouchers of a station by direction and date (those
// the closing writes have no station, so they stay out of that index). Made with the
// tables, and on opening a file made before them. Lines are not indexed by product alone:
// with no statistics the engine would start the day's sums from every line of a product.
const char *const ReportIndexes[] = {
    "DROP INDEX IF EXISTS idx_saledetail_product",
    "CREATE INDEX IF NOT EXISTS idx_report_sale_open ON Sale(FinishFlag,CreateDate,StationID,TotalAmount,OutAmount,"
    "TotalMoney,InMoney,TotalContainer,InContainer) WHERE FinishFlag='0'",
    "CREATE INDEX IF NOT EXISTS idx_report_saleline ON Sale_detail(SaleID,ProductID,IsContainer,MyAmount,MyMoney)",
    "CREATE INDEX IF NOT EXISTS idx_report_store_station ON Store(StationID,Direction,CreateDate) "
    "WHERE StationID IS NOT NULL",
    "CREATE INDEX IF NOT EXISTS idx_report_storeline ON Store_detail(StoreID,ProductID,MyAmount,MyMoney)",
    // The period reports add up a year of tickets by date: read from the index alone.
    "CREATE INDEX IF NOT EXISTS idx_report_sale_date ON Sale(CreateDate,TotalAmount,TotalMoney,InMoney,TotalContainer,"
    "InContainer,TransferFee,OutAmount,CustomerID,SenderID)",
    "DROP INDEX IF EXISTS idx_sale_date",
    // The closing marks every voucher closed; only the few not yet closed need finding.
    "CREATE INDEX IF NOT EXISTS idx_report_store_open ON Store(FinishFlag) WHERE FinishFlag IS NOT '1'",
};

// The planner picks the customer and date indexes from these statistics, so they must follow
// the shop as it grows: a table whose rows have more than doubled since they were gathered
// (or that never had any) is measured again, on a bounded sample so that a start stays quick.
// Line tables grow with their tickets and vouchers. Failing here is harmless.
void keepStatistics(QSqlDatabase &db)
{
    QSqlQuery q(db);
    q.exec(QStringLiteral("PRAGMA analysis_limit=1000"));
    const QList<QStringList> families = {{QStringLiteral("Sale"), QStringLiteral("Sale_detail")},
                                         {QStringLiteral("Store"), QStringLiteral("Store_detail")},
                                         {QStringLiteral("Customer")}};
    for (const QStringList &family : families) {
        qint64 measured = -1;
        if (q.exec(QStringLiteral("SELECT stat FROM sqlite_stat1 WHERE tbl='%1' AND idx IS NOT NULL LIMIT 1").arg(family[0]))
            && q.next())
            measured = q.value(0).toString().section(QLatin1Char(' '), 0, 0).toLongLong();
        q.finish();
        const qint64 rows = q.exec(QStringLiteral("SELECT max(ID) FROM %1").arg(family[0])) && q.next()
                                ? q.value(0).toLongLong()
                                : 0;
        q.finish();
        if (measured < 0 || rows > 2 * measured + 100)
            for (const QString &table : family)
                q.exec(QStringLiteral("ANALYZE ") + table);
    }
    q.exec(QStringLiteral("PRAGMA optimize"));
}

bool hasTables(QSqlDatabase &db) { return db.tables().contains(QStringLiteral("SysUser"), Qt::CaseInsensitive); }

// Speed only, so nothing here stops an opening: a file that cannot take the indexes now
// (another workstation writing) gets them at a later opening. The stock-take walks the lines
// of every open ticket once per product; reading the file through memory spares a system
// call for each page it visits again.
void prepareForReports(QSqlDatabase &db)
{
    QString ignored;
    runStatement(db, QStringLiteral("PRAGMA mmap_size=1073741824"), &ignored);
    for (const char *statement : ReportIndexes)
        runStatement(db, QString::fromUtf8(statement), &ignored);
}
}

QString Database::defaultCompanyName() { return QStringLiteral("燃气纯水配送中心"); }

QString Database::defaultPath()
{
    const QString beside = QCoreApplication::applicationDirPath();
    const QFileInfo dir(beside);
    if (!beside.isEmpty() && QFileInfo::exists(QDir(beside).filePath(QLatin1String(FileName))))
        return QDir(beside).filePath(QLatin1String(FileName));
    if (!beside.isEmpty() && dir.isDir() && dir.isWritable())
        return QDir(beside).filePath(QLatin1String(FileName));
    QString data = QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
    QDir().mkpath(data);
    return QDir(data).filePath(QLatin1String(FileName));
}

QString Database::folder()
{
    if (g_onServer)
        return QCoreApplication::applicationDirPath();
    return QFileInfo(g_path.isEmpty() ? defaultPath() : g_path).absolutePath();
}

bool Database::create(QSqlDatabase db, QString *error)
{
    const bool server = ServerEngine::isServer(db);
    if (!db.transaction()) {
        if (error)
            *error = db.lastError().text();
        return false;
    }
    bool ok = server ? ServerEngine::create(db, error)
                     : runEach(db, Schema, error) && runEach(db, SearchIndexes, error)
                           && runEach(db, ReportIndexes, error);
    const QStringList rows = {
        QStringLiteral("INSERT INTO Station(ID,Name,Status) VALUES(1,'总站','1')"),
        QStringLiteral("INSERT INTO SysUser(Name,Pwd,rolestring,Detail,Status,StationID) "
                       "VALUES('管理员','','11111111','系统管理员','1',1)"),
        QStringLiteral("INSERT INTO SysValue(Name,myValue) VALUES('CompanyName','%1')").arg(defaultCompanyName()),
        // A new shop gets the lists refreshing themselves and the address search on the ticket.
        QStringLiteral("INSERT INTO SysValue(Name,myValue) VALUES('AutoDataRefresh','1')"),
        QStringLiteral("INSERT INTO SysValue(Name,myValue) VALUES('SearchAddress','1')"),
    };
    for (const QString &statement : rows)
        ok = ok && runStatement(db, statement, error);
    // The station was written with its key: the server's next key must pass it.
    ok = ok && (!server || ServerEngine::syncKeys(db, error));
    if (!ok) {
        db.rollback();
        return false;
    }
    return db.commit();
}

namespace {
void dropConnection(QSqlDatabase &db)
{
    db.close();
    db = QSqlDatabase();
    QSqlDatabase::removeDatabase(QLatin1String(Database::ConnectionName));
}
}

bool Database::openServer(const Server &server, QString *error)
{
    close();
#ifdef Q_OS_LINUX
    // The server hands every date over as a date, which the driver makes a local time: with no
    // TZ the C library reads /etc/localtime again for each one, a third of a customer list's
    // reading. Named once, the zone file is read once; the zone stays the machine's own.
    if (qEnvironmentVariableIsEmpty("TZ") && QFileInfo::exists(QStringLiteral("/etc/localtime")))
        qputenv("TZ", ":/etc/localtime");
#endif
    auto fail = [&](QSqlDatabase &db, const QString &why) {
        if (error)
            *error = QStringLiteral("无法使用数据库服务器 %1：%2").arg(server.name(), why.trimmed());
        dropConnection(db);
        return false;
    };
    QSqlDatabase db = QSqlDatabase::addDatabase(QLatin1String(ServerEngine::Driver), QLatin1String(ConnectionName));
    if (!db.isValid())
        return fail(db, QStringLiteral("本机没有 PostgreSQL 的数据库驱动 (libqt6sql6-psql)。"));
    db.setHostName(server.host);
    db.setPort(server.port);
    db.setDatabaseName(server.database);
    db.setUserName(server.user);
    db.setPassword(server.password);
    db.setConnectOptions(QStringLiteral("connect_timeout=10;application_name=Tarvik"));
    if (!db.open())
        return fail(db, QStringLiteral("连接不上。请检查服务器是否开着、网络是否通，以及程序旁边 %1 里的地址、端口、"
                                       "用户和密码。\n")
                            .arg(QLatin1String(ServerFileName))
                        + db.lastError().text());
    QString failure;
    // A write waits for another workstation's as long as on the file, then fails with the
    // busy message rather than hang.
    bool ok = runStatement(db, QStringLiteral("SET lock_timeout = %1").arg(g_busyTimeout), &failure)
              && runStatement(db, QStringLiteral("SET client_min_messages = warning"), &failure);
    if (ok && !hasTables(db))
        ok = create(db, &failure);
    if (!ok)
        return fail(db, failure);
    g_path = server.name();
    g_onServer = true;
    return true;
}

bool Database::openPath(const QString &path, QString *error)
{
    if (!path.endsWith(QLatin1String(".ini"), Qt::CaseInsensitive))
        return open(path, error);
    Server server;
    return readServerFile(path, &server, error) && openServer(server, error);
}

JetDialect::Target Database::target()
{
    return g_onServer ? JetDialect::Target::PostgreSQL : JetDialect::Target::SQLite;
}

QStringList Database::beginStatements()
{
    // The file is taken for writing at once (BEGIN IMMEDIATE); on the server one lock taken
    // at the start does the same, so writes follow each other as they do on the file.
    if (g_onServer)
        return {QStringLiteral("BEGIN"), QStringLiteral("SELECT pg_advisory_xact_lock(20261123)")};
    return {QStringLiteral("BEGIN IMMEDIATE")};
}

bool Database::syncKeys(QString *error)
{
    if (!g_onServer)
        return true;
    QSqlDatabase db = connection();
    return ServerEngine::syncKeys(db, error);
}

bool Database::open(const QString &path, QString *error)
{
    close();
    const QFileInfo info(path);
    if (!info.absoluteDir().exists()) {
        if (error)
            *error = QStringLiteral("找不到数据库所在的文件夹：%1").arg(info.absolutePath());
        return false;
    }
    // The engine keeps its log beside the file, so the folder must take writes as well.
    if (info.exists() && (!info.isWritable() || !QFileInfo(info.absolutePath()).isWritable())) {
        if (error)
            *error = QStringLiteral("数据库文件 %1 不能写入：文件、它所在的文件夹或磁盘是只读的。"
                                    "请让管理员给这个文件和它所在的文件夹写入权限，然后重新启动本程序。")
                         .arg(QDir::toNativeSeparators(info.absoluteFilePath()));
        return false;
    }
    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QLatin1String(ConnectionName));
    db.setDatabaseName(path);
    // Another workstation's program may hold the file for a moment: wait rather than fail.
    db.setConnectOptions(QStringLiteral("QSQLITE_BUSY_TIMEOUT=%1").arg(g_busyTimeout));
    if (!db.open()) {
        if (error)
            *error = db.lastError().text();
        db = QSqlDatabase();
        QSqlDatabase::removeDatabase(QLatin1String(ConnectionName));
        return false;
    }
    QString failure;
    QSqlQuery first(db);
    bool ok = first.exec(QStringLiteral("PRAGMA journal_mode=WAL"));
    if (!ok) {
        const QString meaning = explain(first.lastError().nativeErrorCode().toInt(), info.absoluteFilePath());
        failure = meaning.isEmpty() ? first.lastError().text() : meaning;
    }
    first.finish();
    ok = ok && runStatement(db, QStringLiteral("PRAGMA foreign_keys=OFF"), &failure);
    if (ok && !hasTables(db))
        ok = create(db, &failure);
    if (ok) {
        prepareForReports(db);
        keepStatistics(db);
    }
    if (!ok) {
        if (error)
            *error = failure;
        db.close();
        db = QSqlDatabase();
        QSqlDatabase::removeDatabase(QLatin1String(ConnectionName));
        return false;
    }
    g_path = info.absoluteFilePath();
    g_onServer = false;
    return true;
}

QString Database::path() { return g_path; }

void Database::setBusyTimeout(int ms) { g_busyTimeout = ms; }

QString Database::explain(const QSqlError &error)
{
    if (g_onServer)
        return ServerEngine::explain(error, g_path);
    return explain(error.nativeErrorCode().toInt(), QString());
}

QString Database::explain(int engineCode, const QString &path)
{
    const QString file = QDir::toNativeSeparators(QFileInfo(path.isEmpty() ? g_path : path).absoluteFilePath());
    switch (engineCode & 0xff) {
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
        return QStringLiteral("另一个工作站正在写入数据库 %1，等候超时。请稍后再试一次。").arg(file);
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB:
        return QStringLiteral("数据库文件 %1 已损坏，无法读取。请退出本程序，用它旁边 backup 文件夹里最近一天的备份"
                              "替换它（先把损坏的文件另存一份），然后重新启动。")
            .arg(file);
    default:
        return QString();
    }
}

bool Database::backupDaily(const QDate &today, QString *error)
{
    auto fail = [&](const QString &why) {
        if (error)
            *error = why;
        return false;
    };
    if (!isOpen() || g_path.isEmpty())
        return fail(QStringLiteral("no database open"));
    if (g_onServer)
        return fail(QStringLiteral("the server keeps its own backups"));
    QDir folder(QFileInfo(g_path).absolutePath());
    if (!folder.mkpath(QStringLiteral("backup")) || !folder.cd(QStringLiteral("backup")))
        return fail(QStringLiteral("cannot make the backup folder"));
    const QString name = QStringLiteral("Tarvik-%1.mdb").arg(today.toString(Qt::ISODate));
    if (!folder.exists(name)) {
        const QVariant handle = connection().driver()->handle();
        sqlite3 *source = *static_cast<sqlite3 *const *>(handle.constData());
        const QString part = folder.filePath(name + QStringLiteral(".part"));
        QFile::remove(part);
        sqlite3 *target = nullptr;
        int rc = sqlite3_open(QFile::encodeName(part).constData(), &target);
        if (rc == SQLITE_OK) {
            // One step copies all pages under one read lock: a consistent copy of the day's start.
            sqlite3_backup *backup = sqlite3_backup_init(target, "main", source, "main");
            rc = backup ? sqlite3_backup_step(backup, -1) : sqlite3_errcode(target);
            if (backup)
                sqlite3_backup_finish(backup);
            rc = rc == SQLITE_DONE ? SQLITE_OK : rc;
        }
        const QString why = rc == SQLITE_OK ? QString() : QString::fromUtf8(sqlite3_errstr(rc));
        sqlite3_close(target);
        // Only a whole copy takes the day's name.
        if (rc != SQLITE_OK || !QFile::rename(part, folder.filePath(name))) {
            QFile::remove(part);
            return fail(why.isEmpty() ? QStringLiteral("cannot name the backup") : why);
        }
    }
    QStringList copies = folder.entryList({QStringLiteral("Tarvik-\?\?\?\?-\?\?-\?\?.mdb")}, QDir::Files, QDir::Name);
    while (copies.size() > 7)
        folder.remove(copies.takeFirst());
    return true;
}

void Database::close()
{
    if (!QSqlDatabase::contains(QLatin1String(ConnectionName)))
        return;
    {
        QSqlDatabase db = QSqlDatabase::database(QLatin1String(ConnectionName), false);
        if (db.isOpen())
            db.close();
    }
    QSqlDatabase::removeDatabase(QLatin1String(ConnectionName));
    g_path.clear();
    g_onServer = false;
}

bool Database::isOpen()
{
    return QSqlDatabase::contains(QLatin1String(ConnectionName))
           && QSqlDatabase::database(QLatin1String(ConnectionName), false).isOpen();
}

QSqlDatabase Database::connection() { return QSqlDatabase::database(QLatin1String(ConnectionName), false); }
