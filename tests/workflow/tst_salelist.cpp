// The ticket lists: what they list and add up, which ticket they keep, and every operation
// their tools run on one ticket or on all open ones.
#include "TicketFixture.h"

#include "support/Bench.h"

#include "workflow/WorkflowForms.h"
#include "workflow/frmSaleAdmin.h"

#include <QDialog>

using namespace Fixture;

// Messages expected in order, with the button each is answered with.
using Script = QList<QPair<QString, QMessageBox::StandardButton>>;
Q_DECLARE_METATYPE(Script)

namespace {
constexpr auto Yes = QMessageBox::Yes;
constexpr auto No = QMessageBox::No;
constexpr auto Ok = QMessageBox::Ok;

// The figures of ticket 1 as stored: OutAmount, InMoney, InContainer.
QString figures(TestDb &db)
{
    return db.scalar("SELECT printf('%g/%g/%g', OutAmount, InMoney, InContainer) FROM Sale WHERE ID=1").toString();
}

QStringList ids(const DbGrid *grid)
{
    QStringList out;
    for (int r = 0; r < grid->model()->rowCount(); ++r)
        out << grid->model()->index(r, 0).data().toString();
    return out;
}
}

// The ticket window and the filter are stood in for by plain dialogs.
class TestSaleList : public QObject, Bench {
    Q_OBJECT
    frmSaleAdmin *list() { return Forms::get<frmSaleAdmin>("frmSaleAdmin"); }
    void expect(const Script &script)
    {
        for (const auto &[text, answer] : script)
            prompts->expect(text, answer);
    }

private slots:
    void initTestCase()
    {
        registerWorkflowForms();
        Forms::add("frmSale", [] { return new QDialog; });
        Forms::add("frmSaleFilter", [] { return new QDialog; });
        Clock::set(QDateTime(Today, QTime(10, 0)));
    }
    void init() { QVERIFY(start() && arrange(*db)); }
    void cleanup() { FINISH_BENCH(); }

    // The base list is today's tickets and every open one; totals are the database's sums over
    // that filter, with the debt line made from the footers.
    void baseListAndFooters_data()
    {
        QTest::addColumn<QList<Ticket>>("tickets");
        QTest::addColumn<QStringList>("shown");
        QTest::addColumn<QStringList>("sums"); // footers of columns 3..8, then the debt line

        QTest::newRow("empty") << QList<Ticket>{} << QStringList{}
                               << QStringList{"0", "0", "0", "0", "0", "0", "共欠钱：0元       欠瓶：0个"};
        QTest::newRow("open old, closed today, closed old hidden, orphan dropped")
            << QList<Ticket>{{1, "2025-01-05", 2, 2, 30, 10, 2, 1},
                             {2, "2026-11-23", 1, 1, 20.5, 20.5, 1, 1, "1"},
                             {3, "2026-11-20", 5, 5, 50, 50, 5, 5, "1"},
                             {4, "2026-11-23", 9, 0, 90, 0, 9, 0, "0", 77}}
            << QStringList{"2", "1"}
            << QStringList{"50.5", "30.5", "3", "3", "3", "2", "共欠钱：20元       欠瓶：1个"};
    }
    void baseListAndFooters()
    {
        QFETCH(QList<Ticket>, tickets);
        QFETCH(QStringList, shown);
        QFETCH(QStringList, sums);
        for (const Ticket &t : tickets)
            ticket(*db, t);
        auto *w = list();
        QCOMPARE(w->property("curFilterSQL").toString(),
                 QStringLiteral(" and (Sale.FinishFlag='0' or Sale.CreateDate=#2026-11-23#)"));
        QCOMPARE(ids(w->dbgMain), shown);
        QStringList footers;
        for (int c = 3; c <= 9; ++c)
            footers << w->dbgMain->footerText(c);
        QCOMPARE(footers, sums);
    }

    void refreshKeepsTheSameTicket()
    {
        ticket(*db, {1, "2026-11-23", 1, 0, 30, 0, 0, 0});
        ticket(*db, {2, "2026-11-23", 1, 0, 10, 0, 0, 0});
        auto *w = list();
        w->dbgMain->setCurrentRow(1);
        QCOMPARE(w->currentTicket(), QStringLiteral("1"));
        ticket(*db, {3, "2026-11-23", 1, 0, 20, 0, 0, 0});
        w->DataRefresh();
        QCOMPARE(ids(w->dbgMain), (QStringList{"3", "2", "1"}));
        QCOMPARE(w->currentTicket(), QStringLiteral("1"));
    }

    // Ticket 1 is ordered 3, owes 50 and 2 empties unless the row says otherwise; the figures
    // afterwards are OutAmount/InMoney/InContainer.
    void singleTicket_data()
    {
        QTest::addColumn<QString>("procedure");
        QTest::addColumn<Ticket>("t");
        QTest::addColumn<Script>("script");
        QTest::addColumn<QString>("after");

        const Ticket open{1, "2026-11-23", 3, 0, 50, 0, 2, 0};
        const Ticket partPaid{1, "2026-11-23", 3, 0, 50, 20, 2, 0};
        const Ticket overpaid{1, "2026-11-23", 3, 0, 50, 60, 2, 0};
        const Ticket closed{1, "2026-11-23", 3, 3, 50, 50, 2, 2, "1"};
        const Ticket done{1, "2026-11-23", 3, 3, 50, 50, 2, 2};
        const QString notCollectable = "该单据已经入帐或已经收款成功，不能再收款！";

        QTest::newRow("collect names the whole amount")
            << "InMoney" << partPaid << Script{{"成功收到1号单据销售款：人民币50元！", Ok}} << "0/50/0";
        QTest::newRow("collect overpaid refused") << "InMoney" << overpaid << Script{{notCollectable, Ok}} << "0/60/0";
        QTest::newRow("collect closed refused") << "InMoney" << closed << Script{{notCollectable, Ok}} << "3/50/2";
        QTest::newRow("refund yes") << "OutMoney" << partPaid << Script{{"你确认要为单据：1办理退款?", Yes}} << "0/0/0";
        QTest::newRow("refund closed refused")
            << "OutMoney" << closed << Script{{"该单据已经入帐不能再退款！", Ok}} << "3/50/2";
        QTest::newRow("deliver") << "OutAmount" << open << Script{} << "3/0/0";
        QTest::newRow("deliver closed refused") << "OutAmount" << closed << Script{{"单据已入帐！", Ok}} << "3/50/2";
        QTest::newRow("take back goods yes")
            << "InAmount" << done << Script{{"你确认要撤销原始单据号为1的单据出库吗？", Yes}} << "0/50/2";
        QTest::newRow("take back goods closed refused")
            << "InAmount" << closed << Script{{"此单据已被审核入帐，不能再重置！", Ok}} << "3/50/2";
        QTest::newRow("empties back") << "InContainer" << open << Script{} << "0/0/2";
        QTest::newRow("empties owed no")
            << "OutContainer" << done << Script{{"你确认要撤销对原始单据号为1的单据回收空瓶吗？", No}} << "3/50/2";
        QTest::newRow("empties owed yes")
            << "OutContainer" << done << Script{{"你确认要撤销对原始单据号为1的单据回收空瓶吗？", Yes}} << "3/50/0";
    }
    void singleTicket()
    {
        QFETCH(QString, procedure);
        QFETCH(Ticket, t);
        QFETCH(Script, script);
        QFETCH(QString, after);
        ticket(*db, t);
        auto *w = list();
        QCOMPARE(w->currentTicket(), QStringLiteral("1"));
        expect(script);
        QVERIFY(Forms::call(w, procedure.toLatin1().constData()));
        QCOMPARE(figures(*db), after);
    }

    // Bulk operations ignore the row and the filter: every open ticket in the table changes,
    // closed ones never.
    void bulkReachesHiddenTickets_data()
    {
        QTest::addColumn<QString>("procedure");
        QTest::addColumn<Script>("script");
        QTest::addColumn<QString>("field");
        QTest::addColumn<QList<double>>("values"); // tickets 1 (shown), 2 (hidden), 3 (closed)
        QTest::newRow("collect all")
            << "InAllMoney"
            << Script{{"你确认要为所有未入帐单据办理收款吗？", Yes}, {"所有未入帐单据收款成功！", Ok}} << "InMoney"
            << QList<double>{50, 40, 5};
        QTest::newRow("collect all, no")
            << "InAllMoney" << Script{{"你确认要为所有未入帐单据办理收款吗？", No}} << "InMoney"
            << QList<double>{0, 0, 5};
        QTest::newRow("refund all") << "OutAllMoney" << Script{{"你确认要为所有未入帐单据办理退款吗？", Yes}}
                                    << "InMoney" << QList<double>{0, 0, 5};
        QTest::newRow("deliver all") << "OutAllAmount" << Script{{"你要对所有未入库单据进行出库操作？", Yes}}
                                     << "OutAmount" << QList<double>{3, 4, 1};
        QTest::newRow("take back all") << "InAllAmount" << Script{{"你确认要搞撤销对所有未入帐单据的出库吗？", Yes}}
                                       << "OutAmount" << QList<double>{0, 0, 1};
        QTest::newRow("empties all") << "InAllContainer" << Script{{"你要对所有未入库单据进行回收空瓶操作？", Yes}}
                                     << "InContainer" << QList<double>{2, 1, 0};
        QTest::newRow("empties owed all")
            << "OutAllContainer" << Script{{"你确认要搞撤销对所有未入帐单据的空瓶回收吗？", Yes}} << "InContainer"
            << QList<double>{0, 0, 0};
    }
    void bulkReachesHiddenTickets()
    {
        QFETCH(QString, procedure);
        QFETCH(Script, script);
        QFETCH(QString, field);
        QFETCH(QList<double>, values);
        ticket(*db, {1, "2026-11-23", 3, 0, 50, 0, 2, 0});
        ticket(*db, {2, "2026-11-01", 4, 0, 40, 0, 1, 0});
        ticket(*db, {3, "2026-11-01", 1, 1, 9, 5, 1, 0, "1"});
        auto *w = list();
        w->setProperty("curFilterSQL", QStringLiteral(" and Sale.ID=1"));
        w->DataRefresh();
        QCOMPARE(w->dbgMain->model()->rowCount(), 1);

        expect(script);
        QVERIFY(Forms::call(w, procedure.toLatin1().constData()));
        QList<double> stored;
        for (int id = 1; id <= 3; ++id)
            stored << db->scalar(QStringLiteral("SELECT %1 FROM Sale WHERE ID=%2").arg(field).arg(id)).toDouble();
        QCOMPARE(stored, values);
    }

    // A statement the database refuses changes nothing and says so. With no row, an operation
    // on one ticket asks for a row first.
    void refusedStatementChangesNothing_data()
    {
        QTest::addColumn<QString>("procedure");
        QTest::addColumn<QString>("noRow"); // empty: works on every open ticket
        QTest::addColumn<bool>("asks");
        const QString pick = "请先选定要处理的单据！", pickReset = "请先选定您要重置的单据！";
        QTest::newRow("InMoney") << "InMoney" << pick << false;
        QTest::newRow("OutMoney") << "OutMoney" << pick << true;
        QTest::newRow("OutAmount") << "OutAmount" << pick << false;
        QTest::newRow("InAmount") << "InAmount" << pickReset << true;
        QTest::newRow("InContainer") << "InContainer" << pick << false;
        QTest::newRow("OutContainer") << "OutContainer" << pickReset << true;
        for (const char *all : {"InAllMoney", "OutAllMoney", "OutAllAmount", "InAllAmount", "InAllContainer",
                                "OutAllContainer"})
            QTest::newRow(all) << all << "" << true;
    }
    void refusedStatementChangesNothing()
    {
        QFETCH(QString, procedure);
        QFETCH(QString, noRow);
        QFETCH(bool, asks);
        auto *w = list();
        if (!noRow.isEmpty()) {
            prompts->expect(noRow);
            QVERIFY(Forms::call(w, procedure.toLatin1().constData()));
        }
        ticket(*db, {1, "2026-11-23", 3, 1, 50, 20, 2, 1}); // every operation would change a figure
        w->DataRefresh();
        QVERIFY(db->exec("CREATE TRIGGER refuse BEFORE UPDATE ON Sale BEGIN SELECT RAISE(ABORT, 'locked'); END"));
        w->dbgMain->setCurrentRow(0);
        if (asks)
            prompts->expect(QString(), Yes, true); // the question; its text is checked elsewhere
        expectFailed(*prompts, Failed::Update);
        QVERIFY(Forms::call(w, procedure.toLatin1().constData()));
        VERIFY_PROMPTS(*prompts);
        QCOMPARE(figures(*db), QStringLiteral("1/20/1"));
    }

    void deleteOneTicket()
    {
        auto *w = list();
        prompts->expect("请先选定您要删除或作废的单据！");
        w->DeleteData();
        ticket(*db, {1, "2026-11-23", 3, 0, 50, 0, 2, 0});
        ticket(*db, {2, "2026-11-23", 3, 0, 50, 0, 2, 0, "1"});
        w->DataRefresh();
        w->dbgMain->setCurrentRow(0); // the closed ticket 2 comes first
        prompts->expect("此单据已被审核入帐，不能再删除！");
        w->DeleteData();
        w->dbgMain->setCurrentRow(1);
        prompts->expect("你确认要删除原始单据号为1的单据吗？", Yes);
        w->DeleteData();
        QCOMPARE(db->count("Sale"), 1);
        QCOMPARE(db->count("Sale_detail", "SaleID=1"), 0);
        QCOMPARE(db->count("Sale_detail", "SaleID=2"), 1);
        QCOMPARE(w->dbgMain->model()->rowCount(), 1);
    }

    // Two questions; only Yes to both deletes, and only the open tickets with their lines.
    void deleteAll_data()
    {
        QTest::addColumn<Script>("script");
        QTest::addColumn<int>("tickets");
        QTest::addColumn<int>("lines");
        const QString first = "你确认要删除所有未入帐单据吗？？";
        const QString second = "共找到 2条未入帐单据，你确认要删除吗？";
        QTest::newRow("no at first") << Script{{first, No}} << 3 << 3;
        QTest::newRow("no at second") << Script{{first, Yes}, {second, No}} << 3 << 3;
        QTest::newRow("yes to both") << Script{{first, Yes}, {second, Yes}} << 1 << 1;
    }
    void deleteAll()
    {
        QFETCH(Script, script);
        QFETCH(int, tickets);
        QFETCH(int, lines);
        ticket(*db, {1, "2026-11-23", 3, 0, 50, 0, 2, 0});
        ticket(*db, {2, "2026-10-01", 3, 0, 50, 0, 2, 0});
        ticket(*db, {3, "2026-11-23", 3, 3, 50, 50, 2, 2, "1"});
        auto *w = list();
        // A ticket saved elsewhere since the last refresh shows up after either answer.
        ticket(*db, {4, "2026-11-23", 1, 1, 1, 1, 0, 0, "1"});
        expect(script);
        w->DeleteAll();
        VERIFY_PROMPTS(*prompts);
        QCOMPARE(db->count("Sale", "ID<>4"), tickets);
        QCOMPARE(db->count("Sale_detail", "SaleID<>4"), lines);
        QVERIFY(!Conn.inTransaction());
        QCOMPARE(w->dbgMain->model()->rowCount(), tickets + 1);
    }
};

QTEST_MAIN(TestSaleList)
#include "tst_salelist.moc"
