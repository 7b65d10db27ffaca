// The end of a ticket's road through the real windows: settled from the sale list, seen in
// the stock-take, closed from the today report, and from then on only to be looked at.
#include "support/ModalScript.h"
#include "support/Rows.h"

#include "data/Gateway.h"
#include "data/Session.h"
#include "master/CustomerForms.h"
#include "platform/Clock.h"
#include "platform/Forms.h"
#include "report/TodayForms.h"
#include "report/frmTodayReport.h"
#include "sale/TicketForms.h"
#include "workflow/WorkflowForms.h"

#include <QMdiArea>
#include <QMdiSubWindow>
#include <QPushButton>
#include <QtTest>

namespace {
// Types the day into the options dialog and starts the stock-take.
ModalScript::Handler startWith(const QString &date)
{
    return [date](QWidget *dialog) {
        QVERIFY(ModalScript::type(dialog, QStringLiteral("txtDate"), date));
        QVERIFY(ModalScript::click(dialog, QStringLiteral("btnOk")));
    };
}

// The balance on the last grid row whose item ends with product: the stock section comes last.
QString stockIn(QWidget *report, const QString &product)
{
    auto *w = qobject_cast<frmTodayReport *>(report);
    for (int r = w ? w->dbgMain->model()->rowCount() - 1 : -1; r >= 0; --r)
        if (w->dbgMain->model()->index(r, 0).data().toString().endsWith(product))
            return w->dbgMain->model()->index(r, 1).data().toString();
    return QStringLiteral("no row of ") + product;
}
}

class TestTodayWindow : public QObject {
    Q_OBJECT
    std::unique_ptr<TestDb> db;

private slots:
    void initTestCase() { registerTodayForms(); }
    void init()
    {
        Clock::set(QDateTime(QDate(2026, 11, 23), QTime(18, 0)));
        db = std::make_unique<TestDb>();
        QVERIFY(db->ok());
        // Water (1) and its bucket (3), one worker and a customer.
        QVERIFY(db->exec("INSERT INTO Product(ID,Name,Unit,Status,IsContainer,ContainerID,Price) VALUES "
                         "(1,'纯净水','桶','1','0',3,10),(3,'空桶','个','1','1',0,0)"));
        QVERIFY(db->exec("INSERT INTO Sender(ID,Name,Status,Price,StationID) VALUES (1,'张三','1',5,1)"));
        QVERIFY(Rows::customer(*db, 1, QStringLiteral("东街1号")));
    }
    void cleanup()
    {
        Forms::unloadAll();
        Forms::setActiveChildProvider(nullptr);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        db.reset();
    }

    // Its out voucher carries the goods, and the next stock-take no longer takes them off.
    void settledTicketIsClosedAndOnlyViewed()
    {
        Session::UserID = 1;
        // Two buckets of water delivered today, not yet paid, the empty buckets not yet back.
        QVERIFY(db->exec("INSERT INTO Sale(ID,CustomerID,SenderID,UserID,TotalAmount,OutAmount,TotalMoney,InMoney,"
                         "TotalContainer,InContainer,TransferFee,Detail,CreateDate,FinishFlag,StationID) "
                         "VALUES(1,1,1,1,2,2,20,0,2,0,0,'','2026-11-23','0',1)"));
        QVERIFY(db->exec("INSERT INTO Sale_detail(SaleID,ProductID,Price,MyAmount,MyMoney,IsContainer) VALUES "
                         "(1,1,10,2,20,'0'),(1,3,0,2,0,'1')"));
        SetSysValue(QStringLiteral("AutoDataRefresh"), QStringLiteral("1"));
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
            return stockIn(Forms::activeChild(), product);
        };

        showChild(QStringLiteral("frmSaleAdmin"));
        prompts.expect(QStringLiteral("成功收到1号单据销售款：人民币20元！"));
        tool("InMoney");
        QCOMPARE(stockOf(QStringLiteral("纯净水")), QStringLiteral("-2"));
        QCOMPARE(stockIn(Forms::activeChild(), QStringLiteral("空桶")), QStringLiteral("-2")); // buckets still out
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
