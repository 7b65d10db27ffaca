// The today report window and its options dialog over a small shop: the figures of the
// chosen day, the titles on screen and on paper, the bar moving, the window going when the
// operator turns to another list; and the end of a ticket's road through the real windows.
#include "support/ModalScript.h"
#include "support/Rows.h"
#include "workflow/TicketFixture.h"

#include "data/Session.h"
#include "master/CustomerForms.h"
#include "platform/DbGrid.h"
#include "platform/Forms.h"
#include "report/TodayForms.h"
#include "report/frmTodayReport.h"
#include "sale/TicketForms.h"
#include "workflow/WorkflowForms.h"

#include <QLineEdit>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QProgressBar>
#include <QPushButton>
#include <QtTest>

namespace {
// Water (1) and its bucket (3), one worker and a customer.
void smallShop(TestDb &db)
{
    QVERIFY(db.exec("UPDATE Station SET Name='东城站' WHERE ID=1"));
    QVERIFY(db.exec("INSERT INTO Product(ID,Name,Unit,Status,IsContainer,ContainerID,Price) VALUES "
                    "(1,'纯净水','桶','1','0',3,10),(3,'空桶','个','1','1',0,0)"));
    QVERIFY(db.exec("INSERT INTO Sender(ID,Name,Status,Price,StationID) VALUES (1,'张三','1',5,1)"));
    QVERIFY(Rows::customer(db, 1, QStringLiteral("东街1号")));
}

// Types the day into the options dialog and starts the stock-take.
ModalScript::Handler startWith(const QString &date)
{
    return [date](QWidget *dialog) {
        QVERIFY(ModalScript::type(dialog, QStringLiteral("txtDate"), date));
        QVERIFY(ModalScript::click(dialog, QStringLiteral("btnOk")));
    };
}

QString cell(QWidget *report, int row, int column)
{
    auto *w = qobject_cast<frmTodayReport *>(report);
    return w ? w->dbgMain->model()->index(row, column).data().toString() : QStringLiteral("no report");
}

// The last grid row whose item ends with text (the stock section comes last); -1 with none.
int lastRowOf(QWidget *report, const QString &text)
{
    auto *w = qobject_cast<frmTodayReport *>(report);
    for (int r = w ? w->dbgMain->model()->rowCount() - 1 : -1; r >= 0; --r)
        if (cell(w, r, 0).endsWith(text))
            return r;
    return -1;
}
}

class TestTodayWindow : public QObject {
    Q_OBJECT
    std::unique_ptr<TestDb> db;

    // The window over the small shop with a ticket on the 20th and on the day itself, both
    // delivered and paid; the handler plays the options dialog it opens with.
    frmTodayReport *open(ModalScript &modals, ModalScript::Handler options)
    {
        Fixture::ticket(*db, {1, "2026-11-20", 3, 3, 30, 30, 0, 0});
        Fixture::ticket(*db, {2, "2026-11-23", 2, 2, 20, 20, 0, 0});
        modals.on("frmSetTodayReport", std::move(options));
        return Forms::get<frmTodayReport>("frmTodayReport");
    }

private slots:
    void initTestCase() { registerTodayForms(); }
    void init()
    {
        Clock::set(QDateTime(Fixture::Today, QTime(18, 0)));
        db = std::make_unique<TestDb>();
        QVERIFY(db->ok());
        smallShop(*db);
    }
    void cleanup()
    {
        Forms::unloadAll();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        db.reset();
    }

    void dayFigures_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("sold"); // amount|money
        QTest::addColumn<QString>("waterSold");
        QTest::addColumn<QString>("waterStock");
        // The stock counts every open delivered ticket up to the day, not later ones.
        QTest::newRow("today") << "11-23-2026" << "2|￥20.00" << "2" << "-5";
        QTest::newRow("a past day") << "11-20-2026" << "3|￥30.00" << "3" << "-3";
        QTest::newRow("a day with no sales") << "11-21-2026" << "|" << "0" << "-3";
    }
    void dayFigures()
    {
        QFETCH(QString, typed);
        ModalScript modals;
        auto *w = open(modals, startWith(typed));
        VERIFY_MODALS(modals);
        QCOMPARE(cell(w, 0, 0), QStringLiteral("今日销售总额："));
        QTEST(cell(w, 0, 1) + "|" + cell(w, 0, 2), "sold");
        QCOMPARE(cell(w, 1, 0), QStringLiteral("         其  中：纯净水"));
        QTEST(cell(w, 1, 1), "waterSold");
        const int stock = lastRowOf(w, QStringLiteral("其  中：纯净水"));
        QVERIFY(stock > 1);
        QTEST(cell(w, stock, 1), "waterStock");
        QCOMPARE(w->dbgMain->model()->index(stock, 0).data(Qt::BackgroundRole).value<QColor>(), QColor(224, 224, 224));
        QCOMPARE(cell(w, 3, 0) + cell(w, 3, 2), QString()); // the spacing after two products stays blank
        QCOMPARE(w->dbgMain->model()->rowCount(), 26);
    }

    // The day chosen on opening reaches the title only with the next refresh; asking again
    // retitles at once. The paper puts the date first, the screen the station.
    void titles_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<bool>("askedAgain");
        QTest::addColumn<QString>("title");
        QTest::addColumn<QString>("printed");
        QTest::newRow("refresh after opening") << "11-20-2026" << false << "东城站2026-11-20日盘点表"
                                               << "\\t2026-11-20东城站日盘点表";
        QTest::newRow("asked again") << "10-01-2026" << true << "东城站2026-10-01日盘点表" << "\\t2026-10-01东城站日盘点表";
    }
    void titles()
    {
        QFETCH(QString, typed);
        QFETCH(bool, askedAgain);
        ModalScript modals;
        auto *w = open(modals, startWith(askedAgain ? QStringLiteral("11-23-2026") : typed));
        QCOMPARE(w->dbgMain->Caption(), QStringLiteral("东城站2026-11-23日盘点表"));
        if (askedAgain)
            modals.on("frmSetTodayReport", startWith(typed));
        QVERIFY(Forms::call(w, askedAgain ? "ShowFilter" : "DataRefresh"));
        VERIFY_MODALS(modals);
        QTEST(w->dbgMain->Caption(), "title");

        const QString pdf = db->folder() + QStringLiteral("/today.pdf");
        DbGridPrintInfo::setOutputFile(pdf);
        QVERIFY(Forms::call(w, "PrintSale"));
        DbGridPrintInfo::setOutputFile(QString());
        QTEST(w->dbgMain->PrintInfo()->PageHeader, "printed");
        QVERIFY(QFileInfo(pdf).size() > 0);
    }

    void progressMoves()
    {
        QList<int> values;
        int maximum = 0;
        ModalScript modals;
        auto *w = open(modals, [&](QWidget *dialog) {
            auto *bar = ModalScript::child<QProgressBar>(dialog, QStringLiteral("pgbMain"));
            QVERIFY(bar);
            connect(bar, &QProgressBar::valueChanged, bar, [&, bar](int v) {
                values << v;
                maximum = bar->maximum();
            });
            startWith(QStringLiteral("11-23-2026"))(dialog);
        });
        VERIFY_MODALS(modals);
        // Two products, a bucket and a worker make fewer rows than the report's least, 25.
        QCOMPARE(maximum, 25);
        QVERIFY2(values.size() > 5, qPrintable(QString::number(values.size())));
        QVERIFY(std::is_sorted(values.begin(), values.end()));
        // The bar ends on the last row written: the stock of the last product.
        QCOMPARE(values.last(), lastRowOf(w, QStringLiteral("空桶")));
    }

    void goesWhenAnotherListComesToFront_data()
    {
        QTest::addColumn<bool>("otherInFront");
        QTest::newRow("another list to the front") << true;
        QTest::newRow("its own date dialog") << false;
    }
    void goesWhenAnotherListComesToFront()
    {
        QFETCH(bool, otherInFront);
        QStringList toolStates;
        setToolStateHandler([&](const QString &form) { toolStates << form; });
        QMdiArea area;
        area.resize(900, 600);
        area.show();
        auto *other = new QWidget;
        QMdiSubWindow *otherFrame = area.addSubWindow(other);
        other->show();
        ModalScript modals;
        QPointer<frmTodayReport> w = open(modals, startWith(QStringLiteral("11-23-2026")));
        QMdiSubWindow *frame = area.addSubWindow(w);
        w->show();
        area.setActiveSubWindow(frame);
        QCOMPARE(toolStates, QStringList{"frmTodayReport"});
        if (otherInFront) {
            area.setActiveSubWindow(otherFrame);
        } else {
            modals.on("frmSetTodayReport", [](QWidget *dialog) { QVERIFY(ModalScript::click(dialog, "btnCancel")); });
            QVERIFY(Forms::call(w, "ShowFilter"));
        }
        VERIFY_MODALS(modals);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QCOMPARE(w.isNull(), otherInFront);
        QCOMPARE(Forms::loaded("frmTodayReport") == nullptr, otherInFront);
        setToolStateHandler(nullptr);
    }

    // Settled from the sale list, seen in the stock-take, closed from the today report, and
    // from then on only to be looked at; its out voucher carries the goods, and the next
    // stock-take no longer takes them off.
    void settledTicketIsClosedAndOnlyViewed()
    {
        Session::UserID = 1;
        // Two buckets of water delivered today, not yet paid, the empty buckets not yet back.
        QVERIFY(db->exec("INSERT INTO Sale(ID,CustomerID,SenderID,UserID,TotalAmount,OutAmount,TotalMoney,InMoney,"
                         "TotalContainer,InContainer,TransferFee,Detail,CreateDate,FinishFlag,StationID) "
                         "VALUES(1,1,1,1,2,2,20,0,2,0,0,'','2026-11-23','0',1)"));
        QVERIFY(db->exec("INSERT INTO Sale_detail(SaleID,ProductID,Price,MyAmount,MyMoney,IsContainer) VALUES "
                         "(1,1,10,2,20,'0'),(1,3,0,2,0,'1')"));
        Fixture::autoRefresh(true);
        registerWorkflowForms();
        registerTicketForms();
        registerCustomerForms();

        // The main window's routing: plain windows by name into the work area, tools on the child in front.
        QMdiArea area;
        area.resize(1000, 600);
        area.show();
        Forms::setActiveChildProvider([&] { return area.activeSubWindow() ? area.activeSubWindow()->widget() : nullptr; });
        auto showChild = [&](const QString &name) {
            QWidget *form = Forms::get(name);
            QMdiSubWindow *frame = nullptr;
            for (QMdiSubWindow *sub : area.subWindowList())
                if (sub->widget() == form)
                    frame = sub;
            if (!frame)
                frame = area.addSubWindow(form);
            form->show();
            area.setActiveSubWindow(frame);
        };
        auto tool = [](const char *procedure) { QVERIFY(Forms::call(Forms::activeChild(), procedure)); };
        ModalScript modals;
        ScriptedPrompter prompts;
        auto stockOf = [&](const QString &product) {
            modals.on("frmSetTodayReport", startWith(QStringLiteral("11-23-2026")));
            showChild(QStringLiteral("frmTodayReport"));
            return cell(Forms::activeChild(), lastRowOf(Forms::activeChild(), product), 1);
        };

        showChild(QStringLiteral("frmSaleAdmin"));
        prompts.expect(QStringLiteral("成功收到1号单据销售款：人民币20元！"));
        tool("InMoney");
        QCOMPARE(stockOf(QStringLiteral("纯净水")), QStringLiteral("-2"));
        QCOMPARE(cell(Forms::activeChild(), lastRowOf(Forms::activeChild(), QStringLiteral("空桶")), 1),
                 QStringLiteral("-2")); // buckets still out
        showChild(QStringLiteral("frmSaleAdmin"));
        QVERIFY(!Forms::loaded(QStringLiteral("frmTodayReport")));
        tool("InContainer");
        QCOMPARE(stockOf(QStringLiteral("空桶")), QStringLiteral("0"));

        prompts.expectInput(QStringLiteral("11-23-2026"))
            .expect(QStringLiteral("你确认要将11-23-2026之前的所有单据吗，结转后的单据将不能修改？"), QMessageBox::Yes)
            .expect(QStringLiteral("系统准备结转本期单据，请再次确认是否要结帐？"), QMessageBox::Yes)
            .expect(QStringLiteral("成功进行1 张有效单据入帐！"));
        tool("FinishToday");
        VERIFY_PROMPTS(prompts);
        QCOMPARE(db->scalar("SELECT FinishFlag FROM Sale WHERE ID=1").toString(), QStringLiteral("1"));
        // Its out voucher, made by the program with no station, carries the water alone: the
        // buckets come back and are no stock leaving (its every field: the closing's own tests).
        QCOMPARE(db->count("Store", "PaperID='1' AND HandInput='0' AND Direction='1' AND StationID IS NULL"), 1);
        QCOMPARE(db->scalar("SELECT group_concat(ProductID||'x'||MyAmount) FROM Store_Detail").toString(), QStringLiteral("1x2.0"));

        // Back in the list the ticket opens for viewing only, and the operations refuse it.
        showChild(QStringLiteral("frmSaleAdmin"));
        tool("DataRefresh");
        modals.on("frmSale", [](QWidget *form) {
            QCOMPARE(form->property("mActionType").toInt(), 0);
            QVERIFY(form->findChild<QPushButton *>(QStringLiteral("btnSave"))->isHidden());
            QVERIFY(!form->findChild<QLineEdit *>(QStringLiteral("txtCustAddress"))->isEnabled());
            QVERIFY(ModalScript::click(form, QStringLiteral("btnExit")));
        });
        tool("EditData");
        prompts.expect(QStringLiteral("该单据已经入帐不能再退款！"));
        tool("OutMoney");
        prompts.expect(QStringLiteral("此单据已被审核入帐，不能再删除！"));
        tool("DeleteData");
        VERIFY_PROMPTS(prompts);
        QCOMPARE(db->scalar("SELECT InMoney FROM Sale WHERE ID=1").toDouble(), 20.0);

        // The next stock-take: the ticket no longer takes the water off, and its voucher, having
        // no station, does not take it off either.
        QCOMPARE(stockOf(QStringLiteral("纯净水")), QStringLiteral("0"));
        VERIFY_MODALS(modals);
        Forms::setActiveChildProvider(nullptr);
        Forms::unloadAll(); // before the work area takes its windows along
    }
};

QTEST_MAIN(TestTodayWindow)
#include "tst_todaywin.moc"
