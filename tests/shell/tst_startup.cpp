#include "shell/Shell.h"
#include "shell/frmMain.h"

#include "data/Database.h"
#include "data/Session.h"
#include "platform/Forms.h"
#include "support/ModalScript.h"
#include "support/ScriptedPrompter.h"

#include <QComboBox>
#include <QDir>
#include <QElapsedTimer>
#include <QLabel>
#include <QtTest>

// The entry routine as the program runs it, on the database file beside the program.
class TestStartup : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() { Shell::registerShellForms(); }
    void cleanup();
    void databaseThatCannotOpen();
    void loginCancelledEndsTheSession();
    void splashThenLoginThenMain();

private:
    QString besideProgram() const
    {
        return QDir(QCoreApplication::applicationDirPath()).filePath(Database::FileName);
    }
};

void TestStartup::cleanup()
{
    Forms::unloadAll();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    Database::close();
    QDir().rmdir(besideProgram());
    for (const QString suffix : {"", "-wal", "-shm", "-journal"})
        QFile::remove(besideProgram() + suffix);
}

void TestStartup::databaseThatCannotOpen()
{
    // A folder where the file should be: nothing can open it.
    QVERIFY(QDir().mkpath(besideProgram()));
    ScriptedPrompter prompter;
    prompter.expect("\\r\\n系统出现如下错误： # -2147467259", QMessageBox::Ok, true);
    QVERIFY(!Shell::startSession());
    VERIFY_PROMPTS(prompter);
    QCOMPARE(prompter.last().title, QStringLiteral("失败"));
    QCOMPARE(prompter.last().icon, QMessageBox::Critical);
    QVERIFY(!Forms::loaded("frmMain"));
}

void TestStartup::loginCancelledEndsTheSession()
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

void TestStartup::splashThenLoginThenMain()
{
    Session::UserID = 0;
    qint64 splashShown = 0;
    ModalScript script;
    script.on("frmSplash", [&](QWidget *w) {
        QCOMPARE(ModalScript::child<QLabel>(w, "lblCompany")->text(), Database::defaultCompanyName());
        QElapsedTimer clock;
        clock.start();
        QTRY_VERIFY_WITH_TIMEOUT(!w->isVisible(), 5000);
        splashShown = clock.elapsed();
    });
    script.on("frmLogin", [](QWidget *w) {
        auto *cmb = ModalScript::child<QComboBox>(w, "cmbUser");
        cmb->setCurrentIndex(cmb->findText("管理员"));
        ModalScript::click(w, "cmdOK");
    });
    QVERIFY(Shell::startSession());
    VERIFY_MODALS(script);
    // About two seconds of splash, ended by its own timer.
    QVERIFY2(splashShown > 1500 && splashShown < 4000, qPrintable(QString::number(splashShown)));
    QCOMPARE(Session::CompanyName, Database::defaultCompanyName());
    QCOMPARE(Session::UserID, qint16(1));
    QWidget *main = Forms::loaded("frmMain");
    QVERIFY(main && main->isVisible());
    QVERIFY(!Forms::loaded("frmLogin"));
}

QTEST_MAIN(TestStartup)
#include "tst_startup.moc"
