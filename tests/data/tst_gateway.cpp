#include "data/Database.h"
#include "data/Gateway.h"
#include "data/SqlText.h"
#include "platform/VbError.h"
#include "support/Rows.h"

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QtTest>
#include <atomic>
#include <thread>

// The gateway is where every window meets the database: its messages, its silences, and
// its refusal to let a typed quote change what a statement does.
class TestGateway : public QObject {
    Q_OBJECT
    std::unique_ptr<TestDb> db;
    std::unique_ptr<ScriptedPrompter> prompts;

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

    void creationMakesTablesAndDefaultRowsOnce()
    {
        const QStringList tables = Database::connection().tables();
        for (const char *t : {"Sale", "Sale_detail", "Store", "Store_detail", "Customer", "Product",
                              "Sender", "Station", "SysUser", "SysValue", "Call"})
            QVERIFY2(tables.contains(QLatin1String(t), Qt::CaseInsensitive), t);
        QCOMPARE(db->scalar("SELECT Name FROM SysUser WHERE rolestring='11111111' AND Pwd=''").toString(),
                 QStringLiteral("管理员"));
        QCOMPARE(db->count("Station", "ID=1"), 1);
        QCOMPARE(db->scalar("PRAGMA journal_mode").toString(), QStringLiteral("wal"));
        // A new shop starts with self-refreshing lists and the address search on.
        QCOMPARE(GetSysValue("AutoDataRefresh"), QStringLiteral("1"));
        QCOMPARE(GetSysValue("SearchAddress"), QStringLiteral("1"));
        // The planner has statistics from the first start on.
        QCOMPARE(db->count("sqlite_master", "name='sqlite_stat1'"), 1);
        QVERIFY(db->exec("INSERT INTO Customer(Account,Address,Status) VALUES(7,'Main Street 5','1')"));
        Database::close();
        QVERIFY(Database::open(db->path()));
        QCOMPARE(db->count("SysUser"), 1); // the default rows are not made twice
        // Names and texts compare case-blind, as the statements expect.
        RecordsetPtr rs = OpenRecordset("select * from CUSTOMER where address='MAIN STREET 5'");
        QVERIFY(rs);
        QCOMPARE(rs->recordCount(), 1);
        QCOMPARE(rs->field("ACCOUNT").toInt(), 7);
    }

    void unopenableFileFails()
    {
        QTemporaryDir dir;
        QFile junk(dir.filePath("Tarvik.mdb"));
        QVERIFY(junk.open(QIODevice::WriteOnly));
        junk.write(QByteArray(4096, 'x'));
        junk.close();
        QString error;
        QVERIFY(!Database::open(junk.fileName(), &error));
        QVERIFY(!error.isEmpty());
        QVERIFY(!Database::isOpen());
        QVERIFY(!Database::open(dir.filePath("no/such/folder/Tarvik.mdb"), &error));
    }

    // The closing's mark on every voucher ends with all of them marked, whichever way a row
    // held the flag before; a statement with its own condition keeps it.
    void wholeTableUpdateEndsTheSame_data()
    {
        QTest::addColumn<QString>("sql");
        QTest::addColumn<QString>("flags");
        QTest::newRow("every row") << "update Store set FinishFlag='1'" << "1 1 1 1";
        QTest::newRow("spaced, any case") << "  UPDATE Store SET FinishFlag = '1' " << "1 1 1 1";
        QTest::newRow("number") << "update Store set Direction=0" << "0 0 0 0";
        QTest::newRow("own condition") << "update Store set FinishFlag='1' where ID=2" << "0 1 1 1";
    }
    void wholeTableUpdateEndsTheSame()
    {
        QFETCH(QString, sql);
        QFETCH(QString, flags);
        QVERIFY(db->exec("INSERT INTO Store(ID,FinishFlag,Direction) VALUES (1,'0','0'),(2,NULL,'0'),(3,'1','1'),(4,'1',NULL)"));
        QVERIFY(ExecuteSql(sql));
        QSqlQuery q(Database::connection());
        QVERIFY(q.exec(sql.contains("Direction") ? "SELECT ifnull(Direction,'-') FROM Store ORDER BY ID"
                                                 : "SELECT ifnull(FinishFlag,'-') FROM Store ORDER BY ID"));
        QStringList seen;
        while (q.next())
            seen << q.value(0).toString();
        QCOMPARE(seen.join(' '), flags);
    }

    void failureMessages_data()
    {
        QTest::addColumn<bool>("read");
        QTest::addColumn<QString>("sql");
        QTest::newRow("update, unknown table") << false << "update NoSuchTable set A=1";
        QTest::newRow("read, unknown column") << true << "select NoSuchColumn from Sale";
        QTest::newRow("read, two statements") << true << "select * from Sale; delete from Sale";
    }
    void failureMessages()
    {
        QFETCH(bool, read);
        QFETCH(QString, sql);
        const QString prefix = read ? Failed::Read : Failed::Update;
        expectFailed(*prompts, prefix);
        QVERIFY(read ? !OpenRecordset(sql) : !ExecuteSql(sql));
        const auto &shown = prompts->last();
        QCOMPARE(shown.title, QStringLiteral("系统错误"));
        QCOMPARE(shown.icon, QMessageBox::Critical);
        QCOMPARE(shown.buttons, QMessageBox::StandardButtons(QMessageBox::Ok));
        QVERIFY2(shown.text.size() > prefix.size(), "the engine's description follows the text");
    }

    // A value typed with a quote must end in the gateway's failure and change nothing, however
    // it is shaped, on every kind of statement.
    void typedQuoteNeverSucceeds_data()
    {
        QTest::addColumn<QString>("value");
        QTest::newRow("widen rights") << "x', rolestring='11111111";
        QTest::newRow("second statement") << "x'; delete from SysUser; --";
        QTest::newRow("doubled quote") << "O''Brien";
        QTest::newRow("marker smuggled") << QString("a") + Sql::TextClose + "' OR 1=1 --";
    }
    void typedQuoteNeverSucceeds()
    {
        QFETCH(QString, value);
        QVERIFY(db->exec("INSERT INTO SysUser(Name,Pwd,rolestring,Status) VALUES('clerk','abc','00000000','1')"));
        QVERIFY(db->exec("INSERT INTO Customer(Account,Address,Status) VALUES(1,'Hill Road 1','1')"));
        const QString users = "SELECT group_concat(Name||Pwd||rolestring, '|') FROM SysUser";
        const QString before = db->scalar(users).toString();
        expectFailed(*prompts, Failed::Update);
        QVERIFY(!ExecuteSql("update sysuser set pwd='" + Sql::text(value) + "' where ID=2"));
        if (!value.contains(Sql::TextClose))
            QVERIFY2(prompts->last().text.contains("'" + value + "'"), qPrintable(prompts->last().text));
        expectFailed(*prompts, Failed::Update);
        QVERIFY(!ExecuteSql("insert into SysUser(Name,Pwd,rolestring,Status) values('" + Sql::text(value)
                            + "','','00000000','1')"));
        expectFailed(*prompts, Failed::Read);
        QVERIFY(!OpenRecordset("Select * from Customer where Status='1' AND  Address Like '%" + Sql::text(value) + "%'"));
        QCOMPARE(db->scalar(users).toString(), before);
        QCOMPARE(db->count("SysUser"), 2);
        QCOMPARE(db->count("Customer"), 1);
    }

    void typedNumberMustBeANumber_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<bool>("accepted");
        QTest::newRow("plain") << "12" << true;
        QTest::newRow("blanks around") << " 12 " << true;
        QTest::newRow("always true") << "1 or 1=1" << false;
        QTest::newRow("empty") << "" << false;
        QTest::newRow("subquery") << "(select max(ID) from SysUser)" << false;
        QTest::newRow("beyond any number") << "1e999" << false;
    }
    void typedNumberMustBeANumber()
    {
        QFETCH(QString, typed);
        QFETCH(bool, accepted);
        QVERIFY(db->exec("INSERT INTO Customer(Account,Address,Status) VALUES(12,'A','1'),(13,'B','1')"));
        if (!accepted)
            expectFailed(*prompts, Failed::Read);
        RecordsetPtr rs = OpenRecordset("select * from Customer where Account=" + Sql::number(typed));
        QCOMPARE(bool(rs), accepted);
        if (rs)
            QCOMPARE(rs->recordCount(), 1);
        else // the operator is told which entry broke it
            QVERIFY2(prompts->last().text.contains("'" + typed + "'"), qPrintable(prompts->last().text));
    }

    // A typed date reaches the engine as a date or the statement fails and changes nothing:
    // the same text as a closing's cut-off must never delete every ticket.
    void typedDateMustBeADate_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("stored"); // empty: refused
        QTest::newRow("year first") << "2026-1-5" << "2026-01-05";
        QTest::newRow("month first, slashes") << "1/5/2026" << "2026-01-05";
        QTest::newRow("with a time") << "2026/1/5 2:30 PM" << "2026-01-05 14:30:00";
        QTest::newRow("always true") << "2026-01-01# or 1=1 or #2026-01-01" << "";
        QTest::newRow("impossible day") << "2026-13-01" << "";
        QTest::newRow("not a date") << "yesterday" << "";
        QTest::newRow("empty") << "" << "";
    }
    void typedDateMustBeADate()
    {
        QFETCH(QString, typed);
        QFETCH(QString, stored);
        QVERIFY(db->exec("INSERT INTO Sale(ID,CustomerID,CreateDate,FinishFlag) VALUES"
                         "(1,1,'2025-12-31','0'),(2,2,'2026-01-10','0')"));
        const bool accepted = !stored.isEmpty();
        const QString d = "#" + Sql::date(typed) + "#";
        if (!accepted)
            expectFailed(*prompts, Failed::Update);
        QCOMPARE(ExecuteSql("insert into Sale(CustomerID,CreateDate,FinishFlag) values(3," + d + ",'0')"), accepted);
        if (!accepted)
            expectFailed(*prompts, Failed::Update);
        QCOMPARE(ExecuteSql("update Sale set CreateDate=" + d + " where ID=1"), accepted);
        if (!accepted)
            expectFailed(*prompts, Failed::Read);
        RecordsetPtr rs = OpenRecordset("select * from Sale where CreateDate<=" + d);
        QCOMPARE(bool(rs), accepted);
        if (!accepted)
            QVERIFY2(prompts->last().text.contains("'" + typed + "'"), qPrintable(prompts->last().text));
        if (!accepted)
            expectFailed(*prompts, Failed::Update);
        QCOMPARE(ExecuteSql("delete from Sale where FinishFlag='0' And CreateDate<=" + d), accepted);
        const QString dates = db->scalar("SELECT group_concat(CreateDate, '|') FROM Sale ORDER BY ID").toString();
        if (accepted) {
            QCOMPARE(rs->recordCount(), 2); // the updated and the inserted ticket
            QCOMPARE(dates, QStringLiteral("2026-01-10"));
        } else {
            QCOMPARE(dates, QStringLiteral("2025-12-31|2026-01-10"));
        }
    }

    void sysValues()
    {
        QCOMPARE(GetSysValue("CompanyName"), Database::defaultCompanyName());
        QCOMPARE(GetSysValue("AutoInMoney"), QString()); // missing key reads as empty: the flag is off
        SetSysValue("AutoInMoney", "1");
        QCOMPARE(GetSysValue("autoinmoney"), QStringLiteral("1"));
        SetSysValue("AutoInMoney", "0");
        QCOMPARE(db->count("SysValue", "Name='AutoInMoney'"), 1);
        QCOMPARE(GetSysValue("AutoInMoney"), QStringLiteral("0"));
        // A quote passes on the update path, which writes through the snapshot...
        SetSysValue("CompanyName", "Joe's Gas");
        QCOMPARE(GetSysValue("CompanyName"), QStringLiteral("Joe's Gas"));
        // ...and fails on the insert path, which is statement text.
        expectFailed(*prompts, Failed::Update);
        SetSysValue("AreaCode", "0'21");
        QCOMPARE(db->count("SysValue", "Name='AreaCode'"), 0);
    }

    void silentLookups()
    {
        QCOMPARE(GetSumValue("Sale", "", "TotalMoney"), 0); // null sum over no rows
        QVERIFY(db->exec("INSERT INTO Sale(CustomerID,TotalMoney,CreateDate,FinishFlag) VALUES"
                         "(1,10.5,'2026-11-23','0'),(2,2.0,'2026-11-22','0')"));
        QCOMPARE(GetSumValue("Sale", " where CustomerID=1", "TotalMoney"), 10); // cents lost, half to even
        QCOMPARE(GetSumValue("Sale", " where CreateDate=#11/22/2026#", "TotalMoney"), 2);
        QCOMPARE(GetMinValue("Sale", "TotalMoney"), 2);
        QCOMPARE(GetFieldByID(1, "SysUser", "Name"), QStringLiteral("管理员"));
        QCOMPARE(GetFieldByID(99, "SysUser", "Name"), QString());
        QCOMPARE(GetFieldByID(1, "SysUser", "NoSuchColumn"), QString());
    }

    void checkUnique_data()
    {
        QTest::addColumn<QString>("field");
        QTest::addColumn<QString>("value");
        QTest::addColumn<int>("kind");
        QTest::addColumn<int>("currentID");
        QTest::addColumn<bool>("unique");
        QTest::newRow("unused address") << "Address" << "New Lane 9" << 0 << 0 << true;
        QTest::newRow("taken, case-blind") << "Address" << "HILL ROAD 1" << 0 << 0 << false;
        QTest::newRow("own row") << "Address" << "Hill Road 1" << 0 << 1 << true;
        QTest::newRow("other row") << "Address" << "Hill Road 1" << 0 << 2 << false;
        QTest::newRow("number taken") << "Account" << "5" << 1 << 0 << false;
        QTest::newRow("number free") << "Account" << "6" << 3 << 0 << true;
        QTest::newRow("unknown kind reads as taken") << "Account" << "5" << 2 << 0 << false;
    }
    void checkUnique()
    {
        QFETCH(QString, field);
        QFETCH(QString, value);
        QFETCH(int, kind);
        QFETCH(int, currentID);
        QFETCH(bool, unique);
        QVERIFY(db->exec("INSERT INTO Customer(Account,Address,Status) VALUES(5,'Hill Road 1','1'),(8,'Vale 2','1')"));
        if (kind == 2) // no statement is built: the empty statement fails like a failed lookup
            expectFailed(*prompts, Failed::Read);
        QCOMPARE(CheckUnique("Customer", field, value, kind, currentID), unique);
    }

    void customerByAccount()
    {
        QVERIFY(db->exec("INSERT INTO Customer(Account,Address,Status) VALUES(42,'A','1')"));
        QCOMPARE(GetCustomerIDByAccount("42"), 1);
        QCOMPARE(GetCustomerIDByAccount("43"), 0);
        expectFailed(*prompts, Failed::Read);
        int thrown = 0;
        try {
            GetCustomerIDByAccount("42 or 1=1");
        } catch (const VbError &e) {
            thrown = e.number();
        }
        QCOMPARE(thrown, 91);
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
        QFETCH(bool, committed);
        QFETCH(int, rowsKept);
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
                prompts->expect(QStringLiteral("更新数据库时出现系统错误，错误信息：FOREIGN KEY constraint failed"),
                                QMessageBox::Ok, true);
            if (ending != "none")
                result = tx.commit();
        }
        QVERIFY(db->exec("PRAGMA foreign_keys=OFF"));
        QCOMPARE(result, committed);
        QVERIFY(!Conn.inTransaction());
        QCOMPARE(db->count("Sale"), rowsKept);
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

    // A save takes the file at its start, so a second workstation waits for the whole save
    // instead of the two interleaving and one failing at its first write.
    void transactionHoldsTheFileFromItsStart()
    {
        Transaction tx(Conn);
        QVERIFY(tx.begun());
        {
            QSqlDatabase c = QSqlDatabase::addDatabase("QSQLITE", "other");
            c.setDatabaseName(db->path());
            c.setConnectOptions("QSQLITE_BUSY_TIMEOUT=0");
            QVERIFY(c.open());
            QSqlQuery q(c);
            QVERIFY(!q.exec("BEGIN IMMEDIATE"));
            c.close();
        }
        QSqlDatabase::removeDatabase("other");
        QVERIFY(tx.commit());
    }

    // Two workstations on one file: a writer holding the file makes the other wait, not fail.
    void twoConnectionsWaitForEachOther()
    {
        std::atomic<bool> holding{false};
        std::thread other([&] {
            {
                QSqlDatabase c = QSqlDatabase::addDatabase("QSQLITE", "other");
                c.setDatabaseName(db->path());
                if (c.open()) {
                    QSqlQuery q(c);
                    q.exec("BEGIN IMMEDIATE");
                    q.exec("INSERT INTO Call(PhoneNumber) VALUES('1')");
                    holding = true;
                    std::this_thread::sleep_for(std::chrono::milliseconds(600));
                    q.exec("COMMIT");
                    c.close();
                }
                holding = true;
            }
            QSqlDatabase::removeDatabase("other");
        });
        while (!holding)
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        // Without the wait this fails at once with "database is locked".
        const bool ok = ExecuteSql("insert into Call(PhoneNumber) values('2')");
        other.join();
        QVERIFY(ok);
        QCOMPARE(db->count("Call"), 2);
    }
};

QTEST_MAIN(TestGateway)
#include "tst_gateway.moc"
