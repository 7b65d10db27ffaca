#include "Shell.h"

#include "InstanceGuard.h"
#include "frmAbout.h"
#include "frmChangePwd.h"
#include "frmLogin.h"
#include "frmMain.h"
#include "frmSplash.h"
#include "frmSystemSetup.h"
#include "frmUser.h"
#include "frmUserAdmin.h"

#include "data/Gateway.h"
#include "data/Session.h"
#include "master/CatalogForms.h"
#include "master/CustomerForms.h"
#include "platform/Forms.h"
#include "platform/Modal.h"
#include "platform/Prompter.h"
#include "platform/VbError.h"
#include "platform/VbRules.h"
#include "report/ReportForms.h"
#include "report/TodayForms.h"
#include "sale/PrintForms.h"
#include "sale/TicketForms.h"
#include "stock/StockForms.h"
#include "telephony/TelephonyForms.h"
#include "views/AdminList.h"
#include "workflow/WorkflowForms.h"

#include <QLibraryInfo>
#include <QScreen>
#include <QTranslator>

static void initShellResources() { Q_INIT_RESOURCE(shell_icons); }

namespace {
std::function<void()> g_ending;
}

QString Shell::programTitle() { return QStringLiteral("Tarvik 水气销售配送管理系统"); }

void Shell::setEndProgram(std::function<void()> ending) { g_ending = std::move(ending); }

void Shell::endProgram()
{
    if (g_ending) {
        g_ending();
        return;
    }
    // Every open loop, modal ones included, leaves; then main() returns.
    QCoreApplication::exit(0);
}

void Shell::runtimeError(const VbError &error)
{
    Msg::error(QStringLiteral("实时错误 '%1':\n\n%2").arg(error.number()).arg(error.description()),
               programTitle());
    endProgram();
}

void Shell::registerShellForms()
{
    initShellResources();
    AdminListWindow::setRowIcons(QIcon(QStringLiteral(":/tarvik/icons/24/emblem-default.png")),
                                 QIcon(QStringLiteral(":/tarvik/icons/24/process-stop.png")));
    Forms::add("frmMain", [] { return new frmMain; });
    Forms::add("frmSplash", [] { return new frmSplash; });
    Forms::add("frmLogin", [] { return new frmLogin; });
    Forms::add("frmChangePwd", [] { return new frmChangePwd; });
    Forms::add("frmAbout", [] { return new frmAbout; });
    Forms::add("frmUserAdmin", [] { return new frmUserAdmin; });
    Forms::add("frmUser", [] { return new frmUser; });
    Forms::add("frmSystemSetup", [] { return new frmSystemSetup; });
}

void Shell::registerAllForms()
{
    registerShellForms();
    registerTicketForms();
    registerPrintForms();
    registerCustomerForms();
    registerCatalogForms();
    registerWorkflowForms();
    registerReportForms();
    registerStockForms();
    registerTelephonyForms();
    registerTodayForms();
}

bool Shell::startSession()
{
    try {
        OpenDatabase();
        Session::CompanyName = GetSysValue("CompanyName");
        Modal::exec(Forms::get("frmSplash"));
        auto *login = Forms::get<frmLogin>("frmLogin");
        Modal::exec(login);
        if (!login->LoginSucceeded()) {
            Forms::unload(login);
            return false;
        }
        Session::UserID = CInt(login->boundUser());
        Forms::unload(login);
        QWidget *main = Forms::get("frmMain");
        // The work area of the screen also where no window manager acts on the maximised
        // state.
        if (QScreen *screen = QGuiApplication::primaryScreen())
            main->setGeometry(screen->availableGeometry());
        main->showMaximized();
        return true;
    } catch (const VbError &e) {
        Msg::error(QStringLiteral("\\r\\n系统出现如下错误： # ") + QString::number(e.number())
                       + e.description(),
                   QStringLiteral("失败"));
        return false;
    }
}

void Shell::bringToFront()
{
    // The main window, and over it whatever dialog waits for an answer (the login at first).
    QList<QWidget *> windows;
    if (QWidget *main = Forms::loaded("frmMain"); main && main->isVisible())
        windows << main;
    if (QWidget *modal = QApplication::activeModalWidget())
        windows << modal;
    for (QWidget *w : windows) {
        w->setWindowState(w->windowState() & ~Qt::WindowMinimized);
        w->show();
        w->raise();
        w->activateWindow();
    }
}

int Shell::run(QApplication &app)
{
    // One instance per machine: a second start brings this one forward and ends, with no
    // message.
    InstanceGuard instance;
    if (!instance.claim())
        return 0;
    QObject::connect(&instance, &InstanceGuard::raiseRequested, &bringToFront);
    QApplication::setApplicationName(QStringLiteral("Tarvik"));
    QApplication::setApplicationVersion(QStringLiteral(TARVIK_VERSION));
    // The standard dialogs (fonts, page setup, printing) speak the shop's language too.
    QTranslator qtChinese;
    if (qtChinese.load(QLocale(QLocale::Chinese, QLocale::China), QStringLiteral("qtbase"),
                       QStringLiteral("_"), QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
        QCoreApplication::installTranslator(&qtChinese);
    registerAllForms();
    if (!startSession())
        return 0;
    const int code = app.exec();
    Forms::unloadAll();
    return code;
}

bool TarvikApplication::notify(QObject *receiver, QEvent *event)
{
    try {
        return QApplication::notify(receiver, event);
    } catch (const VbError &e) {
        Shell::runtimeError(e);
    } catch (const std::exception &e) {
        Shell::runtimeError(VbError(51, QString::fromLocal8Bit(e.what())));
    }
    return false;
}
