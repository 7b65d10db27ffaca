// The road of one ticket through the lists, with the real ticket window: keyed and saved
// from the sale list, shown blue, delivered, paid and its empties taken back by the tools
// the main window routes by name, and printed.
#include "TicketFixture.h"

#include "support/Bench.h"

#include "data/Session.h"
#include "master/CustomerForms.h"
#include "sale/TicketForms.h"
#include "workflow/WorkflowForms.h"
#include "workflow/frmSaleAdmin.h"

#include <QMdiArea>
#include <QMdiSubWindow>

class TestTicketRoad : public QObject, Bench {
    Q_OBJECT
private slots:
    void initTestCase()
    {
        Session::UserID = 1;
        Clock::set(QDateTime(Fixture::Today, QTime(10, 0)));
        registerWorkflowForms();
        registerTicketForms();
        registerCustomerForms();
    }
    void init() { QVERIFY(start() && Fixture::arrange(*db)); }
    void cleanup()
    {
        setSalePrinter(nullptr);
        Forms::setActiveChildProvider(nullptr);
        FINISH_BENCH();
    }

    void oneTicketFromKeyingToPrint()
    {
        QVERIFY(db->exec("INSERT INTO Product(ID,Name,Unit,Status,IsContainer,ContainerID,Price) VALUES "
                         "(1,'纯净水','桶','1','0',3,10),(3,'空桶','个','1','1',0,0)"));
        QVERIFY(db->exec("INSERT INTO Sender(ID,Name,Status,Price,StationID) VALUES (1,'张三','1',5,1)"));
        QList<qint32> printed;
        setSalePrinter([&](qint32 id, bool) { printed << id; });

        // The main window's routing: a tool calls the procedure of its name on the child in front.
        QMdiArea area;
        area.resize(1000, 600);
        area.show();
        Forms::setActiveChildProvider([&] { return area.activeSubWindow() ? area.activeSubWindow()->widget() : nullptr; });
        auto *list = Forms::get<frmSaleAdmin>("frmSaleAdmin");
        area.setActiveSubWindow(area.addSubWindow(list));
        list->parentWidget()->show();
        auto tool = [](const char *procedure) { QVERIFY(Forms::call(Forms::activeChild(), procedure)); };

        ModalScript modals;
        modals.on("frmSale", [](QWidget *form) {
            form->activateWindow();
            QVERIFY(QTest::qWaitForWindowActive(form));
            auto *account = form->findChild<QLineEdit *>(QStringLiteral("txtCustAccount"));
            account->setFocus();
            typeText(account, QStringLiteral("1"));
            QTest::keyClick(account, Qt::Key_Return);
            keyCell(form, 0, 0, QStringLiteral("1"));
            keyCell(form, 0, 4, QStringLiteral("3"));
            QVERIFY(ModalScript::click(form, QStringLiteral("btnSave")));
            QVERIFY(ModalScript::click(form, QStringLiteral("btnExit")));
        });
        tool("AddNew");
        VERIFY_MODALS(modals);

        QCOMPARE(list->dbgMain->model()->rowCount(), 1);
        const QString id = list->currentTicket();
        QVERIFY(!id.isEmpty());
        QCOMPARE(list->dbgMain->model()->index(0, 9).data().toString(), QStringLiteral("东大街1号"));
        QCOMPARE(list->dbgMain->rowStyle(0).foreground, QColor(0, 0, 255));
        const QString owed = list->dbgMain->model()->index(0, 3).data().toString();
        QVERIFY(owed.toDouble() > 0);

        prompts->expect(QStringLiteral("成功收到") + id + QStringLiteral("号单据销售款：人民币") + owed + QStringLiteral("元！"));
        tool("OutAmount");
        QCOMPARE(list->dbgMain->rowStyle(0).foreground, QColor(0, 0, 255)); // still owes money and empties
        tool("InMoney");
        tool("InContainer");
        VERIFY_PROMPTS(*prompts);
        QCOMPARE(list->dbgMain->rowStyle(0).foreground, QColor());
        QCOMPARE(list->dbgMain->footerText(9), QStringLiteral("共欠钱：0元       欠瓶：0个"));

        tool("PrintSale");
        QCOMPARE(printed, QList<qint32>{id.toInt()});
    }
};

QTEST_MAIN(TestTicketRoad)
#include "tst_ticketroad.moc"
