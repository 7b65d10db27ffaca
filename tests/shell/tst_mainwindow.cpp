#include "shell/CommandBar.h"
#include "shell/Shell.h"
#include "shell/ToolState.h"
#include "shell/frmMain.h"

#include "data/Session.h"
#include "support/Bench.h"
#include "telephony/ScriptedLineProvider.h"

#include <QAction>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>
#include <QStandardItemModel>
#include <QToolBar>

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
    int m_ended = 0;
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
        Shell::setEndProgram([this] { ++m_ended; });
    }

    void init()
    {
        QVERIFY(start());
        Session::UserID = 1;
        Session::SaleAdminClosable = false;
        Session::CompanyName = "东城水站";
        m_ended = 0;
        openMain("11111111")->show();
    }

    void cleanup() { FINISH_BENCH(); }

    void bandsAsBuilt()
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
    }

    void toolsReachActiveChild_data()
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

    void missingWindowsAndProceduresAreQuiet()
    {
        // Nothing may be said.
        for (const char *tool : {"tlInMoney", "tlPrintSale", "tlFilter", "tlChart", "tlCustomerAdmin",
                                 "tlStoreAdmin", "tlTodayReport", "tlSalePrintSetup", "mnuDayReport",
                                 "mnuSenderMonthReport", "mnuHistoryCall", "tlHelp", "tlSysLog",
                                 "tlGrpStationAdmin", "tlNoSuchTool"})
            main()->ToolClick(tool);
        QCOMPARE(main()->mdiArea()->subWindowList().size(), 1);
        QCOMPARE(m_ended, 0);
        // With no child at all the child tools still do nothing, and the page setup opens
        // without a grid to set up.
        Session::SaleAdminClosable = true;
        Forms::unload("frmSaleAdmin");
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        for (const char *tool : {"tlAdd", "tlNext", "tlSaleAdmin", "tlPrintPreview"})
            main()->ToolClick(tool);
        ModalScript script;
        script.on("cdlMain", [](QWidget *dialog) { qobject_cast<QDialog *>(dialog)->reject(); });
        press("popFile", "tlPrintSetup");
        VERIFY_MODALS(script);
    }

    void rowMovement_data()
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
    void rowMovement()
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

    void saleListReachedByClosingFront_data()
    {
        QTest::addColumn<bool>("byTool"); // 销售开票, or the close box of the window in front
        QTest::newRow("tool") << true;
        QTest::newRow("close box") << false;
    }
    void saleListReachedByClosingFront()
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

    void endingTheProgram_data()
    {
        QTest::addColumn<QString>("how");
        QTest::addColumn<QString>("online"); // MaxOnlineUsers afterwards
        QTest::addColumn<int>("ended");
        QTest::newRow("exit tool skips the count") << "tlExit" << "3" << 1;
        QTest::newRow("closing the frame counts down") << "close" << "2" << 1;
        QTest::newRow("clear users, No") << "clearNo" << "3" << 0;
        QTest::newRow("clear users, Yes") << "clearYes" << "1" << 1;
    }
    void endingTheProgram()
    {
        QFETCH(QString, how);
        QFETCH(QString, online);
        QFETCH(int, ended);
        db->exec("INSERT INTO SysValue(Name,myValue) VALUES('MaxOnlineUsers','3')");
        if (how.startsWith("clear")) {
            prompts->expect("你确认要清理所有在线用户吗？执行此操作后所有用户都需重新登入系统！",
                            how == "clearYes" ? QMessageBox::Yes : QMessageBox::No);
            if (how == "clearYes")
                prompts->expect("清理成功，系统将重启！");
            press("popFile", "tlClearUser");
        } else if (how == "close") {
            main()->close();
        } else {
            press("barTool", how);
        }
        QCOMPARE(m_ended, ended);
        QCOMPARE(db->scalar("SELECT myValue FROM SysValue WHERE Name='MaxOnlineUsers'").toString(), online);
    }

    void tiling_data()
    {
        QTest::addColumn<QString>("tool");
        QTest::addColumn<bool>("sideBySide");
        QTest::newRow("vertical") << "tlTileVertical" << true;
        QTest::newRow("horizontal") << "tlTileHorizontal" << false;
    }
    void tiling()
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
        QTest::newRow("reports") << "11111110" << QStringList{"mnuMain/mnuSearch"}
                                 << QStringList{"popSearch/mnuDayReport", "popDaily/tlTodayReport"};
        QTest::newRow("short string refuses nothing more")
            << "1101" << QStringList{"mnuMain/mnuMoney"}
            << QStringList{"mnuMain/mnuSearch", "popDaily/tlTodayReport"};
        QTest::newRow("only a 0 refuses") << "1x1 1111" << QStringList{}
                                          << QStringList{"popDaily/tlSaleAdmin", "mnuMain/mnuMoney"};
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

    // One row per kind of change: tools off, captions, menus, the list of tlDel.
    void toolStatePerWindow_data()
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
    void toolStatePerWindow()
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

    void laterCallWins()
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
};

QTEST_MAIN(TestMainWindow)
#include "tst_mainwindow.moc"
