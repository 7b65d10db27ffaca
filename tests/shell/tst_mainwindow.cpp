#include "shell/CommandBar.h"
#include "shell/Shell.h"
#include "shell/frmMain.h"

#include "data/Session.h"
#include "platform/Forms.h"
#include "platform/Modal.h"
#include "support/ModalScript.h"
#include "support/ScriptedPrompter.h"
#include "support/TestDb.h"

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
    void saleListReachedByClosingFront();
    void endingTheProgram_data();
    void endingTheProgram();
    void printSetupWithoutGrid();
    void tiling_data();
    void tiling();
    void operatorsWindowReappliesRights();

private:
    frmMain *main() { return Forms::get<frmMain>("frmMain"); }
    void press(const QString &band, const QString &tool)
    {
        QAction *a = main()->acbMain()->tool(band, tool);
        QVERIFY2(a, qPrintable(band + "/" + tool));
        a->trigger();
    }
    std::unique_ptr<TestDb> m_db;
    int m_ended = 0;
};

void TestMainWindow::initTestCase()
{
    Shell::registerShellForms();
    Forms::add("frmSaleAdmin", [] { return new frmFakeList; });
    Forms::add("frmMoneyAdmin", [] { return new frmFakeList; });
    Shell::setEndProgram([this] { ++m_ended; });
}

void TestMainWindow::init()
{
    m_db = std::make_unique<TestDb>();
    QVERIFY(m_db->ok());
    m_db->exec("UPDATE SysUser SET rolestring='11111111'");
    Session::UserID = 1;
    m_ended = 0;
    main()->show();
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
    // One command on two bands: two captions, two flags.
    QCOMPARE(bar.caption("barTool", "tlAdd"), QStringLiteral("新建"));
    QCOMPARE(bar.caption("popOperate", "tlAdd"), QStringLiteral("增加记录"));
    bar.setEnabled("barTool", "tlAdd", false);
    QVERIFY(bar.isEnabled("popOperate", "tlAdd"));
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

void TestMainWindow::saleListReachedByClosingFront()
{
    press("popDaily", "tlMoneyAdmin");
    QVERIFY(Forms::loaded("frmMoneyAdmin"));
    press("barNavChild", "tlSaleAdmin");
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(!Forms::loaded("frmMoneyAdmin"));
    QWidget *sale = Forms::loaded("frmSaleAdmin");
    QVERIFY(sale);
    QCOMPARE(Forms::activeChild(), sale);
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

QTEST_MAIN(TestMainWindow)
#include "tst_mainwindow.moc"
