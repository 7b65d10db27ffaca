#include "shell/Shell.h"
#include "shell/frmLogin.h"

#include "data/Session.h"
#include "platform/DbGrid.h"
#include "support/Bench.h"

#include <QCheckBox>
#include <QListWidget>

// Who gets in, who changes which password, and the operators window and card driven as
// the administrator would.
namespace {
void selectRoles(QWidget *card, const QList<int> &rows)
{
    auto *lsb = ModalScript::child<QListWidget>(card, "lsbRole");
    for (int r : rows)
        lsb->item(r)->setSelected(true);
}
// The roles shown in the card, as rolestring writes them.
QString shownRoles(QWidget *card)
{
    auto *lsb = ModalScript::child<QListWidget>(card, "lsbRole");
    QString roles;
    for (int i = 0; i < lsb->count(); ++i)
        roles += lsb->item(i)->isSelected() ? '1' : '0';
    return roles;
}
}

class TestOperators : public QObject, Bench {
    Q_OBJECT
private slots:
    void initTestCase() { Shell::registerShellForms(); }
    void init()
    {
        QVERIFY(start());
        Session::UserID = 1;
    }
    void cleanup() { FINISH_BENCH(); }

    void password_data()
    {
        QTest::addColumn<QVariant>("stored"); // null for a missing password
        QTest::addColumn<QString>("typed");
        QTest::addColumn<bool>("accepted");
        QTest::newRow("null, empty field") << QVariant() << "" << true;
        QTest::newRow("null, something") << QVariant() << "x" << false;
        QTest::newRow("stored with trailing blanks") << QVariant("abc  ") << "abc" << true;
        QTest::newRow("typed with blanks around") << QVariant("abc") << " abc " << true;
        QTest::newRow("case counts") << QVariant("abc") << "ABC" << false;
        QTest::newRow("blank inside counts") << QVariant("a bc") << "abc" << false;
        QTest::newRow("a tab is not a blank") << QVariant("abc") << "abc\t" << false;
    }
    void password()
    {
        QFETCH(QVariant, stored);
        QFETCH(QString, typed);
        QFETCH(bool, accepted);
        db->exec("INSERT INTO SysUser(Name,Pwd,rolestring,Status,StationID) VALUES('李强',"
                 + (stored.isNull() ? QString("NULL") : "'" + stored.toString() + "'") + ",'11111111','1',1)");
        const QString id = db->scalar("SELECT ID FROM SysUser WHERE Name='李强'").toString();

        if (!accepted)
            prompts->expect("密码错误，请重新输入！");
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
        QCOMPARE(login->LoginSucceeded(), accepted);
        QCOMPARE(login->boundUser(), id);
    }

    void loginListsEnabledOperatorsOnly()
    {
        db->exec("INSERT INTO SysUser(Name,Pwd,rolestring,Status,StationID) VALUES('停用者','','11111111','0',1)");
        db->exec("INSERT INTO SysUser(Name,Pwd,rolestring,Status,StationID) VALUES('张伟','','11111111','1',1)");
        auto *login = Forms::get<frmLogin>("frmLogin");
        auto *cmb = login->findChild<QComboBox *>("cmbUser");
        QStringList names;
        for (int i = 0; i < cmb->count(); ++i)
            names << cmb->itemText(i);
        QCOMPARE(names, (QStringList{"管理员", "张伟"}));
    }

    void changePassword_data()
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
    void changePassword()
    {
        QFETCH(QString, first);
        QFETCH(QString, second);
        QFETCH(bool, okEnabled);
        QFETCH(QVariant, stored);
        db->exec("UPDATE SysUser SET Pwd='old' WHERE ID=1");
        if (first.contains('\''))
            prompts->expect("更新数据库时出现系统错误，错误信息：", QMessageBox::Ok, true);
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
        QCOMPARE(db->scalar("SELECT Pwd FROM SysUser WHERE ID=1"), stored);
    }

    void newOperators_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("password");
        QTest::addColumn<QString>("detail");
        QTest::addColumn<QList<int>>("roles");
        QTest::addColumn<bool>("disabled");
        QTest::addColumn<QString>("stored"); // name|pwd|rolestring|detail|status|station
        QTest::newRow("plain") << " 张伟 " << "12 " << " 白班 " << QList<int>{1, 2} << false << "张伟|12 |01100000| 白班 |1|1";
        QTest::newRow("no rights, empty password, disabled")
            << "李强" << "" << "" << QList<int>{} << true << "李强||00000000||0|1";
    }
    void newOperators()
    {
        QFETCH(QString, name);
        QFETCH(QString, password);
        QFETCH(QString, detail);
        QFETCH(QList<int>, roles);
        QFETCH(bool, disabled);
        QFETCH(QString, stored);
        ModalScript script;
        script.on("frmUserAdmin", [&](QWidget *list) {
            ModalScript::click(list, "btnNew");
            ModalScript::click(list, "btnExit");
        });
        script.on("frmUser", [&](QWidget *card) {
            ModalScript::type(card, "txtName", name);
            ModalScript::type(card, "txtPassword", password);
            ModalScript::type(card, "txtDetail", detail);
            selectRoles(card, roles);
            ModalScript::child<QCheckBox>(card, "chkDisable")->setChecked(disabled);
            ModalScript::click(card, "btnSave");
            // The card stays, emptied for the next operator: none of these rights carry over.
            QVERIFY(card->isVisible());
            QCOMPARE(ModalScript::child<QLineEdit>(card, "txtName")->text(), QString());
            QCOMPARE(shownRoles(card), QStringLiteral("00000000"));
            ModalScript::click(card, "btnExit");
        });
        Modal::exec(Forms::get("frmUserAdmin"));
        VERIFY_MODALS(script);
        QCOMPARE(db->count("SysUser"), 2);
        QCOMPARE(db->scalar("SELECT Name||'|'||Pwd||'|'||rolestring||'|'||Detail||'|'||Status||'|'||StationID "
                            "FROM SysUser WHERE ID=2").toString(),
                 stored);
    }

    // Opened from the selected row. The lowest ID keeps its rights and its mark, their controls
    // being off; the update trims the remark and leaves the password alone.
    void editOperator_data()
    {
        QTest::addColumn<int>("row");
        QTest::addColumn<QString>("roles"); // as loaded
        QTest::addColumn<QString>("message");
        QTest::addColumn<QString>("stored"); // name|pwd|rolestring|detail|status
        QTest::newRow("operator") << 1 << "01100000" << "" << "老板|secret|01100001|夜班|0";
        QTest::newRow("administrator") << 0 << "11111111" << "当前用户是系统管理，不能被禁用和修改权限！"
                                       << "老板||11111111|夜班|1";
    }
    void editOperator()
    {
        QFETCH(int, row);
        QFETCH(QString, roles);
        QFETCH(QString, message);
        QFETCH(QString, stored);
        db->exec("UPDATE SysUser SET rolestring='11111111' WHERE ID=1");
        db->exec("INSERT INTO SysUser(Name,Pwd,rolestring,Detail,Status,StationID) "
                 "VALUES('张伟','secret','01100000','早班','1',1)");
        if (!message.isEmpty())
            prompts->expect(message);
        ModalScript script;
        script.on("frmUserAdmin", [&](QWidget *list) {
            ModalScript::child<DbGrid>(list, "lsvMain")->setCurrentRow(row);
            ModalScript::click(list, "btnEdit");
            ModalScript::click(list, "btnExit");
        });
        script.on("frmUser", [&](QWidget *card) {
            QCOMPARE(shownRoles(card), roles);
            auto *lsb = ModalScript::child<QListWidget>(card, "lsbRole");
            auto *disable = ModalScript::child<QCheckBox>(card, "chkDisable");
            ModalScript::type(card, "txtName", " 老板 ");
            ModalScript::type(card, "txtDetail", " 夜班 ");
            if (lsb->isEnabled()) // as a user would: only what the card lets him
                lsb->item(7)->setSelected(true);
            if (disable->isEnabled())
                disable->setChecked(true);
            ModalScript::click(card, "btnSave");
        });
        Modal::exec(Forms::get("frmUserAdmin"));
        VERIFY_MODALS(script);
        QCOMPARE(db->scalar(QString("SELECT Name||'|'||Pwd||'|'||rolestring||'|'||Detail||'|'||Status "
                                    "FROM SysUser WHERE ID=%1").arg(row + 1)).toString(),
                 stored);
    }
};

QTEST_MAIN(TestOperators)
#include "tst_operators.moc"
