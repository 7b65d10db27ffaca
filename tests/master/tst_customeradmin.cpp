// The customer list and its filter, over a real database.
#include "support/ModalScript.h"
#include "support/Rows.h"

#include "data/Gateway.h"
#include "data/SqlText.h"
#include "master/CustomerForms.h"
#include "master/frmCustomerAdmin.h"
#include "platform/Forms.h"
#include "views/DataCombo.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QLineEdit>
#include <QPrinterInfo>
#include <QtTest>

namespace {
QString plain(QString sql)
{
    for (QChar mark : {Sql::TextOpen, Sql::TextClose, Sql::NumberOpen, Sql::NumberClose, Sql::DateOpen, Sql::DateClose})
        sql.remove(mark);
    return sql;
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
        else if (auto *edit = qobject_cast<QLineEdit *>(w))
            edit->setText(value);
    }
}
}

class TestCustomerAdmin : public QObject {
    Q_OBJECT
    std::unique_ptr<TestDb> db;
    frmCustomerAdmin *list = nullptr;

    // The list in front: 1 王五, 2 王五 suspended, 3 李四 of type 2 and station 2, opened in March.
    void openList(const QString &autoRefresh = QStringLiteral("1"))
    {
        SetSysValue(QStringLiteral("AutoDataRefresh"), autoRefresh);
        list = Forms::get<frmCustomerAdmin>(QStringLiteral("frmCustomerAdmin"));
        Forms::setActiveChildProvider([this] { return list; });
    }

private slots:
    void initTestCase() { registerCustomerForms(); }
    void init()
    {
        db = std::make_unique<TestDb>();
        QVERIFY(db->ok());
        QVERIFY(Rows::customer(*db, 1, QStringLiteral("河路1号")));
        QVERIFY(Rows::customer(*db, 2, QStringLiteral("河路2号"), QStringLiteral("5550000"), QStringLiteral("0")));
        QVERIFY(Rows::customer(*db, 3, QStringLiteral("山路3号"), QStringLiteral("0571-66600003"), QStringLiteral("1"),
                               QStringLiteral("李四")));
        QVERIFY(db->exec("UPDATE Customer SET CustType=2,StationID=2,CreateDate='2026-03-10' WHERE ID=3"));
        QVERIFY(db->exec("INSERT INTO Station(ID,Name,Status) VALUES(2,'东站','1')"));
    }
    void cleanup()
    {
        Forms::unloadAll();
        Forms::setActiveChildProvider(nullptr);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        list = nullptr;
        db.reset();
    }

    // What the filter writes and what the list then shows. A refused value keeps the dialog
    // open with its message and the filter as it was; a clause the database refuses fails at
    // the refresh with the gateway's message and an empty list.
    void filterThenRefresh_data()
    {
        QTest::addColumn<QString>("present");
        QTest::addColumn<QStringList>("steps");
        QTest::addColumn<QString>("filter");
        QTest::addColumn<QStringList>("shown");
        QTest::addColumn<QString>("message");
        const QString active = " WHERE Status='1'", fresh = "optSearchType_1";
        const QStringList all{"1", "2", "3"};
        QTest::newRow("refine, nothing ticked keeps") << active << QStringList{} << active << QStringList{"1", "3"} << "";
        QTest::newRow("new, nothing ticked clears") << active << QStringList{fresh} << "" << all << "";
        QTest::newRow("refine joins with AND") << active << QStringList{"chkPhone", "txtPhone= 666 "}
                                               << active + " AND  phone Like '%666%' " << QStringList{"3"} << "";
        QTest::newRow("new, status after name and type") << active << QStringList{fresh, "optStatus_2", "chkName", "txtName=王", "chkCustType", "cmbCustType=1"}
                                           << " WHERE  Name Like '%王%'  AND  CustType=1 AND  Status='0'" << QStringList{"2"} << "";
        QTest::newRow("account beyond 16 bits") << active << QStringList{"chkAccount", "txtAccount=40000"} << active
                                                << QStringList{"1", "3"} << "数据输入格式不正确， 40000 不是有效的整数！";
        QTest::newRow("opened since") << "" << QStringList{"chkCreateDate", "txtCreateDate=2026-3-1", "cmbOperator_1=4"}
                                      << " WHERE  CreateDate>=#2026-3-1#" << QStringList{"3"} << "";
        QTest::newRow("date carrying #") << "" << QStringList{"chkCreateDate", "txtCreateDate=2026-1-1# or 1=1 or #2026-1-1"}
                                         << "" << all << "数据输入格式不正确， 2026-1-1# or 1=1 or #2026-1-1 不是有效的日期！";
        QTest::newRow("quote in a name") << "" << QStringList{"chkName", "txtName=王'"} << " WHERE  Name Like '%王'%' "
                                         << QStringList{} << Failed::Read;
        QTest::newRow("total bought is no column") << "" << QStringList{"chkTotalBuyMoney"} << " WHERE  TotalBuyMoney=0"
                                                   << QStringList{} << Failed::Read;
        QTest::newRow("debt, status, station in order")
            << active << QStringList{fresh, "chkStation", "cmbStation=2", "optStatus_1", "chkTotalDebt", "txtTotalDebt=5", "cmbOperator_3=0"}
            << " WHERE  TotalDebt>5 AND  Status='1' AND  StationID=2" << QStringList{} << Failed::Read;
    }
    void filterThenRefresh()
    {
        QFETCH(QString, present);
        QFETCH(QStringList, steps);
        QFETCH(QString, filter);
        QFETCH(QStringList, shown);
        QFETCH(QString, message);
        openList();
        list->curFilterSQL = present;
        ScriptedPrompter prompts;
        if (!message.isEmpty())
            prompts.expect(message, QMessageBox::Ok, true);
        ModalScript modals;
        modals.on("frmCustFilter", [&](QWidget *dlg) {
            QCOMPARE(dlg->windowTitle(), QStringLiteral("客户资料过滤器"));
            apply(dlg, steps);
            ModalScript::click(dlg, "btnOk");
            if (dlg->isVisible()) // refused: the user gives up
                ModalScript::click(dlg, "btnCancel");
        });
        list->ShowFilter();
        VERIFY_MODALS(modals);
        VERIFY_PROMPTS(prompts);
        QCOMPARE(plain(list->curFilterSQL), filter);
        QCOMPARE(ids(list->dbgMain), shown);
    }

    // tlDel is one switch both ways; a suspended customer stays listed, struck through.
    void suspendAndTakeBack()
    {
        openList();
        QVERIFY(!list->dbgMain->rowStyle(0).strikeOut && list->dbgMain->rowStyle(1).strikeOut);
        ScriptedPrompter prompts;
        prompts.expect("你确认要禁用该帐户吗？", QMessageBox::Yes).expect("该帐户已禁用，要重新启用吗？", QMessageBox::Yes);
        for (int row : {0, 1}) {
            list->dbgMain->setCurrentRow(row);
            QVERIFY(Forms::call(list, "DeleteData"));
            QCOMPARE(prompts.last().title, QString(row ? "启用帐户" : "禁用帐户"));
            QCOMPARE(prompts.last().icon, QMessageBox::Question);
        }
        VERIFY_PROMPTS(prompts);
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
        ScriptedPrompter prompts;
        prompts.expect("请先选定您要禁用的数据！").expect("不能全部禁用！");
        list->DeleteData();
        QVERIFY(!Forms::call(list, "DeleteAll"));
        QVERIFY(Forms::call(list, "DeletaAll"));
        QCOMPARE(prompts.last().icon, QMessageBox::NoIcon);
        if (QPrinterInfo::availablePrinters().isEmpty()) {
            prompts.expect("打印失败，请检查您的系统中是否正确安装了打印机！");
            list->PrintReport();
            QCOMPARE(prompts.last().title, QStringLiteral("预览"));
        }
        VERIFY_PROMPTS(prompts);
        QCOMPARE(db->count("Customer", "Status='1'"), 2);
    }

    // Every head sorts but 备注's; a long phone number is shown whole.
    void headsAndWidths()
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

QTEST_MAIN(TestCustomerAdmin)
#include "tst_customeradmin.moc"
