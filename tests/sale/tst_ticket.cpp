// The ticket window as the operator uses it: keying lines, finding the customer, saving.
#include "support/Bench.h"

#include "data/Gateway.h"
#include "data/Session.h"
#include "master/CustomerForms.h"
#include "platform/Clock.h"
#include "sale/TicketForms.h"
#include "sale/frmSale.h"

#include <QPlainTextEdit>
#include <QPointer>

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

QLineEdit *edit(QWidget *w, const char *name) { return w->findChild<QLineEdit *>(QLatin1String(name)); }
// The texts of the fields named, one blank apart in names, joined by '|'.
QString texts(QWidget *w, const QString &names)
{
    QStringList out;
    for (const QString &name : names.split(u' '))
        out << w->findChild<QLineEdit *>(name)->text();
    return out.join(u'|');
}
QPushButton *button(QWidget *w, const char *name) { return w->findChild<QPushButton *>(QLatin1String(name)); }
QComboBox *workers(QWidget *w) { return w->findChild<QComboBox *>(QStringLiteral("cmbSender")); }
QTableView *grid(QWidget *w, const char *name = "dbgDetail") { return w->findChild<QTableView *>(QLatin1String(name)); }
QPlainTextEdit *remark(QWidget *w) { return w->findChild<QPlainTextEdit *>(QStringLiteral("txtDetail")); }
}

class TicketTest : public QObject, Bench {
    Q_OBJECT
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
        Rows::customer(*db, 1, QStringLiteral("东街1号"), QStringLiteral("5551234"));
        db->exec("INSERT INTO Sale(ID,CustomerID,SenderID,UserID,TotalAmount,TotalMoney,TotalContainer,InMoney,"
                 "OutAmount,InContainer,TransferFee,Detail,CreateDate,FinishFlag,StationID) VALUES "
                 "(1,1,1,2,3,30,3,10,0,0,8,'老票','2026-11-20','0',1)");
        db->exec("INSERT INTO Sale_detail(SaleID,ProductID,Price,MyAmount,MyMoney,IsContainer) VALUES "
                 "(1,1,10,3,30,'0'),(1,3,0,3,0,'1')");
    }

    // Customer 7 at 西街7号 with phone 5557777.
    void addCustomer7() { Rows::customer(*db, 7, QStringLiteral("西街7号"), QStringLiteral("5557777")); }

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
        QVERIFY(start());
        addCatalog(*db);
    }
    void cleanup()
    {
        setSalePrinter(nullptr);
        FINISH_BENCH();
    }

    void keyedLinesMakeTheTotals_data()
    {
        QTest::addColumn<QString>("autoKeys"); // AutoOutAmount, AutoInMoney, AutoInContainer
        QTest::addColumn<QString>("actual");   // txtOutAmount|txtInMoney|txtInContainer
        QTest::newRow("out and bottles follow") << "101" << "7|0|5";
        QTest::newRow("money follows") << "010" << "0|221|0";
    }
    void keyedLinesMakeTheTotals()
    {
        QFETCH(QString, autoKeys);
        QFETCH(QString, actual);
        const char *keys[] = {"AutoOutAmount", "AutoInMoney", "AutoInContainer"};
        for (int i = 0; i < 3; ++i)
            SetSysValue(QLatin1String(keys[i]), autoKeys.mid(i, 1));
        open(1);
        QCOMPARE(texts(form, "txtSaleID txtCreateDate"), QStringLiteral("1|2026-11-23"));
        keyCell(form, 0, 0, QStringLiteral("1"));
        keyCell(form, 0, 4, QStringLiteral("5"));
        keyCell(form, 1, 0, QStringLiteral("2"));
        keyCell(form, 1, 4, QStringLiteral("2"));
        QCOMPARE(form->xayDetail()->lineCount(), 2);
        QCOMPARE(texts(form, "txtTotalAmount txtTotalMoney txtTotalContainer"), QStringLiteral("7|221|5"));
        QCOMPARE(texts(form, "txtOutAmount txtInMoney txtInContainer"), actual);
    }

    // A refused cell keeps its value and opens again for correction; an accepted one closes.
    void badCellsAreRefused_data()
    {
        QTest::addColumn<int>("column");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("message");
        QTest::addColumn<QString>("cellAfter");
        QTest::addColumn<QString>("moneyAfter");
        QTest::newRow("disabled product") << 0 << "4" << "产品编号不存在或已被禁用，请重新输入!" << "1" << "10";
        QTest::newRow("price leading number") << 3 << "3abc" << QString() << "3abc" << "3";
    }
    void badCellsAreRefused()
    {
        QFETCH(int, column);
        QFETCH(QString, typed);
        QFETCH(QString, message);
        QFETCH(QString, cellAfter);
        QFETCH(QString, moneyAfter);
        open(1);
        keyCell(form, 0, 0, QStringLiteral("1"));
        if (!message.isEmpty())
            prompts->expect(message);
        keyCell(form, 0, column, typed);
        QCOMPARE(form->xayDetail()->text(0, column), cellAfter);
        QCOMPARE(texts(form, "txtTotalMoney"), moneyAfter);
        auto editing = [this] {
            QWidget *f = QApplication::focusWidget();
            return f && grid(form)->viewport()->isAncestorOf(f);
        };
        QTRY_COMPARE(editing(), !message.isEmpty());
    }

    // Ctrl+S and Ctrl+P finish the field in hand as leaving it would, so the keyboard stores
    // what the mouse stores; save and print prints the ticket just stored. The phone on the
    // ticket becomes the known customer's phone, even when emptied.
    void keyboardSaveFinishesTheField_data()
    {
        QTest::addColumn<QString>("field"); // where the operator stands; empty: in the lines
        QTest::addColumn<QString>("phone"); // put over the looked-up one; null: left alone
        QTest::addColumn<int>("key");
        QTest::addColumn<QString>("stored"); // CustomerID|TotalAmount|TransferFee|customer's phone
        QTest::newRow("emptied fee") << "txtTransferFee" << QString() << int(Qt::Key_S) << "7|1.0|0.0|5557777";
        QTest::newRow("address not yet looked up, print")
            << "txtCustAddress" << QString() << int(Qt::Key_P) << "7|1.0|5.0|5557777";
        QTest::newRow("quantity being keyed") << "dbgDetail" << QString() << int(Qt::Key_S) << "7|4.0|5.0|5557777";
        QTest::newRow("emptied phone") << "" << "" << int(Qt::Key_S) << "7|1.0|5.0|";
    }
    void keyboardSaveFinishesTheField()
    {
        QFETCH(QString, field);
        QFETCH(QString, phone);
        QFETCH(int, key);
        QFETCH(QString, stored);
        addCustomer7();
        QList<qint32> printed; // ticket numbers; a preview would count as 0
        setSalePrinter([&](qint32 id, bool preview) { printed << (preview ? 0 : id); });
        open(1);
        workers(form)->setCurrentIndex(workers(form)->findText(QStringLiteral("张三")));
        keyCell(form, 0, 0, QStringLiteral("1"));
        if (field == QLatin1String("txtCustAddress")) {
            edit(form, "txtCustAddress")->setFocus();
            typeText(edit(form, "txtCustAddress"), QStringLiteral("西街7号"));
        } else {
            typeAndEnter(form, "txtCustAddress", QStringLiteral("西街7号"));
        }
        if (field == QLatin1String("dbgDetail")) {
            grid(form)->setFocus();
            grid(form)->setCurrentIndex(grid(form)->model()->index(0, 4));
            typeText(grid(form), QStringLiteral("4"));
        } else if (field == QLatin1String("txtTransferFee")) {
            edit(form, "txtTransferFee")->setFocus();
            edit(form, "txtTransferFee")->clear();
        }
        if (!phone.isNull())
            edit(form, "txtCustPhone")->setText(phone);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key(key), Qt::ControlModifier);
        QCOMPARE(db->count("Customer"), 1);
        QCOMPARE(db->scalar("SELECT CustomerID || '|' || TotalAmount || '|' || TransferFee || '|' || "
                            "(SELECT ifnull(Phone, '') FROM Customer WHERE ID=Sale.CustomerID) FROM Sale").toString(),
                 stored);
        QCOMPARE(printed, key == Qt::Key_P ? QList<qint32>{1} : QList<qint32>{});
    }

    void customerFoundByEachRoad_data()
    {
        QTest::addColumn<QString>("field");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("message");
        QTest::addColumn<QString>("shown"); // account|address|name|type|phone
        const QString found = QStringLiteral("7|西街7号|王五|已开户|5557777");
        QTest::newRow("account") << "txtCustAccount" << "7" << QString() << found;
        QTest::newRow("account unknown") << "txtCustAccount" << "8" << "没有找到该客户帐号！" << "|旧地址|||";
        QTest::newRow("phone") << "txtCustPhone" << "5557777" << QString() << found;
        QTest::newRow("phone unknown keeps the address") << "txtCustPhone" << "5550000" << QString() << "|旧地址|||5550000";
        QTest::newRow("address") << "txtCustAddress" << "西街7号" << QString() << found;
        QTest::newRow("suspended customer") << "txtCustAddress" << "北街9号" << QString() << "|北街9号|||";
        QTest::newRow("quote in the address") << "txtCustAddress" << "西'街" << "查找客户信息时出现错误！" << "|西'街|||";
    }
    void customerFoundByEachRoad()
    {
        QFETCH(QString, field);
        QFETCH(QString, typed);
        QFETCH(QString, message);
        QFETCH(QString, shown);
        addCustomer7();
        Rows::customer(*db, 9, QStringLiteral("北街9号"), QStringLiteral("5559999"), QStringLiteral("0"));
        SetSysValue(QStringLiteral("SearchAddress"), QStringLiteral("0")); // the lookups alone, not the typing search
        open(1);
        edit(form, "txtCustAddress")->setText(QStringLiteral("旧地址"));
        if (typed.contains(QLatin1Char('\'')))
            expectFailed(*prompts, Failed::Read);
        if (!message.isEmpty())
            prompts->expect(message);
        typeAndEnter(form, field, typed);
        QCOMPARE(texts(form, "txtCustAccount txtCustAddress txtCustName txtCustType txtCustPhone"), shown);
    }

    void twoCustomersOnOnePhone()
    {
        addCustomer7();
        Rows::customer(*db, 8, QStringLiteral("西街8号"), QStringLiteral("5557777"), QStringLiteral("1"),
                       QStringLiteral("赵六"));
        ModalScript modals;
        int rowsShown = 0;
        modals.on(QStringLiteral("frmSelCustomer"), [&](QWidget *sel) {
            QTableView *list = grid(sel, "dbgMain");
            rowsShown = list->model()->rowCount();
            list->setCurrentIndex(list->model()->index(1, 0));
            ModalScript::click(sel, QStringLiteral("btnOk"));
        });
        open(1);
        typeAndEnter(form, "txtCustPhone", QStringLiteral("5557777"));
        VERIFY_MODALS(modals);
        QCOMPARE(rowsShown, 2);
        QCOMPARE(texts(form, "txtCustAccount txtCustAddress txtCustName"), QStringLiteral("8|西街8号|赵六"));
        QCOMPARE(form->InputReady, 1);
    }

    // A whole ticket keyed without the mouse for an address nobody has yet: the address becomes
    // a customer, water brings its bottles along, and the window is ready for the next ticket.
    void newTicketKeyedWithoutTheMouse()
    {
        open(1);
        auto key = [](int k, Qt::KeyboardModifiers m = Qt::NoModifier) {
            QTest::keyClick(QApplication::focusWidget(), Qt::Key(k), m);
            QCoreApplication::processEvents();
        };
        auto type = [](const QString &t) { typeText(QApplication::focusWidget(), t); };
        key(Qt::Key_Tab);
        type(QStringLiteral("5550001"));
        key(Qt::Key_Tab);
        type(QStringLiteral("新村3号"));
        key(Qt::Key_Return);
        // Code, Enter, quantity, Enter, and the next line's code.
        type(QStringLiteral("1"));
        key(Qt::Key_Return);
        type(QStringLiteral("2"));
        key(Qt::Key_Return);
        type(QStringLiteral("2"));
        key(Qt::Key_Return);
        QCOMPARE(texts(form, "txtTotalAmount txtTotalMoney"), QStringLiteral("3|105.5"));
        workers(form)->setFocus();
        key(Qt::Key_Down);
        QCOMPARE(workers(form)->currentText(), QStringLiteral("张三"));
        QCOMPARE(texts(form, "txtTransferFee"), QStringLiteral("5"));
        // One more water, and the gas taken off: a blank row among the lines.
        keyCell(form, 2, 0, QStringLiteral("1"));
        keyCell(form, 1, 0, QString());
        remark(form)->setPlainText(QStringLiteral("放门口"));
        remark(form)->setFocus();
        key(Qt::Key_S, Qt::ControlModifier);

        QTRY_COMPARE(db->count("Sale"), 1);
        QCOMPARE(db->count("Customer"), 1);
        QCOMPARE(db->scalar("SELECT Name || '|' || CustType || '|' || Detail || '|' || Phone || '|' || UserID "
                            "|| '|' || (Account=ID) || '|' || CreateDate FROM Customer").toString(),
                 QStringLiteral("|0|系统自动加入用户！|5550001|1|1|2026-11-23"));
        QCOMPARE(db->scalar("SELECT CustomerID || '|' || SenderID || '|' || TotalAmount || '|' || TotalMoney || '|' "
                            "|| TotalContainer || '|' || TransferFee || '|' || Detail || '|' || FinishFlag FROM Sale")
                     .toString(),
                 QStringLiteral("1|1|3.0|30.0|3.0|5.0|放门口|0"));
        QCOMPARE(db->scalar("SELECT group_concat(ProductID || ':' || MyAmount || ':' || IsContainer, ' ') FROM "
                            "(SELECT * FROM Sale_detail ORDER BY rowid)").toString(),
                 QStringLiteral("1:2.0:0 3:2.0:1 1:1.0:0 3:1.0:1"));
        // Ready for the next ticket: new number, date, worker and fee kept.
        QCOMPARE(form->xayDetail()->lineCount(), 0);
        QCOMPARE(texts(form, "txtSaleID txtCustAddress txtTotalAmount txtTransferFee"), QStringLiteral("2||0|5"));
    }

    // Nothing of a refused save is stored, and the operator's input stays for another try.
    void failedSavesChangeNothing_data()
    {
        QTest::addColumn<QString>("phone");
        QTest::addColumn<QString>("product");
        QTest::addColumn<QString>("quantity");
        QTest::addColumn<QString>("remark");
        QTest::addColumn<QString>("date");
        QTest::addColumn<QStringList>("messages");
        QTest::newRow("quantity over 32767") << "" << "2" << "40000" << "" << "" << QStringList{QStringLiteral("溢出")};
        QTest::newRow("quote in the new customer's phone")
            << "555'1" << "2" << "1" << "" << "" << QStringList{Failed::Update, QStringLiteral("往系统增加新客户信息时出现错误！")};
        QTest::newRow("date that is a condition")
            << "" << "2" << "1" << "" << "2026-01-01# or 1=1 or #2026-01-01" << QStringList{Failed::Update};
        // The empties line is refused after the ticket and its line were written.
        QTest::newRow("empties line refused")
            << "" << "1" << "1" << "" << "" << QStringList{Failed::Update, QStringLiteral("单据没有保存：")};
        // A long remark needs pages the disk no longer has.
        QTest::newRow("full disk") << "" << "2" << "1" << QString(6000, u'x') << ""
                                   << QStringList{Failed::Update + QStringLiteral("database or disk is full")};
    }
    void failedSavesChangeNothing()
    {
        QFETCH(QString, phone);
        QFETCH(QString, product);
        QFETCH(QString, quantity);
        QFETCH(QString, remark);
        QFETCH(QString, date);
        QFETCH(QStringList, messages);
        QVERIFY(db->exec("CREATE TRIGGER refuse_empties BEFORE INSERT ON Sale_detail WHEN NEW.IsContainer='1' "
                         "BEGIN SELECT RAISE(ABORT, 'no empties today'); END"));
        open(1);
        typeAndEnter(form, "txtCustAddress", QStringLiteral("新村3号"));
        edit(form, "txtCustPhone")->setText(phone);
        if (!date.isEmpty())
            edit(form, "txtCreateDate")->setText(date);
        keyCell(form, 0, 0, product);
        keyCell(form, 0, 4, quantity);
        ::remark(form)->setPlainText(remark);
        if (remark.size() > 1000)
            QVERIFY(db->exec(QStringLiteral("PRAGMA max_page_count=%1").arg(db->scalar("PRAGMA page_count").toInt())));
        for (const QString &m : messages)
            prompts->expect(m, QMessageBox::Ok, true);
        button(form, "btnSave")->click();
        for (const char *table : {"Customer", "Sale", "Sale_detail"})
            QVERIFY2(db->count(table) == 0, table);
        QVERIFY(!Conn.inTransaction());
        QVERIFY(Forms::loaded(QStringLiteral("frmSale")));
        QCOMPARE(form->xayDetail()->lineCount(), 1);
        QCOMPARE(texts(form, "txtCustAddress"), QStringLiteral("新村3号"));
        QCOMPARE(::remark(form)->toPlainText(), remark);
    }

    void editedTicketIsRewrittenAndCloses()
    {
        addTicket();
        db->exec("UPDATE Sender SET Price=9 WHERE ID=1");
        SetSysValue(QStringLiteral("AutoInMoney"), QStringLiteral("1"));
        open(2, 1);
        // The ticket's own fee, not the worker's present one.
        QCOMPARE(texts(form, "txtTransferFee txtInMoney"), QStringLiteral("8|10"));
        keyCell(form, 0, 4, QStringLiteral("4"));
        QCOMPARE(texts(form, "txtInMoney"), QStringLiteral("40"));
        button(form, "btnSave")->click();
        QVERIFY(!Forms::loaded(QStringLiteral("frmSale")));
        QCOMPARE(db->scalar("SELECT TotalAmount || '|' || TotalMoney || '|' || InMoney || '|' || UserID || '|' || "
                            "TransferFee || '|' || CreateDate FROM Sale WHERE ID=1").toString(),
                 QStringLiteral("4.0|40.0|40.0|1|8.0|2026-11-20"));
        QCOMPARE(db->count("Sale_detail", "SaleID=1"), 2);
        QCOMPARE(db->scalar("SELECT MyAmount FROM Sale_detail WHERE IsContainer='1'").toInt(), 4);
    }

};

QTEST_MAIN(TicketTest)
#include "tst_ticket.moc"
