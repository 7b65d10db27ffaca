#include "data/Database.h"
#include "data/Gateway.h"
#include "data/SqlText.h"
#include "support/Rows.h"

#include <QtTest>

// The gateway is where every window meets the database: its transactions, and its refusal to
// let a typed quote, formula or false date change what a statement does.
class TestGateway : public QObject {
    Q_OBJECT
    std::unique_ptr<TestDb> db;
    std::unique_ptr<ScriptedPrompter> prompts;

    // A statement that is meant to fail says so with the gateway's message of its kind.
    bool failing(bool fails, bool read, const QString &sql)
    {
        if (fails)
            expectFailed(*prompts, read ? Failed::Read : Failed::Update);
        return read ? bool(OpenRecordset(sql)) : ExecuteSql(sql);
    }

private slots:
    void init()
    {
        db = std::make_unique<TestDb>();
        QVERIFY(db->ok());
        prompts = std::make_unique<ScriptedPrompter>();
    }
    void cleanup()
    {
        VERIFY_PROMPTS(*prompts);
        prompts.reset();
        db.reset();
    }

    // A typed value reaches the engine as what it was typed as, or every kind of statement
    // fails and changes nothing: a quote cannot widen rights, a formula cannot match every
    // row, and a false date as a closing's cut-off cannot delete every ticket.
    void typedValues_data()
    {
        QTest::addColumn<QString>("column");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("stored"); // empty: refused
        QTest::newRow("quote: widen rights") << "Detail" << "x', rolestring='11111111" << "";
        QTest::newRow("marker smuggled") << "Detail" << QString("a") + Sql::TextClose + "' OR 1=1 --" << "";
        QTest::newRow("number, blanks around") << "TotalMoney" << " 12 " << "12";
        QTest::newRow("number always true") << "TotalMoney" << "1 or 1=1" << "";
        QTest::newRow("beyond any number") << "TotalMoney" << "1e999" << "";
        QTest::newRow("year first") << "CreateDate" << "2026-1-5" << "2026-01-05";
        QTest::newRow("date with a time") << "CreateDate" << "2026/1/5 2:30 PM" << "2026-01-05 14:30:00";
        QTest::newRow("date always true") << "CreateDate" << "2026-01-01# or 1=1 or #2026-01-01" << "";
        QTest::newRow("impossible day") << "CreateDate" << "2026-13-01" << "";
    }
    void typedValues()
    {
        QFETCH(QString, column);
        QFETCH(QString, typed);
        QFETCH(QString, stored);
        QVERIFY(db->exec("INSERT INTO Sale(ID,CustomerID,Detail,TotalMoney,CreateDate,FinishFlag) VALUES"
                         "(1,1,'a',5,'2025-12-31','0'),(2,2,'b',90,'2026-01-10','0')"));
        const QString value = column == "Detail" ? "'" + Sql::text(typed) + "'"
                              : column == "TotalMoney" ? Sql::number(typed) : "#" + Sql::date(typed) + "#";
        const QString sales = "SELECT group_concat(ID||Detail||TotalMoney||CreateDate, '|') FROM Sale";
        const QString before = db->scalar(sales).toString();
        const bool refused = stored.isEmpty();
        QCOMPARE(failing(refused, false, "update Sale set " + column + "=" + value + " where ID=1"), !refused);
        if (refused && !typed.contains(Sql::TextClose)) // the operator is told which entry broke it
            QVERIFY2(prompts->last().text.contains("'" + typed + "'"), qPrintable(prompts->last().text));
        QCOMPARE(failing(refused, false, "insert into Sale(CustomerID," + column + ",FinishFlag) values(3," + value + ",'0')"),
                 !refused);
        QCOMPARE(failing(refused, true, "select * from Sale where " + column + "<=" + value), !refused);
        if (refused) {
            QVERIFY(!failing(true, false, "delete from Sale where FinishFlag='0' And " + column + "<=" + value));
            QCOMPARE(db->scalar(sales).toString(), before);
            return;
        }
        QCOMPARE(db->scalar("SELECT " + column + " FROM Sale WHERE ID=1").toString(), stored);
        RecordsetPtr rs = OpenRecordset("select * from Sale where " + column + "<=" + value);
        QVERIFY(rs);
        QCOMPARE(rs->recordCount(), 2); // the updated and the inserted ticket
        QVERIFY(ExecuteSql("delete from Sale where FinishFlag='0' And " + column + "<=" + value));
        QCOMPARE(db->scalar("SELECT group_concat(ID) FROM Sale").toString(), QStringLiteral("2"));
    }

    // Settings are one row each, written back only where they belong, and kept over the next
    // start, which makes no default rows again.
    void sysValues()
    {
        QCOMPARE(GetSysValue("AutoInMoney"), QString()); // missing key reads as empty: the flag is off
        SetSysValue("AutoInMoney", "1");
        SetSysValue("AutoInMoney", "0");
        SetSysValue("CompanyName", "Joe's Gas"); // written through the snapshot, a quote is no statement text
        Database::close();
        QVERIFY(Database::open(db->path()));
        QCOMPARE(db->count("SysValue", "Name='AutoInMoney'"), 1);
        QCOMPARE(db->count("SysUser"), 1);
        QCOMPARE(GetSysValue("autoinmoney") + GetSysValue("AutoDataRefresh") + GetSysValue("CompanyName"),
                 QStringLiteral("01Joe's Gas"));
    }

    // How a transaction can end, and what the save that used it must conclude.
    void transactions_data()
    {
        QTest::addColumn<QString>("ending");
        QTest::addColumn<bool>("committed");
        QTest::addColumn<int>("rowsKept");
        QTest::newRow("committed") << "commit" << true << 2;
        QTest::newRow("scope left open") << "none" << false << 0;
        // A rolled-back save that went on writing: what follows is on its own, the save failed.
        QTest::newRow("rolled back, then more") << "rollback" << false << 1;
        // The engine refuses the commit (here a deferred check; a full disk does the same).
        QTest::newRow("commit refused") << "refused" << false << 0;
    }
    void transactions()
    {
        QFETCH(QString, ending);
        QVERIFY(db->exec("CREATE TABLE Parent(ID INTEGER PRIMARY KEY)"));
        QVERIFY(db->exec("CREATE TABLE Child(ParentID INTEGER REFERENCES Parent(ID) DEFERRABLE INITIALLY DEFERRED)"));
        QVERIFY(db->exec("PRAGMA foreign_keys=ON"));
        bool result = false;
        {
            Transaction tx(Conn);
            QVERIFY(tx.begun());
            QVERIFY(Conn.inTransaction());
            QVERIFY(ExecuteSql("insert into Sale(CustomerID,CreateDate,FinishFlag) values(1,#11-23-2026#,'0')"));
            if (ending == "rollback")
                QVERIFY(tx.rollback());
            if (ending == "refused")
                QVERIFY(ExecuteSql("insert into Child(ParentID) values(99)"));
            QVERIFY(ExecuteSql("insert into Sale(CustomerID,CreateDate,FinishFlag) values(2,#2026-11-23#,'0')"));
            // A refused commit says why before the save reports itself not done.
            if (ending == "refused")
                prompts->expect(Failed::Update + "FOREIGN KEY constraint failed", QMessageBox::Ok, true);
            if (ending != "none")
                result = tx.commit();
        }
        QVERIFY(db->exec("PRAGMA foreign_keys=OFF"));
        QTEST(result, "committed");
        QVERIFY(!Conn.inTransaction());
        QTEST(db->count("Sale"), "rowsKept");
        // Nothing is left open: the next save can begin.
        Transaction next(Conn);
        QVERIFY(next.begun());
        QVERIFY(next.commit());
    }

    // What the benchmark replays on the engine alone: every statement in the order the engine
    // got it, the transaction's own and a row written back with its values in place.
    void observerHearsEveryStatement()
    {
        static QStringList heard;
        heard.clear();
        QVERIFY(db->exec("INSERT INTO Customer(Account,Address,Phone,Status) VALUES(7,'Main Street 5','1','1')"));
        Gateway::setStatementObserver([](const QString &sql) { heard << sql; });
        {
            Transaction tx(Conn);
            RecordsetPtr rs = OpenRecordset("select * from Customer where Account=7");
            QVERIFY(rs && !rs->eof());
            rs->setField("Phone", "0571-'5'");
            QVERIFY(rs->update());
            QVERIFY(ExecuteSql("update Customer set Status='0' where Account=7"));
            QVERIFY(tx.commit());
        }
        Gateway::setStatementObserver(nullptr);
        QVERIFY(ExecuteSql("update Customer set Status='1' where Account=7"));
        QCOMPARE(heard, (QStringList{"BEGIN IMMEDIATE", "select * from Customer where Account=7",
                                     "UPDATE Customer SET Phone='0571-''5''' WHERE ID=1",
                                     "update Customer set Status='0' where Account=7", "COMMIT"}));
        QCOMPARE(db->scalar("SELECT Phone FROM Customer WHERE Account=7").toString(), QStringLiteral("0571-'5'"));
    }
};

QTEST_MAIN(TestGateway)
#include "tst_gateway.moc"
