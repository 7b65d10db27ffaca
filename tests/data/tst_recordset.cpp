#include "data/Gateway.h"
#include "data/Recordset.h"
#include "support/ScriptedPrompter.h"
#include "support/TestDb.h"

#include <QtTest>

// The snapshot behind every list: moving, the "ID=n" filter that operations use, bookmarks
// kept over a refresh, clones, and the write-back of a changed row.
class TestRecordset : public QObject {
    Q_OBJECT
private slots:
    void init();
    void cleanup();
    void moving();
    void filterAndBookmarks_data();
    void filterAndBookmarks();
    void cloneSharesRows();
    void updateWritesBackByKey();
    void updateWithoutKeyMatchesOriginalValues();
    void emptySnapshot();

private:
    std::unique_ptr<TestDb> m_db;
    std::unique_ptr<ScriptedPrompter> m_prompts;
    RecordsetPtr open(const QString &sql)
    {
        RecordsetPtr rs = OpenRecordset(sql);
        if (!rs)
            qWarning("no result set for %s", qPrintable(sql));
        return rs;
    }
};

void TestRecordset::init()
{
    m_db = std::make_unique<TestDb>();
    m_prompts = std::make_unique<ScriptedPrompter>();
    for (int i = 1; i <= 5; ++i)
        QVERIFY(m_db->exec(QString("INSERT INTO Product(Name,Price,Status,IsContainer,ContainerID) "
                                   "VALUES('P%1',%1.5,'1','0',0)").arg(i)));
}

void TestRecordset::cleanup()
{
    VERIFY_PROMPTS(*m_prompts);
    m_prompts.reset();
    m_db.reset();
}

void TestRecordset::moving()
{
    RecordsetPtr rs = open("select * from Product order by ID");
    QVERIFY(rs);
    QCOMPARE(rs->recordCount(), 5);
    QVERIFY(!rs->bof() && !rs->eof());
    QCOMPARE(rs->text("name"), QStringLiteral("P1"));
    rs->moveLast();
    QCOMPARE(rs->text("NAME"), QStringLiteral("P5"));
    rs->moveNext();
    QVERIFY(rs->eof());
    QVERIFY(!rs->field("Name").isValid());
    rs->moveNext(); // past the end stays past the end
    rs->movePrevious();
    QCOMPARE(rs->text("Name"), QStringLiteral("P5"));
    rs->moveFirst();
    rs->movePrevious();
    QVERIFY(rs->bof());
    QCOMPARE(rs->text("NoSuchField"), QString());
}

void TestRecordset::filterAndBookmarks_data()
{
    QTest::addColumn<QString>("filter");
    QTest::addColumn<int>("count");
    QTest::addColumn<QString>("first");
    QTest::newRow("by id") << "ID=3" << 1 << "P3";
    QTest::newRow("blanks around") << " ID = 4 " << 1 << "P4";
    QTest::newRow("no such id") << "ID=99" << 0 << "";
    QTest::newRow("by text, case-blind") << "Name='p2'" << 1 << "P2";
    QTest::newRow("unknown field") << "Nope=1" << 0 << "";
    QTest::newRow("cleared") << "" << 5 << "P1";
}

void TestRecordset::filterAndBookmarks()
{
    QFETCH(QString, filter);
    QFETCH(int, count);
    QFETCH(QString, first);
    RecordsetPtr rs = open("select * from Product order by ID");
    QVERIFY(rs);
    rs->moveLast();
    const auto mark = rs->bookmark();
    rs->setFilter(filter);
    QCOMPARE(rs->recordCount(), count);
    QCOMPARE(rs->eof(), count == 0);
    QCOMPARE(rs->text("Name"), first);
    rs->setFilter(QString());
    QVERIFY(rs->setBookmark(mark));
    QCOMPARE(rs->text("Name"), QStringLiteral("P5"));
}

void TestRecordset::cloneSharesRows()
{
    RecordsetPtr rs = open("select * from Product order by ID");
    QVERIFY(rs);
    RecordsetPtr copy = rs->clone();
    copy->setFilter("ID=2");
    QCOMPARE(copy->recordCount(), 1);
    QCOMPARE(rs->recordCount(), 5); // the original keeps its own filter and position
    copy->setField("Price", 9.25);
    QVERIFY(copy->update());
    rs->moveFirst();
    rs->moveNext();
    QCOMPARE(rs->field("Price").toDouble(), 9.25);
    QCOMPARE(m_db->scalar("SELECT Price FROM Product WHERE ID=2").toDouble(), 9.25);
}

void TestRecordset::updateWritesBackByKey()
{
    RecordsetPtr rs = open("select * from Product where ID>=2 order by ID");
    QVERIFY(rs);
    rs->setField("Name", "Bottle 'big'");
    QCOMPARE(rs->text("Name"), QStringLiteral("Bottle 'big'")); // visible before it is stored
    QVERIFY(rs->update());
    QCOMPARE(m_db->scalar("SELECT Name FROM Product WHERE ID=2").toString(), QStringLiteral("Bottle 'big'"));
    QCOMPARE(m_db->count("Product", "Name LIKE 'P%'"), 4);

    RecordsetPtr joined = open("select a.ID, a.Name from Product a, Station b where b.ID=1");
    QVERIFY(joined);
    joined->setField("Name", "x");
    QVERIFY(!joined->update()); // rows from several tables have no one place to go back to
}

void TestRecordset::updateWithoutKeyMatchesOriginalValues()
{
    QVERIFY(m_db->exec("INSERT INTO SysValue(Name,myValue) VALUES('A','1')"));
    QVERIFY(m_db->exec("INSERT INTO SysValue(Name,myValue) VALUES('B','1')"));
    RecordsetPtr rs = open("Select * from SysValue where Name='B'");
    QVERIFY(rs);
    rs->setField("MyValue", "2");
    QVERIFY(rs->update());
    QCOMPARE(m_db->scalar("SELECT myValue FROM SysValue WHERE Name='A'").toString(), QStringLiteral("1"));
    QCOMPARE(m_db->scalar("SELECT myValue FROM SysValue WHERE Name='B'").toString(), QStringLiteral("2"));
}

void TestRecordset::emptySnapshot()
{
    RecordsetPtr rs = open("select * from Sale");
    QVERIFY(rs);
    QCOMPARE(rs->recordCount(), 0);
    QVERIFY(rs->bof() && rs->eof());
    rs->moveFirst();
    rs->moveNext();
    QVERIFY(rs->eof());
    QVERIFY(rs->update()); // nothing to write
    QVERIFY(rs->fieldNames().contains("TotalMoney", Qt::CaseInsensitive));
}

QTEST_MAIN(TestRecordset)
#include "tst_recordset.moc"
