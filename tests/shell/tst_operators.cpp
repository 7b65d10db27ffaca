#include "shell/Shell.h"
#include "shell/frmLogin.h"

#include "data/Session.h"
#include "platform/DbGrid.h"
#include "support/Bench.h"
#include "views/AdminList.h"

#include <QCheckBox>
#include <QListWidget>

// Who gets in, who changes which password, and the operators window and card driven as
// the administrator would.
namespace {
QIcon square(Qt::GlobalColor colour)
{
    QPixmap p(8, 8);
    p.fill(colour);
    return QIcon(p);
}
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
    QIcon m_inUse = square(Qt::green);
    QIcon m_suspended = square(Qt::red);

    // Each listed row as name|remark|+ with the in-use icon, - with the other.
    QStringList listed(QWidget *list) const
    {
        const QAbstractItemModel *rows = ModalScript::child<DbGrid>(list, "lsvMain")->model();
        QStringList out;
        for (int r = 0; r < rows->rowCount(); ++r) {
            const qint64 icon = rows->index(r, 0).data(Qt::DecorationRole).value<QIcon>().cacheKey();
            out << rows->index(r, 0).data().toString() + "|" + rows->index(r, 1).data().toString() + "|"
                       + (icon == m_inUse.cacheKey() ? "+" : icon == m_suspended.cacheKey() ? "-" : "?");
        }
        return out;
    }

private slots:
    void initTestCase()
    {
        Shell::registerShellForms();
        AdminListWindow::setRowIcons(m_inUse, m_suspended);
    }
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
        QTest::newRow("null, blanks") << QVariant() << "   " << true;
        QTest::newRow("null, something") << QVariant() << "x" << false;
        QTest::newRow("stored with trailing blanks") << QVariant("abc  ") << "abc" << true;
        QTest::newRow("typed with blanks around") << QVariant("abc") << " abc " << true;
        QTest::newRow("case counts") << QVariant("abc") << "ABC" << false;
        QTest::newRow("wrong") << QVariant("abc") << "abd" << false;
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

        // With nobody enabled the list is empty and OK can only ask for a choice.
        Forms::unload(login);
        db->exec("UPDATE SysUser SET Status='0'");
        prompts->expect("请先选定用户名！").expect("请先选定用户名！");
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
        QVERIFY(!login->LoginSucceeded());
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
        QTest::addColumn<QString>("listedRow");
        QTest::newRow("plain") << " 张伟 " << "12 " << " 白班 " << QList<int>{1, 2} << false
                               << "张伟|12 |01100000| 白班 |1|1" << "张伟| 白班 |+";
        QTest::newRow("no rights, empty password, disabled")
            << "李强" << "" << "" << QList<int>{} << true << "李强||00000000||0|1" << "李强||-";
    }
    void newOperators()
    {
        QFETCH(QString, name);
        QFETCH(QString, password);
        QFETCH(QString, detail);
        QFETCH(QList<int>, roles);
        QFETCH(bool, disabled);
        QFETCH(QString, stored);
        QFETCH(QString, listedRow);
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
            QCOMPARE(shownRoles(card), QStringLiteral("00000000"));
            ModalScript::click(card, "btnExit");
        });
        Modal::exec(Forms::get("frmUserAdmin"));
        VERIFY_MODALS(script);
        QCOMPARE(db->count("SysUser"), 2);
        QCOMPARE(db->scalar("SELECT Name||'|'||Pwd||'|'||rolestring||'|'||Detail||'|'||Status||'|'||StationID "
                            "FROM SysUser WHERE ID=2").toString(),
                 stored);
        QCOMPARE(afterSave.size(), 2);
        QCOMPARE(afterSave.last(), listedRow);
    }

    // Opened from the selected row. The lowest ID keeps its rights and its mark, their controls
    // being off; the update trims the remark and leaves the password alone.
    void editOperator_data()
    {
        QTest::addColumn<int>("row");
        QTest::addColumn<QString>("roles"); // as loaded
        QTest::addColumn<QString>("message");
        QTest::addColumn<QString>("stored"); // name|pwd|rolestring|detail|status
        QTest::addColumn<QString>("listedRow");
        QTest::newRow("operator") << 1 << "01100000" << "" << "老板|secret|01100001|夜班|0" << "老板|夜班|-";
        QTest::newRow("administrator") << 0 << "11111111" << "当前用户是系统管理，不能被禁用和修改权限！"
                                       << "老板||11111111|夜班|1" << "老板|夜班|+";
    }
    void editOperator()
    {
        QFETCH(int, row);
        QFETCH(QString, roles);
        QFETCH(QString, message);
        QFETCH(QString, stored);
        QFETCH(QString, listedRow);
        db->exec("UPDATE SysUser SET rolestring='11111111' WHERE ID=1");
        db->exec("INSERT INTO SysUser(Name,Pwd,rolestring,Detail,Status,StationID) "
                 "VALUES('张伟','secret','01100000','早班','1',1)");
        if (!message.isEmpty())
            prompts->expect(message);
        ModalScript script;
        QString chosen;
        script.on("frmUserAdmin", [&](QWidget *list) {
            auto *lsv = ModalScript::child<DbGrid>(list, "lsvMain");
            auto *edit = ModalScript::child<QPushButton>(list, "btnEdit");
            QVERIFY(!edit->isEnabled());
            lsv->setCurrentRow(row);
            QVERIFY(edit->isEnabled());
            chosen = lsv->columnText(0);
            edit->click();
            // The edited row is chosen again in the refreshed list.
            QCOMPARE(lsv->currentRow(), row);
            QCOMPARE(listed(list).value(row), listedRow);
            ModalScript::click(list, "btnExit");
        });
        script.on("frmUser", [&](QWidget *card) {
            auto *pwd = ModalScript::child<QLineEdit>(card, "txtPassword");
            QVERIFY(!pwd->isEnabled());
            QCOMPARE(pwd->text(), QStringLiteral("********"));
            QCOMPARE(ModalScript::child<QLineEdit>(card, "txtName")->text(), chosen);
            QCOMPARE(shownRoles(card), roles);
            auto *lsb = ModalScript::child<QListWidget>(card, "lsbRole");
            auto *disable = ModalScript::child<QCheckBox>(card, "chkDisable");
            for (QWidget *w : {static_cast<QWidget *>(lsb), static_cast<QWidget *>(disable),
                               ModalScript::child<QWidget>(card, "cmbStation")})
                QCOMPARE(w->isEnabled(), message.isEmpty());
            ModalScript::type(card, "txtName", " 老板 ");
            ModalScript::type(card, "txtDetail", " 夜班 ");
            if (lsb->isEnabled())
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
