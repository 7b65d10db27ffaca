#include "shell/InstanceGuard.h"
#include "shell/Shell.h"
#include "shell/frmMain.h"

#include "data/Database.h"
#include "data/Session.h"
#include "platform/VbError.h"
#include "support/Bench.h"
#include "telephony/ScriptedLineProvider.h"

#include <QDir>
#include <QLabel>
#include <QProcess>
#include <QUuid>

// The entry routine as the program runs it, on the database file beside the program, and
// what guards the running program: one instance, and errors nobody handled.
class TestStartup : public QObject {
    Q_OBJECT
    QString besideProgram() const
    {
        return QDir(QCoreApplication::applicationDirPath()).filePath(Database::FileName);
    }

private slots:
    void initTestCase()
    {
        Shell::registerShellForms();
        // The start-up's caller-ID line finds no devices instead of the machine's serial ports.
        LineProvider::setSystem(new ScriptedLineProvider(this));
    }

    void cleanup()
    {
        unloadForms();
        Database::close();
        QDir().rmdir(besideProgram());
        for (const QString suffix : {"", "-wal", "-shm", "-journal"})
            QFile::remove(besideProgram() + suffix);
    }

    void databaseThatCannotOpen()
    {
        // A folder where the file should be: nothing can open it.
        QVERIFY(QDir().mkpath(besideProgram()));
        ScriptedPrompter prompter;
        prompter.expect("\\r\\n系统出现如下错误： # -2147467259", QMessageBox::Ok, true);
        QVERIFY(!Shell::startSession());
        VERIFY_PROMPTS(prompter);
        QVERIFY(!Forms::loaded("frmMain"));
    }

    void loginCancelledEndsTheSession()
    {
        ModalScript script;
        script.on("frmSplash", [](QWidget *w) {
            QTest::mouseClick(ModalScript::child<QLabel>(w, "Picture1"), Qt::LeftButton);
        });
        script.on("frmLogin", [](QWidget *w) { ModalScript::click(w, "cmdCancel"); });
        QVERIFY(!Shell::startSession());
        VERIFY_MODALS(script);
        QVERIFY(!Forms::loaded("frmMain"));
        QVERIFY(!Forms::loaded("frmLogin"));
    }

    void splashThenLoginThenMain()
    {
        Session::UserID = 0;
        ModalScript script;
        script.on("frmSplash", [&](QWidget *w) {
            QCOMPARE(ModalScript::child<QLabel>(w, "lblCompany")->text(), Database::defaultCompanyName());
            // Nobody clicks: the splash ends by its own timer.
            QTRY_VERIFY_WITH_TIMEOUT(!w->isVisible(), 10000);
        });
        script.on("frmLogin", [](QWidget *w) {
            auto *cmb = ModalScript::child<QComboBox>(w, "cmbUser");
            cmb->setCurrentIndex(cmb->findText("管理员"));
            ModalScript::click(w, "cmdOK");
        });
        QVERIFY(Shell::startSession());
        VERIFY_MODALS(script);
        QCOMPARE(Session::UserID, qint16(1));
        QWidget *main = Forms::loaded("frmMain");
        QVERIFY(main && main->isVisible());
        QVERIFY(main->isMaximized());
        QVERIFY(!Forms::loaded("frmLogin"));
    }

    void secondStartRaisesTheFirst()
    {
        TestDb db;
        QVERIFY(db.ok());
        Session::UserID = 1;
        const QString key = "Tarvik.test." + QUuid::createUuid().toString(QUuid::Id128);
        auto first = std::make_unique<InstanceGuard>(key);
        QVERIFY(first->claim());
        connect(first.get(), &InstanceGuard::raiseRequested, &Shell::bringToFront);
        // The running program's window lies minimised behind another one.
        QWidget *main = Forms::get("frmMain");
        main->showMinimized();
        QWidget other;
        other.show();
        other.activateWindow();
        QTRY_VERIFY(other.isActiveWindow());

        // The second start is a real process: this program run in its second-start role.
        QProcess second;
        second.start(QCoreApplication::applicationFilePath(), {"--second-start", key});
        QVERIFY(second.waitForFinished(10000));
        QCOMPARE(second.exitCode(), 0);
        QTRY_VERIFY(main->isActiveWindow());
        QVERIFY(!main->isMinimized());

        // Once the first has ended, the next start is the first again.
        first.reset();
        QVERIFY(InstanceGuard(key).claim());
    }

    // A run-time error that no handler catches reaches the user and ends the program, without
    // taking the process down with it.
    void errorInEventHandler()
    {
        int ended = 0;
        Shell::setEndProgram([&ended] { ++ended; });
        ScriptedPrompter prompter;
        prompter.expect("实时错误 '6':\n\n溢出");
        QTimer::singleShot(0, [] { throw VbError::overflow(); });
        QTRY_COMPARE(ended, 1);
        VERIFY_PROMPTS(prompter);
        Shell::setEndProgram(nullptr);
    }
};

int main(int argc, char *argv[])
{
    if (argc == 3 && qstrcmp(argv[1], "--second-start") == 0) {
        QCoreApplication app(argc, argv);
        return InstanceGuard(QString::fromLocal8Bit(argv[2])).claim() ? 1 : 0;
    }
    TarvikApplication app(argc, argv);
    TestStartup test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_startup.moc"
