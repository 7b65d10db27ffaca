#include "Database.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QSqlError>
#include <QSqlQuery>
#include <QStandardPaths>

namespace {
QString g_path;

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

    // What the ticket window, the lists and the caller-ID lookups search by.
    "CREATE INDEX idx_sale_customer ON Sale(CustomerID)",
    "CREATE INDEX idx_sale_date ON Sale(CreateDate)",
    "CREATE INDEX idx_sale_finish ON Sale(FinishFlag)",
    "CREATE INDEX idx_saledetail_sale ON Sale_detail(SaleID)",
    "CREATE INDEX idx_store_date ON Store(CreateDate)",
    "CREATE INDEX idx_storedetail_store ON Store_detail(StoreID)",
    "CREATE INDEX idx_storedetail_product ON Store_detail(ProductID)",
    "CREATE INDEX idx_customer_address ON Customer(Address)",
    "CREATE INDEX idx_customer_phone ON Customer(Phone)",
    "CREATE INDEX idx_customer_account ON Customer(Account)",
    "CREATE INDEX idx_call_phone ON Call(PhoneNumber)",
    "CREATE INDEX idx_sysvalue_name ON SysValue(Name)",
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
};

bool run(QSqlDatabase &db, const QString &sql, QString *error)
{
    QSqlQuery q(db);
    if (q.exec(sql))
        return true;
    if (error)
        *error = q.lastError().text();
    return false;
}

// The planner picks the customer and date indexes from these statistics. A file that never
// had them gets a full ANALYZE once; after that PRAGMA optimize only re-reads tables whose
// size moved a lot, which costs next to nothing on an ordinary start. Failing here is harmless.
void keepStatistics(QSqlDatabase &db)
{
    QSqlQuery q(db);
    const bool analysed = q.exec(QStringLiteral("SELECT 1 FROM sqlite_master WHERE name='sqlite_stat1'")) && q.next();
    q.finish();
    q.exec(analysed ? QStringLiteral("PRAGMA optimize") : QStringLiteral("ANALYZE"));
}

bool hasTables(QSqlDatabase &db) { return db.tables().contains(QStringLiteral("SysUser"), Qt::CaseInsensitive); }

// Speed only, so nothing here stops an opening: a file that cannot take the indexes now
// (another workstation writing) gets them at a later opening. The stock-take walks the lines
// of every open ticket once per product; reading the file through memory spares a system
// call for each page it visits again.
void prepareForReports(QSqlDatabase &db)
{
    QString ignored;
    run(db, QStringLiteral("PRAGMA mmap_size=1073741824"), &ignored);
    for (const char *statement : ReportIndexes)
        run(db, QString::fromUtf8(statement), &ignored);
}
}

QString Database::defaultCompanyName() { return QStringLiteral("燃气纯水配送中心"); }

QString Database::defaultPath()
{
    const QString beside = QCoreApplication::applicationDirPath();
    const QFileInfo dir(beside);
    if (!beside.isEmpty() && dir.isDir() && dir.isWritable())
        return QDir(beside).filePath(QLatin1String(FileName));
    QString data = QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
    QDir().mkpath(data);
    return QDir(data).filePath(QLatin1String(FileName));
}

QString Database::folder() { return QFileInfo(g_path.isEmpty() ? defaultPath() : g_path).absolutePath(); }

bool Database::create(QSqlDatabase db, QString *error)
{
    if (!db.transaction()) {
        if (error)
            *error = db.lastError().text();
        return false;
    }
    for (const char *statement : Schema) {
        if (!run(db, QString::fromUtf8(statement), error)) {
            db.rollback();
            return false;
        }
    }
    for (const char *statement : ReportIndexes) {
        if (!run(db, QString::fromUtf8(statement), error)) {
            db.rollback();
            return false;
        }
    }
    const QStringList rows = {
        QStringLiteral("INSERT INTO Station(ID,Name,Status) VALUES(1,'总站','1')"),
        QStringLiteral("INSERT INTO SysUser(Name,Pwd,rolestring,Detail,Status,StationID) "
                       "VALUES('管理员','','11111111','系统管理员','1',1)"),
        QStringLiteral("INSERT INTO SysValue(Name,myValue) VALUES('CompanyName','%1')").arg(defaultCompanyName()),
        // A new shop gets the lists refreshing themselves and the address search on the ticket.
        QStringLiteral("INSERT INTO SysValue(Name,myValue) VALUES('AutoDataRefresh','1')"),
        QStringLiteral("INSERT INTO SysValue(Name,myValue) VALUES('SearchAddress','1')"),
    };
    for (const QString &statement : rows) {
        if (!run(db, statement, error)) {
            db.rollback();
            return false;
        }
    }
    return db.commit();
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
    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QLatin1String(ConnectionName));
    db.setDatabaseName(path);
    // Another workstation's program may hold the file for a moment: wait rather than fail.
    db.setConnectOptions(QStringLiteral("QSQLITE_BUSY_TIMEOUT=10000"));
    if (!db.open()) {
        if (error)
            *error = db.lastError().text();
        db = QSqlDatabase();
        QSqlDatabase::removeDatabase(QLatin1String(ConnectionName));
        return false;
    }
    QString failure;
    bool ok = run(db, QStringLiteral("PRAGMA journal_mode=WAL"), &failure)
              && run(db, QStringLiteral("PRAGMA foreign_keys=OFF"), &failure);
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
}

bool Database::isOpen()
{
    return QSqlDatabase::contains(QLatin1String(ConnectionName))
           && QSqlDatabase::database(QLatin1String(ConnectionName), false).isOpen();
}

QSqlDatabase Database::connection() { return QSqlDatabase::database(QLatin1String(ConnectionName), false); }
