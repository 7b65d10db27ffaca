// The shop's file on disk: the copy kept each day in backup/, and a file the program may not
// write, which it refuses without leaving anything behind.
#include "data/Database.h"
#include "support/TestDb.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QtTest>
#include <unistd.h>

namespace {
const QDate Monday(2026, 11, 23);

QString backupOf(const TestDb &db, const QDate &day)
{
    return QDir(db.folder()).filePath(QStringLiteral("backup/Tarvik-%1.mdb").arg(day.toString(Qt::ISODate)));
}

// The customers in a copy, opened on its own as a restored shop would be; -1 when the copy
// cannot be read or is damaged.
int customersIn(const QString &file)
{
    int count = -1;
    {
        QSqlDatabase copy = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("copy"));
        copy.setDatabaseName(file);
        QSqlQuery q(copy);
        if (copy.open() && q.exec(QStringLiteral("PRAGMA integrity_check")) && q.next()
            && q.value(0).toString() == QLatin1String("ok") && q.exec(QStringLiteral("SELECT count(*) FROM Customer"))
            && q.next())
            count = q.value(0).toInt();
    }
    QSqlDatabase::removeDatabase(QStringLiteral("copy"));
    return count;
}

bool addCustomers(const TestDb &db, int n)
{
    for (int i = 0; i < n; ++i)
        if (!db.exec(QStringLiteral("INSERT INTO Customer(Address,Status) VALUES ('北街%1号','1')").arg(i)))
            return false;
    return true;
}

QStringList entries(const QString &folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden, QDir::Name);
}
}

// Takes away the write right of a file or folder and gives it back at the end, so that the
// temporary folder can still be removed.
struct ReadOnly {
    QString path;
    QFile::Permissions rights;
    explicit ReadOnly(const QString &p) : path(p), rights(QFile::permissions(p))
    {
        QFile::setPermissions(path, rights & ~(QFile::WriteOwner | QFile::WriteUser | QFile::WriteGroup | QFile::WriteOther));
    }
    ~ReadOnly() { QFile::setPermissions(path, rights); }
};

class DatabaseTest : public QObject {
    Q_OBJECT

private slots:
    void cleanup() { Database::close(); }

    // The day's copy is taken through the engine, so what is still in the log is in it too.
    void backupHoldsTheLogAndIsMadeOnceADay()
    {
        TestDb db;
        QVERIFY(db.ok());
        QVERIFY(addCustomers(db, 3));
        QVERIFY2(QFileInfo(db.path() + QStringLiteral("-wal")).size() > 0, "the rows should still be in the log");

        QString error;
        QVERIFY2(Database::backupDaily(Monday, &error), qPrintable(error));
        QCOMPARE(customersIn(backupOf(db, Monday)), 3);

        QVERIFY(addCustomers(db, 2));
        QVERIFY2(Database::backupDaily(Monday, &error), qPrintable(error));
        QCOMPARE(customersIn(backupOf(db, Monday)), 3);
        QVERIFY(Database::backupDaily(Monday.addDays(1)));
        QCOMPARE(customersIn(backupOf(db, Monday.addDays(1))), 5);
        QCOMPARE(entries(db.folder() + QStringLiteral("/backup")),
                 QStringList({QStringLiteral("Tarvik-2026-11-23.mdb"), QStringLiteral("Tarvik-2026-11-24.mdb")}));
    }

    void keepsTheLastSevenDays_data()
    {
        QTest::addColumn<int>("days");    // backed up one after the other from Monday
        QTest::addColumn<int>("firstKept"); // days after Monday of the oldest copy left
        QTest::newRow("a week") << 7 << 0;
        QTest::newRow("the eighth day") << 8 << 1;
        QTest::newRow("ten days") << 10 << 3;
    }
    void keepsTheLastSevenDays()
    {
        QFETCH(int, days);
        QFETCH(int, firstKept);
        TestDb db;
        QVERIFY(db.ok());
        // A copy the shop put there by hand is not one of the daily ones.
        QVERIFY(QDir(db.folder()).mkdir(QStringLiteral("backup")));
        QFile own(db.folder() + QStringLiteral("/backup/Tarvik-before-upgrade.mdb"));
        QVERIFY(own.open(QIODevice::WriteOnly));
        own.close();

        for (int day = 0; day < days; ++day)
            QVERIFY(Database::backupDaily(Monday.addDays(day)));
        QStringList expected;
        for (int day = firstKept; day < days; ++day)
            expected << QFileInfo(backupOf(db, Monday.addDays(day))).fileName();
        expected << QStringLiteral("Tarvik-before-upgrade.mdb");
        QCOMPARE(entries(db.folder() + QStringLiteral("/backup")), expected);
    }

    void readOnlyShopIsRefused_data()
    {
        QTest::addColumn<bool>("folderLocked"); // else the file itself
        QTest::newRow("read-only file") << false;
        QTest::newRow("read-only folder") << true; // the engine's log could not be made
    }
    void readOnlyShopIsRefused()
    {
        QFETCH(bool, folderLocked);
        QTemporaryDir dir;
        QVERIFY(dir.isValid());
        const QString file = dir.filePath(QStringLiteral("Tarvik.mdb"));
        QVERIFY(Database::open(file));
        Database::close();
        const QStringList before = entries(dir.path());
        const QByteArray bytes = [&] {
            QFile f(file);
            return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
        }();

        const ReadOnly locked(folderLocked ? dir.path() : file);
        if (::access(QFile::encodeName(locked.path).constData(), W_OK) == 0)
            QSKIP("this user may write whatever the rights say (root)");

        QString error;
        QVERIFY(!Database::open(file, &error));
        QVERIFY(!Database::isOpen());
        QVERIFY2(error.startsWith(QStringLiteral("数据库文件 ")), qPrintable(error));
        QVERIFY2(error.contains(QDir::toNativeSeparators(QFileInfo(file).absoluteFilePath())), qPrintable(error));
        QCOMPARE(entries(dir.path()), before);
        QFile f(file);
        QVERIFY(f.open(QIODevice::ReadOnly));
        QCOMPARE(f.readAll(), bytes);
    }
};

QTEST_GUILESS_MAIN(DatabaseTest)
#include "tst_database.moc"
