// Two workstations on one file: their saves wait for each other and all arrive once; a save
// that cannot get the file in time says that another workstation is writing.
#include "support/ScriptedPrompter.h"
#include "support/TestDb.h"
#include "support/TicketSavers.h"

#include "data/Database.h"
#include "data/Gateway.h"

#include <QSqlQuery>
#include <QSet>
#include <QtTest>
#include <sqlite3.h>

class ConcurrencyTest : public QObject {
    Q_OBJECT
private slots:
    void twoWorkstationsSaveAtOnce()
    {
        TestDb db;
        QVERIFY(db.ok());
        const QString file = db.path();
        Database::close();
        const int each = 150;
        TicketSavers savers(QStringLiteral(TICKET_SAVER), file, each);
        QString why;
        QVERIFY2(savers.finished(120000, &why), qPrintable(why));
        const QSet<QString> reported = savers.reported();
        QCOMPARE(reported.size(), 2 * each); // distinct numbers: no ticket read back another's number

        QString error;
        QVERIFY2(Database::open(file, &error), qPrintable(error));
        QSqlQuery q(Database::connection());
        QVERIFY(q.exec("SELECT ID, Detail FROM Sale"));
        QSet<QString> stored;
        while (q.next())
            stored << q.value(0).toString() + QLatin1Char(' ') + q.value(1).toString();
        QCOMPARE(stored, reported);
        QCOMPARE(db.count("Sale_detail"), 4 * each);
        QCOMPARE(db.count("Sale", "(SELECT count(*) FROM Sale_detail WHERE SaleID=Sale.ID) <> 2"), 0);
    }

    // Another workstation holds the write lock longer than the wait: the statement fails
    // with the reason, for a plain statement and for a save's transaction alike.
    void anotherWorkstationWriting_data()
    {
        QTest::addColumn<bool>("transaction");
        QTest::newRow("statement") << false;
        QTest::newRow("save's transaction") << true;
    }
    void anotherWorkstationWriting()
    {
        QFETCH(bool, transaction);
        Database::setBusyTimeout(200);
        TestDb db;
        QVERIFY(db.ok());
        sqlite3 *other = nullptr;
        QCOMPARE(sqlite3_open(QFile::encodeName(db.path()).constData(), &other), SQLITE_OK);
        QCOMPARE(sqlite3_exec(other, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr), SQLITE_OK);
        ScriptedPrompter prompts;
        prompts.expect(QStringLiteral("更新数据库时出现系统错误，错误信息："), QMessageBox::Ok, true);
        if (transaction) {
            Transaction tx(Conn);
            QVERIFY(!tx.begun());
            QVERIFY(!Conn.inTransaction());
        } else {
            QVERIFY(!ExecuteSql("insert into Call(PhoneNumber,CreateDate) values('5551234',#2026-11-23#)"));
        }
        VERIFY_PROMPTS(prompts);
        QVERIFY(prompts.last().text.contains(QStringLiteral("另一个工作站正在写入数据库 ")
                                             + QDir::toNativeSeparators(QFileInfo(db.path()).absoluteFilePath())));
        sqlite3_exec(other, "ROLLBACK", nullptr, nullptr, nullptr);
        sqlite3_close(other);
        // Once the other workstation is done, the same statement goes through.
        QVERIFY(ExecuteSql("insert into Call(PhoneNumber,CreateDate) values('5551234',#2026-11-23#)"));
        Database::setBusyTimeout(10000);
    }
};

QTEST_MAIN(ConcurrencyTest)
#include "tst_concurrency.moc"
