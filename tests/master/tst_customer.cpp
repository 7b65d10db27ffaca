// The customer card and the choice among customers sharing a phone.
#include "support/ModalScript.h"
#include "support/ScriptedPrompter.h"
#include "support/TestDb.h"

#include "data/Session.h"
#include "master/CustomerForms.h"
#include "platform/Clock.h"
#include "platform/Forms.h"
#include "platform/Modal.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QTableView>
#include <QtTest>

namespace {
QLineEdit *edit(QWidget *w, const char *name) { return w->findChild<QLineEdit *>(QLatin1String(name)); }

void addCustomer(const TestDb &db, int id, const QString &address, const QString &status = QStringLiteral("1"))
{
    db.exec(QStringLiteral("INSERT INTO Customer(ID,Account,Name,Address,Phone,CustType,Status,CreateDate,StationID) "
                           "VALUES (%1,%1,'老客户','%2','5550000',2,'%3','2026-01-05',1)")
                .arg(id)
                .arg(address, status));
}

// Opens the card in a mode and lets the handler play the user.
void openCard(int mode, int id, const std::function<void(QWidget *)> &handler)
{
    ModalScript modals;
    modals.on(QStringLiteral("frmCustomer"), [&](QWidget *card) {
        handler(card);
        if (card->isVisible())
            ModalScript::click(card, QStringLiteral("btnExit"));
    });
    QWidget *card = Forms::get(QStringLiteral("frmCustomer"));
    card->setProperty("mActionType", mode);
    card->setProperty("mCurID", id);
    Modal::exec(card);
    VERIFY_MODALS(modals);
}
}

class CustomerTest : public QObject {
    Q_OBJECT
    std::unique_ptr<TestDb> db;

private slots:
    void initTestCase()
    {
        registerCustomerForms();
        Clock::set(QDateTime(QDate(2026, 11, 23), QTime(9, 0)));
    }
    void init()
    {
        db = std::make_unique<TestDb>();
        QVERIFY(db->ok());
    }
    void cleanup()
    {
        Forms::unloadAll();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        db.reset();
    }

    void newCardsAreNumberedAndStayOpen_data()
    {
        QTest::addColumn<QString>("account"); // empty: the system numbers it
        QTest::addColumn<QString>("storedAccount");
        QTest::addColumn<QString>("proposedNext");
        QTest::newRow("system numbering") << "" << "1" << "";
        QTest::newRow("own account") << "500" << "500" << "501";
    }
    void newCardsAreNumberedAndStayOpen()
    {
        QFETCH(QString, account);
        QFETCH(QString, storedAccount);
        QFETCH(QString, proposedNext);
        ScriptedPrompter prompts;
        Session::SelectedCustomerID = 0;
        bool stayedOpen = false;
        QString nextAccount, addressAfter, dateShown;
        openCard(1, 0, [&](QWidget *card) {
            auto *save = card->findChild<QPushButton *>(QStringLiteral("btnSave"));
            dateShown = edit(card, "txtCreateDate")->text();
            QVERIFY(!save->isEnabled());
            if (!account.isEmpty()) {
                card->findChild<QCheckBox *>(QStringLiteral("chkAutoID"))->click();
                ModalScript::type(card, QStringLiteral("txtAccount"), account);
            }
            ModalScript::type(card, QStringLiteral("txtName"), QStringLiteral("孙八"));
            ModalScript::type(card, QStringLiteral("txtAddress"), QStringLiteral("河路5号"));
            ModalScript::type(card, QStringLiteral("txtPhone"), QStringLiteral("5551111"));
            QVERIFY(save->isEnabled());
            save->click();
            stayedOpen = card->isVisible();
            nextAccount = edit(card, "txtAccount")->text();
            addressAfter = edit(card, "txtAddress")->text();
        });
        QCOMPARE(dateShown, QStringLiteral("2026-11-23"));
        QVERIFY(stayedOpen);
        QCOMPARE(addressAfter, QString());
        QCOMPARE(nextAccount, proposedNext);
        QCOMPARE(db->scalar("SELECT Account || '|' || Name || '|' || Phone || '|' || CustType || '|' || Status || '|' "
                            "|| CreateDate || '|' || StationID FROM Customer")
                     .toString(),
                 storedAccount + QStringLiteral("|孙八|5551111|1|1|2026-11-23|1"));
        QCOMPARE(Session::SelectedCustomerID, db->scalar("SELECT ID FROM Customer").toInt());
        VERIFY_PROMPTS(prompts);
    }

    void newCardsAreRefused_data()
    {
        QTest::addColumn<QString>("address");
        QTest::addColumn<QString>("account");
        QTest::addColumn<bool>("suspend");
        QTest::addColumn<QString>("message");
        QTest::newRow("address in use") << "河路1号" << "" << false << "该地址已经开户了，请检查后再继续！";
        QTest::newRow("address of a suspended customer") << "河路2号" << "" << false << "该地址已经开户了，请检查后再继续！";
        QTest::newRow("account taken") << "河路9号" << "1" << false << "您所指定的帐户名称已被占用!,请重新指定";
        QTest::newRow("suspended from the start") << "河路9号" << "" << true << "更新数据库时出现系统错误，错误信息：";
    }
    void newCardsAreRefused()
    {
        QFETCH(QString, address);
        QFETCH(QString, account);
        QFETCH(bool, suspend);
        QFETCH(QString, message);
        addCustomer(*db, 1, QStringLiteral("河路1号"));
        addCustomer(*db, 2, QStringLiteral("河路2号"), QStringLiteral("0"));
        ScriptedPrompter prompts;
        prompts.expect(message, QMessageBox::Ok, true);
        openCard(1, 0, [&](QWidget *card) {
            if (!account.isEmpty()) {
                card->findChild<QCheckBox *>(QStringLiteral("chkAutoID"))->click();
                ModalScript::type(card, QStringLiteral("txtAccount"), account);
            }
            card->findChild<QCheckBox *>(QStringLiteral("chkDisable"))->setChecked(suspend);
            ModalScript::type(card, QStringLiteral("txtAddress"), address);
            ModalScript::click(card, QStringLiteral("btnSave"));
        });
        QCOMPARE(db->count("Customer"), 2);
        VERIFY_PROMPTS(prompts);
    }

    void editedCardIsSavedAndCloses()
    {
        addCustomer(*db, 1, QStringLiteral("河路1号"));
        addCustomer(*db, 2, QStringLiteral("河路2号"));
        ScriptedPrompter prompts;
        bool accountLocked = false;
        openCard(2, 2, [&](QWidget *card) {
            accountLocked = !edit(card, "txtAccount")->isEnabled() && !edit(card, "txtCreateDate")->isEnabled();
            // No address check on an edit: a second row at one address is let through.
            ModalScript::type(card, QStringLiteral("txtAddress"), QStringLiteral("河路1号"));
            card->findChild<QComboBox *>(QStringLiteral("cmbCustType"))->setCurrentIndex(3);
            card->findChild<QCheckBox *>(QStringLiteral("chkDisable"))->setChecked(true);
            ModalScript::click(card, QStringLiteral("btnSave"));
        });
        QVERIFY(accountLocked);
        QVERIFY(!Forms::loaded(QStringLiteral("frmCustomer")));
        QCOMPARE(db->scalar("SELECT Address || '|' || CustType || '|' || Status || '|' || Account FROM Customer WHERE ID=2")
                     .toString(),
                 QStringLiteral("河路1号|3|0|2"));
        VERIFY_PROMPTS(prompts);
    }

    void selectionGivesTheChosenAccount_data()
    {
        QTest::addColumn<QString>("button");
        QTest::addColumn<int>("row");
        QTest::addColumn<int>("result");
        QTest::newRow("second row") << "btnOk" << 1 << 8;
        QTest::newRow("cancelled") << "btnCancel" << 1 << 0;
        QTest::newRow("no current row") << "btnOk" << -1 << 0;
    }
    void selectionGivesTheChosenAccount()
    {
        QFETCH(QString, button);
        QFETCH(int, row);
        QFETCH(int, result);
        addCustomer(*db, 7, QStringLiteral("西街7号"));
        addCustomer(*db, 8, QStringLiteral("西街8号"));
        ScriptedPrompter prompts;
        ModalScript modals;
        QStringList shown;
        modals.on(QStringLiteral("frmSelCustomer"), [&](QWidget *sel) {
            auto *grid = sel->findChild<QTableView *>(QStringLiteral("dbgMain"));
            for (int r = 0; r < grid->model()->rowCount(); ++r)
                shown << grid->model()->index(r, 4).data().toString();
            grid->setCurrentIndex(grid->model()->index(row, 0));
            ModalScript::click(sel, button);
        });
        int chosen = -5;
        QVERIFY(QMetaObject::invokeMethod(Forms::get(QStringLiteral("frmSelCustomer")), "SelectCustomer",
                                          Q_RETURN_ARG(int, chosen),
                                          Q_ARG(QString, QStringLiteral("Select * from Customer where Phone='5550000'"))));
        VERIFY_MODALS(modals);
        QCOMPARE(shown, QStringList({QStringLiteral("西街7号"), QStringLiteral("西街8号")}));
        QCOMPARE(chosen, result);
        VERIFY_PROMPTS(prompts);
    }
};

QTEST_MAIN(CustomerTest)
#include "tst_customer.moc"
