#include "data/Database.h"
#include "data/Gateway.h"
#include "data/Session.h"
#include "platform/Clock.h"
#include "report/PeriodClosing.h"
#include "report/ShopGenerator.h"
#include "support/Rows.h"

#include <QProcess>
#include <QRandomGenerator>
#include <QSqlQuery>
#include <QtTest>

namespace {
// Ticket id, date, then amount/delivered, money/paid, bottles/returned; lines: 水 (1) with
// its bottle 空瓶 (3) when the ticket has bottles. A ticket of bottles alone has amount 0.
struct Ticket {
    int id;
    QString date;
    double amount, out, money, in, bottles, back;
    QString finish = QStringLiteral("0");
};

const QString Ask = QStringLiteral("你确认要将%1之前的所有单据吗，结转后的单据将不能修改？");
const QString Confirm = QStringLiteral("系统准备结转本期单据，请再次确认是否要结帐？");
const QString Undelivered = QStringLiteral("系统发现有%1张未出库或未完全出库的单据，如果确认要结帐，这些单据将被删除。继续吗？");
const QString Owing = QStringLiteral("系统发现有%1张欠费的单据，这些单据将不会被结转入库，继续吗？");
const QString Lacking = QStringLiteral("系统发现有%1张欠瓶的单据，这些单据将不会被结转入库，继续吗？");
const QString Closed = QStringLiteral("成功进行%1 张有效单据入帐！");
const QString Failure = QStringLiteral("结帐时出现系统错误，结帐失败:");
}
Q_DECLARE_METATYPE(QList<Ticket>)

// The closing, driven through its questions, over tickets written straight into a fresh
// database; and a closing killed part way leaves its file whole.
class TestClosing : public QObject {
    Q_OBJECT
    std::unique_ptr<TestDb> m_db;
    std::unique_ptr<ScriptedPrompter> m_prompts;

    void add(const Ticket &t)
    {
        QVERIFY(m_db->exec(QStringLiteral("INSERT INTO Sale(ID,CustomerID,SenderID,UserID,TotalAmount,OutAmount,TotalMoney,"
                                          "InMoney,TotalContainer,InContainer,TransferFee,CreateDate,FinishFlag,StationID) "
                                          "VALUES(%1,1,1,1,%2,%3,%4,%5,%6,%7,0,'%8','%9',1)")
                               .arg(t.id).arg(t.amount).arg(t.out).arg(t.money).arg(t.in).arg(t.bottles).arg(t.back)
                               .arg(t.date, t.finish)));
        if (t.amount > 0)
            QVERIFY(m_db->exec(QStringLiteral("INSERT INTO Sale_detail VALUES(%1,1,10,%2,%3,'0')")
                                   .arg(t.id).arg(t.amount).arg(t.money)));
        if (t.bottles > 0)
            QVERIFY(m_db->exec(QStringLiteral("INSERT INTO Sale_detail VALUES(%1,3,0,%2,0,'1')").arg(t.id).arg(t.bottles)));
    }

    // Each ticket as id=flag ('-' when deleted, its lines with it), then each generated
    // voucher as paper id:lines.
    QString state() const
    {
        QStringList out;
        QSqlQuery q(Database::connection());
        q.exec("SELECT ID, FinishFlag, (SELECT count(*) FROM Sale_detail WHERE SaleID=Sale.ID) FROM Sale ORDER BY ID");
        while (q.next())
            out << QStringLiteral("%1=%2").arg(q.value(0).toString(), q.value(1).toString());
        out << QStringLiteral("lines %1").arg(m_db->count("Sale_detail", "SaleID NOT IN (SELECT ID FROM Sale)"));
        q.exec("SELECT PaperID, (SELECT count(*) FROM Store_detail WHERE StoreID=Store.ID) FROM Store "
               "WHERE HandInput='0' ORDER BY ID");
        while (q.next())
            out << QStringLiteral("%1:%2").arg(q.value(0).toString(), q.value(1).toString());
        return out.join(' ');
    }

    static QList<Ticket> mixed()
    {
        return {
            {1, "2026-11-20", 2, 2, 20, 20, 2, 2},      // settled: closes
            {2, "2026-11-20", 2, 2, 20, 15, 2, 2},      // owes money: stays
            {3, "2026-11-21", 2, 2, 20, 20, 2, 1},      // owes a bottle: stays
            {4, "2026-11-21", 2, 2, 20, 25, 0, 0},      // overpaid: stays, never counted
            {5, "2026-11-22", 2, 1, 20, 20, 0, 0},      // partly delivered, paid: deleted
            {6, "2026-11-24", 1, 1, 10, 10, 0, 0},      // after the cut-off
            {7, "2026-11-01", 1, 1, 10, 10, 0, 0, "1"}, // finished before
            {8, "2026-11-22", 0, 0, 0, 0, 3, 3},        // bottles only: a voucher of no lines
        };
    }

private slots:
    void init()
    {
        m_db = std::make_unique<TestDb>();
        QVERIFY(m_db->ok());
        m_prompts = std::make_unique<ScriptedPrompter>();
        Clock::set(QDateTime(QDate(2026, 11, 23), QTime(9, 0)));
        Session::UserID = 3;
        QVERIFY(m_db->exec("INSERT INTO Product(ID,Name,Status,IsContainer,ContainerID) VALUES"
                           "(1,'水','1','0',3),(3,'空瓶','1','1',0)"));
        QVERIFY(m_db->exec("INSERT INTO Store(ID,PaperID,CreateDate,TotalAmount,TotalMoney,UserID,Direction,HandInput,"
                           "FinishFlag,StationID) VALUES(100,'J1','2026-12-01',100,600,1,'0','1','0',1)"));
        QVERIFY(m_db->exec("INSERT INTO Store_detail VALUES(100,1,6,100,600)"));
    }
    void cleanup()
    {
        VERIFY_PROMPTS(*m_prompts);
        m_prompts.reset();
        m_db.reset();
        Clock::reset();
    }

    void closing_data()
    {
        QTest::addColumn<QList<Ticket>>("tickets");
        QTest::addColumn<QStringList>("script"); // input, then each message; "No:" answers No
        QTest::addColumn<QString>("after");      // state(), or "" for unchanged
        const QString all = QString(Ask).arg("11-22-2026");
        QTest::newRow("nothing to close") << QList<Ticket>{} << QStringList{"11-22-2026", all, Confirm, Closed.arg(0)}
                                          << "lines 0";
        QTest::newRow("one of each")
            << mixed()
            << QStringList{"11-22-2026", all, Undelivered.arg(1), Owing.arg(1), Lacking.arg(1), Confirm, Closed.arg(2)}
            << "1=1 2=0 3=0 4=0 6=0 7=1 8=1 lines 0 1:1 8:0";
        QTest::newRow("No at the last question")
            << mixed()
            << QStringList{"11-22-2026", all, Undelivered.arg(1), Owing.arg(1), Lacking.arg(1), "No:" + Confirm}
            << "";
        QTest::newRow("No at the deletion warning")
            << mixed() << QStringList{"11-22-2026", all, "No:" + Undelivered.arg(1)} << "";
        QTest::newRow("cancelled") << mixed() << QStringList{"cancel"} << "";
        QTest::newRow("a date that reaches out")
            << mixed()
            << QStringList{"01-01-2000# or 1=1 or #01-01-2000", QString(Ask).arg("01-01-2000# or 1=1 or #01-01-2000"),
                           "read:"}
            << "";
    }
    void closing()
    {
        QFETCH(QList<Ticket>, tickets);
        QFETCH(QStringList, script);
        QFETCH(QString, after);
        for (const Ticket &t : tickets)
            add(t);
        const QString before = state();

        const QString typed = script.takeFirst();
        m_prompts->expectInput(typed == "cancel" ? std::nullopt : std::optional<QString>(typed));
        for (const QString &text : script) {
            if (text == "read:")
                expectFailed(*m_prompts, Failed::Read);
            else if (text.startsWith("No:"))
                m_prompts->expect(text.mid(3), QMessageBox::No);
            else
                m_prompts->expect(text, text.startsWith("成功") ? QMessageBox::Ok : QMessageBox::Yes);
        }
        const std::optional<int> closed = PeriodClosing().FinishToday();
        QCOMPARE(state(), after.isEmpty() ? before : after);
        QCOMPARE(closed.has_value(), !script.isEmpty() && script.last().startsWith("成功"));
        // Every voucher ends finished, the hand-made one of a later date too.
        QCOMPARE(m_db->count("Store", "FinishFlag='1'"), closed ? m_db->count("Store") : 0);
        if (!closed || tickets.isEmpty())
            return;
        // The voucher of ticket 1: its number, date and totals, the operator of the session,
        // generated, out, finished, and no station; its goods line without the bottle.
        QCOMPARE(m_db->scalar("SELECT PaperID||'|'||CreateDate||'|'||TotalAmount||'|'||TotalMoney||'|'||Detail||'|'||"
                              "UserID||'|'||HandInput||Direction||FinishFlag||'|'||ifnull(StationID,'none')||'|'||"
                              "(SELECT group_concat(ProductID||'x'||MyAmount||'@'||Price||'='||MyMoney) FROM "
                              "Store_detail WHERE StoreID=Store.ID) FROM Store WHERE PaperID='1'").toString(),
                 QStringLiteral("1|2026-11-20|2.0|20.0|根据销售单自动生成|3|011|none|1x2.0@10.0=20.0"));
    }

    void failures_data()
    {
        QTest::addColumn<QString>("trigger");
        QTest::addColumn<QString>("gateway"); // the gateway's own message first, if any
        QTest::addColumn<QString>("closing"); // then the closing's
        // Finishing a ticket goes through its result set, outside the gateway: rolled back.
        QTest::newRow("finishing a ticket fails")
            << "BEFORE UPDATE ON Sale BEGIN SELECT RAISE(ABORT,'盘点锁定'); END" << "" << Failure;
        // A line delete that fails undoes the closing with no word of its own.
        QTest::newRow("deleting lines fails")
            << "BEFORE DELETE ON Sale_detail BEGIN SELECT RAISE(ABORT,'盘点锁定'); END" << Failed::Update << "";
    }
    void failures()
    {
        QFETCH(QString, trigger);
        QFETCH(QString, gateway);
        QFETCH(QString, closing);
        for (const Ticket &t : mixed())
            add(t);
        QVERIFY(m_db->exec("CREATE TRIGGER refuse " + trigger));
        const QString before = state();
        m_prompts->expectInput("11-22-2026").expect(QString(Ask).arg("11-22-2026"), QMessageBox::Yes);
        m_prompts->expect(Undelivered.arg(1), QMessageBox::Yes).expect(Owing.arg(1), QMessageBox::Yes);
        m_prompts->expect(Lacking.arg(1), QMessageBox::Yes).expect(Confirm, QMessageBox::Yes);
        if (!gateway.isEmpty())
            m_prompts->expect(gateway, QMessageBox::Ok, true);
        if (!closing.isEmpty())
            m_prompts->expect(closing, QMessageBox::Ok, true);
        QCOMPARE(PeriodClosing().FinishToday(), std::nullopt);
        QVERIFY(m_prompts->last().text.contains("盘点锁定"));
        QCOMPARE(state(), before);
        QCOMPARE(m_db->count("Store", "FinishFlag='1'"), 0);
        QVERIFY(!Conn.inTransaction());
    }

    // The file holds the whole closing or none of it, wherever the program dies.
    void killedPartWay()
    {
        m_db.reset(); // a shop of its own, without the rows of init()
        m_db = std::make_unique<TestDb>();
        const ShopGenerator::Size size{.days = 4, .ticketsPerDay = 100, .customers = 50, .products = 8, .workers = 3,
                                       .openDays = 4};
        QString error;
        QVERIFY2(ShopGenerator::fill(size, &error), qPrintable(error));
        Database::close();
        const QString original = m_db->path();
        // The file's soundness and what it holds of tickets, vouchers and their lines.
        auto fingerprint = [this](const QString &file) {
            QString error;
            if (!Database::open(file, &error))
                return "cannot open: " + error;
            const QString print = m_db->scalar("PRAGMA integrity_check").toString() + ' '
                + m_db->scalar("SELECT (SELECT count(*) FROM Sale)||' '||(SELECT count(*) FROM Sale_detail)||' '||"
                               "(SELECT count(*) FROM Store)||' '||(SELECT count(*) FROM Store_detail)||' '||"
                               "(SELECT count(*) FROM Sale WHERE FinishFlag='1')||' '||(SELECT count(*) FROM Store "
                               "WHERE FinishFlag='1')||' '||(SELECT total(MyAmount) FROM Store_detail)").toString();
            Database::close();
            return print;
        };
        auto copyOf = [&](const QString &name) {
            const QString file = m_db->folder() + '/' + name;
            return QFile::copy(original, file) ? file : QString();
        };
        auto start = [](QProcess &helper, const QString &file) {
            helper.start(CLOSING_KILL_HELPER, {file, "11-23-2026"});
            return helper.waitForStarted() && helper.waitForReadyRead(60000)
                   && helper.readLine().trimmed() == "begin";
        };

        const QString none = fingerprint(original);
        const QString whole = copyOf("whole.mdb");
        QProcess helper;
        QVERIFY(start(helper, whole));
        QElapsedTimer duration;
        duration.start();
        QVERIFY(helper.waitForFinished(60000));
        const qint64 took = qMax<qint64>(duration.elapsed(), 1);
        QVERIFY(helper.readAll().startsWith("done "));
        const QString all = fingerprint(whole);
        QVERIFY2(all.startsWith("ok ") && none.startsWith("ok ") && all != none, qPrintable(all + " / " + none));

        for (int run = 0; run < 5; ++run) {
            const QString file = copyOf(QStringLiteral("killed%1.mdb").arg(run));
            QProcess victim;
            QVERIFY(start(victim, file));
            QTest::qSleep(int(QRandomGenerator::global()->bounded(took + 1)));
            victim.kill();
            QVERIFY(victim.waitForFinished(10000));
            const QString found = fingerprint(file);
            QVERIFY2(found == none || found == all, qPrintable(found + "\nnone: " + none + "\nall:  " + all));
        }
    }
};

QTEST_MAIN(TestClosing)
#include "tst_closing.moc"
