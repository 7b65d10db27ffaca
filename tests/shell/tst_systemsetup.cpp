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
#include "telephony/cTAPILine.h"

#include <QCheckBox>
#include <QTcpServer>
#include <QTcpSocket>

// The settings window, the caller-ID line its load opens for the main window, and the reset
// of the business tables.
class TestSystemSetup : public QObject, Bench {
    Q_OBJECT
    // What the provider was asked to open, as "lineOpen <device> <version> <privileges> <media>".
    QStringList opened() const { return m_provider.log.filter(QRegularExpression("^lineOpen ")); }
    frmMain *loadMain() { return Forms::get<frmMain>("frmMain"); }
    ScriptedLineProvider m_provider;
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
        // Four devices; the second and the last agree no version and are not listed, so list
        // positions and device numbers differ.
        m_provider.devices.clear();
        for (const char *name : {"调制解调器 A", "坏线路", "NCID 127.0.0.1:3333", "旧调制解调器"}) {
            ScriptedLineProvider::Device d;
            d.lineName = QByteArray(name) + '\0';
            m_provider.devices << d;
        }
        m_provider.devices[1].negotiateResult = Tapi::LINEERR_INCOMPATIBLEAPIVERSION;
        m_provider.devices[3].negotiateResult = Tapi::LINEERR_INCOMPATIBLEAPIVERSION;
        m_provider.log.clear();
        LineProvider::setSystem(&m_provider);
        m_ended = 0;
    }

    void cleanup()
    {
        unloadForms();
        LineProvider::setSystem(nullptr);
        FINISH_BENCH();
    }

    void loadShowsStoredValues_data()
    {
        QTest::addColumn<bool>("devices");
        QTest::addColumn<QStringList>("values"); // Name=myValue rows
        QTest::addColumn<QString>("boxes");      // the five boxes, 1 for checked
        QTest::addColumn<int>("position");
        QTest::addColumn<QStringList>("opened");
        QTest::addColumn<QString>("areaCode");
        QTest::addColumn<QString>("numberLen");
        const QString first = "lineOpen 0 20000 4 16";
        QTest::newRow("nothing stored") << true << QStringList{} << "00011" << 0 << QStringList{first} << "0" << "0";
        QTest::newRow("stored") << true
                                << QStringList{"AutoOutAmount=1", "AutoInContainer=1", "AutoDataRefresh=1",
                                               "ModemIndex=1", "AreaCode=0427", "NumberLen=7"}
                                << "10111" << 1 << QStringList{"lineOpen 2 20000 4 16"} << "427" << "7";
        QTest::newRow("no device chosen") << true << QStringList{"ModemIndex=-1", "SearchAddress=1"} << "00011" << -1
                                          << QStringList{} << "0" << "0";
        // Past the end nothing is selected and the line stays on the last device it looked at,
        // the unlisted one, which it tries with the version it has for it.
        QTest::newRow("just past the end") << true << QStringList{"ModemIndex=2"} << "00011" << -1
                                           << QStringList{"lineOpen 3 0 4 16"} << "0" << "0";
        QTest::newRow("far past the end") << true << QStringList{"ModemIndex=40000"} << "00011" << -1
                                          << QStringList{"lineOpen 3 0 4 16"} << "0" << "0";
        QTest::newRow("not a number") << true << QStringList{"ModemIndex=abc", "NumberLen=8"} << "00011" << 0
                                      << QStringList{first} << "0" << "8";
        QTest::newRow("no devices at all") << false << QStringList{"AutoInMoney=1"} << "01011" << -1 << QStringList{}
                                           << "0" << "0";
    }
    void loadShowsStoredValues()
    {
        QFETCH(bool, devices);
        QFETCH(QStringList, values);
        QFETCH(QString, boxes);
        QFETCH(int, position);
        QFETCH(QStringList, opened);
        QFETCH(QString, areaCode);
        QFETCH(QString, numberLen);
        if (!devices)
            m_provider.devices.clear();
        for (const QString &v : values)
            SetSysValue(v.section('=', 0, 0), v.section('=', 1));

        frmMain *main = loadMain();
        QWidget *w = Forms::loaded("frmSystemSetup");
        QVERIFY(w && !w->isVisible());
        QString shown;
        for (const char *name : {"chkAutoDo_0", "chkAutoDo_1", "chkAutoDo_2", "chkSearchAddress", "chkAutoDataRefresh"})
            shown += w->findChild<QCheckBox *>(name)->isChecked() ? '1' : '0';
        QCOMPARE(shown, boxes);
        auto *cboModem = w->findChild<QComboBox *>("cboModem");
        QCOMPARE(cboModem->count(), devices ? 2 : 0);
        if (devices) {
            QCOMPARE(cboModem->itemText(1), QStringLiteral("NCID 127.0.0.1:3333"));
            QCOMPARE(cboModem->itemData(1).toInt(), 2);
        }
        QCOMPARE(cboModem->currentIndex(), position);
        QCOMPARE(this->opened(), opened);
        QVERIFY(main->Tapiline());
        QCOMPARE(main->Tapiline()->hLine() != 0, !opened.isEmpty());
        QCOMPARE(w->findChild<QLineEdit *>("txtAreaCode")->text(), areaCode);
        QCOMPARE(w->findChild<QLineEdit *>("txtNumberLen")->text(), numberLen);
    }

    // The first opening shows the window loaded at start and leaves the line alone; closing it
    // unloads it, and the next opening makes a new line for the device stored then.
    void nextOpeningRecreatesLine_data()
    {
        QTest::addColumn<QString>("button");
        QTest::addColumn<QString>("reopened");
        QTest::newRow("OK with the second device") << "btnOk" << "lineOpen 2 20000 4 16";
        QTest::newRow("Cancel") << "btnCancel" << "lineOpen 0 20000 4 16";
    }
    void nextOpeningRecreatesLine()
    {
        QFETCH(QString, button);
        QFETCH(QString, reopened);
        frmMain *main = loadMain();
        QPointer<cTAPILine> first = main->Tapiline();
        QVERIFY(first && first->hLine() != 0);

        ModalScript script;
        script.on("frmSystemSetup", [&](QWidget *w) {
            w->findChild<QComboBox *>("cboModem")->setCurrentIndex(1);
            ModalScript::click(w, button);
        });
        Modal::exec(Forms::get("frmSystemSetup"));
        VERIFY_MODALS(script);
        QCOMPARE(main->Tapiline(), first.data());
        QCOMPARE(m_provider.log.filter("lineInitializeEx").size(), 1);
        QVERIFY(!Forms::loaded("frmSystemSetup"));

        const quint32 firstApp = first->lineAppHandle();
        const qint32 firstLine = first->hLine();
        m_provider.log.clear();
        Forms::get("frmSystemSetup");
        QVERIFY(first.isNull());
        QVERIFY(main->Tapiline() && main->Tapiline()->hLine() != 0);
        // The old line is shut down before the new one looks for devices.
        QCOMPARE(m_provider.log.mid(0, 3), QStringList({QString("lineClose %1").arg(firstLine),
                                                        QString("lineShutdown %1").arg(firstApp),
                                                        "lineInitializeEx 30000"}));
        QCOMPARE(opened(), QStringList{reopened});
    }

    void okStoresUnderCrossedKeys()
    {
        m_provider.devices.clear();
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

        frmMain *main = loadMain();
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
