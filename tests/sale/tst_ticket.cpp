// The ticket window as the operator uses it: keying lines, finding the customer, saving.
#include "support/ModalScript.h"
#include "support/ScriptedPrompter.h"
#include "support/TestDb.h"

#include "data/Gateway.h"
#include "data/Session.h"
#include "master/CustomerForms.h"
#include "platform/Clock.h"
#include "platform/Forms.h"
#include "platform/Modal.h"
#include "sale/TicketForms.h"
#include "sale/frmSale.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QListView>
#include <QPlainTextEdit>
#include <QPointer>
#include <QPushButton>
#include <QTableView>
#include <QtTest>

namespace {
// Products: water in a returnable bottle (3), gas without one, the bottle itself, and a
// water no longer sold.
void addCatalog(const TestDb &db)
{
    db.exec("INSERT INTO Product(ID,Name,Unit,Status,IsContainer,ContainerID,Price) VALUES "
            "(1,'纯净水','桶','1','0',3,10),(2,'液化气','瓶','1','0',0,85.5),(3,'空桶','个','1','1',0,0),"
            "(4,'矿泉水','桶','0','0',3,12)");
    db.exec("INSERT INTO Sender(ID,Name,Status,Price,StationID) VALUES (1,'张三','1',5,1),(2,'李四','1',3,1)");
}

void addCustomer(const TestDb &db, int id, const QString &address, const QString &phone,
                 const QString &status = QStringLiteral("1"), const QString &name = QStringLiteral("王五"))
{
    db.exec(QStringLiteral("INSERT INTO Customer(ID,Account,Name,Address,Phone,CustType,Status,CreateDate,StationID) "
                           "VALUES (%1,%1,'%2','%3','%4',1,'%5','2026-01-05',1)")
                .arg(id).arg(name, address, phone, status));
}

// Key presses for any text, Chinese included.
void typeText(QWidget *w, const QString &text)
{
    for (const QChar ch : text) {
        QTest::sendKeyEvent(QTest::Press, w, Qt::Key_unknown, QString(ch), Qt::NoModifier);
        QTest::sendKeyEvent(QTest::Release, w, Qt::Key_unknown, QString(ch), Qt::NoModifier);
    }
}

QLineEdit *edit(QWidget *w, const char *name) { return w->findChild<QLineEdit *>(QLatin1String(name)); }
QString text(QWidget *w, const char *name) { return edit(w, name)->text(); }

// Keys a value into a grid cell and presses Enter, as the operator does.
void keyCell(QWidget *form, int row, int column, const QString &value)
{
    auto *grid = form->findChild<QTableView *>(QStringLiteral("dbgDetail"));
    const QModelIndex cell = grid->model()->index(row, column);
    grid->setFocus();
    grid->setCurrentIndex(cell);
    grid->edit(cell);
    QWidget *editor = QApplication::focusWidget();
    QVERIFY(editor && editor != grid);
    if (auto *combo = qobject_cast<QComboBox *>(editor))
        combo->lineEdit()->selectAll();
    else if (auto *line = qobject_cast<QLineEdit *>(editor))
        line->selectAll();
    if (value.isEmpty())
        QTest::keyClick(editor, Qt::Key_Delete);
    else
        typeText(editor, value);
    QTest::keyClick(editor, Qt::Key_Return);
    QCoreApplication::processEvents();
}

// Types into a field and leaves it the way the operator does: Enter moves on to the lines.
void typeAndEnter(QWidget *form, const char *field, const QString &value)
{
    QLineEdit *e = edit(form, field);
    e->setFocus();
    e->selectAll();
    if (value.isEmpty())
        QTest::keyClick(e, Qt::Key_Delete);
    typeText(e, value);
    QTest::keyClick(e, Qt::Key_Return);
    QCoreApplication::processEvents();
}
}

class TicketTest : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<TestDb> db;
    QPointer<frmSale> form;

    frmSale *open(int mode, int id = 0)
    {
        form = Forms::get<frmSale>(QStringLiteral("frmSale"));
        form->setProperty("mActionType", mode);
        form->setProperty("mCurID", id);
        form->show();
        form->activateWindow();
        [&] { QVERIFY(QTest::qWaitForWindowActive(form)); }();
        return form;
    }

    // A stored ticket 1 for customer 1: 3 bottles of water, stored figures partly paid.
    void addTicket()
    {
        addCustomer(*db, 1, QStringLiteral("东街1号"), QStringLiteral("5551234"));
        db->exec("INSERT INTO Sale(ID,CustomerID,SenderID,UserID,TotalAmount,TotalMoney,TotalContainer,InMoney,"
                 "OutAmount,InContainer,TransferFee,Detail,CreateDate,FinishFlag,StationID) VALUES "
                 "(1,1,1,2,3,30,3,10,0,0,8,'老票','2026-11-20','0',1)");
        db->exec("INSERT INTO Sale_detail(SaleID,ProductID,Price,MyAmount,MyMoney,IsContainer) VALUES "
                 "(1,1,10,3,30,'0'),(1,3,0,3,0,'1')");
    }

private slots:
    void initTestCase()
    {
        registerTicketForms();
        registerCustomerForms();
        Session::UserID = 1;
        Clock::set(QDateTime(QDate(2026, 11, 23), QTime(9, 0)));
    }

    void init()
    {
        db = std::make_unique<TestDb>();
        QVERIFY(db->ok());
        addCatalog(*db);
    }

    void cleanup()
    {
        Forms::unloadAll();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        db.reset();
    }

    void keyedLinesMakeTheTotals_data()
    {
        QTest::addColumn<bool>("autoKeys");
        QTest::newRow("actual figures by hand") << false;
        QTest::newRow("actual figures follow") << true;
    }
    void keyedLinesMakeTheTotals()
    {
        QFETCH(bool, autoKeys);
        for (const char *key : {"AutoOutAmount", "AutoInMoney", "AutoInContainer"})
            SetSysValue(QLatin1String(key), autoKeys ? QStringLiteral("1") : QStringLiteral("0"));
        ScriptedPrompter prompts;
        open(1);
        QCOMPARE(text(form, "txtSaleID"), QStringLiteral("1"));
        QCOMPARE(text(form, "txtCreateDate"), QStringLiteral("2026-11-23"));

        keyCell(form, 0, 0, QStringLiteral("1"));
        keyCell(form, 0, 4, QStringLiteral("5"));
        keyCell(form, 1, 0, QStringLiteral("2"));
        keyCell(form, 1, 4, QStringLiteral("2"));
        TicketLines *lines = form->xayDetail();
        QCOMPARE(lines->lineCount(), 2);
        QCOMPARE(lines->text(0, 1), QStringLiteral("纯净水"));
        QCOMPARE(lines->text(1, 3), QStringLiteral("85.5"));
        auto *grid = form->findChild<QTableView *>(QStringLiteral("dbgDetail"));
        QCOMPARE(grid->model()->index(0, 5).data().toString(), QStringLiteral("￥50.00"));

        QCOMPARE(text(form, "txtTotalAmount"), QStringLiteral("7"));
        QCOMPARE(text(form, "txtTotalMoney"), QStringLiteral("221"));
        QCOMPARE(text(form, "txtTotalContainer"), QStringLiteral("5"));
        const QString out = autoKeys ? QStringLiteral("7") : QStringLiteral("0");
        QCOMPARE(text(form, "txtOutAmount"), out);
        QCOMPARE(text(form, "txtInMoney"), autoKeys ? QStringLiteral("221") : QStringLiteral("0"));
        QCOMPARE(text(form, "txtInContainer"), autoKeys ? QStringLiteral("5") : QStringLiteral("0"));

        // A negative line shows no money but still counts against the totals.
        keyCell(form, 2, 0, QStringLiteral("2"));
        keyCell(form, 2, 4, QStringLiteral("-2"));
        QCOMPARE(grid->model()->index(2, 5).data().toString(), QStringLiteral("0"));
        QCOMPARE(text(form, "txtTotalAmount"), QStringLiteral("5"));
        QCOMPARE(text(form, "txtTotalMoney"), QStringLiteral("50"));

        // Clearing a code takes the line off at once.
        keyCell(form, 0, 0, QString());
        QCOMPARE(lines->text(0, 1), QString());
        QCOMPARE(text(form, "txtTotalAmount"), QStringLiteral("0"));
        QCOMPARE(text(form, "txtTotalContainer"), QStringLiteral("0"));
        VERIFY_PROMPTS(prompts);
    }

    void badCellsAreRefused_data()
    {
        QTest::addColumn<int>("column");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("message");
        QTest::addColumn<QString>("cellAfter");
        QTest::addColumn<QString>("moneyAfter");
        QTest::newRow("disabled product") << 0 << "4" << "产品编号不存在或已被禁用，请重新输入!" << "1" << "10";
        QTest::newRow("unknown product") << 0 << "99" << "产品编号不存在或已被禁用，请重新输入!" << "1" << "10";
        QTest::newRow("price letters") << 3 << "abc" << "商品价格必须为数字，且不能为0！" << "10" << "10";
        QTest::newRow("price leading number") << 3 << "3abc" << QString() << "3abc" << "3";
        QTest::newRow("quantity zero") << 4 << "0" << "商品数量必须为数字，且不能为0！" << "1" << "10";
    }
    void badCellsAreRefused()
    {
        QFETCH(int, column);
        QFETCH(QString, typed);
        QFETCH(QString, message);
        QFETCH(QString, cellAfter);
        QFETCH(QString, moneyAfter);
        ScriptedPrompter prompts;
        open(1);
        keyCell(form, 0, 0, QStringLiteral("1"));
        if (!message.isEmpty())
            prompts.expect(message);
        keyCell(form, 0, column, typed);
        QCOMPARE(form->xayDetail()->text(0, column), cellAfter);
        QCOMPARE(text(form, "txtTotalMoney"), moneyAfter);
        // The refused cell opens again for correction.
        auto *grid = form->findChild<QTableView *>(QStringLiteral("dbgDetail"));
        auto editing = [grid] {
            QWidget *f = QApplication::focusWidget();
            return f && grid->viewport()->isAncestorOf(f);
        };
        QTRY_COMPARE(editing(), !message.isEmpty());
        VERIFY_PROMPTS(prompts);
    }

    void senderBringsHisFee()
    {
        ScriptedPrompter prompts;
        open(1);
        auto *sender = form->findChild<QComboBox *>(QStringLiteral("cmbSender"));
        sender->setCurrentIndex(sender->findText(QStringLiteral("李四")));
        QCOMPARE(text(form, "txtTransferFee"), QStringLiteral("3"));
        // An emptied fee becomes 0 when the operator leaves it; letters are refused.
        edit(form, "txtTransferFee")->clear();
        edit(form, "txtTransferFee")->setFocus();
        edit(form, "txtCustAccount")->setFocus();
        QCOMPARE(text(form, "txtTransferFee"), QStringLiteral("0"));
        prompts.expect(QStringLiteral("数据输入格式不正确， x 不是有效的数字！"));
        edit(form, "txtTransferFee")->setText(QStringLiteral("x"));
        edit(form, "txtTransferFee")->setFocus();
        edit(form, "txtCustAccount")->setFocus();
        QTRY_VERIFY(edit(form, "txtTransferFee")->hasFocus());
        VERIFY_PROMPTS(prompts);
    }

    void customerFoundByEachRoad_data()
    {
        QTest::addColumn<QString>("field");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("message");
        QTest::addColumn<QString>("account");
        QTest::addColumn<QString>("address");
        QTest::addColumn<QString>("name");
        QTest::newRow("account") << "txtCustAccount" << "7" << QString() << "7" << "西街7号" << "王五";
        QTest::newRow("account unknown") << "txtCustAccount" << "8" << "没有找到该客户帐号！" << "" << "旧地址" << "";
        QTest::newRow("account not a number") << "txtCustAccount" << "abc" << "所输入的客户编号不是有效的数字！" << ""
                                              << "旧地址" << "";
        QTest::newRow("phone") << "txtCustPhone" << "5557777" << QString() << "7" << "西街7号" << "王五";
        QTest::newRow("phone unknown keeps the address") << "txtCustPhone" << "5550000" << QString() << ""
                                                         << "旧地址" << "";
        QTest::newRow("address") << "txtCustAddress" << "西街7号" << QString() << "7" << "西街7号" << "王五";
        QTest::newRow("suspended customer") << "txtCustAddress" << "北街9号" << QString() << "" << "北街9号" << "";
        QTest::newRow("quote in the address") << "txtCustAddress" << "西'街" << "查找客户信息时出现错误！" << "" << "西'街"
                                              << "";
    }
    void customerFoundByEachRoad()
    {
        QFETCH(QString, field);
        QFETCH(QString, typed);
        QFETCH(QString, message);
        QFETCH(QString, account);
        QFETCH(QString, address);
        QFETCH(QString, name);
        addCustomer(*db, 7, QStringLiteral("西街7号"), QStringLiteral("5557777"));
        addCustomer(*db, 9, QStringLiteral("北街9号"), QStringLiteral("5559999"), QStringLiteral("0"));
        ScriptedPrompter prompts;
        open(1);
        edit(form, "txtCustAddress")->setText(QStringLiteral("旧地址"));
        if (typed.contains(QLatin1Char('\'')))
            prompts.expect(QStringLiteral("读取数据库时出现系统错误，错误信息："), QMessageBox::Ok, true);
        if (!message.isEmpty())
            prompts.expect(message);
        typeAndEnter(form, field.toLatin1().constData(), typed);
        QCOMPARE(text(form, "txtCustAccount"), account);
        QCOMPARE(text(form, "txtCustAddress"), address);
        QCOMPARE(text(form, "txtCustName"), name);
        if (!name.isEmpty()) {
            QCOMPARE(text(form, "txtCustType"), QStringLiteral("已开户"));
            QCOMPARE(text(form, "txtCustPhone"), QStringLiteral("5557777"));
        }
        VERIFY_PROMPTS(prompts);
    }

    void twoCustomersOnOnePhone_data()
    {
        QTest::addColumn<bool>("choose");
        QTest::newRow("second one chosen") << true;
        QTest::newRow("selection cancelled") << false;
    }
    void twoCustomersOnOnePhone()
    {
        QFETCH(bool, choose);
        addCustomer(*db, 7, QStringLiteral("西街7号"), QStringLiteral("5557777"));
        addCustomer(*db, 8, QStringLiteral("西街8号"), QStringLiteral("5557777"), QStringLiteral("1"), QStringLiteral("赵六"));
        ScriptedPrompter prompts;
        ModalScript modals;
        int rowsShown = 0;
        modals.on(QStringLiteral("frmSelCustomer"), [&](QWidget *sel) {
            auto *grid = sel->findChild<QTableView *>(QStringLiteral("dbgMain"));
            rowsShown = grid->model()->rowCount();
            grid->setCurrentIndex(grid->model()->index(1, 0));
            ModalScript::click(sel, choose ? QStringLiteral("btnOk") : QStringLiteral("btnCancel"));
        });
        open(1);
        edit(form, "txtCustPhone")->setFocus();
        edit(form, "txtCustAccount")->setText(QStringLiteral("3"));
        edit(form, "txtCustAddress")->setText(QStringLiteral("手写地址"));
        typeAndEnter(form, "txtCustPhone", QStringLiteral("5557777"));
        VERIFY_MODALS(modals);
        QCOMPARE(rowsShown, 2);
        QCOMPARE(text(form, "txtCustAccount"), choose ? QStringLiteral("8") : QString());
        QCOMPARE(text(form, "txtCustAddress"), choose ? QStringLiteral("西街8号") : QStringLiteral("手写地址"));
        QCOMPARE(text(form, "txtCustName"), choose ? QStringLiteral("赵六") : QString());
        QCOMPARE(form->InputReady, choose ? 1 : 0);
        VERIFY_PROMPTS(prompts);
    }

    void historyOfACustomerWithoutTicketsKeepsThePreviousSums()
    {
        addTicket();
        addCustomer(*db, 2, QStringLiteral("南街2号"), QStringLiteral("5552222"));
        ScriptedPrompter prompts;
        open(1);
        typeAndEnter(form, "txtCustAccount", QStringLiteral("1"));
        QCOMPARE(text(form, "txtHistoryAmount"), QStringLiteral("3"));
        QCOMPARE(text(form, "txtHistoryMoneyBalance"), QStringLiteral("20"));
        QCOMPARE(text(form, "txtHistoryTimes"), QStringLiteral("1"));
        auto *history = form->findChild<QTableView *>(QStringLiteral("dbgHistory"));
        QCOMPARE(history->model()->rowCount(), 1);
        QCOMPARE(history->model()->index(0, 3).data().toString(), QStringLiteral("￥30.00"));

        typeAndEnter(form, "txtCustAccount", QStringLiteral("2"));
        QCOMPARE(text(form, "txtCustAddress"), QStringLiteral("南街2号"));
        QCOMPARE(text(form, "txtHistoryAmount"), QStringLiteral("3"));
        QCOMPARE(text(form, "txtHistoryMoneyBalance"), QStringLiteral("20"));
        QCOMPARE(text(form, "txtHistoryTimes"), QStringLiteral("0"));
        QCOMPARE(history->model()->rowCount(), 0);
        VERIFY_PROMPTS(prompts);
    }

    void addressListFollowsTheTyping()
    {
        SetSysValue(QStringLiteral("SearchAddress"), QStringLiteral("1"));
        addCustomer(*db, 7, QStringLiteral("西街7号"), QStringLiteral("5557777"));
        addCustomer(*db, 8, QStringLiteral("西街8号"), QStringLiteral("5558888"));
        addCustomer(*db, 9, QStringLiteral("东街9号"), QStringLiteral("5559999"));
        ScriptedPrompter prompts;
        open(1);
        auto *list = form->findChild<QListView *>(QStringLiteral("dtlCustomer"));
        QLineEdit *address = edit(form, "txtCustAddress");
        address->setFocus();
        typeText(address, QStringLiteral("西街"));
        QVERIFY(list->isVisible());
        QCOMPARE(list->model()->rowCount(), 2);
        typeText(address, QStringLiteral("x"));
        QVERIFY(!list->isVisible());
        QTest::keyClick(address, Qt::Key_Backspace);
        QVERIFY(list->isVisible());

        QTest::keyClick(address, Qt::Key_Down);
        QTRY_VERIFY(list->hasFocus());
        QVERIFY(list->isVisible());
        QTest::keyClick(list, Qt::Key_Down);
        QTest::keyClick(list, Qt::Key_Return);
        QCOMPARE(address->text(), QStringLiteral("西街8号"));
        QCOMPARE(text(form, "txtCustAccount"), QStringLiteral("8"));
        QVERIFY(!list->isVisible());
        QTRY_VERIFY(form->findChild<QTableView *>(QStringLiteral("dbgDetail"))->hasFocus());
        VERIFY_PROMPTS(prompts);
    }

    void newAddressMakesACustomer()
    {
        ScriptedPrompter prompts;
        open(1);
        auto *save = form->findChild<QPushButton *>(QStringLiteral("btnSave"));
        auto *sender = form->findChild<QComboBox *>(QStringLiteral("cmbSender"));
        sender->setCurrentIndex(sender->findText(QStringLiteral("张三")));
        typeAndEnter(form, "txtCustPhone", QStringLiteral("5550001"));
        typeAndEnter(form, "txtCustAddress", QStringLiteral("新村3号"));
        QVERIFY(!save->isEnabled());
        keyCell(form, 0, 0, QStringLiteral("1"));
        keyCell(form, 0, 4, QStringLiteral("2"));
        keyCell(form, 1, 0, QStringLiteral("2"));
        keyCell(form, 2, 0, QStringLiteral("1"));
        keyCell(form, 1, 0, QString()); // a blank row among the lines
        QVERIFY(save->isEnabled());
        form->findChild<QPlainTextEdit *>(QStringLiteral("txtDetail"))->setPlainText(QStringLiteral("放门口"));
        // From the remark, Tab reaches the save button and Space presses it.
        form->findChild<QPlainTextEdit *>(QStringLiteral("txtDetail"))->setFocus();
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        QCOMPARE(QApplication::focusWidget(), save);
        QTest::keyClick(save, Qt::Key_Space);

        QCOMPARE(db->count("Customer"), 1);
        QCOMPARE(db->scalar("SELECT Name || '|' || CustType || '|' || Detail || '|' || Phone || '|' || UserID "
                            "|| '|' || (Account=ID) || '|' || CreateDate FROM Customer").toString(),
                 QStringLiteral("|0|系统自动加入用户！|5550001|1|1|2026-11-23"));
        QCOMPARE(db->scalar("SELECT CustomerID || '|' || SenderID || '|' || TotalAmount || '|' || TotalMoney || '|' "
                            "|| TotalContainer || '|' || TransferFee || '|' || Detail || '|' || FinishFlag FROM Sale")
                     .toString(),
                 QStringLiteral("1|1|3.0|30.0|3.0|5.0|放门口|0"));
        QCOMPARE(db->scalar("SELECT group_concat(ProductID || ':' || MyAmount || ':' || IsContainer, ' ') FROM "
                            "(SELECT * FROM Sale_detail ORDER BY rowid)")
                     .toString(),
                 QStringLiteral("1:2.0:0 3:2.0:1 1:1.0:0 3:1.0:1"));

        // Ready for the next ticket: new number, date, worker and fee kept.
        QCOMPARE(form->xayDetail()->lineCount(), 0);
        QCOMPARE(text(form, "txtSaleID"), QStringLiteral("2"));
        QCOMPARE(text(form, "txtCustAddress"), QString());
        QCOMPARE(text(form, "txtTotalAmount"), QStringLiteral("0"));
        QCOMPARE(text(form, "txtTransferFee"), QStringLiteral("5"));
        QCOMPARE(sender->currentText(), QStringLiteral("张三"));
        QVERIFY(!save->isEnabled());
        VERIFY_PROMPTS(prompts);
    }

    void ticketKeyedWithoutTheMouse()
    {
        ScriptedPrompter prompts;
        open(1);
        auto key = [](int k, Qt::KeyboardModifiers m = Qt::NoModifier) {
            QTest::keyClick(QApplication::focusWidget(), Qt::Key(k), m);
            QCoreApplication::processEvents();
        };
        auto type = [](const QString &t) { typeText(QApplication::focusWidget(), t); };
        QCOMPARE(QApplication::focusWidget(), edit(form, "txtCustAccount"));
        key(Qt::Key_Tab);
        type(QStringLiteral("5550001"));
        key(Qt::Key_Tab);
        QCOMPARE(QApplication::focusWidget(), edit(form, "txtCustAddress"));
        type(QStringLiteral("新村3号"));
        key(Qt::Key_Return);
        auto *grid = form->findChild<QTableView *>(QStringLiteral("dbgDetail"));
        QCOMPARE(QApplication::focusWidget(), grid);
        // Code, Enter, quantity, Enter, and the next line's code.
        type(QStringLiteral("1"));
        key(Qt::Key_Return);
        type(QStringLiteral("3"));
        key(Qt::Key_Return);
        type(QStringLiteral("2"));
        key(Qt::Key_Return);
        QCOMPARE(text(form, "txtTotalAmount"), QStringLiteral("4"));
        QCOMPARE(text(form, "txtTotalMoney"), QStringLiteral("115.5"));
        key(Qt::Key_Tab);
        auto *sender = form->findChild<QComboBox *>(QStringLiteral("cmbSender"));
        QCOMPARE(QApplication::focusWidget(), sender);
        key(Qt::Key_Down);
        QCOMPARE(text(form, "txtTransferFee"), QStringLiteral("5"));
        key(Qt::Key_S, Qt::ControlModifier);
        QTRY_COMPARE(db->count("Sale"), 1);
        QCOMPARE(db->scalar("SELECT TotalAmount || '|' || TotalMoney || '|' || SenderID FROM Sale").toString(),
                 QStringLiteral("4.0|115.5|1"));
        QCOMPARE(db->count("Sale_detail"), 3);
        VERIFY_PROMPTS(prompts);
    }

    void knownAddressTakesThePhone_data()
    {
        QTest::addColumn<QString>("phone");
        QTest::newRow("new number") << "5550009";
        QTest::newRow("emptied") << "";
    }
    void knownAddressTakesThePhone()
    {
        QFETCH(QString, phone);
        addCustomer(*db, 7, QStringLiteral("西街7号"), QStringLiteral("5557777"));
        ScriptedPrompter prompts;
        open(1);
        typeAndEnter(form, "txtCustAddress", QStringLiteral("西街7号"));
        edit(form, "txtCustPhone")->setText(phone);
        keyCell(form, 0, 0, QStringLiteral("2"));
        form->findChild<QPushButton *>(QStringLiteral("btnSave"))->click();
        QCOMPARE(db->count("Customer"), 1);
        QCOMPARE(db->scalar("SELECT Phone FROM Customer WHERE ID=7").toString(), phone);
        QCOMPARE(db->scalar("SELECT CustomerID FROM Sale").toInt(), 7);
        VERIFY_PROMPTS(prompts);
    }

    void failedSavesChangeNothing_data()
    {
        QTest::addColumn<QString>("phone");
        QTest::addColumn<QString>("quantity");
        QTest::addColumn<QString>("remark");
        QTest::addColumn<QStringList>("messages");
        const QString update = QStringLiteral("更新数据库时出现系统错误，错误信息：");
        QTest::newRow("quantity over 32767") << "" << "40000" << "" << QStringList{QStringLiteral("溢出")};
        QTest::newRow("quote in the remark") << "" << "1" << "王's" << QStringList{update};
        QTest::newRow("quote in the new customer's phone")
            << "555'1" << "1" << "" << QStringList{update, QStringLiteral("往系统增加新客户信息时出现错误！")};
    }
    void failedSavesChangeNothing()
    {
        QFETCH(QString, phone);
        QFETCH(QString, quantity);
        QFETCH(QString, remark);
        QFETCH(QStringList, messages);
        ScriptedPrompter prompts;
        open(1);
        typeAndEnter(form, "txtCustAddress", QStringLiteral("新村3号"));
        edit(form, "txtCustPhone")->setText(phone);
        keyCell(form, 0, 0, QStringLiteral("2"));
        keyCell(form, 0, 4, quantity);
        form->findChild<QPlainTextEdit *>(QStringLiteral("txtDetail"))->setPlainText(remark);
        for (const QString &m : messages)
            prompts.expect(m, QMessageBox::Ok, true);
        form->findChild<QPushButton *>(QStringLiteral("btnSave"))->click();
        QCOMPARE(db->count("Customer"), 0);
        QCOMPARE(db->count("Sale"), 0);
        QCOMPARE(db->count("Sale_detail"), 0);
        QVERIFY(!Conn.inTransaction());
        // The operator's input stays for another try.
        QCOMPARE(form->xayDetail()->lineCount(), 1);
        QCOMPARE(text(form, "txtCustAddress"), QStringLiteral("新村3号"));
        VERIFY_PROMPTS(prompts);
    }

    void savePrintPrintsTheNewTicket()
    {
        addTicket();
        QList<QPair<qint32, bool>> printed;
        setSalePrinter([&](qint32 id, bool preview) { printed.append({id, preview}); });
        ScriptedPrompter prompts;
        open(1);
        typeAndEnter(form, "txtCustAccount", QStringLiteral("1"));
        keyCell(form, 0, 0, QStringLiteral("2"));
        form->findChild<QPushButton *>(QStringLiteral("btnSavePrint"))->click();
        setSalePrinter(nullptr);
        QCOMPARE(db->count("Sale"), 2);
        QCOMPARE(printed.size(), 1);
        QCOMPARE(printed.first().first, 2);
        QVERIFY(!printed.first().second);
        VERIFY_PROMPTS(prompts);
    }

    void editedTicketIsRewrittenAndCloses()
    {
        addTicket();
        db->exec("UPDATE Sender SET Price=9 WHERE ID=1");
        SetSysValue(QStringLiteral("AutoInMoney"), QStringLiteral("1"));
        ScriptedPrompter prompts;
        ModalScript modals;
        QString feeShown, moneyBefore, inMoneyAfter;
        modals.on(QStringLiteral("frmSale"), [&](QWidget *w) {
            QVERIFY(QTest::qWaitForWindowActive(w));
            feeShown = text(w, "txtTransferFee");
            moneyBefore = text(w, "txtInMoney");
            QVERIFY(!edit(w, "txtCustAddress")->isEnabled());
            QVERIFY(w->findChild<QPushButton *>(QStringLiteral("btnPreview"))->isVisible());
            QVERIFY(!w->findChild<QPushButton *>(QStringLiteral("btnReset"))->isVisible());
            keyCell(w, 0, 4, QStringLiteral("4"));
            inMoneyAfter = text(w, "txtInMoney");
            ModalScript::click(w, QStringLiteral("btnSave"));
        });
        QPointer<QWidget> w = Forms::get(QStringLiteral("frmSale"));
        w->setProperty("mActionType", 2);
        w->setProperty("mCurID", 1);
        Modal::exec(w);
        VERIFY_MODALS(modals);
        QCOMPARE(feeShown, QStringLiteral("8"));
        QCOMPARE(moneyBefore, QStringLiteral("10"));
        QCOMPARE(inMoneyAfter, QStringLiteral("40"));
        QVERIFY(!Forms::loaded(QStringLiteral("frmSale")));
        QCOMPARE(db->scalar("SELECT TotalAmount || '|' || TotalMoney || '|' || InMoney || '|' || UserID || '|' || "
                            "TransferFee || '|' || CreateDate FROM Sale WHERE ID=1")
                     .toString(),
                 QStringLiteral("4.0|40.0|40.0|1|8.0|2026-11-20"));
        QCOMPARE(db->count("Sale_detail", "SaleID=1"), 2);
        QCOMPARE(db->scalar("SELECT MyAmount FROM Sale_detail WHERE IsContainer='1'").toInt(), 4);
        VERIFY_PROMPTS(prompts);
    }

    void viewedTicketCannotBeSaved()
    {
        addTicket();
        ScriptedPrompter prompts;
        open(0, 1);
        QCOMPARE(form->xayDetail()->lineCount(), 1);
        QCOMPARE(text(form, "txtCustAddress"), QStringLiteral("东街1号"));
        for (const char *hidden : {"btnSave", "btnSavePrint", "btnAddCustomer", "btnReset", "btnPrintSetup"})
            QVERIFY2(!form->findChild<QPushButton *>(QLatin1String(hidden))->isVisible(), hidden);
        QVERIFY(!form->findChild<QComboBox *>(QStringLiteral("cmbSender"))->isEnabled());
        // Escape leaves like btnExit: the next opening loads afresh.
        QTest::keyClick(form, Qt::Key_Escape);
        QVERIFY(!Forms::loaded(QStringLiteral("frmSale")));
        VERIFY_PROMPTS(prompts);
    }

    void ticketWithoutLinesClosesAtOnce()
    {
        addTicket();
        db->exec("DELETE FROM Sale_detail");
        ScriptedPrompter prompts;
        QPointer<QWidget> w = Forms::get(QStringLiteral("frmSale"));
        w->setProperty("mActionType", 2);
        w->setProperty("mCurID", 1);
        QCOMPARE(Modal::exec(w), int(QDialog::Rejected));
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(w.isNull());
        VERIFY_PROMPTS(prompts);
    }

    void newAccountFromTheTicket()
    {
        ScriptedPrompter prompts;
        ModalScript modals;
        QString phoneOnCard;
        bool autoLocked = false;
        modals.on(QStringLiteral("frmCustomer"), [&](QWidget *card) {
            phoneOnCard = text(card, "txtPhone");
            autoLocked = !card->findChild<QCheckBox *>(QStringLiteral("chkAutoID"))->isEnabled();
            ModalScript::type(card, QStringLiteral("txtName"), QStringLiteral("钱七"));
            ModalScript::click(card, QStringLiteral("btnSave"));
            ModalScript::click(card, QStringLiteral("btnExit"));
        });
        open(1);
        edit(form, "txtCustPhone")->setText(QStringLiteral("5556666"));
        edit(form, "txtCustAddress")->setText(QStringLiteral("中街6号"));
        form->findChild<QPushButton *>(QStringLiteral("btnAddCustomer"))->click();
        VERIFY_MODALS(modals);
        QCOMPARE(phoneOnCard, QStringLiteral("5556666"));
        QVERIFY(autoLocked);
        const QString id = db->scalar("SELECT ID FROM Customer WHERE Address='中街6号'").toString();
        QCOMPARE(text(form, "txtCustAccount"), id);
        QCOMPARE(text(form, "txtCustName"), QStringLiteral("钱七"));
        VERIFY_PROMPTS(prompts);
    }
};

QTEST_MAIN(TicketTest)
#include "tst_ticket.moc"
