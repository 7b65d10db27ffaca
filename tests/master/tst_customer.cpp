// The customer windows over a real database: the card, the choice among customers sharing a
// phone, and the customer list with its filter.
#include "support/ModalScript.h"
#include "support/Rows.h"

#include "data/Gateway.h"
#include "data/PickDate.h"
#include "data/Session.h"
#include "data/SqlText.h"
#include "master/CustomerForms.h"
#include "master/frmCustomer.h"
#include "master/frmCustomerAdmin.h"
#include "platform/Clock.h"
#include "platform/Forms.h"
#include "views/DataCombo.h"

#include <QCalendarWidget>
#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QPrinterInfo>
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

// The customers listed, by their hidden ID.
QStringList ids(const DbGrid *grid)
{
    QStringList out;
    for (int r = 0; r < grid->model()->rowCount(); ++r)
        out << grid->model()->index(r, 0).data().toString();
    return out;
}

// "chkX" / "optX_n" click, "txtX=text" types, "cmbX=i" chooses by position, "cmbStation" by ID.
void apply(QWidget *form, const QStringList &steps)
{
    for (const QString &step : steps) {
        const QString name = step.section('=', 0, 0), value = step.section('=', 1);
        QObject *w = form->findChild<QObject *>(name);
        QVERIFY2(w, qPrintable(name));
        if (auto *button = qobject_cast<QAbstractButton *>(w))
            button->click();
        else if (auto *list = qobject_cast<DataCombo *>(w))
            list->setBoundText(value);
        else if (auto *box = qobject_cast<QComboBox *>(w))
            box->setCurrentIndex(value.toInt());
        else if (auto *line = qobject_cast<QLineEdit *>(w))
            line->setText(value);
    }
}
}

class CustomerTest : public QObject {
    Q_OBJECT
    std::unique_ptr<TestDb> db;
    std::unique_ptr<ScriptedPrompter> prompts;
    frmCustomerAdmin *list = nullptr;

    // The list in front over 1 王五, 2 王五 suspended, 3 李四 of type 2 and station 2, opened in March.
    void openList(const QString &autoRefresh = QStringLiteral("1"))
    {
        QVERIFY(Rows::customer(*db, 3, QStringLiteral("山路3号"), QStringLiteral("0571-66600003"), QStringLiteral("1"),
                               QStringLiteral("李四")));
        QVERIFY(db->exec("UPDATE Customer SET CustType=2,StationID=2,CreateDate='2026-03-10' WHERE ID=3"));
        QVERIFY(db->exec("INSERT INTO Station(ID,Name,Status) VALUES(2,'东站','1')"));
        SetSysValue(QStringLiteral("AutoDataRefresh"), autoRefresh);
        list = Forms::get<frmCustomerAdmin>(QStringLiteral("frmCustomerAdmin"));
        Forms::setActiveChildProvider([this] { return list; });
    }

private slots:
    void initTestCase()
    {
        registerCustomerForms();
        registerPickDateForm();
        Clock::set(QDateTime(QDate(2026, 11, 23), QTime(9, 0)));
    }
    // Customers 1 at 河路1号 and 2, suspended, at 河路2号 are there from the start.
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
        Forms::setActiveChildProvider(nullptr);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        list = nullptr;
        prompts.reset();
        db.reset();
        QVERIFY2(problems.isEmpty(), qPrintable(problems.join(u'\n')));
    }

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
        QVERIFY(accountLocked && shownSuspended);
        QVERIFY(!Forms::loaded(QStringLiteral("frmCustomer")));
        QCOMPARE(db->scalar("SELECT Address || '|' || CustType || '|' || Status || '|' || Account FROM Customer WHERE ID=2")
                     .toString(), QStringLiteral("河路1号|3|1|2"));
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
        QString date;
        const auto pickThenRead = [&](QWidget *card) {
            ModalScript::click(card, QStringLiteral("btnDate"));
            date = edit(card, "txtCreateDate")->text();
        };
        openCard(1, 0, pickThenRead, QStringLiteral("frmPickDate"), [&](QWidget *pick) {
            if (!chosen.isValid())
                return void(pick->close());
            pick->findChild<QCalendarWidget *>(QStringLiteral("mvwMain"))->setSelectedDate(chosen);
            ModalScript::click(pick, QStringLiteral("btnOk"));
        });
        QTEST(date, "shown");
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
        QTEST(chosen, "result");
    }

    // What the filter writes and what the list then shows. A refused value keeps the dialog
    // open with its message and the filter as it was; a clause the database refuses fails at
    // the refresh with the gateway's message and an empty list.
    void listFilterThenRefresh_data()
    {
        QTest::addColumn<QString>("present");
        QTest::addColumn<QStringList>("steps");
        QTest::addColumn<QString>("filter");
        QTest::addColumn<QStringList>("shown");
        QTest::addColumn<QString>("message");
        const QString active = " WHERE Status='1'", fresh = "optSearchType_1";
        QTest::newRow("refine joins with AND") << active << QStringList{"chkPhone", "txtPhone= 666 "}
                                               << active + " AND  phone Like '%666%' " << QStringList{"3"} << "";
        QTest::newRow("new, status after name and type") << active << QStringList{fresh, "optStatus_2", "chkName", "txtName=王", "chkCustType", "cmbCustType=1"}
                                           << " WHERE  Name Like '%王%'  AND  CustType=1 AND  Status='0'" << QStringList{"2"} << "";
        QTest::newRow("account beyond 16 bits") << active << QStringList{"chkAccount", "txtAccount=40000"} << active
                                                << QStringList{"1", "3"} << "数据输入格式不正确， 40000 不是有效的整数！";
        QTest::newRow("opened since") << "" << QStringList{"chkCreateDate", "txtCreateDate=2026-3-1", "cmbOperator_1=4"}
                                      << " WHERE  CreateDate>=#2026-3-1#" << QStringList{"3"} << "";
        QTest::newRow("date carrying #") << "" << QStringList{"chkCreateDate", "txtCreateDate=2026-1-1# or 1=1 or #2026-1-1"}
                                         << "" << QStringList{"1", "2", "3"} << "数据输入格式不正确， 2026-1-1# or 1=1 or #2026-1-1 不是有效的日期！";
        QTest::newRow("quote in a name") << "" << QStringList{"chkName", "txtName=王'"} << " WHERE  Name Like '%王'%' "
                                         << QStringList{} << Failed::Read;
        QTest::newRow("total bought is no column") << "" << QStringList{"chkTotalBuyMoney"} << " WHERE  TotalBuyMoney=0"
                                                   << QStringList{} << Failed::Read;
        QTest::newRow("debt, status, station in order")
            << active << QStringList{fresh, "chkStation", "cmbStation=2", "optStatus_1", "chkTotalDebt", "txtTotalDebt=5", "cmbOperator_3=0"}
            << " WHERE  TotalDebt>5 AND  Status='1' AND  StationID=2" << QStringList{} << Failed::Read;
    }
    void listFilterThenRefresh()
    {
        QFETCH(QString, present);
        QFETCH(QStringList, steps);
        QFETCH(QString, message);
        openList();
        list->curFilterSQL = present;
        if (!message.isEmpty())
            prompts->expect(message, QMessageBox::Ok, true);
        ModalScript modals;
        modals.on("frmCustFilter", [&](QWidget *dlg) {
            apply(dlg, steps);
            ModalScript::click(dlg, "btnOk");
            if (dlg->isVisible()) // refused: the user gives up
                ModalScript::click(dlg, "btnCancel");
        });
        list->ShowFilter();
        VERIFY_MODALS(modals);
        VERIFY_PROMPTS(*prompts);
        QString written = list->curFilterSQL; // as the engine reads it: without the marks around typed values
        for (QChar mark : {Sql::TextOpen, Sql::TextClose, Sql::NumberOpen, Sql::NumberClose, Sql::DateOpen, Sql::DateClose})
            written.remove(mark);
        QTEST(written, "filter");
        QTEST(ids(list->dbgMain), "shown");
    }

    // tlDel is one switch both ways; a suspended customer stays listed, struck through.
    void listSuspendsAndTakesBack()
    {
        openList();
        QVERIFY(!list->dbgMain->rowStyle(0).strikeOut && list->dbgMain->rowStyle(1).strikeOut);
        prompts->expect("你确认要禁用该帐户吗？", QMessageBox::Yes).expect("该帐户已禁用，要重新启用吗？", QMessageBox::Yes);
        for (int row : {0, 1}) {
            list->dbgMain->setCurrentRow(row);
            QVERIFY(Forms::call(list, "DeleteData"));
            QCOMPARE(prompts->last().title, QString(row ? "启用帐户" : "禁用帐户"));
            QCOMPARE(prompts->last().icon, QMessageBox::Question);
        }
        QCOMPARE(db->scalar("SELECT group_concat(Status) FROM Customer").toString(), QStringLiteral("0,1,1"));
        QCOMPARE(ids(list->dbgMain), QStringList({"1", "2", "3"}));
        QVERIFY(list->dbgMain->rowStyle(0).strikeOut && !list->dbgMain->rowStyle(1).strikeOut);
    }

    // Without automatic refresh the list waits empty: nothing to suspend. DeletaAll only says
    // no, the command bar's DeleteAll finds nothing, and printing names no printer.
    void emptyListCommands()
    {
        openList(QStringLiteral("0"));
        QCOMPARE(list->dbgMain->model()->rowCount(), 0);
        prompts->expect("请先选定您要禁用的数据！").expect("不能全部禁用！");
        list->DeleteData();
        QVERIFY(!Forms::call(list, "DeleteAll"));
        QVERIFY(Forms::call(list, "DeletaAll"));
        QCOMPARE(prompts->last().icon, QMessageBox::NoIcon);
        if (QPrinterInfo::availablePrinters().isEmpty()) {
            prompts->expect("打印失败，请检查您的系统中是否正确安装了打印机！");
            list->PrintReport();
            QCOMPARE(prompts->last().title, QStringLiteral("预览"));
        }
        QCOMPARE(db->count("Customer", "Status='1'"), 2);
    }

    // Every head sorts but 备注's; a long phone number is shown whole.
    void listHeadsAndWidths()
    {
        openList();
        QVERIFY(list->dbgMain->columnWidth(3) > list->dbgMain->fontMetrics().horizontalAdvance("0571-66600003"));
        emit list->dbgMain->HeadClick(6);
        QCOMPARE(list->curSortSQL, QStringLiteral(" ORDER BY ID Asc"));
        emit list->dbgMain->HeadClick(2);
        QCOMPARE(list->curFullSQL, QStringLiteral("SELECT * FROM Customer ORDER BY Name Asc"));
        QCOMPARE(ids(list->dbgMain).value(0), QStringLiteral("3"));
    }
};

QTEST_MAIN(CustomerTest)
#include "tst_customer.moc"
