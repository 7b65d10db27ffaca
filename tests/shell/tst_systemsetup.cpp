#include "shell/Shell.h"
#include "shell/frmMain.h"
#include "shell/frmSystemSetup.h"

#include "data/Gateway.h"
#include "data/Session.h"
#include "sale/TicketForms.h"
#include "support/Bench.h"
#include "telephony/CallerIdHandler.h"
#include "telephony/DeviceLineProvider.h"
#include "telephony/NcidCallSource.h"
#include "telephony/ScriptedLineProvider.h"

#include <QCheckBox>
#include <QTcpServer>
#include <QTcpSocket>

// The settings window, the caller-ID line its load opens for the main window, and the reset
// of the business tables.
class TestSystemSetup : public QObject, Bench {
    Q_OBJECT
    ScriptedLineProvider m_provider; // no devices: the machine's serial ports stay out of it
    int m_ended = 0;

private slots:
    void initTestCase()
    {
        Shell::registerShellForms();
        registerTicketForms();
        Shell::setEndProgram([this] { ++m_ended; });
        Session::UserID = 1;
    }

    void init()
    {
        QVERIFY(start());
        LineProvider::setSystem(&m_provider);
        m_ended = 0;
    }

    void cleanup()
    {
        unloadForms();
        LineProvider::setSystem(nullptr);
        FINISH_BENCH();
    }

    void okStoresUnderCrossedKeys()
    {
        ModalScript script;
        script.on("frmSystemSetup", [](QWidget *w) {
            w->findChild<QCheckBox *>("chkAutoDo_0")->setChecked(true); // labelled full payment
            w->findChild<QCheckBox *>("chkAutoDataRefresh")->setChecked(true);
            w->findChild<QCheckBox *>("chkSearchAddress")->setChecked(false);
            ModalScript::type(w, "txtAreaCode", "0427");
            ModalScript::type(w, "txtNumberLen", "8");
            ModalScript::type(w, "txtNcidServer", " 192.168.1.5:3333 ");
            ModalScript::click(w, "btnOk");
        });
        Modal::exec(Forms::get("frmSystemSetup"));
        VERIFY_MODALS(script);
        QCOMPARE(db->scalar("SELECT group_concat(Name||'='||myValue, ',') FROM SysValue WHERE Name<>'CompanyName'")
                     .toString(),
                 // a new shop's own two rows are changed in place, the rest added after them
                 QStringLiteral("AutoDataRefresh=1,SearchAddress=0,AutoOutAmount=1,AutoInMoney=0,"
                                "AutoInContainer=0,ModemIndex=-1,AreaCode=0427,NumberLen=8,"
                                "NcidServer=192.168.1.5:3333"));
        QCOMPARE(Forms::get("frmSystemSetup")->findChild<QLineEdit *>("txtNcidServer")->text(),
                 QStringLiteral("192.168.1.5:3333"));
    }

    // From a caller-ID server on this machine to the open ticket: the server's address is typed
    // in the settings window, the next opening's load opens that device for the main window, and
    // the main window's handler, following the new line, logs the call.
    void ringFromServerReachesTicket()
    {
        QTcpServer server;
        QVERIFY(server.listen(QHostAddress::LocalHost, 0));
        const QString address = QStringLiteral("127.0.0.1:%1").arg(server.serverPort());
        DeviceLineProvider devices([] {
            const QList<CallSource *> found = DiscoverNcidServer();
            for (CallSource *source : found)
                qobject_cast<NcidCallSource *>(source)->setReconnectDelay(50);
            return found;
        });
        LineProvider::setSystem(&devices);

        auto *main = Forms::get<frmMain>("frmMain");
        auto *handler = new CallerIdHandler(false);
        handler->setBeeper([] {});
        main->setCallerIdHandler(handler);
        ModalScript script;
        script.on("frmSystemSetup", [&](QWidget *w) {
            QCOMPARE(w->findChild<QComboBox *>("cboModem")->itemText(0), QStringLiteral("NCID 127.0.0.1:3333"));
            ModalScript::type(w, "txtNcidServer", address);
            ModalScript::click(w, "btnOk");
        });
        Modal::exec(Forms::get("frmSystemSetup"));
        VERIFY_MODALS(script);
        QWidget *setup = Forms::get("frmSystemSetup");
        QCOMPARE(setup->findChild<QComboBox *>("cboModem")->currentText(), QStringLiteral("NCID ") + address);

        QWidget *sale = Forms::get("frmSale");
        sale->setProperty("mActionType", 1);
        sale->show();
        QTRY_VERIFY(server.hasPendingConnections());
        QTcpSocket *client = server.nextPendingConnection();
        client->write("200 NCID Server: test\n300 End of connection startup\n"
                      "CID: *DATE*11232026*TIME*0930*LINE*-*NMBR*5557777*MESG*NONE*NAME*WANG*\n");
        QTRY_COMPARE(db->count("Call", "PhoneNumber='5557777'"), 1);
        unloadForms(); // while the server and the devices it came through are still there
    }

    void reset_data()
    {
        QTest::addColumn<QList<QMessageBox::StandardButton>>("answers");
        QTest::addColumn<bool>("emptied");
        using B = QMessageBox::StandardButton;
        QTest::newRow("first No") << QList<B>{QMessageBox::No} << false;
        QTest::newRow("second No") << QList<B>{QMessageBox::Yes, QMessageBox::No} << false;
        QTest::newRow("Yes twice") << QList<B>{QMessageBox::Yes, QMessageBox::Yes} << true;
    }
    void reset()
    {
        QFETCH(QList<QMessageBox::StandardButton>, answers);
        QFETCH(bool, emptied);
        db->exec("INSERT INTO Sender(Name,Status) VALUES('王','1')");
        db->exec("INSERT INTO Product(Name,Status) VALUES('水','1')");
        db->exec("INSERT INTO Customer(Name,Status) VALUES('李','1')");
        db->exec("INSERT INTO Sale(CustomerID) VALUES(1)");
        db->exec("INSERT INTO Sale_detail(SaleID) VALUES(1)");
        db->exec("INSERT INTO Store(Detail) VALUES('x')");
        db->exec("INSERT INTO Store_detail(StoreID) VALUES(1)");
        db->exec("INSERT INTO Call(PhoneNumber) VALUES('123')");
        prompts->expect("你确认要重新启用系统吗？", answers[0], true);
        if (answers.size() > 1)
            prompts->expect("请再次确认是否要重新启用系统！！！", answers[1], true);
        if (emptied)
            prompts->expect("系统重新启用成功，现在系统需要退出再进入，请按确认键退出系统重新登录！");
        ResetSystem();
        for (const char *table : {"Sender", "Product", "Customer", "Sale", "Sale_detail", "Store", "Store_detail"})
            QCOMPARE(db->count(table), emptied ? 0 : 1);
        QCOMPARE(db->count("Call"), 1);
        QCOMPARE(db->count("SysUser"), 1);
        QCOMPARE(db->count("Station"), 1);
        QCOMPARE(m_ended, emptied ? 1 : 0);
    }
};

QTEST_MAIN(TestSystemSetup)
#include "tst_systemsetup.moc"
