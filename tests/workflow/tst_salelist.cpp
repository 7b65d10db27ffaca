#include "TicketFixture.h"

#include "support/Bench.h"

#include "data/Session.h"
#include "workflow/WorkflowForms.h"
#include "workflow/frmSaleAdmin.h"

#include <QDialog>
#include <QMdiArea>
#include <QMdiSubWindow>

using namespace Fixture;

namespace {
const QString NoDebt = QStringLiteral("共欠钱：0元       欠瓶：0个");

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
        auto *w = Forms::get<frmSaleAdmin>("frmSaleAdmin");
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
        auto *w = Forms::get<frmSaleAdmin>("frmSaleAdmin");
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
        auto *w = Forms::get<frmSaleAdmin>("frmSaleAdmin");
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
        auto *w = Forms::get<frmSaleAdmin>("frmSaleAdmin");
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
        auto *w = Forms::get<frmSaleAdmin>("frmSaleAdmin");
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
};

QTEST_MAIN(TestSaleList)
#include "tst_salelist.moc"
