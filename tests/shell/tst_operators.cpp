#include "shell/Shell.h"
#include "shell/frmLogin.h"

#include "data/Session.h"
#include "platform/Forms.h"
#include "platform/Modal.h"
#include "support/ModalScript.h"
#include "support/ScriptedPrompter.h"
#include "support/TestDb.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTreeWidget>
#include <QtTest>

// Who gets in, who changes which password, and the operators window and card driven as
// the administrator would.
class TestOperators : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() { Shell::registerShellForms(); }
    void init();
    void cleanup();
    void password_data();
    void password();
    void loginListsEnabledOperatorsOnly();
    void changePassword_data();
    void changePassword();
    void newOperators_data();
    void newOperators();
    void editOperator();
    void administratorProtected();

private:
    std::unique_ptr<TestDb> m_db;
};

void TestOperators::init()
{
    m_db = std::make_unique<TestDb>();
    QVERIFY(m_db->ok());
    Session::UserID = 1;
}

void TestOperators::cleanup()
{
    Forms::unloadAll();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    m_db.reset();
}

void TestOperators::password_data()
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

void TestOperators::password()
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

void TestOperators::loginListsEnabledOperatorsOnly()
{
    m_db->exec("INSERT INTO SysUser(Name,Pwd,rolestring,Status,StationID) VALUES('停用者','','11111111','0',1)");
    m_db->exec("INSERT INTO SysUser(Name,Pwd,rolestring,Status,StationID) VALUES('张伟','','11111111','1',1)");
    auto *login = Forms::get<frmLogin>("frmLogin");
    auto *cmb = login->findChild<QComboBox *>("cmbUser");
    QStringList names;
    for (int i = 0; i < cmb->count(); ++i)
        names << cmb->itemText(i);
    QCOMPARE(names, (QStringList{"管理员", "张伟"}));

    // With nobody enabled the list is empty and OK can only ask for a choice.
    Forms::unload(login);
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
    login = Forms::get<frmLogin>("frmLogin");
    Modal::exec(login);
    VERIFY_MODALS(script);
    VERIFY_PROMPTS(prompter);
    QVERIFY(!login->LoginSucceeded());
}

void TestOperators::changePassword_data()
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

void TestOperators::changePassword()
{
    QFETCH(QString, first);
    QFETCH(QString, second);
    QFETCH(bool, okEnabled);
    QFETCH(QVariant, stored);
    m_db->exec("UPDATE SysUser SET Pwd='old' WHERE ID=1");
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

namespace {
void selectRoles(QWidget *card, const QList<int> &rows)
{
    auto *lsb = ModalScript::child<QListWidget>(card, "lsbRole");
    for (int r : rows)
        lsb->item(r)->setSelected(true);
}
QStringList listed(QWidget *list)
{
    auto *lsv = list->findChild<QTreeWidget *>("lsvMain");
    QStringList rows;
    for (int i = 0; i < lsv->topLevelItemCount(); ++i)
        rows << lsv->topLevelItem(i)->text(0) + "|" + lsv->topLevelItem(i)->text(1);
    return rows;
}
}

void TestOperators::newOperators_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("password");
    QTest::addColumn<QString>("detail");
    QTest::addColumn<QList<int>>("roles");
    QTest::addColumn<bool>("disabled");
    QTest::addColumn<QString>("stored"); // name|pwd|rolestring|detail|status|station
    QTest::newRow("plain") << " 张伟 " << "12 " << " 白班 " << QList<int>{1, 2} << false
                           << "张伟|12 |01100000| 白班 |1|1";
    QTest::newRow("no rights, empty password, disabled")
        << "李强" << "" << "" << QList<int>{} << true << "李强||00000000||0|1";
}

void TestOperators::newOperators()
{
    QFETCH(QString, name);
    QFETCH(QString, password);
    QFETCH(QString, detail);
    QFETCH(QList<int>, roles);
    QFETCH(bool, disabled);
    QFETCH(QString, stored);
    ScriptedPrompter prompter;
    ModalScript script;
    QStringList afterSave;
    script.on("frmUserAdmin", [&](QWidget *list) {
        ModalScript::click(list, "btnNew");
        afterSave = listed(list);
        ModalScript::click(list, "btnExit");
    });
    script.on("frmUser", [&](QWidget *card) {
        QVERIFY(!ModalScript::child<QPushButton>(card, "btnSave")->isEnabled());
        QVERIFY(!ModalScript::child<QWidget>(card, "cmbStation")->isVisible());
        ModalScript::type(card, "txtName", name);
        ModalScript::type(card, "txtPassword", password);
        ModalScript::type(card, "txtDetail", detail);
        selectRoles(card, roles);
        ModalScript::child<QCheckBox>(card, "chkDisable")->setChecked(disabled);
        ModalScript::click(card, "btnSave");
        // The card stays, emptied for the next operator.
        QVERIFY(card->isVisible());
        QCOMPARE(ModalScript::child<QLineEdit>(card, "txtName")->text(), QString());
        QVERIFY(ModalScript::child<QListWidget>(card, "lsbRole")->selectedItems().isEmpty());
        ModalScript::click(card, "btnExit");
    });
    Modal::exec(Forms::get("frmUserAdmin"));
    VERIFY_MODALS(script);
    VERIFY_PROMPTS(prompter);
    QCOMPARE(m_db->count("SysUser"), 2);
    QCOMPARE(m_db->scalar("SELECT Name||'|'||Pwd||'|'||rolestring||'|'||Detail||'|'||Status||'|'||StationID "
                          "FROM SysUser WHERE ID=2").toString(),
             stored);
    QCOMPARE(afterSave.size(), 2);
}

void TestOperators::editOperator()
{
    m_db->exec("INSERT INTO SysUser(Name,Pwd,rolestring,Detail,Status,StationID) "
               "VALUES('张伟','secret','01100000','早班','1',1)");
    ScriptedPrompter prompter;
    ModalScript script;
    script.on("frmUserAdmin", [&](QWidget *list) {
        auto *lsv = ModalScript::child<QTreeWidget>(list, "lsvMain");
        QVERIFY(!ModalScript::child<QPushButton>(list, "btnEdit")->isEnabled());
        lsv->setCurrentItem(lsv->topLevelItem(1));
        QVERIFY(ModalScript::child<QPushButton>(list, "btnEdit")->isEnabled());
        ModalScript::click(list, "btnEdit");
        // The edited row is chosen again in the refreshed list.
        QCOMPARE(lsv->currentItem()->text(0), QStringLiteral("张伟 2"));
        QCOMPARE(lsv->currentItem()->text(1), QStringLiteral("夜班"));
        ModalScript::click(list, "btnExit");
    });
    script.on("frmUser", [&](QWidget *card) {
        auto *pwd = ModalScript::child<QLineEdit>(card, "txtPassword");
        QVERIFY(!pwd->isEnabled());
        QCOMPARE(pwd->text(), QStringLiteral("********"));
        QCOMPARE(ModalScript::child<QLineEdit>(card, "txtName")->text(), QStringLiteral("张伟"));
        auto *lsb = ModalScript::child<QListWidget>(card, "lsbRole");
        QCOMPARE(lsb->selectedItems().size(), 2);
        QVERIFY(lsb->item(1)->isSelected() && lsb->item(2)->isSelected());
        ModalScript::type(card, "txtName", " 张伟 2 ");
        ModalScript::type(card, "txtDetail", " 夜班 ");
        lsb->item(7)->setSelected(true);
        ModalScript::child<QCheckBox>(card, "chkDisable")->setChecked(true);
        ModalScript::click(card, "btnSave");
    });
    Modal::exec(Forms::get("frmUserAdmin"));
    VERIFY_MODALS(script);
    VERIFY_PROMPTS(prompter);
    // The update trims the remark and leaves the password alone.
    QCOMPARE(m_db->scalar("SELECT Name||'|'||Pwd||'|'||rolestring||'|'||Detail||'|'||Status "
                          "FROM SysUser WHERE ID=2").toString(),
             QStringLiteral("张伟 2|secret|01100001|夜班|0"));
}

void TestOperators::administratorProtected()
{
    m_db->exec("UPDATE SysUser SET rolestring='11111111' WHERE ID=1");
    ScriptedPrompter prompter;
    prompter.expect("当前用户是系统管理，不能被禁用和修改权限！");
    ModalScript script;
    script.on("frmUserAdmin", [&](QWidget *list) {
        auto *lsv = ModalScript::child<QTreeWidget>(list, "lsvMain");
        lsv->setCurrentItem(lsv->topLevelItem(0));
        ModalScript::click(list, "btnEdit");
        ModalScript::click(list, "btnExit");
    });
    script.on("frmUser", [&](QWidget *card) {
        QVERIFY(!ModalScript::child<QWidget>(card, "chkDisable")->isEnabled());
        QVERIFY(!ModalScript::child<QWidget>(card, "lsbRole")->isEnabled());
        QVERIFY(!ModalScript::child<QWidget>(card, "cmbStation")->isEnabled());
        ModalScript::type(card, "txtName", "老板");
        ModalScript::type(card, "txtDetail", "店主");
        ModalScript::click(card, "btnSave");
    });
    Modal::exec(Forms::get("frmUserAdmin"));
    VERIFY_MODALS(script);
    VERIFY_PROMPTS(prompter);
    QCOMPARE(prompter.last().title, QStringLiteral("消息"));
    QCOMPARE(prompter.last().icon, QMessageBox::Information);
    QCOMPARE(m_db->scalar("SELECT Name||'|'||rolestring||'|'||Detail||'|'||Status FROM SysUser WHERE ID=1")
                 .toString(),
             QStringLiteral("老板|11111111|店主|1"));
}

QTEST_MAIN(TestOperators)
#include "tst_operators.moc"
