// The customer windows over a real database: the card, and the customer list suspending and
// taking back.
#include "support/Bench.h"

#include "data/Gateway.h"
#include "data/Session.h"
#include "master/CustomerForms.h"
#include "master/frmCustomer.h"
#include "master/frmCustomerAdmin.h"
#include "platform/Clock.h"

#include <QCheckBox>

namespace {
QLineEdit *edit(QWidget *w, const char *name) { return w->findChild<QLineEdit *>(QLatin1String(name)); }
QCheckBox *check(QWidget *w, const char *name) { return w->findChild<QCheckBox *>(QLatin1String(name)); }

// Opens the card in a mode and lets the handler play the user.
void openCard(int mode, int id, const ModalScript::Handler &handler)
{
    ModalScript modals;
    modals.on(QStringLiteral("frmCustomer"), [&](QWidget *card) {
        handler(card);
        if (card->isVisible())
            ModalScript::click(card, QStringLiteral("btnExit"));
    });
    frmCustomer::openFor(mode, id);
    VERIFY_MODALS(modals);
}

// The customers listed, by their hidden ID.
QStringList ids(const DbGrid *grid)
{
    QStringList out;
    for (int r = 0; r < grid->model()->rowCount(); ++r)
        out << grid->model()->index(r, 0).data().toString();
    return out;
}
}

class CustomerTest : public QObject, Bench {
    Q_OBJECT
private slots:
    void initTestCase()
    {
        registerCustomerForms();
        Clock::set(QDateTime(QDate(2026, 11, 23), QTime(9, 0)));
    }
    // Customers 1 at 河路1号 and 2, suspended, at 河路2号 are there from the start.
    void init()
    {
        QVERIFY(start());
        QVERIFY(Rows::customer(*db, 1, QStringLiteral("河路1号")));
        QVERIFY(Rows::customer(*db, 2, QStringLiteral("河路2号"), QStringLiteral("5550000"), QStringLiteral("0")));
    }
    void cleanup() { FINISH_BENCH(); }

    void newCardsAreNumberedAndStayOpen_data()
    {
        QTest::addColumn<QString>("account"); // empty: the system numbers it
        QTest::addColumn<QString>("storedAccount");
        QTest::addColumn<QString>("proposedNext");
        QTest::newRow("system numbering") << "" << "3" << "";
        QTest::newRow("own account") << "500" << "500" << "501";
    }
    void newCardsAreNumberedAndStayOpen()
    {
        QFETCH(QString, account);
        QFETCH(QString, storedAccount);
        bool stayedOpen = false;
        QString nextAccount, addressAfter;
        openCard(1, 0, [&](QWidget *card) {
            if (!account.isEmpty()) {
                check(card, "chkAutoID")->click();
                ModalScript::type(card, QStringLiteral("txtAccount"), account);
            }
            ModalScript::type(card, QStringLiteral("txtName"), QStringLiteral("孙八"));
            ModalScript::type(card, QStringLiteral("txtAddress"), QStringLiteral("河路5号"));
            ModalScript::type(card, QStringLiteral("txtPhone"), QStringLiteral("5551111"));
            ModalScript::click(card, QStringLiteral("btnSave"));
            stayedOpen = card->isVisible();
            nextAccount = edit(card, "txtAccount")->text();
            addressAfter = edit(card, "txtAddress")->text();
        });
        QVERIFY(stayedOpen);
        QCOMPARE(addressAfter, QString());
        QTEST(nextAccount, "proposedNext");
        QCOMPARE(db->scalar("SELECT Account || '|' || Name || '|' || Phone || '|' || CustType || '|' || Status || '|' "
                            "|| CreateDate || '|' || StationID FROM Customer WHERE Address='河路5号'").toString(),
                 storedAccount + QStringLiteral("|孙八|5551111|1|1|2026-11-23|1"));
        QCOMPARE(Session::SelectedCustomerID, db->scalar("SELECT ID FROM Customer WHERE Address='河路5号'").toInt());
    }

    void newCardsAreRefused_data()
    {
        QTest::addColumn<QString>("address");
        QTest::addColumn<QString>("account");
        QTest::addColumn<bool>("suspend");
        QTest::addColumn<QString>("message");
        QTest::addColumn<QString>("date");
        const QString used = "该地址已经开户了，请检查后再继续！";
        QTest::newRow("address in use") << "河路1号" << "" << false << used << "";
        QTest::newRow("address of a suspended customer") << "河路2号" << "" << false << used << "";
        QTest::newRow("account taken") << "河路9号" << "1" << false << "您所指定的帐户名称已被占用!,请重新指定" << "";
        // The suspended flag brings its own comma into the statement.
        QTest::newRow("suspended from the start") << "河路9号" << "" << true << Failed::Update << "";
        QTest::newRow("opening date that is a condition")
            << "河路9号" << "" << false << Failed::Update << "2026-01-01# + 1 + #2026-01-01";
    }
    void newCardsAreRefused()
    {
        QFETCH(QString, address);
        QFETCH(QString, account);
        QFETCH(bool, suspend);
        QFETCH(QString, message);
        QFETCH(QString, date);
        prompts->expect(message, QMessageBox::Ok, true);
        openCard(1, 0, [&](QWidget *card) {
            if (!date.isEmpty())
                edit(card, "txtCreateDate")->setText(date);
            if (!account.isEmpty()) {
                check(card, "chkAutoID")->click();
                ModalScript::type(card, QStringLiteral("txtAccount"), account);
            }
            check(card, "chkDisable")->setChecked(suspend);
            ModalScript::type(card, QStringLiteral("txtAddress"), address);
            ModalScript::click(card, QStringLiteral("btnSave"));
        });
        QCOMPARE(db->count("Customer"), 2);
    }

    void editedCardIsSavedAndCloses()
    {
        bool shownSuspended = false;
        openCard(2, 2, [&](QWidget *card) {
            shownSuspended = check(card, "chkDisable")->isChecked();
            // No address check on an edit: a second row at one address is let through.
            ModalScript::type(card, QStringLiteral("txtAddress"), QStringLiteral("河路1号"));
            card->findChild<QComboBox *>(QStringLiteral("cmbCustType"))->setCurrentIndex(3);
            check(card, "chkDisable")->setChecked(false);
            ModalScript::click(card, QStringLiteral("btnSave"));
        });
        QVERIFY(shownSuspended);
        QVERIFY(!Forms::loaded(QStringLiteral("frmCustomer")));
        QCOMPARE(db->scalar("SELECT Address || '|' || CustType || '|' || Status || '|' || Account FROM Customer WHERE ID=2")
                     .toString(), QStringLiteral("河路1号|3|1|2"));
    }

    // tlDel is one switch both ways, on the customer in hand only; a suspended one stays listed.
    void listSuspendsAndTakesBack()
    {
        QVERIFY(Rows::customer(*db, 3, QStringLiteral("山路3号")));
        SetSysValue(QStringLiteral("AutoDataRefresh"), QStringLiteral("1"));
        auto *list = Forms::get<frmCustomerAdmin>(QStringLiteral("frmCustomerAdmin"));
        prompts->expect("你确认要禁用该帐户吗？", QMessageBox::Yes).expect("该帐户已禁用，要重新启用吗？", QMessageBox::Yes);
        for (int row : {0, 1}) {
            list->dbgMain->setCurrentRow(row);
            QVERIFY(Forms::call(list, "DeleteData"));
        }
        QCOMPARE(db->scalar("SELECT group_concat(Status) FROM Customer").toString(), QStringLiteral("0,1,1"));
        QCOMPARE(ids(list->dbgMain), QStringList({"1", "2", "3"}));
    }
};

QTEST_MAIN(CustomerTest)
#include "tst_customer.moc"
