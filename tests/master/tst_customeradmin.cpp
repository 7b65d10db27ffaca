// The customer list and its filter, over a real database.
#include "support/ModalScript.h"
#include "support/Rows.h"

#include "data/Gateway.h"
#include "data/SqlText.h"
#include "master/CustomerForms.h"
#include "master/frmCustomerAdmin.h"
#include "platform/Forms.h"
#include "views/DataCombo.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QPrinterInfo>
#include <QRadioButton>
#include <QtTest>

namespace {
QString plain(QString sql)
{
    for (QChar mark : {Sql::TextOpen, Sql::TextClose, Sql::NumberOpen, Sql::NumberClose})
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

// "chkX" / "optX_n" clicks, "txtX=text" types, "cmbOperator_N=i" and "cmbCustType=i" choose by
// position, "cmbStation=2" by bound value.
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

    // The list in front, showing 1 王五 (active), 2 王五 (suspended), 3 李四 (type 2, opened
    // in March, station 2).
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
        QVERIFY(db->exec("UPDATE Customer SET CustType=2,CreateDate='2026-03-10',StationID=2 WHERE ID=3"));
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
        const QString active = " WHERE Status='1'";
        const QString fresh = "optSearchType_1";
        const QStringList all{"1", "2", "3"};

        QTest::newRow("refine, nothing ticked keeps") << active << QStringList{} << active << QStringList{"1", "3"} << "";
        QTest::newRow("new, nothing ticked clears") << active << QStringList{fresh} << "" << all << "";
        QTest::newRow("refine joins with AND") << active << QStringList{"chkPhone", "txtPhone= 666 "}
                                               << active + " AND  phone Like '%666%' " << QStringList{"3"} << "";
        QTest::newRow("refine an empty filter opens WHERE") << "" << QStringList{"chkCreateDate", "txtCreateDate=2026-3-1", "cmbOperator_1=4"}
                                                          << " WHERE  CreateDate>=#2026-3-1#" << QStringList{"3"} << "";
        QTest::newRow("status after name") << active << QStringList{fresh, "optStatus_2", "chkName", "txtName=王"}
                                           << " WHERE  Name Like '%王%'  AND  Status='0'" << QStringList{"2"} << "";
        QTest::newRow("type by position") << "" << QStringList{"chkCustType", "cmbCustType=2"} << " WHERE  CustType=2"
                                          << QStringList{"3"} << "";
        QTest::newRow("account beyond 16 bits") << active << QStringList{"chkAccount", "txtAccount=40000"} << active
                                                << QStringList{"1", "3"} << "数据输入格式不正确， 40000 不是有效的整数！";
        QTest::newRow("letters in an amount") << "" << QStringList{"chkTotalDebt", "txtTotalDebt=5元"} << "" << all
                                              << "数据输入格式不正确， 5元 不是有效的数字！";
        QTest::newRow("impossible date") << "" << QStringList{"chkCreateDate", "txtCreateDate=2026-13-01"} << ""
                                         << all << "数据输入格式不正确， 2026-13-01 不是有效的日期！";
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

    // tlDel is one switch both ways; the suspended customer stays listed, struck through.
    void suspendSwitch_data()
    {
        QTest::addColumn<int>("row");
        QTest::addColumn<QString>("question");
        QTest::addColumn<QString>("title");
        QTest::addColumn<int>("answer");
        QTest::addColumn<QString>("status");
        QTest::newRow("active, yes") << 0 << "你确认要禁用该帐户吗？" << "禁用帐户" << int(QMessageBox::Yes) << "0";
        QTest::newRow("active, no") << 0 << "你确认要禁用该帐户吗？" << "禁用帐户" << int(QMessageBox::No) << "1";
        QTest::newRow("suspended, taken back") << 1 << "该帐户已禁用，要重新启用吗？" << "启用帐户" << int(QMessageBox::Yes) << "1";
    }
    void suspendSwitch()
    {
        QFETCH(int, row);
        QFETCH(QString, question);
        QFETCH(QString, title);
        QFETCH(int, answer);
        QFETCH(QString, status);
        openList();
        QCOMPARE(list->dbgMain->rowStyle(row).strikeOut, row == 1);
        list->dbgMain->setCurrentRow(row);
        ScriptedPrompter prompts;
        prompts.expect(question, QMessageBox::StandardButton(answer));
        QVERIFY(Forms::call(list, "DeleteData"));
        VERIFY_PROMPTS(prompts);
        QCOMPARE(prompts.last().title, title);
        QCOMPARE(prompts.last().icon, QMessageBox::Question);
        QCOMPARE(db->scalar(QStringLiteral("SELECT Status FROM Customer WHERE ID=%1").arg(row + 1)).toString(), status);
        QCOMPARE(ids(list->dbgMain), QStringList({"1", "2", "3"}));
        QCOMPARE(list->dbgMain->rowStyle(row).strikeOut, status == "0");
        QCOMPARE(list->dbgMain->currentRow(), row);
    }

    // The card opens on the row's hidden ID, and the list shows the change when it closes.
    void cardOpensOnTheRow_data()
    {
        QTest::addColumn<int>("mode");
        QTest::addColumn<QStringList>("shown");
        QTest::newRow("new") << 1 << QStringList{"1", "2", "3", "4"};
        QTest::newRow("edit") << 2 << QStringList{"1", "2", "3"};
    }
    void cardOpensOnTheRow()
    {
        QFETCH(int, mode);
        QFETCH(QStringList, shown);
        openList();
        list->dbgMain->setCurrentRow(2);
        ModalScript modals;
        modals.on("frmCustomer", [&](QWidget *card) {
            QCOMPARE(card->property("mActionType").toInt(), mode);
            if (mode == 2)
                QCOMPARE(card->property("mCurID").toInt(), 3);
            ModalScript::type(card, "txtAddress", "湖路9号");
            ModalScript::click(card, "btnSave");
            if (card->isVisible())
                ModalScript::click(card, "btnExit");
        });
        ScriptedPrompter prompts;
        QVERIFY(Forms::call(list, mode == 1 ? "AddNew" : "EditData"));
        VERIFY_MODALS(modals);
        VERIFY_PROMPTS(prompts);
        QCOMPARE(ids(list->dbgMain), shown);
        QCOMPARE(list->dbgMain->model()->index(shown.size() - 1, 5).data().toString(), QStringLiteral("湖路9号"));
    }

    // Without automatic refresh the list waits empty: nothing to edit or suspend. DeletaAll
    // only says no, and the command bar's DeleteAll finds nothing.
    void emptyListAndDeletaAll()
    {
        openList(QStringLiteral("0"));
        QCOMPARE(list->dbgMain->model()->rowCount(), 0);
        ScriptedPrompter prompts;
        prompts.expect("请先选定您要禁用的数据！").expect("请先选定您要编辑的记录！").expect("不能全部禁用！");
        list->DeleteData();
        list->EditData();
        QVERIFY(!Forms::call(list, "DeleteAll"));
        QVERIFY(Forms::call(list, "DeletaAll"));
        VERIFY_PROMPTS(prompts);
        QCOMPARE(prompts.last().title, QStringLiteral("失败"));
        QCOMPARE(prompts.last().icon, QMessageBox::NoIcon);
        QCOMPARE(db->count("Customer", "Status='1'"), 2);
    }

    // Every head sorts but 备注's, with one direction for the whole list; a long phone number
    // is shown whole.
    void headsAndWidths()
    {
        openList();
        QVERIFY(list->dbgMain->columnWidth(3)
                > list->dbgMain->fontMetrics().horizontalAdvance(QStringLiteral("0571-66600003")));
        emit list->dbgMain->HeadClick(6);
        QCOMPARE(list->curSortSQL, QStringLiteral(" ORDER BY ID Asc"));
        emit list->dbgMain->HeadClick(2);
        QCOMPARE(list->curFullSQL, QStringLiteral("SELECT * FROM Customer ORDER BY Name Asc"));
        QCOMPARE(ids(list->dbgMain).value(0), QStringLiteral("3"));
    }

    void printing()
    {
        if (!QPrinterInfo::availablePrinters().isEmpty())
            QSKIP("this machine has a printer");
        openList();
        ScriptedPrompter prompts;
        prompts.expect("打印失败，请检查您的系统中是否正确安装了打印机！");
        list->PrintReport();
        VERIFY_PROMPTS(prompts);
        QCOMPARE(prompts.last().title, QStringLiteral("预览"));
        QCOMPARE(list->dbgMain->PrintInfo()->PageHeader, QStringLiteral("\\t顾户资料一览表"));
    }
};

QTEST_MAIN(TestCustomerAdmin)
#include "tst_customeradmin.moc"
