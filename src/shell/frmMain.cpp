#include "frmMain.h"

#include "CommandBar.h"
#include "Shell.h"
#include "ToolState.h"
#include "frmSystemSetup.h"

#include "data/Gateway.h"
#include "data/Session.h"
#include "platform/Forms.h"
#include "platform/Modal.h"
#include "platform/Prompter.h"
#include "platform/VbRules.h"
#include "report/frmChart.h"
#include "report/frmReport.h"
#include "telephony/CallerIdHandler.h"

#include <QCloseEvent>
#include <QDesktopServices>
#include <QDir>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QPrintDialog>
#include <QPrinter>
#include <QTableView>
#include <QUrl>

namespace {
frmMain *g_current = nullptr;
}

frmMain *frmMain::current() { return g_current; }

frmMain::frmMain()
{
    g_current = this;
    setObjectName("frmMain");
    setWindowTitle(Shell::programTitle());
    setWindowIcon(QIcon(QStringLiteral(":/tarvik/icons/48/emblem-package.png")));
    resize(1100, 720);

    m_mdi = new QMdiArea(this);
    m_mdi->setObjectName("mdiArea");
    m_mdi->setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    m_mdi->setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    setCentralWidget(m_mdi);

    // Does nothing in the delivered build (see CallerIdHandlingOff).
    m_callerId = new CallerIdHandler(CallerIdHandlingOff, this);

    m_bar = new CommandBar(this);
    buildMainCommandBar(*m_bar);
    connect(m_bar, &CommandBar::toolClick, this, &frmMain::ToolClick);

    Forms::setActiveChildProvider([this]() -> QWidget * {
        QMdiSubWindow *sub = m_mdi->activeSubWindow();
        if (!sub && !m_mdi->subWindowList().isEmpty())
            sub = m_mdi->currentSubWindow();
        return sub ? sub->widget() : nullptr;
    });
    setToolStateHandler([this](const QString &name) { ToolState::apply(*m_bar, name); });
    // The tools follow the list window that comes to the front; leaving one changes nothing.
    connect(m_mdi, &QMdiArea::subWindowActivated, this, [](QMdiSubWindow *sub) {
        if (!sub || !sub->widget())
            return;
        // The home list fills the work area whenever it comes forward, also when the window
        // that stood maximised in front of it closes and leaves it at its restored size.
        if (sub->widget()->objectName() == "frmSaleAdmin" && !sub->isMinimized())
            sub->showMaximized();
        SetToolState(sub->widget()->objectName());
    });
    Form_Load();
}

frmMain::~frmMain()
{
    if (g_current == this)
        g_current = nullptr;
    Forms::setActiveChildProvider(nullptr);
    setToolStateHandler(nullptr);
}

QString frmMain::homePage() { return QStringLiteral("http://www.tarvik.cn"); }

void frmMain::setTapiline(cTAPILine *line)
{
    if (line == m_tapiline)
        return;
    // Released at once, so that the next line finds its device free.
    delete m_tapiline.data();
    m_tapiline = line;
    if (!line)
        return;
    line->setParent(this);
    if (m_callerId)
        m_callerId->attach(line);
}

void frmMain::setCallerIdHandler(CallerIdHandler *handler)
{
    if (handler == m_callerId)
        return;
    delete m_callerId;
    m_callerId = handler;
    if (!handler)
        return;
    handler->setParent(this);
    if (m_tapiline)
        handler->attach(m_tapiline);
}

void frmMain::Form_Load()
{
    showChild("frmSaleAdmin");
    SetRights(Session::UserID);
    // Its load opens the telephone line; it stays hidden until the settings tool is pressed.
    Forms::get("frmSystemSetup");
}

void frmMain::showChild(const QString &name)
{
    QWidget *form = Forms::get(name);
    if (!form)
        return;
    for (QMdiSubWindow *sub : m_mdi->subWindowList()) {
        if (sub->widget() == form) {
            sub->showMaximized();
            m_mdi->setActiveSubWindow(sub);
            return;
        }
    }
    QMdiSubWindow *sub = m_mdi->addSubWindow(form);
    sub->setAttribute(Qt::WA_DeleteOnClose);
    sub->setWindowIcon(form->windowIcon());
    form->show();
    // A list fills the work area, as the shop's staff work with one list at a time.
    sub->showMaximized();
    m_mdi->setActiveSubWindow(sub);
}

void frmMain::callChild(const char *procedure)
{
    // With no child in front, or one without the procedure, there is nothing to act on.
    Forms::call(Forms::activeChild(), procedure);
}

void frmMain::ToolClick(const QString &tool)
{
    static const QHash<QString, const char *> childProcedures = {
        {"tlInMoney", "InMoney"},       {"tlInAllMoney", "InAllMoney"},
        {"tlOutMoney", "OutMoney"},     {"tlOutAllMoney", "OutAllMoney"},
        {"tlOutAmount", "OutAmount"},   {"tlOutAllAmount", "OutAllAmount"},
        {"tlInAmount", "InAmount"},     {"tlInAllAmount", "InAllAmount"},
        {"tlInContainer", "InContainer"}, {"tlInAllContainer", "InAllContainer"},
        {"tlOutContainer", "OutContainer"}, {"tlOutAllContainer", "OutAllContainer"},
        {"tlFinish", "FinishToday"},    {"tlAdd", "AddNew"},
        {"tlEdit", "EditData"},         {"tlDel", "DeleteData"},
        {"tlDelAll", "DeleteAll"},      {"tlRefresh", "DataRefresh"},
        {"tlFilter", "ShowFilter"},     {"tlPrintSale", "PrintSale"},
        {"tlPrintPreview", "PrintPreview"}, {"tlPrint", "PrintReport"},
    };
    static const QHash<QString, QString> plainWindows = {
        {"tlCustomerAdmin", "frmCustomerAdmin"}, {"tlStoreAdmin", "frmStoreAdmin"},
        {"tlMoneyAdmin", "frmMoneyAdmin"},       {"tlAmountAdmin", "frmAmountAdmin"},
        {"tlContainerAdmin", "frmContainerAdmin"}, {"tlTodayReport", "frmTodayReport"},
        {"mnuHistoryCall", "frmHistoryCall"},
    };
    static const QHash<QString, QString> modalWindows = {
        {"tlSenderAdmin", "frmSenderAdmin"}, {"tlProductAdmin", "frmProductAdmin"},
        {"tlChangePwd", "frmChangePwd"},     {"tlSysConfigure", "frmSystemSetup"},
        {"tlSalePrintSetup", "frmSalePrintSetup"}, {"tlAbout", "frmAbout"},
    };
    static const QStringList reportModes = {"mnuDayReport",   "mnuCustDayReport",
                                            "mnuSenderDayReport", "mnuMonthReport",
                                            "mnuCustMonthReport", "mnuSenderMonthReport"};

    if (tool == "tlExit") {
        Shell::endProgram();
    } else if (tool == "tlUserAdmin") {
        Modal::exec(Forms::get("frmUserAdmin"));
        // The operator's own rights may have changed.
        SetRights(Session::UserID);
    } else if (modalWindows.contains(tool)) {
        Modal::exec(Forms::get(modalWindows.value(tool)));
    } else if (tool == "tlSysReset") {
        ResetSystem();
    } else if (tool == "tlClearUser") {
        clearUser();
    } else if (tool == "tlSaleAdmin") {
        // The sale list stays open behind the others: closing what is in front reaches it.
        QWidget *child = Forms::activeChild();
        if (child && child->objectName() != "frmSaleAdmin")
            Forms::unload(child);
    } else if (plainWindows.contains(tool)) {
        showChild(plainWindows.value(tool));
    } else if (childProcedures.contains(tool)) {
        callChild(childProcedures.value(tool));
    } else if (tool == "tlChart") {
        showChart();
    } else if (reportModes.contains(tool)) {
        showReport(int(reportModes.indexOf(tool)));
    } else if (tool == "tlCascade") {
        m_mdi->cascadeSubWindows();
    } else if (tool == "tlTileHorizontal") {
        tile(Qt::Vertical);
    } else if (tool == "tlTileVertical") {
        tile(Qt::Horizontal);
    } else if (tool == "tlArrangeIcons") {
        // Minimised windows line up along the bottom edge.
        int x = 0;
        for (QMdiSubWindow *sub : m_mdi->subWindowList()) {
            if (!sub->isMinimized())
                continue;
            sub->move(x, m_mdi->viewport()->height() - sub->height());
            x += sub->width();
        }
    } else if (tool == "tlNext") {
        NextRow();
    } else if (tool == "tlPrevious") {
        PreviousRow();
    } else if (tool == "tlFirst") {
        FirstRow();
    } else if (tool == "tlLast") {
        LastRow();
    } else if (tool == "tlPrintSetup") {
        printSetup();
    } else if (tool == "tlShowNavigator") {
        m_bar->setBandVisible("barNavigator", true);
        m_bar->recalcLayout();
    } else if (tool == "tlHomePage") {
        QDesktopServices::openUrl(QUrl(homePage()));
    }
    // tlHelp, tlSysLog, tlGrpStationAdmin and any other name do nothing.
}

// Open windows side by side (Qt::Horizontal) or one above the other (Qt::Vertical), each
// taking an equal share of the work area.
void frmMain::tile(Qt::Orientation direction)
{
    QList<QMdiSubWindow *> windows;
    for (QMdiSubWindow *sub : m_mdi->subWindowList()) {
        if (!sub->isMinimized() && sub->isVisible())
            windows << sub;
    }
    if (windows.isEmpty())
        return;
    const QRect area = m_mdi->viewport()->rect();
    const int n = int(windows.size());
    for (int i = 0; i < n; ++i) {
        windows[i]->showNormal();
        if (direction == Qt::Horizontal) {
            const int w = area.width() / n;
            windows[i]->setGeometry(i * w, 0, i == n - 1 ? area.width() - i * w : w, area.height());
        } else {
            const int h = area.height() / n;
            windows[i]->setGeometry(0, i * h, area.width(), i == n - 1 ? area.height() - i * h : h);
        }
    }
}

void frmMain::clearUser()
{
    if (Msg::box(QStringLiteral("清理用户"),
                 QStringLiteral("你确认要清理所有在线用户吗？执行此操作后所有用户都需重新登入系统！"),
                 QMessageBox::Critical, QMessageBox::Yes | QMessageBox::No)
        != QMessageBox::Yes)
        return;
    SetSysValue("MaxOnlineUsers", "1");
    Msg::box(Shell::programTitle(), QStringLiteral("清理成功，系统将重启！"), QMessageBox::NoIcon,
             QMessageBox::Ok);
    Shell::endProgram();
}

void frmMain::showChart()
{
    auto *report = qobject_cast<frmReport *>(Forms::activeChild());
    auto *chart = Forms::get<frmChart>("frmChart");
    if (!chart)
        return;
    chart->curChartCaption = report ? report->curReportCaption : QString();
    Modal::exec(chart);
}

void frmMain::showReport(int mode)
{
    auto *setup = Forms::get<frmSetReport>("frmSetReport");
    if (!setup)
        return;
    setup->curReportType = mode;
    Modal::exec(setup);
    if (!setup->mResult)
        return;
    auto *report = Forms::get<frmReport>("frmReport");
    if (report)
        report->setChoice(setup->choice());
    Forms::unload(setup);
    if (report)
        showChild("frmReport");
}

QTableView *frmMain::activeGrid() const
{
    QWidget *child = Forms::activeChild();
    return child ? child->findChild<QTableView *>("dbgMain") : nullptr;
}

void frmMain::moveRow(int step)
{
    QTableView *grid = activeGrid();
    if (!grid || !grid->model())
        return;
    const int rows = grid->model()->rowCount();
    if (rows == 0)
        return;
    const QModelIndex current = grid->currentIndex();
    int row = current.isValid() ? current.row() : 0;
    switch (step) {
    case 1: row = qMin(row + 1, rows - 1); break;   // stays on the last row
    case -1: row = qMax(row - 1, 0); break;         // stays on the first row
    case 2: row = rows - 1; break;
    default: row = 0; break;
    }
    const int column = current.isValid() ? current.column() : 0;
    const QModelIndex target = grid->model()->index(row, column);
    grid->selectionModel()->setCurrentIndex(
        target, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    grid->scrollTo(target);
}

void frmMain::NextRow() { moveRow(1); }
void frmMain::PreviousRow() { moveRow(-1); }
void frmMain::FirstRow() { moveRow(0); }
void frmMain::LastRow() { moveRow(2); }

void frmMain::printSetup()
{
    QTableView *grid = activeGrid();
    if (grid && grid->metaObject()->indexOfMethod("PageSetup()") >= 0
        && QMetaObject::invokeMethod(grid, "PageSetup"))
        return;
    // No grid in front: the printer dialog, in its set-up form.
    QPrinter printer;
    QPrintDialog cdlMain(&printer, this);
    cdlMain.setObjectName("cdlMain");
    cdlMain.setWindowTitle(QStringLiteral("打印设置"));
    cdlMain.setOption(QAbstractPrintDialog::PrintToFile, false);
    Modal::exec(&cdlMain);
}

void frmMain::closeEvent(QCloseEvent *event)
{
    const double online = Val(GetSysValue("MaxOnlineUsers")) - 1;
    SetSysValue("MaxOnlineUsers", NumText(online));
    event->accept();
    Shell::endProgram();
}
