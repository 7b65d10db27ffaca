// The main window's routing of tools to the window in front, and the operator's rights.
#include "shell/CommandBar.h"
#include "shell/Shell.h"
#include "shell/frmMain.h"

#include "data/Session.h"
#include "support/Bench.h"
#include "telephony/ScriptedLineProvider.h"

#include <QAction>

namespace {
// A list window as the shell meets it: procedures by name.
class frmFakeList : public QWidget {
    Q_OBJECT
public:
    QStringList calls;
public slots:
    void AddNew() { calls << "AddNew"; }
    void DeleteAll() { calls << "DeleteAll"; }
    void InAllMoney() { calls << "InAllMoney"; }
};
}

class TestMainWindow : public QObject, Bench {
    Q_OBJECT
    frmMain *main() { return Forms::get<frmMain>("frmMain"); }
    // The main window as it loads for an operator with these rights.
    frmMain *openMain(const QString &roles)
    {
        unloadForms();
        m_saleAdminLoads = 0;
        db->exec("UPDATE SysUser SET rolestring='" + roles + "' WHERE ID=1");
        return main();
    }
    void press(const QString &band, const QString &tool)
    {
        QAction *a = main()->acbMain()->tool(band, tool);
        QVERIFY2(a, qPrintable(band + "/" + tool));
        a->trigger();
    }
    int m_saleAdminLoads = 0;

private slots:
    void initTestCase()
    {
        Shell::registerShellForms();
        // The main window's caller-ID line finds no devices instead of the machine's serial ports.
        LineProvider::setSystem(new ScriptedLineProvider(this));
        Forms::add("frmSaleAdmin", [this] {
            ++m_saleAdminLoads;
            return new frmFakeList;
        });
        Forms::add("frmMoneyAdmin", [] { return new frmFakeList; });
        Shell::setEndProgram([] {});
    }

    void init()
    {
        QVERIFY(start());
        Session::UserID = 1;
        Session::SaleAdminClosable = false;
        openMain("11111111")->show();
    }

    void cleanup() { FINISH_BENCH(); }

    void toolsReachActiveChild_data()
    {
        QTest::addColumn<QString>("band");
        QTest::addColumn<QString>("tool");
        QTest::addColumn<QString>("procedure");
        QTest::newRow("add") << "barTool" << "tlAdd" << "AddNew";
        QTest::newRow("delete all") << "popDel" << "tlDelAll" << "DeleteAll";
        QTest::newRow("all money") << "popMoney" << "tlInAllMoney" << "InAllMoney";
    }
    void toolsReachActiveChild()
    {
        QFETCH(QString, band);
        QFETCH(QString, tool);
        QFETCH(QString, procedure);
        press("barNavChild", "tlMoneyAdmin");
        auto *money = qobject_cast<frmFakeList *>(Forms::loaded("frmMoneyAdmin"));
        auto *sale = qobject_cast<frmFakeList *>(Forms::loaded("frmSaleAdmin"));
        QVERIFY(money && sale);
        QCOMPARE(Forms::activeChild(), money);
        main()->acbMain()->tool(band, tool)->setEnabled(true);
        press(band, tool);
        QCOMPARE(money->calls, QStringList{procedure});
        QVERIFY(sale->calls.isEmpty());
    }

    void operatorsWindowReappliesRights()
    {
        // The administrator takes away his own stock right in the operators window.
        ModalScript script;
        script.on("frmUserAdmin", [this](QWidget *list) {
            db->exec("UPDATE SysUser SET rolestring='11111011' WHERE ID=1");
            ModalScript::click(list, "btnExit");
        });
        QVERIFY(main()->acbMain()->isEnabled("popDaily", "tlStoreAdmin"));
        press("popFile", "tlUserAdmin");
        VERIFY_MODALS(script);
        QVERIFY(!main()->acbMain()->isEnabled("popDaily", "tlStoreAdmin"));
    }

    // Tools that are on with all rights and off for the refused position (band/tool).
    void rightsSwitchOff_data()
    {
        QTest::addColumn<QString>("roles");
        QTest::addColumn<QStringList>("off");
        QTest::addColumn<QStringList>("stillOn");
        QTest::newRow("all rights") << "11111111" << QStringList{"popDaily/tlGrpStationAdmin"}
                                    << QStringList{"popFile/tlUserAdmin", "mnuMain/mnuSearch",
                                                   "popDaily/tlSaleAdmin", "barTool/tlInMoney"};
        QTest::newRow("system") << "01111111"
                                << QStringList{"popFile/tlUserAdmin", "popFile/tlSysConfigure",
                                               "popFile/tlSysReset", "popFile/tlSalePrintSetup",
                                               "popDaily/tlSenderAdmin", "popDaily/tlProductAdmin",
                                               "popDaily/tlCustomerAdmin"}
                                << QStringList{"popFile/tlChangePwd", "popFile/tlClearUser",
                                               "popFile/tlPrintSetup"};
        // The sale list is loaded, then closed again; the navigation bar still offers it.
        QTest::newRow("sale list") << "10111111" << QStringList{"popDaily/tlSaleAdmin"}
                                   << QStringList{"barNavChild/tlSaleAdmin"};
        QTest::newRow("money") << "11011111"
                               << QStringList{"popDaily/tlMoneyAdmin", "mnuMain/mnuMoney",
                                              "barTool/tlOutMoney", "barTool/tlInMoney"}
                               << QStringList{"barNavChild/tlMoneyAdmin", "popMoney/tlInMoney"};
        QTest::newRow("short string refuses nothing more")
            << "1101" << QStringList{"mnuMain/mnuMoney"}
            << QStringList{"mnuMain/mnuSearch", "popDaily/tlTodayReport"};
    }
    void rightsSwitchOff()
    {
        QFETCH(QString, roles);
        QFETCH(QStringList, off);
        QFETCH(QStringList, stillOn);
        CommandBar &bar = *openMain(roles)->acbMain();
        for (const QString &t : off + stillOn) {
            const QString band = t.section('/', 0, 0), tool = t.section('/', 1);
            QVERIFY2(bar.hasTool(band, tool), qPrintable(t));
            QVERIFY2(bar.isEnabled(band, tool) == stillOn.contains(t), qPrintable(t));
        }
        QVERIFY(!bar.isEnabled("popDaily", "tlGrpStationAdmin"));
        const bool saleRefused = roles.at(1) == '0';
        QCOMPARE(Forms::loaded("frmSaleAdmin") == nullptr, saleRefused);
        QCOMPARE(Session::SaleAdminClosable, saleRefused);
        QCOMPARE(m_saleAdminLoads, 1);
    }
};

QTEST_MAIN(TestMainWindow)
#include "tst_mainwindow.moc"
