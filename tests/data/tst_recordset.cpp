#include "data/Database.h"
#include "data/Gateway.h"
#include "data/Recordset.h"
#include "support/ScriptedPrompter.h"
#include "support/TestDb.h"

#include <QtTest>

// The snapshot behind every list: the "ID=n" filter that operations use, bookmarks kept over
// a refresh, and the write-back of a changed row.
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

    // Operations narrow the list to one row by "ID=n"; the list's position comes back after.
    void filterAndBookmark()
    {
        m_rs->moveLast();
        const auto mark = m_rs->bookmark();
        m_rs->setFilter("ID=3");
        QCOMPARE(m_rs->recordCount(), 1);
        QCOMPARE(m_rs->text("Name"), QStringLiteral("P3"));
        m_rs->setFilter("ID=99");
        QVERIFY(m_rs->eof());
        QCOMPARE(m_rs->recordCount(), 0);
        m_rs->setFilter(QString());
        QCOMPARE(m_rs->recordCount(), 5);
        QVERIFY(m_rs->setBookmark(mark));
        QCOMPARE(m_rs->text("Name"), QStringLiteral("P5"));
    }

    // An operation changes a row through a clone filtered to it; the list sees the change.
    void updateWritesBack()
    {
        RecordsetPtr copy = m_rs->clone();
        copy->setFilter("ID=2");
        QCOMPARE(m_rs->recordCount(), 5); // the original keeps its own filter and position
        copy->setField("Name", "Bottle 'big'");
        QVERIFY(copy->update());
        m_rs->moveNext();
        QCOMPARE(m_rs->text("Name"), QStringLiteral("Bottle 'big'"));
        QCOMPARE(m_db->scalar("SELECT Name FROM Product WHERE ID=2").toString(), QStringLiteral("Bottle 'big'"));
        QCOMPARE(m_db->count("Product", "Name LIKE 'P%'"), 4);
    }
};

QTEST_MAIN(TestRecordset)
#include "tst_recordset.moc"
