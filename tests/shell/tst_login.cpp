#include "shell/Shell.h"
#include "shell/frmLogin.h"

#include "data/Session.h"
#include "platform/Forms.h"
#include "platform/Modal.h"
#include "support/ModalScript.h"
#include "support/ScriptedPrompter.h"
#include "support/TestDb.h"

#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QtTest>

// Who gets in, and who changes which password.
class TestLogin : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() { Shell::registerShellForms(); }
    void init();
    void cleanup();
    void password_data();
    void password();
    void listShowsEnabledOperatorsOnly();
    void noOperatorChosen();
    void changePassword_data();
    void changePassword();

private:
    std::unique_ptr<TestDb> m_db;
};

void TestLogin::init()
{
    m_db = std::make_unique<TestDb>();
    QVERIFY(m_db->ok());
}

void TestLogin::cleanup()
{
    Forms::unloadAll();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    m_db.reset();
}

void TestLogin::password_data()
{
    QTest::addColumn<QVariant>("stored"); // null for a missing password
    QTest::addColumn<QString>("typed");
    QTest::addColumn<bool>("accepted");
    QTest::newRow("null, empty field") << QVariant() << "" << true;
    QTest::newRow("null, blanks") << QVariant() << "   " << true;
    QTest::newRow("null, something") << QVariant() << "x" << false;
    QTest::newRow("stored with trailing blanks") << QVariant("abc  ") << "abc" << true;
    QTest::newRow("typed with blanks around") << QVariant("abc") << " abc " << true;
    QTest::newRow("case counts") << QVariant("abc") << "ABC" << false;
    QTest::newRow("wrong") << QVariant("abc") << "abd" << false;
    QTest::newRow("blank inside counts") << QVariant("a bc") << "abc" << false;
    QTest::newRow("a tab is not a blank") << QVariant("abc") << "abc\t" << false;
}

void TestLogin::password()
{
    QFETCH(QVariant, stored);
    QFETCH(QString, typed);
    QFETCH(bool, accepted);
    m_db->exec("INSERT INTO SysUser(Name,Pwd,rolestring,Status,StationID) VALUES('李强',"
               + (stored.isNull() ? QString("NULL") : "'" + stored.toString() + "'") + ",'11111111','1',1)");
    const QString id = m_db->scalar("SELECT ID FROM SysUser WHERE Name='李强'").toString();

    ScriptedPrompter prompter;
    if (!accepted)
        prompter.expect("密码错误，请重新输入！");
    ModalScript script;
    script.on("frmLogin", [&](QWidget *w) {
        auto *cmb = ModalScript::child<QComboBox>(w, "cmbUser");
        cmb->setCurrentIndex(cmb->findText("李强"));
        ModalScript::type(w, "txtPassword", typed);
        ModalScript::click(w, "cmdOK");
        if (!accepted) {
            // The dialog stays, with the typed text selected for another try.
            QVERIFY(w->isVisible());
            auto *pwd = ModalScript::child<QLineEdit>(w, "txtPassword");
            QCOMPARE(pwd->selectedText(), typed);
            ModalScript::click(w, "cmdCancel");
        }
    });
    auto *login = Forms::get<frmLogin>("frmLogin");
    Modal::exec(login);
    VERIFY_MODALS(script);
    VERIFY_PROMPTS(prompter);
    QCOMPARE(login->LoginSucceeded(), accepted);
    QCOMPARE(login->boundUser(), id);
    QVERIFY(prompter.shown().isEmpty() || prompter.last().title == QStringLiteral("错误"));
}

void TestLogin::listShowsEnabledOperatorsOnly()
{
    m_db->exec("INSERT INTO SysUser(Name,Pwd,rolestring,Status,StationID) VALUES('停用者','','11111111','0',1)");
    m_db->exec("INSERT INTO SysUser(Name,Pwd,rolestring,Status,StationID) VALUES('张伟','','11111111','1',1)");
    auto *login = Forms::get<frmLogin>("frmLogin");
    auto *cmb = login->findChild<QComboBox *>("cmbUser");
    QStringList names;
    for (int i = 0; i < cmb->count(); ++i)
        names << cmb->itemText(i);
    QCOMPARE(names, (QStringList{"管理员", "张伟"}));
}

void TestLogin::noOperatorChosen()
{
    // With nobody enabled the list is empty and OK can only ask for a choice.
    m_db->exec("UPDATE SysUser SET Status='0'");
    ScriptedPrompter prompter;
    prompter.expect("请先选定用户名！").expect("请先选定用户名！");
    ModalScript script;
    script.on("frmLogin", [](QWidget *w) {
        QCOMPARE(ModalScript::child<QComboBox>(w, "cmbUser")->count(), 0);
        ModalScript::click(w, "cmdOK");
        ModalScript::click(w, "cmdOK");
        QVERIFY(w->isVisible());
        ModalScript::click(w, "cmdCancel");
    });
    auto *login = Forms::get<frmLogin>("frmLogin");
    Modal::exec(login);
    VERIFY_MODALS(script);
    VERIFY_PROMPTS(prompter);
    QVERIFY(!login->LoginSucceeded());
}

void TestLogin::changePassword_data()
{
    QTest::addColumn<QString>("first");
    QTest::addColumn<QString>("second");
    QTest::addColumn<bool>("okEnabled");
    QTest::addColumn<QVariant>("stored");
    QTest::newRow("same") << "新密码" << "新密码" << true << QVariant("新密码");
    QTest::newRow("both empty") << "" << "" << true << QVariant("");
    QTest::newRow("differ") << "abc" << "abd" << false << QVariant("old");
    QTest::newRow("blank counts") << "abc" << "abc " << false << QVariant("old");
    QTest::newRow("quote refused") << "a'b" << "a'b" << true << QVariant("old");
}

void TestLogin::changePassword()
{
    QFETCH(QString, first);
    QFETCH(QString, second);
    QFETCH(bool, okEnabled);
    QFETCH(QVariant, stored);
    m_db->exec("UPDATE SysUser SET Pwd='old' WHERE ID=1");
    Session::UserID = 1;
    ScriptedPrompter prompter;
    if (first.contains('\''))
        prompter.expect("更新数据库时出现系统错误，错误信息：", QMessageBox::Ok, true);
    ModalScript script;
    script.on("frmChangePwd", [&](QWidget *w) {
        ModalScript::type(w, "txtPassword1", first);
        ModalScript::type(w, "txtPassword2", second);
        auto *ok = ModalScript::child<QPushButton>(w, "btnOk");
        QCOMPARE(ok->isEnabled(), okEnabled);
        ok->click();
        if (w->isVisible())
            ModalScript::click(w, "btnCancel");
    });
    Modal::exec(Forms::get("frmChangePwd"));
    VERIFY_MODALS(script);
    VERIFY_PROMPTS(prompter);
    QCOMPARE(m_db->scalar("SELECT Pwd FROM SysUser WHERE ID=1"), stored);
}

QTEST_MAIN(TestLogin)
#include "tst_login.moc"
