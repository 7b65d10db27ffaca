#include "shell/CommandBar.h"
#include "shell/Shell.h"
#include "shell/ToolState.h"
#include "shell/frmMain.h"

#include "data/Session.h"
#include "platform/Forms.h"
#include "platform/Modal.h"
#include "support/ModalScript.h"
#include "support/ScriptedPrompter.h"
#include "support/TestDb.h"
#include "telephony/ScriptedLineProvider.h"

#include <QAction>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>
#include <QStandardItemModel>
#include <QTableView>
#include <QToolBar>
#include <QtTest>

namespace {
// A list window as the shell meets it: procedures by name, a grid named dbgMain.
class frmFakeList : public QWidget {
    Q_OBJECT
public:
    frmFakeList()
    {
        auto *grid = new QTableView(this);
        grid->setObjectName("dbgMain");
        auto *model = new QStandardItemModel(4, 2, grid);
        grid->setModel(model);
    }
    QStringList calls;
    int row() const { return findChild<QTableView *>("dbgMain")->currentIndex().row(); }
public slots:
    void AddNew() { calls << "AddNew"; }
    void DeleteData() { calls << "DeleteData"; }
    void DeleteAll() { calls << "DeleteAll"; }
    void InAllMoney() { calls << "InAllMoney"; }
    void OutContainer() { calls << "OutContainer"; }
    void FinishToday() { calls << "FinishToday"; }
};
}

class TestMainWindow : public QObject {
    Q_OBJECT
private slots:
    void initTestCase();
    void init();
    void cleanup();
    void bandsAsBuilt();
    void toolsReachActiveChild_data();
    void toolsReachActiveChild();
    void missingWindowsAndProceduresAreQuiet();
    void rowMovement_data();
    void rowMovement();
    void saleListReachedByClosingFront_data();
    void saleListReachedByClosingFront();
    void endingTheProgram_data();
    void endingTheProgram();
    void printSetupWithoutGrid();
    void tiling_data();
    void tiling();
    void operatorsWindowReappliesRights();
    void rightsSwitchOff_data();
    void rightsSwitchOff();
    void toolStatePerWindow_data();
    void toolStatePerWindow();
    void laterCallWins();

private:
    frmMain *main() { return Forms::get<frmMain>("frmMain"); }
    // The main window as it loads for an operator with these rights.
    frmMain *openMain(const QString &roles)
    {
        Forms::unloadAll();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        m_saleAdminLoads = 0;
        m_db->exec("UPDATE SysUser SET rolestring='" + roles + "' WHERE ID=1");
        return main();
    }
    void press(const QString &band, const QString &tool)
    {
        QAction *a = main()->acbMain()->tool(band, tool);
        QVERIFY2(a, qPrintable(band + "/" + tool));
        a->trigger();
    }
    std::unique_ptr<TestDb> m_db;
    int m_ended = 0;
    int m_saleAdminLoads = 0;
};

void TestMainWindow::initTestCase()
{
    Shell::registerShellForms();
    // The main window's caller-ID line finds no devices instead of the machine's serial ports.
    LineProvider::setSystem(new ScriptedLineProvider(this));
    Forms::add("frmSaleAdmin", [this] {
        ++m_saleAdminLoads;
        return new frmFakeList;
    });
    Forms::add("frmMoneyAdmin", [] { return new frmFakeList; });
    Shell::setEndProgram([this] { ++m_ended; });
}

void TestMainWindow::init()
{
    m_db = std::make_unique<TestDb>();
    QVERIFY(m_db->ok());
    Session::UserID = 1;
    Session::SaleAdminClosable = false;
    Session::CompanyName = "东城水站";
    m_ended = 0;
    openMain("11111111")->show();
}

void TestMainWindow::cleanup()
{
    Forms::unloadAll();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    m_db.reset();
}

void TestMainWindow::bandsAsBuilt()
{
    CommandBar &bar = *main()->acbMain();
    // The drop-downs open from the menu bar.
    QCOMPARE(bar.tool("mnuMain", "mnuContainer")->menu(), bar.dropDown("popContainer"));
    // The toolbar shows real pictures, and tlDel opens its list of the open tickets.
    auto *toolBar = main()->findChild<QToolBar *>("barTool");
    QVERIFY(toolBar && toolBar->isVisible());
    for (const QString &tool : bar.tools("barTool"))
        QVERIFY2(!bar.tool("barTool", tool)->icon().pixmap(24).isNull(), qPrintable(tool));
    QCOMPARE(bar.tool("barTool", "tlDel")->menu(), bar.dropDown("popDel"));
    QCOMPARE(bar.tool("barTool", "tlExit")->toolTip(), QStringLiteral("退出系统"));
}

void TestMainWindow::toolsReachActiveChild_data()
{
    QTest::addColumn<QString>("band");
    QTest::addColumn<QString>("tool");
    QTest::addColumn<QString>("procedure");
    QTest::newRow("add") << "barTool" << "tlAdd" << "AddNew";
    QTest::newRow("delete") << "barTool" << "tlDel" << "DeleteData";
    QTest::newRow("delete all") << "popDel" << "tlDelAll" << "DeleteAll";
    QTest::newRow("all money") << "popMoney" << "tlInAllMoney" << "InAllMoney";
    QTest::newRow("owed empties") << "popContainer" << "tlOutContainer" << "OutContainer";
    QTest::newRow("finish") << "barTool" << "tlFinish" << "FinishToday";
}

void TestMainWindow::toolsReachActiveChild()
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

void TestMainWindow::missingWindowsAndProceduresAreQuiet()
{
    ScriptedPrompter prompter; // nothing may be said
    for (const char *tool : {"tlInMoney", "tlPrintSale", "tlFilter", "tlChart", "tlCustomerAdmin",
                             "tlStoreAdmin", "tlTodayReport", "tlSalePrintSetup", "mnuDayReport",
                             "mnuSenderMonthReport", "mnuHistoryCall", "tlHelp", "tlSysLog",
                             "tlGrpStationAdmin", "tlNoSuchTool"})
        main()->ToolClick(tool);
    VERIFY_PROMPTS(prompter);
    QCOMPARE(main()->mdiArea()->subWindowList().size(), 1);
    QCOMPARE(m_ended, 0);
    // With no child at all the child tools still do nothing.
    Session::SaleAdminClosable = true;
    Forms::unload("frmSaleAdmin");
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    for (const char *tool : {"tlAdd", "tlNext", "tlSaleAdmin", "tlPrintPreview"})
        main()->ToolClick(tool);
    VERIFY_PROMPTS(prompter);
}

void TestMainWindow::rowMovement_data()
{
    QTest::addColumn<int>("start");
    QTest::addColumn<QString>("tool");
    QTest::addColumn<int>("end");
    QTest::newRow("next") << 1 << "tlNext" << 2;
    QTest::newRow("next at last stays") << 3 << "tlNext" << 3;
    QTest::newRow("previous") << 2 << "tlPrevious" << 1;
    QTest::newRow("previous at first stays") << 0 << "tlPrevious" << 0;
    QTest::newRow("first") << 2 << "tlFirst" << 0;
    QTest::newRow("last") << 1 << "tlLast" << 3;
}

void TestMainWindow::rowMovement()
{
    QFETCH(int, start);
    QFETCH(QString, tool);
    QFETCH(int, end);
    auto *sale = qobject_cast<frmFakeList *>(Forms::activeChild());
    QVERIFY(sale);
    auto *grid = sale->findChild<QTableView *>("dbgMain");
    grid->setCurrentIndex(grid->model()->index(start, 1));
    press("barTool", tool);
    QCOMPARE(sale->row(), end);
    QCOMPARE(grid->currentIndex().column(), 1);
}

void TestMainWindow::saleListReachedByClosingFront_data()
{
    QTest::addColumn<bool>("byTool"); // 销售开票, or the close box of the window in front
    QTest::newRow("tool") << true;
    QTest::newRow("close box") << false;
}

void TestMainWindow::saleListReachedByClosingFront()
{
    QFETCH(bool, byTool);
    press("popDaily", "tlMoneyAdmin");
    QMdiSubWindow *front = main()->mdiArea()->activeSubWindow();
    QVERIFY(front && front->isMaximized());
    if (byTool)
        press("barNavChild", "tlSaleAdmin");
    else
        front->close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(!Forms::loaded("frmMoneyAdmin"));
    QWidget *sale = Forms::loaded("frmSaleAdmin");
    QCOMPARE(Forms::activeChild(), sale);
    // Back in front, the sale list fills the work area again.
    QTRY_VERIFY(main()->mdiArea()->activeSubWindow()->isMaximized());
    // With the sale list in front the tool does nothing.
    press("barNavChild", "tlSaleAdmin");
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCOMPARE(Forms::loaded("frmSaleAdmin"), sale);
}

void TestMainWindow::endingTheProgram_data()
{
    QTest::addColumn<QString>("how");
    QTest::addColumn<QString>("online"); // MaxOnlineUsers afterwards
    QTest::addColumn<int>("ended");
    QTest::newRow("exit tool skips the count") << "tlExit" << "3" << 1;
    QTest::newRow("closing the frame counts down") << "close" << "2" << 1;
    QTest::newRow("clear users, No") << "clearNo" << "3" << 0;
    QTest::newRow("clear users, Yes") << "clearYes" << "1" << 1;
}

void TestMainWindow::endingTheProgram()
{
    QFETCH(QString, how);
    QFETCH(QString, online);
    QFETCH(int, ended);
    m_db->exec("INSERT INTO SysValue(Name,myValue) VALUES('MaxOnlineUsers','3')");
    ScriptedPrompter prompter;
    if (how.startsWith("clear")) {
        prompter.expect("你确认要清理所有在线用户吗？执行此操作后所有用户都需重新登入系统！",
                        how == "clearYes" ? QMessageBox::Yes : QMessageBox::No);
        if (how == "clearYes")
            prompter.expect("清理成功，系统将重启！");
        press("popFile", "tlClearUser");
        QCOMPARE(prompter.shown().first().title, QStringLiteral("清理用户"));
        QCOMPARE(prompter.shown().first().icon, QMessageBox::Critical);
    } else if (how == "close") {
        main()->close();
    } else {
        press("barTool", how);
    }
    VERIFY_PROMPTS(prompter);
    QCOMPARE(m_ended, ended);
    QCOMPARE(m_db->scalar("SELECT myValue FROM SysValue WHERE Name='MaxOnlineUsers'").toString(), online);
}

void TestMainWindow::printSetupWithoutGrid()
{
    Session::SaleAdminClosable = true;
    Forms::unload("frmSaleAdmin");
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    ModalScript script;
    script.on("cdlMain", [](QWidget *dialog) { qobject_cast<QDialog *>(dialog)->reject(); });
    press("popFile", "tlPrintSetup");
    VERIFY_MODALS(script);
}

void TestMainWindow::tiling_data()
{
    QTest::addColumn<QString>("tool");
    QTest::addColumn<bool>("sideBySide");
    QTest::newRow("vertical") << "tlTileVertical" << true;
    QTest::newRow("horizontal") << "tlTileHorizontal" << false;
}

void TestMainWindow::tiling()
{
    QFETCH(QString, tool);
    QFETCH(bool, sideBySide);
    press("barNavChild", "tlMoneyAdmin");
    press("popWindows", tool);
    const auto windows = main()->mdiArea()->subWindowList();
    QCOMPARE(windows.size(), 2);
    const QRect a = windows[0]->geometry(), b = windows[1]->geometry();
    QVERIFY(!windows[0]->isMaximized() && !windows[1]->isMaximized());
    QVERIFY(!a.intersects(b));
    if (sideBySide) {
        QCOMPARE(a.top(), b.top());
        QCOMPARE(a.height(), b.height());
    } else {
        QCOMPARE(a.left(), b.left());
        QCOMPARE(a.width(), b.width());
    }
}

void TestMainWindow::operatorsWindowReappliesRights()
{
    // The administrator takes away his own stock right in the operators window.
    ModalScript script;
    script.on("frmUserAdmin", [this](QWidget *list) {
        m_db->exec("UPDATE SysUser SET rolestring='11111011' WHERE ID=1");
        ModalScript::click(list, "btnExit");
    });
    QVERIFY(main()->acbMain()->isEnabled("popDaily", "tlStoreAdmin"));
    press("popFile", "tlUserAdmin");
    VERIFY_MODALS(script);
    QVERIFY(!main()->acbMain()->isEnabled("popDaily", "tlStoreAdmin"));
}

// Tools that are on with all rights and off for the refused position (band/tool).
void TestMainWindow::rightsSwitchOff_data()
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
    QTest::newRow("reports") << "11111110" << QStringList{"mnuMain/mnuSearch"}
                             << QStringList{"popSearch/mnuDayReport", "popDaily/tlTodayReport"};
    QTest::newRow("short string refuses nothing more")
        << "1101" << QStringList{"mnuMain/mnuMoney"}
        << QStringList{"mnuMain/mnuSearch", "popDaily/tlTodayReport"};
    QTest::newRow("only a 0 refuses") << "1x1 1111" << QStringList{}
                                      << QStringList{"popDaily/tlSaleAdmin", "mnuMain/mnuMoney"};
}

void TestMainWindow::rightsSwitchOff()
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

// One row per kind of change: tools off, captions, menus, the list of tlDel.
void TestMainWindow::toolStatePerWindow_data()
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
    QTest::newRow("frmMoneyAdmin")
        << "frmMoneyAdmin" << QStringList{"tlAdd", "tlDel", "tlChart", "tlFinish", "tlInAmount", "tlOutAmount"}
        << QStringList{"mnuAmount", "mnuContainer"}
        << QStringList{"tlDel=删除", "tlEdit=打开", "tlPrintSale=打印单据", "tlFilter=查询"} << true;
    QTest::newRow("frmCustomerAdmin")
        << "frmCustomerAdmin"
        << QStringList{"tlChart", "tlPrintSale", "tlFinish", "tlInMoney", "tlOutMoney", "tlInAmount", "tlOutAmount"}
        << all3 << usual << false;
    QTest::newRow("frmTodayReport")
        << "frmTodayReport"
        << QStringList{"tlAdd", "tlEdit", "tlDel", "tlChart", "tlInMoney", "tlOutMoney", "tlInAmount", "tlOutAmount"}
        << all3 << QStringList{"tlDel=删除", "tlEdit=修改", "tlPrintSale=打印报表", "tlFilter=设定日期"} << true;
    QTest::newRow("not a list window") << "frmSomethingElse" << QStringList{} << QStringList{} << usual
                                       << true;
}

void TestMainWindow::toolStatePerWindow()
{
    QFETCH(QString, form);
    QFETCH(QStringList, toolsOff);
    QFETCH(QStringList, menusOff);
    QFETCH(QStringList, captions);
    QFETCH(bool, delAllOn);
    CommandBar &bar = *main()->acbMain();
    // Start from the most restrictive windows so that every tool has to come back on.
    for (const char *before : {"frmHistoryCall", "frmCustomerAdmin", "frmTodayReport"})
        SetToolState(before);
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
    QCOMPARE(bar.panelText("stbCompany"), QStringLiteral("东城水站"));
    QCOMPARE(bar.panelText("stbUser"), QStringLiteral("管理员"));
}

void TestMainWindow::laterCallWins()
{
    // Refused money: off at start, on again once a list window leaves it on.
    CommandBar &bar = *openMain("11011111")->acbMain();
    SetRights(1);
    QVERIFY(!bar.isEnabled("barTool", "tlInMoney"));
    QVERIFY(!bar.isEnabled("mnuMain", "mnuMoney"));
    SetToolState("frmSaleAdmin");
    QVERIFY(bar.isEnabled("barTool", "tlInMoney"));
    QVERIFY(bar.isEnabled("mnuMain", "mnuMoney"));
    QVERIFY(!bar.isEnabled("popDaily", "tlMoneyAdmin"));
}

QTEST_MAIN(TestMainWindow)
#include "tst_mainwindow.moc"
