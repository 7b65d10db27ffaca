#include "support/TestDb.h"

#include "data/Database.h"
#include "data/SqliteSnapshot.h"

#include <QSqlQuery>
#include <QSqlRecord>
#include <QtTest>

// The direct read must give what the Qt driver gives: the same names, types and values.
class TestSqliteSnapshot : public QObject {
    Q_OBJECT
private slots:
    void sameAsTheDriver_data();
    void sameAsTheDriver();
    void failureLeavesItToTheDriver();
};

void TestSqliteSnapshot::sameAsTheDriver_data()
{
    QTest::addColumn<QString>("sql");
    QTest::newRow("join with table names") << "SELECT Sale.ID, Sale.CreateDate, Customer.Address, TotalMoney, "
                                              "Sale.FinishFlag, Sale.Detail, Sale.StationID FROM Sale, Customer "
                                              "WHERE Sale.CustomerID = Customer.ID ORDER BY Sale.ID";
    QTest::newRow("aliases and sums") << "SELECT count(*) as TotalRow, sum(TotalMoney) as TotalValue, "
                                         "sum(InMoney) as Paid FROM Sale WHERE ID > 100";
    QTest::newRow("star") << "SELECT * FROM Sale";
    QTest::newRow("no rows") << "SELECT * FROM Customer WHERE ID = -1";
}

void TestSqliteSnapshot::sameAsTheDriver()
{
    QFETCH(QString, sql);
    TestDb db;
    QVERIFY(db.ok());
    QVERIFY(db.exec("INSERT INTO Customer(ID,Address) VALUES(1,'东大街1号')"));
    QVERIFY(db.exec("INSERT INTO Sale(ID,CustomerID,TotalMoney,InMoney,CreateDate,FinishFlag,Detail) "
                    "VALUES(1,1,18.5,0,'2026-11-23','0',NULL)"));
    QVERIFY(db.exec("INSERT INTO Sale(ID,CustomerID,TotalMoney,InMoney,CreateDate,FinishFlag,Detail,StationID) "
                    "VALUES(2,1,37,37,'2026-11-22','1','楼上',1)"));

    RecordsetPtr fast = SqliteSnapshot::open(Database::connection(), sql, QString());
    QVERIFY(fast);
    QSqlQuery q(Database::connection());
    QVERIFY(q.exec(sql));
    QStringList names;
    for (int i = 0; i < q.record().count(); ++i)
        names << q.record().fieldName(i);
    QCOMPARE(fast->fieldNames(), names);
    int row = 0;
    while (q.next()) {
        for (int i = 0; i < names.size(); ++i) {
            const QVariant expected = q.value(i);
            const QVariant got = fast->valueAt(row, i);
            QCOMPARE(got.metaType(), expected.metaType());
            QCOMPARE(got.isNull(), expected.isNull());
            QCOMPARE(got, expected);
        }
        ++row;
    }
    QCOMPARE(fast->recordCount(), row);
}

void TestSqliteSnapshot::failureLeavesItToTheDriver()
{
    TestDb db;
    QVERIFY(db.ok());
    QVERIFY(!SqliteSnapshot::open(Database::connection(), "SELECT NoSuchField FROM Sale", QString()));
    QVERIFY(!SqliteSnapshot::open(Database::connection(), "SELEKT 1", QString()));
}

QTEST_MAIN(TestSqliteSnapshot)
#include "tst_sqlitesnapshot.moc"
