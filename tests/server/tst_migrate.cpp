// A shop's file moved up to an empty server database: every row with its key, the server's
// next keys past them, the tables compared; a shop already there or a value the server
// cannot take stops the move with nothing half copied.
#include "ServerDb.h"
#include "ShopMover.h"
#include "support/TestDb.h"


#include <QtTest>

class tst_Migrate : public QObject {
    Q_OBJECT
private slots:
    void moveUp_data()
    {
        QTest::addColumn<QString>("oddRow");
        QTest::addColumn<QString>("refusal");
        QTest::newRow("a whole shop") << QString() << QString();
        // An empty date is no date on the server; a date the file holds as free text cannot go.
        QTest::newRow("a customer without an opening date")
            << "INSERT INTO Customer(Account,Name,Address,CreateDate) VALUES(9,'空','无日期','')" << QString();
        QTest::newRow("a ticket dated with free text")
            << "INSERT INTO Sale(CustomerID,TotalMoney,CreateDate,FinishFlag) VALUES(1,5,'昨天','0')"
            << "Sale 表第 200 行的 CreateDate '昨天' 不能存入服务器。";
    }
    void moveUp()
    {
        QFETCH(QString, oddRow);
        QFETCH(QString, refusal);
        QString file;
        QTemporaryDir keep;
        {
            TestDb db;
            QVERIFY(db.ok());
            QVERIFY(db.exec("UPDATE SysValue SET myValue='山泉店' WHERE Name='CompanyName'"));
            QVERIFY(db.exec("INSERT INTO Station(Name,Status) VALUES('分站','1')"));
            for (int i = 1; i <= 200; ++i) {
                QVERIFY(db.exec(QStringLiteral("INSERT INTO Customer(Account,Name,Address,Phone,CreateDate,Status) "
                                               "VALUES(%1,'客户%1','路%1号','555%1','2026-01-%2','1')")
                                    .arg(i)
                                    .arg(i % 28 + 1, 2, 10, QLatin1Char('0'))));
                QVERIFY(db.exec(QStringLiteral("INSERT INTO Sale(CustomerID,TotalAmount,TotalMoney,InMoney,Detail,"
                                               "CreateDate,FinishFlag,StationID) VALUES(%1,2,20.5,%2,'备注''%1','2026-11-%3 10:15:00','0',1)")
                                    .arg(i)
                                    .arg(i % 3 * 10)
                                    .arg(i % 20 + 1, 2, 10, QLatin1Char('0'))));
                QVERIFY(db.exec(QStringLiteral("INSERT INTO Sale_detail(SaleID,ProductID,Price,MyAmount,MyMoney,IsContainer) "
                                               "VALUES(%1,1,10.25,2,20.5,'0')").arg(i)));
            }
            QVERIFY(db.exec("DELETE FROM Sale WHERE ID=7")); // keys with a gap stay as they are
            if (!oddRow.isEmpty())
                QVERIFY(db.exec(oddRow));
            Database::close();
            file = keep.filePath("Tarvik.mdb");
            QVERIFY(QFile::copy(db.path(), file));
        }
        ServerDb server(false);
        QVERIFY2(server.error().isEmpty(), qPrintable(server.error()));

        ShopMover mover;
        QMap<QString, qint64> last;
        mover.progress = [&](const QString &table, qint64 done, qint64 total) {
            QVERIFY(done <= total);
            last[table] = done;
        };
        const bool moved = mover.copy(file, server.server());
        QString error;
        QVERIFY2(Database::openServer(server.server(), &error), qPrintable(error));
        if (!refusal.isEmpty()) {
            QVERIFY(!moved);
            QCOMPARE(mover.error(), refusal);
            QCOMPARE(scalar("select count(*) from Customer").toInt(), 0); // nothing half copied
            return;
        }
        QVERIFY2(moved, qPrintable(mover.error()));
        QVERIFY2(mover.allAgree(), qPrintable(mover.checks().join('\n')));
        QCOMPARE(last.value("Sale"), 199 + (oddRow.contains("Sale") ? 1 : 0));
        QCOMPARE(last.value("Sale_detail"), 200);
        QCOMPARE(GetSysValue("CompanyName"), QStringLiteral("山泉店"));
        QCOMPARE(scalar("select count(*) from SysUser").toInt(), 1);
        QCOMPARE(scalar("select Detail from Sale where ID=8").toString(), QStringLiteral("备注'8"));
        QCOMPARE(scalar("select CreateDate from Sale where ID=8").toString(), QStringLiteral("2026-11-09 10:15:00"));
        // New rows take keys after the moved ones.
        QVERIFY(ExecuteSql("insert into Station(Name,Status) values('三站','1')"));
        QCOMPARE(scalar("select max(ID) from Station").toInt(), 3);
        QVERIFY(ExecuteSql("insert into Sale (CustomerID,TotalMoney,CreateDate,FinishFlag) values (1,1,#11-23-2026#,'0')"));
        QCOMPARE(scalar("select max(ID) as MaxID from Sale").toInt(), 201);
        Database::close();

        // A second move into the same database would mix two shops.
        ShopMover again;
        QVERIFY(!again.copy(file, server.server()));
        QVERIFY2(again.error().contains("已经有数据"), qPrintable(again.error()));
    }
};

QTEST_MAIN(tst_Migrate)
#include "tst_migrate.moc"
