#include "shell/CommandBar.h"
#include "shell/Shell.h"
#include "shell/ToolState.h"
#include "shell/frmMain.h"

#include "data/Session.h"
#include "platform/Forms.h"
#include "support/ScriptedPrompter.h"
#include "support/TestDb.h"

#include <QAction>
#include <QtTest>

// The rights and the tool state decide what an operator can press; a mistake here either
// hides a command from the shop or offers one that the window in front cannot carry out.
class TestToolState : public QObject {
    Q_OBJECT
private slots:
    void initTestCase();
    void init();
    void cleanup();
    void rightsSwitchOff_data();
    void rightsSwitchOff();
    void refusedSaleListStartsWithoutIt();
    void toolStatePerWindow_data();
    void toolStatePerWindow();
    void laterCallWins();
    void statusPanels();

private:
    frmMain *openMain(const QString &roles);
    std::unique_ptr<TestDb> m_db;
    int m_saleAdminLoads = 0;
};

void TestToolState::initTestCase()
{
    Shell::registerShellForms();
    Forms::add("frmSaleAdmin", [this] {
        ++m_saleAdminLoads;
        return new QWidget;
    });
}

void TestToolState::init()
{
    m_db = std::make_unique<TestDb>();
    QVERIFY(m_db->ok());
    Session::UserID = 1;
    Session::SaleAdminClosable = false;
    m_saleAdminLoads = 0;
}

void TestToolState::cleanup()
{
    Forms::unloadAll();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    m_db.reset();
}

frmMain *TestToolState::openMain(const QString &roles)
{
    m_db->exec("UPDATE SysUser SET rolestring='" + roles + "' WHERE ID=1");
    return Forms::get<frmMain>("frmMain");
}

// Tools that are on with all rights and off for the refused position (band/tool).
void TestToolState::rightsSwitchOff_data()
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
    QTest::newRow("money") << "11011111"
                           << QStringList{"popDaily/tlMoneyAdmin", "mnuMain/mnuMoney",
                                          "barTool/tlOutMoney", "barTool/tlInMoney"}
                           << QStringList{"barNavChild/tlMoneyAdmin", "popMoney/tlInMoney"};
    QTest::newRow("delivery") << "11101111"
                              << QStringList{"popDaily/tlAmountAdmin", "mnuMain/mnuAmount",
                                             "barTool/tlOutAmount", "barTool/tlInAmount"}
                              << QStringList{"barNavChild/tlAmountAdmin", "mnuMain/mnuMoney"};
    QTest::newRow("empties") << "11110111"
                             << QStringList{"popDaily/tlContainerAdmin", "mnuMain/mnuContainer"}
                             << QStringList{"barNavChild/tlContainerAdmin"};
    QTest::newRow("stock") << "11111011" << QStringList{"popDaily/tlStoreAdmin"}
                           << QStringList{"barNavChild/tlStoreAdmin"};
    QTest::newRow("closing") << "11111101" << QStringList{"popDaily/tlTodayReport"}
                             << QStringList{"barNavChild/tlTodayReport"};
    QTest::newRow("reports") << "11111110" << QStringList{"mnuMain/mnuSearch"}
                             << QStringList{"popSearch/mnuDayReport"};
    QTest::newRow("short string refuses nothing more") << "1101"
                                                       << QStringList{"mnuMain/mnuMoney"}
                                                       << QStringList{"mnuMain/mnuSearch",
                                                                      "popDaily/tlTodayReport"};
    QTest::newRow("only a 0 refuses") << "1x1 1111" << QStringList{}
                                      << QStringList{"popDaily/tlSaleAdmin", "mnuMain/mnuMoney"};
}

void TestToolState::rightsSwitchOff()
{
    QFETCH(QString, roles);
    QFETCH(QStringList, off);
    QFETCH(QStringList, stillOn);
    frmMain *main = openMain(roles);
    QVERIFY(main);
    CommandBar &bar = *main->acbMain();
    for (const QString &t : off) {
        const QString band = t.section('/', 0, 0), tool = t.section('/', 1);
        QVERIFY2(bar.hasTool(band, tool), qPrintable(t));
        QVERIFY2(!bar.isEnabled(band, tool), qPrintable(t + " should be off"));
    }
    for (const QString &t : stillOn) {
        const QString band = t.section('/', 0, 0), tool = t.section('/', 1);
        QVERIFY2(bar.hasTool(band, tool), qPrintable(t));
        QVERIFY2(bar.isEnabled(band, tool), qPrintable(t + " should be on"));
    }
    // The station tool is off for everyone, every time.
    QVERIFY(!bar.isEnabled("popDaily", "tlGrpStationAdmin"));
}

void TestToolState::refusedSaleListStartsWithoutIt()
{
    frmMain *main = openMain("10111111");
    QVERIFY(main);
    QVERIFY(Session::SaleAdminClosable);
    QCOMPARE(m_saleAdminLoads, 1);
    QVERIFY(!Forms::loaded("frmSaleAdmin"));
    QVERIFY(!main->acbMain()->isEnabled("popDaily", "tlSaleAdmin"));
    QVERIFY(main->acbMain()->isEnabled("barNavChild", "tlSaleAdmin"));

    // With all rights the sale list stays and may not close.
    cleanup();
    init();
    openMain("11111111");
    QVERIFY(Forms::loaded("frmSaleAdmin"));
    QVERIFY(!Session::SaleAdminClosable);
}

void TestToolState::toolStatePerWindow_data()
{
    QTest::addColumn<QString>("form");
    QTest::addColumn<QStringList>("toolsOff");
    QTest::addColumn<QStringList>("menusOff");
    QTest::addColumn<QStringList>("captions"); // tool=caption for the four changeable ones
    QTest::addColumn<bool>("delAllOn");
    const QStringList usual{"tlDel=删除", "tlEdit=修改", "tlPrintSale=打印单据", "tlFilter=查询"};
    const QStringList all3{"mnuAmount", "mnuContainer", "mnuMoney"};
    QTest::newRow("frmSaleAdmin") << "frmSaleAdmin" << QStringList{"tlChart", "tlFinish"}
                                  << QStringList{} << usual << true;
    QTest::newRow("frmStoreAdmin")
        << "frmStoreAdmin"
        << QStringList{"tlChart", "tlFinish", "tlPrintSale", "tlInMoney", "tlOutMoney", "tlInAmount", "tlOutAmount"}
        << all3 << usual << true;
    QTest::newRow("frmMoneyAdmin")
        << "frmMoneyAdmin" << QStringList{"tlAdd", "tlDel", "tlChart", "tlFinish", "tlInAmount", "tlOutAmount"}
        << QStringList{"mnuAmount", "mnuContainer"}
        << QStringList{"tlDel=删除", "tlEdit=打开", "tlPrintSale=打印单据", "tlFilter=查询"} << true;
    QTest::newRow("frmAmountAdmin")
        << "frmAmountAdmin" << QStringList{"tlAdd", "tlDel", "tlChart", "tlFinish", "tlInMoney", "tlOutMoney"}
        << QStringList{"mnuContainer", "mnuMoney"}
        << QStringList{"tlDel=删除", "tlEdit=打开", "tlPrintSale=打印单据", "tlFilter=查询"} << true;
    QTest::newRow("frmContainerAdmin")
        << "frmContainerAdmin"
        << QStringList{"tlAdd", "tlDel", "tlChart", "tlFinish", "tlInMoney", "tlOutMoney", "tlInAmount", "tlOutAmount"}
        << QStringList{"mnuAmount", "mnuMoney"}
        << QStringList{"tlDel=删除", "tlEdit=打开", "tlPrintSale=打印单据", "tlFilter=查询"} << true;
    QTest::newRow("frmCustomerAdmin")
        << "frmCustomerAdmin"
        << QStringList{"tlChart", "tlPrintSale", "tlFinish", "tlInMoney", "tlOutMoney", "tlInAmount", "tlOutAmount"}
        << all3 << usual << false;
    QTest::newRow("frmReport")
        << "frmReport"
        << QStringList{"tlFilter", "tlAdd", "tlEdit", "tlDel", "tlFinish", "tlInMoney", "tlOutMoney", "tlInAmount", "tlOutAmount"}
        << all3 << QStringList{"tlDel=删除", "tlEdit=修改", "tlPrintSale=打印报表", "tlFilter=查询"} << true;
    QTest::newRow("frmTodayReport")
        << "frmTodayReport"
        << QStringList{"tlAdd", "tlEdit", "tlDel", "tlChart", "tlInMoney", "tlOutMoney", "tlInAmount", "tlOutAmount"}
        << all3 << QStringList{"tlDel=删除", "tlEdit=修改", "tlPrintSale=打印报表", "tlFilter=设定日期"} << true;
    QTest::newRow("frmHistoryCall")
        << "frmHistoryCall"
        << QStringList{"tlAdd", "tlEdit", "tlFilter", "tlChart", "tlPrintSale", "tlFinish", "tlInMoney", "tlOutMoney", "tlInAmount", "tlOutAmount"}
        << all3 << usual << true;
}

void TestToolState::toolStatePerWindow()
{
    QFETCH(QString, form);
    QFETCH(QStringList, toolsOff);
    QFETCH(QStringList, menusOff);
    QFETCH(QStringList, captions);
    QFETCH(bool, delAllOn);
    frmMain *main = openMain("11111111");
    CommandBar &bar = *main->acbMain();
    // Start from the most restrictive window so that every tool has to come back on.
    SetToolState("frmHistoryCall");
    SetToolState("frmCustomerAdmin");
    SetToolState("frmTodayReport");
    SetToolState(form);
    for (const QString &tool : bar.tools("barTool"))
        QVERIFY2(bar.isEnabled("barTool", tool) == !toolsOff.contains(tool), qPrintable(tool));
    for (const QString menu : {"mnuAmount", "mnuContainer", "mnuMoney"})
        QVERIFY2(bar.isEnabled("mnuMain", menu) == !menusOff.contains(menu), qPrintable(menu));
    for (const QString &c : captions)
        QCOMPARE(bar.caption("barTool", c.section('=', 0, 0)), c.section('=', 1));
    QCOMPARE(bar.isEnabled("popDel", "tlDelAll"), delAllOn);
    // The same tools on the drop-down menus are not the toolbar's: they keep their state.
    QVERIFY(bar.isEnabled("popOperate", "tlAdd"));
    QCOMPARE(bar.caption("popOperate", "tlEdit"), QStringLiteral("修改记录"));
}

void TestToolState::laterCallWins()
{
    // Refused money: off at start, on again once a list window leaves it on.
    frmMain *main = openMain("11011111");
    CommandBar &bar = *main->acbMain();
    SetRights(1);
    QVERIFY(!bar.isEnabled("barTool", "tlInMoney"));
    QVERIFY(!bar.isEnabled("mnuMain", "mnuMoney"));
    SetToolState("frmSaleAdmin");
    QVERIFY(bar.isEnabled("barTool", "tlInMoney"));
    QVERIFY(bar.isEnabled("mnuMain", "mnuMoney"));
    QVERIFY(!bar.isEnabled("popDaily", "tlMoneyAdmin"));
    // A name outside the table only turns things back on.
    SetToolState("frmAmountAdmin");
    QVERIFY(!bar.isEnabled("barTool", "tlAdd"));
    SetToolState("frmSomethingElse");
    QVERIFY(bar.isEnabled("barTool", "tlAdd"));
    QCOMPARE(bar.caption("barTool", "tlEdit"), QStringLiteral("修改"));
}

void TestToolState::statusPanels()
{
    Session::CompanyName = "东城水站";
    m_db->exec("UPDATE SysUser SET Name='王芳' WHERE ID=1");
    frmMain *main = openMain("11111111");
    SetToolState("frmSaleAdmin");
    QCOMPARE(main->acbMain()->panelText("stbCompany"), QStringLiteral("东城水站"));
    QCOMPARE(main->acbMain()->panelText("stbUser"), QStringLiteral("王芳"));
}

QTEST_MAIN(TestToolState)
#include "tst_toolstate.moc"
