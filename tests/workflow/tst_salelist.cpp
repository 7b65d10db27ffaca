// The ticket lists: what they show and colour, how they sort, refresh and open tickets, and
// every operation their tools run on one ticket or on all open ones.
#include "TicketFixture.h"

#include "support/Bench.h"

#include "data/Session.h"
#include "workflow/WorkflowForms.h"
#include "workflow/frmSaleAdmin.h"

#include <QDialog>
#include <QMdiArea>
#include <QMdiSubWindow>

using namespace Fixture;

// Messages expected in order, with the button each is answered with.
using Script = QList<QPair<QString, QMessageBox::StandardButton>>;
Q_DECLARE_METATYPE(Script)

namespace {
const QString NoDebt = QStringLiteral("共欠钱：0元       欠瓶：0个");
constexpr auto Yes = QMessageBox::Yes;
constexpr auto No = QMessageBox::No;
constexpr auto Ok = QMessageBox::Ok;

// The figures of ticket 1 as stored: OutAmount, InMoney, InContainer.
QString figures(TestDb &db)
{
    return QStringLiteral("%1/%2/%3")
        .arg(db.scalar("SELECT OutAmount FROM Sale WHERE ID=1").toDouble())
        .arg(db.scalar("SELECT InMoney FROM Sale WHERE ID=1").toDouble())
        .arg(db.scalar("SELECT InContainer FROM Sale WHERE ID=1").toDouble());
}

QStringList ids(const DbGrid *grid)
{
    QStringList out;
    for (int r = 0; r < grid->model()->rowCount(); ++r)
        out << grid->model()->index(r, 0).data().toString();
    return out;
}

QStringList footers(const DbGrid *grid)
{
    QStringList out;
    for (int c = 0; c < grid->columnCount(); ++c)
        out << grid->footerText(c);
    return out;
}
}

// The ticket window and the filter are stood in for by plain dialogs: the list writes
// mActionType and mCurID as dynamic properties, which the test reads back.
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
    void cleanup()
    {
        setToolStateHandler(nullptr);
        Forms::setActiveChildProvider(nullptr);
        FINISH_BENCH();
    }

    // The base list is today's tickets and every open one; totals are the database's sums over
    // that filter, with the debt line made from the footers.
    void baseListAndFooters_data()
    {
        QTest::addColumn<QList<Ticket>>("tickets");
        QTest::addColumn<QStringList>("shown");
        QTest::addColumn<QStringList>("sums"); // footers of columns 3..8
        QTest::addColumn<QString>("debt");

        QTest::newRow("empty") << QList<Ticket>{} << QStringList{} << QStringList{"0", "0", "0", "0", "0", "0"}
                               << NoDebt;
        QTest::newRow("open old, closed today, closed old hidden, orphan dropped")
            << QList<Ticket>{{1, "2025-01-05", 2, 2, 30, 10, 2, 1},
                             {2, "2026-11-23", 1, 1, 20.5, 20.5, 1, 1, "1"},
                             {3, "2026-11-20", 5, 5, 50, 50, 5, 5, "1"},
                             {4, "2026-11-23", 9, 0, 90, 0, 9, 0, "0", 77}}
            << QStringList{"2", "1"} << QStringList{"50.5", "30.5", "3", "3", "3", "2"}
            << QStringLiteral("共欠钱：20元       欠瓶：1个");
    }
    void baseListAndFooters()
    {
        QFETCH(QList<Ticket>, tickets);
        QFETCH(QStringList, shown);
        QFETCH(QStringList, sums);
        QFETCH(QString, debt);
        for (const Ticket &t : tickets)
            ticket(*db, t);
        auto *w = list();
        QCOMPARE(w->property("curFilterSQL").toString(),
                 QStringLiteral(" and (Sale.FinishFlag='0' or Sale.CreateDate=#2026-11-23#)"));
        QCOMPARE(ids(w->dbgMain), shown);
        QCOMPARE(footers(w->dbgMain).mid(3, 6), sums);
        QCOMPARE(w->dbgMain->footerText(9), debt);
    }

    // A new search without conditions lists everything with blank numeric footers.
    void newSearchWithoutConditionsBlanksFooters()
    {
        ticket(*db, {1, "2026-11-23", 2, 0, 30, 0, 2, 0});
        ticket(*db, {2, "2020-01-01", 2, 2, 30, 30, 2, 2, "1"});
        auto *w = list();
        Forms::setActiveChildProvider([w] { return w; });
        ModalScript modals;
        modals.on("frmSaleFilter", [](QWidget *dlg) {
            Forms::activeChild()->setProperty("curFilterSQL", QString());
            static_cast<QDialog *>(dlg)->accept();
        });
        w->ShowFilter();
        VERIFY_MODALS(modals);
        QCOMPARE(ids(w->dbgMain), (QStringList{"2", "1"}));
        QCOMPARE(footers(w->dbgMain).mid(3, 6), QStringList(6, QString()));
        QCOMPARE(w->dbgMain->footerText(9), NoDebt);
        QVERIFY(!w->GetColTotalValue(3).isValid());
    }

    // Blue while something the window looks after is outstanding, grey once closed.
    void rowColours_data()
    {
        QTest::addColumn<QString>("form");
        QTest::addColumn<Ticket>("t");
        QTest::addColumn<QColor>("text");
        QTest::addColumn<QColor>("back");
        const QColor blue(0, 0, 255), grey(224, 224, 224), none;
        const Ticket owesMoneyDelivered{1, "2026-11-23", 2, 2, 30, 10, 2, 2};
        const Ticket owesEmpties{1, "2026-11-23", 2, 2, 30, 30, 2, 1};
        const Ticket settled{1, "2026-11-23", 2, 2, 30, 30, 2, 2};
        const Ticket closed{1, "2026-11-23", 2, 2, 30, 30, 2, 2, "1"};
        const Ticket closedOwing{1, "2026-11-23", 2, 2, 30, 0, 2, 2, "1"};
        QTest::newRow("sale list, money owed") << "frmSaleAdmin" << owesMoneyDelivered << blue << none;
        QTest::newRow("money list, money owed") << "frmMoneyAdmin" << owesMoneyDelivered << blue << none;
        QTest::newRow("delivery list, money owed") << "frmAmountAdmin" << owesMoneyDelivered << none << none;
        QTest::newRow("money list, empties owed") << "frmMoneyAdmin" << owesEmpties << none << none;
        QTest::newRow("empties list, empties owed") << "frmContainerAdmin" << owesEmpties << blue << none;
        QTest::newRow("settled") << "frmSaleAdmin" << settled << none << none;
        QTest::newRow("closed") << "frmSaleAdmin" << closed << none << grey;
        QTest::newRow("closed but owing stays blue") << "frmSaleAdmin" << closedOwing << blue << none;
    }
    void rowColours()
    {
        QFETCH(QString, form);
        QFETCH(Ticket, t);
        QFETCH(QColor, text);
        QFETCH(QColor, back);
        ticket(*db, t);
        auto *w = qobject_cast<SaleListWindow *>(Forms::get(form));
        QVERIFY(w);
        QCOMPARE(w->dbgMain->model()->rowCount(), 1);
        const RowStyle style = w->dbgMain->rowStyle(0);
        QCOMPARE(style.foreground, text);
        QCOMPARE(style.background, back);
    }

    // One direction for the whole window: head 0 twice, then head 3, sorts up, down, up.
    void sortDirectionIsShared()
    {
        ticket(*db, {1, "2026-11-23", 1, 0, 30, 0, 0, 0});
        ticket(*db, {2, "2026-11-23", 1, 0, 10, 0, 0, 0});
        ticket(*db, {3, "2026-11-23", 1, 0, 20, 0, 0, 0});
        auto *w = list();
        QCOMPARE(ids(w->dbgMain), (QStringList{"3", "2", "1"}));

        struct Step { int head; QString sql; QStringList order; int mark; };
        const QList<Step> steps{{0, " ORDER BY Sale.ID Asc", {"1", "2", "3"}, 1},
                                {0, " ORDER BY Sale.ID Desc", {"3", "2", "1"}, 0},
                                {3, " ORDER BY TotalMoney Asc", {"2", "3", "1"}, 1}};
        for (const Step &s : steps) {
            emit w->dbgMain->HeadClick(s.head);
            QCOMPARE(w->property("curSortSQL").toString(), s.sql);
            QCOMPARE(ids(w->dbgMain), s.order);
            QCOMPARE(w->dbgMain->sortMarkColumn(), s.head);
            QCOMPARE(w->dbgMain->sortMarkDirection(), s.mark);
        }
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
        // When the ticket is gone the cursor stays at its place, here the last row.
        QVERIFY(db->exec("DELETE FROM Sale WHERE ID=1"));
        w->DataRefresh();
        QCOMPARE(w->currentTicket(), QStringLiteral("2"));
    }

    // Closed tickets open for reading, open ones for editing; the clerk lists only read.
    void openingTickets_data()
    {
        QTest::addColumn<QString>("form");
        QTest::addColumn<QString>("finish");
        QTest::addColumn<int>("mode");
        QTest::newRow("sale list, open") << "frmSaleAdmin" << "0" << 2;
        QTest::newRow("sale list, closed") << "frmSaleAdmin" << "1" << 0;
        QTest::newRow("money list, open") << "frmMoneyAdmin" << "0" << 0;
    }
    void openingTickets()
    {
        QFETCH(QString, form);
        QFETCH(QString, finish);
        QFETCH(int, mode);
        ticket(*db, {7, "2026-11-23", 1, 0, 30, 0, 0, 0, finish});
        auto *w = qobject_cast<SaleListWindow *>(Forms::get(form));
        int shownMode = -1, id = -1;
        ModalScript modals;
        modals.on("frmSale", [&](QWidget *dlg) {
            shownMode = dlg->property("mActionType").toInt();
            id = dlg->property("mCurID").toInt();
            static_cast<QDialog *>(dlg)->reject();
        });
        w->EditData();
        VERIFY_MODALS(modals);
        QCOMPARE(shownMode, mode);
        QCOMPARE(id, 7);

        // With no row, the double click asks for one and opens nothing.
        QVERIFY(db->exec("DELETE FROM Sale"));
        w->DataRefresh();
        prompts->expect("请先选定您要编辑的记录！");
        emit w->dbgMain->DblClick();
    }

    // Without automatic refresh the sale list shows a saved ticket only on request; the clerk
    // lists refresh after the ticket window whatever the setting.
    void addNewRefreshRule_data()
    {
        QTest::addColumn<QString>("form");
        QTest::addColumn<bool>("autoOn");
        QTest::addColumn<int>("rows");
        QTest::newRow("sale list, auto on") << "frmSaleAdmin" << true << 1;
        QTest::newRow("sale list, auto off") << "frmSaleAdmin" << false << 0;
        QTest::newRow("money list, auto off") << "frmMoneyAdmin" << false << 1;
    }
    void addNewRefreshRule()
    {
        QFETCH(QString, form);
        QFETCH(bool, autoOn);
        QFETCH(int, rows);
        autoRefresh(autoOn);
        auto *w = qobject_cast<SaleListWindow *>(Forms::get(form));
        ModalScript modals;
        modals.on("frmSale", [&](QWidget *dlg) {
            QCOMPARE(dlg->property("mActionType").toInt(), 1);
            ticket(*db, {1, "2026-11-23", 1, 0, 30, 0, 0, 0});
            static_cast<QDialog *>(dlg)->accept();
        });
        w->AddNew();
        VERIFY_MODALS(modals);
        QCOMPARE(w->dbgMain->model()->rowCount(), rows);
    }

    void homeWindowRefusesToClose()
    {
        auto *w = list();
        Session::SaleAdminClosable = false;
        QVERIFY(!w->close());
        Session::SaleAdminClosable = true;
        QVERIFY(w->close());
        Session::SaleAdminClosable = false;
    }

    // A clerk list lives only while in front: bringing another child forward unloads it, and
    // the next visit starts with the base filter again. Each activation names the window.
    void clerkListForgetsItsFilterWhenLeft()
    {
        QStringList toolStates;
        setToolStateHandler([&](const QString &name) { toolStates << name; });
        QMdiArea area;
        area.resize(800, 600);
        area.show();
        QMdiSubWindow *home = area.addSubWindow(Forms::get("frmSaleAdmin"));
        home->show();
        auto *money = Forms::get("frmMoneyAdmin");
        QMdiSubWindow *moneyFrame = area.addSubWindow(money);
        moneyFrame->show();
        area.setActiveSubWindow(moneyFrame);
        money->setProperty("curFilterSQL", QStringLiteral(" and Sale.ID=1"));

        QPointer<QWidget> gone(money);
        area.setActiveSubWindow(home);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(gone.isNull());
        QVERIFY(!Forms::loaded("frmMoneyAdmin"));
        QVERIFY(toolStates.contains("frmMoneyAdmin"));
        QCOMPARE(toolStates.last(), QStringLiteral("frmSaleAdmin"));
        QVERIFY(Forms::get("frmMoneyAdmin")->property("curFilterSQL").toString().startsWith(" and (Sale.FinishFlag='0'"));
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
        const Ticket oddFlag{1, "2026-11-23", 3, 0, 50, 20, 2, 0, "x"};
        const Ticket done{1, "2026-11-23", 3, 3, 50, 50, 2, 2};
        const QString notCollectable = "该单据已经入帐或已经收款成功，不能再收款！";

        QTest::newRow("collect names the whole amount")
            << "InMoney" << partPaid << Script{{"成功收到1号单据销售款：人民币50元！", Ok}} << "0/50/0";
        QTest::newRow("collect overpaid refused") << "InMoney" << overpaid << Script{{notCollectable, Ok}} << "0/60/0";
        QTest::newRow("collect closed refused") << "InMoney" << closed << Script{{notCollectable, Ok}} << "3/50/2";
        QTest::newRow("refund yes") << "OutMoney" << partPaid << Script{{"你确认要为单据：1办理退款?", Yes}} << "0/0/0";
        QTest::newRow("refund closed refused")
            << "OutMoney" << closed << Script{{"该单据已经入帐不能再退款！", Ok}} << "3/50/2";
        QTest::newRow("refund odd flag runs") << "OutMoney" << oddFlag << Script{{"你确认要为单据：1办理退款?", Yes}}
                                              << "0/0/0";
        QTest::newRow("deliver") << "OutAmount" << open << Script{} << "3/0/0";
        QTest::newRow("deliver again is silent") << "OutAmount" << done << Script{} << "3/50/2";
        QTest::newRow("deliver closed refused") << "OutAmount" << closed << Script{{"单据已入帐！", Ok}} << "3/50/2";
        QTest::newRow("deliver odd flag refused") << "OutAmount" << oddFlag << Script{{"单据已入帐！", Ok}} << "0/20/0";
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
        // The list shows what the database now holds.
        QCOMPARE(QStringLiteral("%1/%2/%3").arg(w->dbgMain->model()->index(0, 6).data().toString(),
                                                w->dbgMain->model()->index(0, 4).data().toString(),
                                                w->dbgMain->model()->index(0, 8).data().toString()),
                 after);
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

    // The guards of each operation. With no row, one on a single ticket asks for a row. A
    // statement the database refuses: some operations leave the list as it was, others run it
    // again anyway. Questions carry their own titles and the question icon, Yes as the default.
    void guards_data()
    {
        QTest::addColumn<QString>("procedure");
        QTest::addColumn<QString>("noRowTitle"); // empty: works on every open ticket
        QTest::addColumn<QString>("noRowText");
        QTest::addColumn<QString>("askTitle"); // empty: no question
        QTest::addColumn<bool>("refreshed");
        const QString pick = "请先选定要处理的单据！", pickReset = "请先选定您要重置的单据！";
        QTest::newRow("InMoney") << "InMoney" << "收款失败" << pick << "" << false;
        QTest::newRow("OutMoney") << "OutMoney" << "退款失败" << pick << "退款" << false;
        QTest::newRow("OutAmount") << "OutAmount" << "提示" << pick << "" << false;
        QTest::newRow("InAmount") << "InAmount" << "提示" << pickReset << "删除单据" << true;
        QTest::newRow("InContainer") << "InContainer" << "提示" << pick << "" << true;
        QTest::newRow("OutContainer") << "OutContainer" << "提示" << pickReset << "删除单据" << true;
        QTest::newRow("InAllMoney") << "InAllMoney" << "" << "" << "收款" << true;
        QTest::newRow("OutAllMoney") << "OutAllMoney" << "" << "" << "退款" << true;
        QTest::newRow("OutAllAmount") << "OutAllAmount" << "" << "" << "出库" << false;
        QTest::newRow("InAllAmount") << "InAllAmount" << "" << "" << "撤销" << true;
        QTest::newRow("InAllContainer") << "InAllContainer" << "" << "" << "回收空瓶" << false;
        QTest::newRow("OutAllContainer") << "OutAllContainer" << "" << "" << "撤销" << true;
    }
    void guards()
    {
        QFETCH(QString, procedure);
        QFETCH(QString, noRowTitle);
        QFETCH(QString, noRowText);
        QFETCH(QString, askTitle);
        QFETCH(bool, refreshed);
        auto *w = list();
        if (!noRowText.isEmpty()) {
            prompts->expect(noRowText);
            QVERIFY(Forms::call(w, procedure.toLatin1().constData()));
            VERIFY_PROMPTS(*prompts);
            QCOMPARE(prompts->last().title, noRowTitle);
            QCOMPARE(prompts->last().icon, QMessageBox::Information);
            prompts->clear();
        }

        ticket(*db, {1, "2026-11-23", 3, 0, 50, 20, 2, 0});
        w->DataRefresh();
        // Saved elsewhere after the list ran: it shows only if the list runs again.
        ticket(*db, {2, "2026-11-23", 3, 0, 50, 0, 2, 0});
        QVERIFY(db->exec("CREATE TRIGGER refuse BEFORE UPDATE ON Sale BEGIN SELECT RAISE(ABORT, 'locked'); END"));
        w->dbgMain->setCurrentRow(0);
        if (!askTitle.isEmpty())
            prompts->expect(QString(), Yes, true); // the question; its text is checked elsewhere
        prompts->expect(QStringLiteral("更新数据库时出现系统错误，错误信息："), Ok, true);
        QVERIFY(Forms::call(w, procedure.toLatin1().constData()));
        VERIFY_PROMPTS(*prompts);
        if (!askTitle.isEmpty()) {
            const ScriptedPrompter::Shown &ask = prompts->shown().first();
            QCOMPARE(ask.title, askTitle);
            QCOMPARE(ask.icon, QMessageBox::Question);
            QCOMPARE(ask.buttons, QMessageBox::Yes | QMessageBox::No);
            QCOMPARE(ask.defaultButton, QMessageBox::Yes);
        }
        QCOMPARE(prompts->last().title, QStringLiteral("系统错误"));
        QCOMPARE(db->scalar("SELECT InMoney FROM Sale WHERE ID=1").toDouble(), 20.0);
        QCOMPARE(w->dbgMain->model()->rowCount(), refreshed ? 2 : 1);
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
        if (script.size() == 2)
            QCOMPARE(prompts->last().icon, QMessageBox::Critical);
    }
};

QTEST_MAIN(TestSaleList)
#include "tst_salelist.moc"
