// The customer card and the choice among customers sharing a phone.
#include "support/ModalScript.h"
#include "support/ScriptedPrompter.h"
#include "support/Rows.h"

#include "data/PickDate.h"
#include "data/Session.h"
#include "master/CustomerForms.h"
#include "master/frmCustomer.h"
#include "platform/Clock.h"
#include "platform/Forms.h"

#include <QCalendarWidget>
#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QTableView>
#include <QtTest>

namespace {
QLineEdit *edit(QWidget *w, const char *name) { return w->findChild<QLineEdit *>(QLatin1String(name)); }

QCheckBox *check(QWidget *w, const char *name) { return w->findChild<QCheckBox *>(QLatin1String(name)); }

// Opens the card in a mode and lets the handler play the user, and the inner handler the one
// window the card opens in turn.
void openCard(int mode, int id, const ModalScript::Handler &handler, const QString &inner = QString(),
              const ModalScript::Handler &innerHandler = nullptr)
{
    ModalScript modals;
    modals.on(QStringLiteral("frmCustomer"), [&](QWidget *card) {
        handler(card);
        if (card->isVisible())
            ModalScript::click(card, QStringLiteral("btnExit"));
    });
    if (!inner.isEmpty())
        modals.on(inner, innerHandler);
    frmCustomer::openFor(mode, id);
    VERIFY_MODALS(modals);
}
}

class CustomerTest : public QObject {
    Q_OBJECT
    std::unique_ptr<TestDb> db;
    std::unique_ptr<ScriptedPrompter> prompts;

private slots:
    void initTestCase()
    {
        registerCustomerForms();
        registerPickDateForm();
        Clock::set(QDateTime(QDate(2026, 11, 23), QTime(9, 0)));
    }
    void init()
    {
        db = std::make_unique<TestDb>();
        QVERIFY(db->ok());
        QVERIFY(Rows::customer(*db, 1, QStringLiteral("河路1号")));
        QVERIFY(Rows::customer(*db, 2, QStringLiteral("河路2号"), QStringLiteral("5550000"), QStringLiteral("0")));
        prompts = std::make_unique<ScriptedPrompter>();
    }
    void cleanup()
    {
        const QStringList problems = prompts->problems();
        Forms::unloadAll();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        prompts.reset();
        db.reset();
        QVERIFY2(problems.isEmpty(), qPrintable(problems.join(u'\n')));
    }

    // Customers 1 at 河路1号 and 2, suspended, at 河路2号 are there from the start.
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
        QFETCH(QString, proposedNext);
        bool stayedOpen = false;
        QString nextAccount, addressAfter, dateShown;
        openCard(1, 0, [&](QWidget *card) {
            auto *save = card->findChild<QPushButton *>(QStringLiteral("btnSave"));
            dateShown = edit(card, "txtCreateDate")->text();
            QVERIFY(!save->isEnabled());
            if (!account.isEmpty()) {
                check(card, "chkAutoID")->click();
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
        QTest::newRow("address in use") << "河路1号" << "" << false << "该地址已经开户了，请检查后再继续！" << "";
        QTest::newRow("address of a suspended customer") << "河路2号" << "" << false << "该地址已经开户了，请检查后再继续！" << "";
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
                card->findChild<QLineEdit *>(QStringLiteral("txtCreateDate"))->setText(date);
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
        bool accountLocked = false, shownSuspended = false;
        openCard(2, 2, [&](QWidget *card) {
            accountLocked = !edit(card, "txtAccount")->isEnabled() && !edit(card, "txtCreateDate")->isEnabled();
            shownSuspended = check(card, "chkDisable")->isChecked();
            // No address check on an edit: a second row at one address is let through.
            ModalScript::type(card, QStringLiteral("txtAddress"), QStringLiteral("河路1号"));
            card->findChild<QComboBox *>(QStringLiteral("cmbCustType"))->setCurrentIndex(3);
            check(card, "chkDisable")->setChecked(false);
            ModalScript::click(card, QStringLiteral("btnSave"));
        });
        QVERIFY(accountLocked);
        QVERIFY(shownSuspended);
        QVERIFY(!Forms::loaded(QStringLiteral("frmCustomer")));
        QCOMPARE(db->scalar("SELECT Address || '|' || CustType || '|' || Status || '|' || Account FROM Customer WHERE ID=2")
                     .toString(),
                 QStringLiteral("河路1号|3|1|2"));
    }

    // The calendar's answer goes into the date field as it is, also the empty one of a calendar
    // closed without a choice.
    void dateButtonWritesThePick_data()
    {
        QTest::addColumn<QDate>("chosen"); // null: the calendar is closed by its frame
        QTest::addColumn<QString>("shown");
        QTest::newRow("chosen") << QDate(2026, 3, 10) << "2026-03-10";
        QTest::newRow("closed without a choice") << QDate() << "";
    }
    void dateButtonWritesThePick()
    {
        QFETCH(QDate, chosen);
        QFETCH(QString, shown);
        QString date;
        openCard(
            1, 0,
            [&](QWidget *card) {
                ModalScript::click(card, QStringLiteral("btnDate"));
                date = edit(card, "txtCreateDate")->text();
            },
            QStringLiteral("frmPickDate"),
            [&](QWidget *pick) {
                if (!chosen.isValid())
                    return void(pick->close());
                pick->findChild<QCalendarWidget *>(QStringLiteral("mvwMain"))->setSelectedDate(chosen);
                ModalScript::click(pick, QStringLiteral("btnOk"));
            });
        QCOMPARE(date, shown);
    }

    void selectionGivesTheChosenAccount_data()
    {
        QTest::addColumn<QString>("button");
        QTest::addColumn<int>("row");
        QTest::addColumn<int>("result");
        QTest::newRow("second row") << "btnOk" << 1 << 2;
        QTest::newRow("cancelled") << "btnCancel" << 1 << 0;
        QTest::newRow("no current row") << "btnOk" << -1 << 0;
    }
    void selectionGivesTheChosenAccount()
    {
        QFETCH(QString, button);
        QFETCH(int, row);
        QFETCH(int, result);
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
        QCOMPARE(shown, QStringList({QStringLiteral("河路1号"), QStringLiteral("河路2号")}));
        QCOMPARE(chosen, result);
    }
};

QTEST_MAIN(CustomerTest)
#include "tst_customer.moc"
