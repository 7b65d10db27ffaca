#include "data/Database.h"
#include "data/Gateway.h"
#include "data/Recordset.h"
#include "data/SqliteSnapshot.h"
#include "platform/VbError.h"
#include "support/ScriptedPrompter.h"
#include "support/TestDb.h"

#include <QSqlQuery>
#include <QSqlRecord>
#include <QtTest>

// The snapshot behind every list: read straight from the engine as the Qt driver would read
// it, moving, the "ID=n" filter that operations use, bookmarks kept over a refresh, clones,
// and the write-back of a changed row.
class TestRecordset : public QObject {
    Q_OBJECT
    std::unique_ptr<TestDb> m_db;
    std::unique_ptr<ScriptedPrompter> m_prompts;
    RecordsetPtr m_rs; // the five products P1..P5 by ID

private slots:
    void init()
    {
        m_db = std::make_unique<TestDb>();
        m_prompts = std::make_unique<ScriptedPrompter>();
        for (int i = 1; i <= 5; ++i)
            QVERIFY(m_db->exec(QString("INSERT INTO Product(Name,Price,Status,IsContainer,ContainerID) "
                                       "VALUES('P%1',%1.5,'1','0',0)").arg(i)));
        m_rs = OpenRecordset("select * from Product order by ID");
        QVERIFY(m_rs);
    }
    void cleanup()
    {
        VERIFY_PROMPTS(*m_prompts);
        m_rs.reset();
        m_prompts.reset();
        m_db.reset();
    }

    // The direct read gives what the Qt driver gives: the same names, types and values.
    void directReadSameAsTheDriver_data()
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
    void directReadSameAsTheDriver()
    {
        QFETCH(QString, sql);
        QVERIFY(m_db->exec("INSERT INTO Customer(ID,Address) VALUES(1,'东大街1号')"));
        QVERIFY(m_db->exec("INSERT INTO Sale(ID,CustomerID,TotalMoney,InMoney,CreateDate,FinishFlag,Detail,StationID) "
                           "VALUES(1,1,18.5,0,'2026-11-23','0',NULL,NULL),(2,1,37,37,'2026-11-22','1','楼上',1)"));
        RecordsetPtr fast = SqliteSnapshot::open(Database::connection(), sql, QString());
        QVERIFY(fast);
        QSqlQuery q(Database::connection());
        QVERIFY(q.exec(sql));
        QStringList names;
        for (int i = 0; i < q.record().count(); ++i)
            names << q.record().fieldName(i);
        QCOMPARE(fast->fieldNames(), names);
        int row = 0;
        for (; q.next(); ++row) {
            for (int i = 0; i < names.size(); ++i) {
                const QVariant expected = q.value(i), got = fast->valueAt(row, i);
                QCOMPARE(got.metaType(), expected.metaType());
                QCOMPARE(got.isNull(), expected.isNull());
                QCOMPARE(got, expected);
            }
        }
        QCOMPARE(fast->recordCount(), row);
        // A statement the direct read cannot run is left to the driver, which reports it.
        QVERIFY(!SqliteSnapshot::open(Database::connection(), "SELECT NoSuchField FROM Sale", QString()));
        QVERIFY(!SqliteSnapshot::open(Database::connection(), "SELEKT 1", QString()));
    }

    void moving()
    {
        QCOMPARE(m_rs->recordCount(), 5);
        QVERIFY(!m_rs->bof() && !m_rs->eof());
        QCOMPARE(m_rs->text("name"), QStringLiteral("P1"));
        m_rs->moveLast();
        QCOMPARE(m_rs->text("NAME"), QStringLiteral("P5"));
        m_rs->moveNext();
        QVERIFY(m_rs->eof());
        QVERIFY(!m_rs->field("Name").isValid());
        m_rs->moveNext(); // past the end stays past the end
        m_rs->movePrevious();
        QCOMPARE(m_rs->text("Name"), QStringLiteral("P5"));
        m_rs->moveFirst();
        m_rs->movePrevious();
        QVERIFY(m_rs->bof());
        QCOMPARE(m_rs->text("NoSuchField"), QString());

        RecordsetPtr empty = OpenRecordset("select * from Sale");
        QVERIFY(empty);
        QCOMPARE(empty->recordCount(), 0);
        QVERIFY(empty->bof() && empty->eof());
        empty->moveFirst();
        empty->moveNext();
        QVERIFY(empty->eof());
        QVERIFY(empty->update()); // nothing to write
        QVERIFY(empty->fieldNames().contains("TotalMoney", Qt::CaseInsensitive));
    }

    void filterAndBookmarks_data()
    {
        QTest::addColumn<QString>("filter");
        QTest::addColumn<int>("count");
        QTest::addColumn<QString>("first");
        QTest::addColumn<bool>("fails");
        QTest::newRow("by id") << "ID=3" << 1 << "P3" << false;
        QTest::newRow("no such id") << "ID=99" << 0 << "" << false;
        QTest::newRow("by text, case-blind") << "Name='p2'" << 1 << "P2" << false;
        // Refused, and the set stays whole rather than empty.
        QTest::newRow("unknown field") << "Nope=1" << 5 << "P1" << true;
        QTest::newRow("no comparison") << "ID" << 5 << "P1" << true;
        QTest::newRow("cleared") << "" << 5 << "P1" << false;
    }
    void filterAndBookmarks()
    {
        QFETCH(QString, filter);
        QFETCH(int, count);
        QFETCH(bool, fails);
        m_rs->moveLast();
        const auto mark = m_rs->bookmark();
        bool threw = false;
        try {
            m_rs->setFilter(filter);
        } catch (const VbError &) {
            threw = true;
        }
        QCOMPARE(threw, fails);
        QCOMPARE(m_rs->filter(), fails ? QString() : filter);
        QCOMPARE(m_rs->recordCount(), count);
        QCOMPARE(m_rs->eof(), count == 0);
        QTEST(m_rs->text("Name"), "first");
        m_rs->setFilter(QString());
        QVERIFY(m_rs->setBookmark(mark));
        QCOMPARE(m_rs->text("Name"), QStringLiteral("P5"));
    }

    void cloneSharesRows()
    {
        RecordsetPtr copy = m_rs->clone();
        copy->setFilter("ID=2");
        QCOMPARE(copy->recordCount(), 1);
        QCOMPARE(m_rs->recordCount(), 5); // the original keeps its own filter and position
        copy->setField("Price", 9.25);
        QVERIFY(copy->update());
        m_rs->moveNext();
        QCOMPARE(m_rs->field("Price").toDouble(), 9.25);
        QCOMPARE(m_db->scalar("SELECT Price FROM Product WHERE ID=2").toDouble(), 9.25);
    }

    void updateWritesBack()
    {
        m_rs->moveNext();
        m_rs->setField("Name", "Bottle 'big'");
        QCOMPARE(m_rs->text("Name"), QStringLiteral("Bottle 'big'")); // visible before it is stored
        QVERIFY(m_rs->update());
        QCOMPARE(m_db->scalar("SELECT Name FROM Product WHERE ID=2").toString(), QStringLiteral("Bottle 'big'"));
        QCOMPARE(m_db->count("Product", "Name LIKE 'P%'"), 4);

        RecordsetPtr joined = OpenRecordset("select a.ID, a.Name from Product a, Station b where b.ID=1");
        QVERIFY(joined);
        joined->setField("Name", "x");
        QVERIFY(!joined->update()); // rows from several tables have no one place to go back to

        // A table without an ID is written back where the row's old values match.
        QVERIFY(m_db->exec("INSERT INTO SysValue(Name,myValue) VALUES('A','1'),('B','1')"));
        RecordsetPtr values = OpenRecordset("Select * from SysValue where Name='B'");
        QVERIFY(values);
        values->setField("MyValue", "2");
        QVERIFY(values->update());
        QCOMPARE(m_db->scalar("SELECT group_concat(Name || myValue) FROM (SELECT * FROM SysValue WHERE Name IN ('A','B') ORDER BY Name)").toString(),
                 QStringLiteral("A1,B2"));
    }
};

QTEST_MAIN(TestRecordset)
#include "tst_recordset.moc"
