#include "shell/Shell.h"

#include "data/Session.h"
#include "platform/Forms.h"
#include "platform/Modal.h"
#include "support/ModalScript.h"
#include "support/ScriptedPrompter.h"
#include "support/TestDb.h"

#include <QCheckBox>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTreeWidget>
#include <QtTest>

// The operators window and card, driven as the administrator would.
class TestUsers : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() { Shell::registerShellForms(); }
    void init();
    void cleanup();
    void newOperators_data();
    void newOperators();
    void editOperator();
    void administratorProtected();

private:
    QTreeWidget *openList(ModalScript &script, std::function<void(QWidget *)> card);
    std::unique_ptr<TestDb> m_db;
};

void TestUsers::init()
{
    m_db = std::make_unique<TestDb>();
    QVERIFY(m_db->ok());
    Session::UserID = 1;
}

void TestUsers::cleanup()
{
    Forms::unloadAll();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    m_db.reset();
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

void TestUsers::newOperators_data()
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
    QTest::newRow("all rights") << "王芳" << "x" << "" << QList<int>{0, 1, 2, 3, 4, 5, 6, 7} << false
                                << "王芳|x|11111111||1|1";
}

void TestUsers::newOperators()
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

void TestUsers::editOperator()
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

void TestUsers::administratorProtected()
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

QTEST_MAIN(TestUsers)
#include "tst_users.moc"
