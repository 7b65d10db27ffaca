// Stock vouchers as the shop keys them, their list and its filter.
#include "support/ModalScript.h"
#include "support/Rows.h"

#include "data/Gateway.h"
#include "data/Session.h"
#include "platform/Clock.h"
#include "platform/Forms.h"
#include "platform/Modal.h"
#include "stock/StockForms.h"
#include "stock/frmStore.h"
#include "stock/frmStoreAdmin.h"
#include "views/LineTable.h"

#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QRadioButton>
#include <QtTest>

namespace {
struct Voucher {
    int id;
    double amount, money;
    QString direction = QStringLiteral("0"), handInput = QStringLiteral("1"), finish = QStringLiteral("0");
    int lines = 1;
};

void store(const TestDb &db, const Voucher &v)
{
    QVERIFY(db.exec(QStringLiteral("INSERT INTO Store(ID,PaperID,CreateDate,TotalAmount,TotalMoney,Detail,UserID,"
                                   "Direction,HandInput,FinishFlag,StationID) VALUES(%1,'P%1','2026-11-2%1',%2,%3,"
                                   "'备注%1',2,'%4','%5','%6',1)")
                        .arg(v.id).arg(v.amount).arg(v.money).arg(v.direction, v.handInput, v.finish)));
    for (int i = 0; i < v.lines; ++i)
        QVERIFY(db.exec(QStringLiteral("INSERT INTO Store_detail VALUES(%1,1,10,%2,%3)").arg(v.id).arg(v.amount).arg(v.money)));
}

QLineEdit *edit(QWidget *w, const QString &name) { return w->findChild<QLineEdit *>(name); }
QPushButton *button(QWidget *w, const char *name) { return w->findChild<QPushButton *>(QLatin1String(name)); }
QRadioButton *radio(QWidget *w, const char *name) { return w->findChild<QRadioButton *>(QLatin1String(name)); }
// Commits a typed cell the way the grid's editor does.
void key(frmStore *form, int row, int column, const QString &typed)
{
    form->xayDetail()->setData(form->xayDetail()->index(row, column), typed, Qt::EditRole);
}
QStringList cells(const DbGrid *grid, QList<int> columns, int row = -1)
{
    QStringList out;
    for (int r = 0; r < grid->model()->rowCount(); ++r)
        for (int c : columns)
            if (row < 0 || r == row)
                out << grid->model()->index(r, c).data().toString();
    return out;
}
}
Q_DECLARE_METATYPE(Voucher)

class TestStock : public QObject {
    Q_OBJECT
    std::unique_ptr<TestDb> db;
    std::unique_ptr<ScriptedPrompter> prompts;

    frmStore *open(int mode, int id = 0)
    {
        auto *form = Forms::get<frmStore>(QStringLiteral("frmStore"));
        form->mActionType = mode;
        form->mCurID = id;
        form->show();
        return form;
    }
    frmStoreAdmin *list()
    {
        auto *w = Forms::get<frmStoreAdmin>(QStringLiteral("frmStoreAdmin"));
        Forms::setActiveChildProvider([w] { return w; });
        return w;
    }

private slots:
    void initTestCase()
    {
        registerStockForms();
        Clock::set(QDateTime(QDate(2026, 11, 23), QTime(9, 0)));
    }
    void init()
    {
        Session::UserID = 1;
        db = std::make_unique<TestDb>();
        QVERIFY(db->ok());
        QVERIFY(db->exec("INSERT INTO Product(ID,Name,Unit,Status,IsContainer,ContainerID,Price) VALUES "
                         "(1,'纯净水','桶','1','0',3,10),(2,'液化气','瓶','1','0',0,85.5)"));
        SetSysValue(QStringLiteral("AutoDataRefresh"), QStringLiteral("1"));
        prompts = std::make_unique<ScriptedPrompter>();
    }
    void cleanup()
    {
        const QStringList problems = prompts->problems();
        Forms::unloadAll();
        Forms::setActiveChildProvider(nullptr);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        prompts.reset();
        db.reset();
        QVERIFY2(problems.isEmpty(), qPrintable(problems.join(u'\n')));
    }

    // New vouchers one after another: each is stored whole, and the window stays ready for
    // the next with the same date and direction.
    void newVouchersKeepDateAndDirection_data()
    {
        QTest::addColumn<bool>("out");
        QTest::newRow("goods in") << false;
        QTest::newRow("goods out") << true;
    }
    void newVouchersKeepDateAndDirection()
    {
        QFETCH(bool, out);
        frmStore *form = open(1);
        QCOMPARE(edit(form, "txtCreateDate")->text(), QStringLiteral("2026-11-23"));
        QVERIFY(!button(form, "btnSave")->isEnabled());
        edit(form, "txtCreateDate")->setText(QStringLiteral("2026-11-20"));
        radio(form, out ? "optType_1" : "optType_0")->click();
        for (int round = 1; round <= 2; ++round) {
            for (const auto &[row, column, typed] : {std::tuple{0, 0, "1"}, {0, 4, "3"}, {1, 0, "2"}, {2, 0, "1"}, {2, 3, "9.5"}})
                key(form, row, column, QString::fromLatin1(typed));
            QCOMPARE(edit(form, "txtTotalAmount")->text() + u'|' + edit(form, "txtTotalMoney")->text(), QStringLiteral("5|125"));
            button(form, "btnSave")->click();
            QCOMPARE(form->xayDetail()->lineCount(), 0);
            QVERIFY(!button(form, "btnSave")->isEnabled());
            QCOMPARE(edit(form, "txtCreateDate")->text(), QStringLiteral("2026-11-20"));
            QCOMPARE(radio(form, "optType_1")->isChecked(), out);
        }
        QCOMPARE(db->count("Store", QStringLiteral("Direction='%1' AND HandInput='1' AND FinishFlag='0' AND StationID=1 AND UserID=1 "
                                                   "AND CreateDate='2026-11-20' AND TotalAmount=5 AND TotalMoney=125").arg(int(out))),
                 2);
        QCOMPARE(db->scalar("SELECT group_concat(ProductID||':'||Price||':'||MyAmount||':'||MyMoney, ' ') "
                            "FROM Store_detail WHERE StoreID=2").toString(),
                 QStringLiteral("1:10.0:3.0:30.0 2:85.5:1.0:85.5 1:9.5:1.0:9.5"));
    }

    // Header and lines are stored together or not at all; the window keeps what was typed.
    void badInputStoresNothing_data()
    {
        QTest::addColumn<QString>("field");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<int>("mode"); // 2: a stored voucher, whose date is not written again
        QTest::newRow("quote in the paper number") << "txtPaperID" << "A'1" << 1;
        QTest::newRow("month 13") << "txtCreateDate" << "2026-13-01" << 1;
        QTest::newRow("date mark inside the date") << "txtCreateDate" << "2026-11-20# or 1=1 or #2026-11-20" << 1;
        QTest::newRow("new voucher, line insert fails") << "price" << "3abc" << 1;
        QTest::newRow("stored voucher, line insert fails") << "price" << "3abc" << 2;
    }
    void badInputStoresNothing()
    {
        QFETCH(QString, field);
        QFETCH(QString, typed);
        QFETCH(int, mode);
        if (mode == 2)
            store(*db, {7, 2, 20});
        QPointer<frmStore> form = open(mode, 7);
        key(form, 0, 0, QStringLiteral("2"));
        if (field == QLatin1String("price"))
            key(form, 0, 3, typed);
        else
            edit(form, field)->setText(typed);
        expectFailed(*prompts, Failed::Update);
        button(form, "btnSave")->click();
        VERIFY_PROMPTS(*prompts);
        QVERIFY(form && form->isVisible());
        QCOMPARE(form->xayDetail()->text(0, 0), QStringLiteral("2"));
        QCOMPARE(db->count("Store") * 10 + db->count("Store_detail"), mode == 2 ? 11 : 0);
        QCOMPARE(db->count("Store_detail", "ProductID=2"), 0);
    }

    // Generated and carried-forward vouchers open with their note and no save; the carried-
    // forward note wins when both hold. A hand-made one turned from out to in keeps its number,
    // date and lines and passes to the user who saved it; the window closes.
    void storedVoucher_data()
    {
        QTest::addColumn<QString>("handInput");
        QTest::addColumn<QString>("finish");
        QTest::addColumn<QString>("note");
        QTest::newRow("hand-made, open") << "1" << "0" << "";
        QTest::newRow("generated") << "0" << "0" << "（注：本单据是系统生成单据，不能修改！）";
        QTest::newRow("generated and carried forward") << "0" << "1" << "（注：本单据已结转，不能再修改！）";
    }
    void storedVoucher()
    {
        QFETCH(QString, handInput);
        QFETCH(QString, finish);
        QFETCH(QString, note);
        store(*db, {7, 2, 20, "1", handInput, finish, 2});
        Session::UserID = 3;
        QPointer<frmStore> form = open(2, 7);
        QCOMPARE(form->findChild<QLabel *>("lblInfo")->text(), note);
        QCOMPARE(button(form, "btnSave")->isVisible(), note.isEmpty());
        QVERIFY(radio(form, "optType_1")->isChecked());
        QCOMPARE(form->xayDetail()->lineCount(), 2);
        QVERIFY(!edit(form, "txtCreateDate")->isEnabled());
        if (!note.isEmpty())
            return;
        radio(form, "optType_0")->click();
        button(form, "btnSave")->click();
        QVERIFY(!form || !form->isVisible());
        QCOMPARE(db->count("Store"), 1);
        QCOMPARE(db->count("Store", "ID=7 AND Direction='0' AND UserID=3 AND CreateDate='2026-11-27' AND HandInput='1'"), 1);
        QCOMPARE(db->count("Store_detail", "StoreID=7"), 2);
    }

    // A voucher with no lines to show cannot be opened: the window goes without a word.
    void voucherWithoutLinesClosesAtOnce_data()
    {
        QTest::addColumn<QString>("arrange");
        QTest::newRow("lines gone") << "DELETE FROM Store_detail";
        QTest::newRow("products gone") << "DELETE FROM Product";
    }
    void voucherWithoutLinesClosesAtOnce()
    {
        QFETCH(QString, arrange);
        store(*db, {7, 2, 20});
        QVERIFY(db->exec(arrange));
        ModalScript modals;
        QPointer<frmStore> form = Forms::get<frmStore>(QStringLiteral("frmStore"));
        form->mActionType = 2;
        form->mCurID = 7;
        Modal::exec(form);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(!form);
        QVERIFY(modals.seen().isEmpty());
    }

    // Direction in words, money unsigned with red for a negative figure, the quantity as
    // stored, closed vouchers grey.
    void listRows_data()
    {
        QTest::addColumn<Voucher>("voucher");
        QTest::addColumn<QString>("shown"); // columns 3|4|5
        QTest::addColumn<bool>("red");
        QTest::addColumn<bool>("grey");
        QTest::newRow("in, 5 and 5") << Voucher{1, 5, 5} << "进货单据|5|￥5.00" << false << false;
        QTest::newRow("out, negative, closed") << Voucher{1, -3, -1234.5, "1", "1", "1"} << "出货单据|-3|￥1,234.50" << true << true;
        QTest::newRow("less than half below zero") << Voucher{1, -0.4, 0} << "进货单据|-0.4|0" << false << false;
    }
    void listRows()
    {
        QFETCH(Voucher, voucher);
        QFETCH(bool, red);
        store(*db, voucher);
        frmStoreAdmin *w = list();
        QTEST(cells(w->dbgMain, {3, 4, 5}).join(u'|'), "shown");
        const QModelIndex amount = w->dbgMain->model()->index(0, 4);
        QCOMPARE(amount.data(Qt::ForegroundRole).value<QColor>() == Qt::red, red);
        QCOMPARE(amount.siblingAtColumn(5).data(Qt::ForegroundRole).value<QColor>() == Qt::red, red);
        QTEST(w->dbgMain->rowStyle(0).background == QColor(0xE0, 0xE0, 0xE0), "grey");
    }

    // Sums are the database's over the filter in whole money (halves to even); the count is
    // the rows'. The remark head does not sort.
    void footers_data()
    {
        QTest::addColumn<QString>("filter");
        QTest::addColumn<QString>("footers"); // columns 1|4|5|7
        QTest::newRow("all") << "" << "总计：|总数量：6|总金额：30元|共3张";
        QTest::newRow("over the filter") << " WHERE Direction='1'" << "总计：|总数量：4|总金额：20元|共2张";
        QTest::newRow("empty list") << " WHERE ID>9" << "总计：|总数量：0|总金额：0元|共0张";
    }
    void footers()
    {
        QFETCH(QString, filter);
        store(*db, {1, 2, 10});
        store(*db, {2, 3, 10.25, "1"});
        store(*db, {3, 1, 10.25, "1"});
        frmStoreAdmin *w = list();
        w->curFilterSQL = filter;
        w->DataRefresh();
        const DbGrid *g = w->dbgMain;
        QTEST(QStringList({g->footerText(1), g->footerText(4), g->footerText(5), g->footerText(7)}).join(u'|'), "footers");
        emit w->dbgMain->HeadClick(7);
        QCOMPARE(w->curSortSQL + QString::number(w->curSortDirection), QStringLiteral(" ORDER BY ID Asc0"));
    }

    // One voucher is deleted, header and lines, only when it is open and hand-made and the
    // user says yes.
    void deleteData_data()
    {
        QTest::addColumn<QString>("state");   // HandInput and FinishFlag of voucher P4; empty: no voucher
        QTest::addColumn<QString>("message"); // its title and icon, then its text
        QTest::addColumn<QMessageBox::StandardButton>("answer");
        QTest::addColumn<int>("left");
        const QString ask = QStringLiteral("删除单据|Question|你确认要删除原始单据号为P4的单据吗？");
        QTest::newRow("nothing chosen") << "" << "提示|Information|请先选定您要删除或作废的单据！" << QMessageBox::Ok << 0;
        QTest::newRow("generated") << "00" << "失败|Critical|此单据由系统所生成，不能直接由手工删除或禁用！" << QMessageBox::Ok << 1;
        QTest::newRow("closed") << "11" << "提示|Information|此单据已被审核入帐，不能再删除！" << QMessageBox::Ok << 1;
        QTest::newRow("answered no") << "10" << ask << QMessageBox::No << 1;
        QTest::newRow("answered yes") << "10" << ask << QMessageBox::Yes << 0;
    }
    void deleteData()
    {
        QFETCH(QString, state);
        QFETCH(QString, message);
        QFETCH(int, left);
        if (!state.isEmpty())
            store(*db, {4, 2, 20, "0", state.left(1), state.mid(1), 2});
        frmStoreAdmin *w = list();
        QFETCH(QMessageBox::StandardButton, answer);
        prompts->expect(message.section(u'|', 2), answer);
        w->DeleteData();
        VERIFY_PROMPTS(*prompts);
        const auto &shown = prompts->last();
        QCOMPARE(shown.title + u'|' + QMetaEnum::fromType<QMessageBox::Icon>().valueToKey(shown.icon) + u'|' + shown.text,
                 message);
        QCOMPARE(db->count("Store") * 10 + db->count("Store_detail"), left * 12);
        QCOMPARE(w->dbgMain->model()->rowCount(), left);
    }

    // Every open voucher goes, generated ones too; the list shows them until a refresh.
    void deleteAllTakesGeneratedVouchers()
    {
        store(*db, {1, 1, 10});
        store(*db, {2, 1, 10, "1", "0", "0"});
        store(*db, {3, 1, 10, "1", "0", "1"});
        frmStoreAdmin *w = list();
        prompts->expect(QStringLiteral("你确认要删除所有未入帐的库存出入库单吗？"), QMessageBox::Yes);
        w->DeleteAll();
        VERIFY_PROMPTS(*prompts);
        QCOMPARE(prompts->last().title, QStringLiteral("删除"));
        QCOMPARE(db->scalar("SELECT group_concat(ID) || '/' || (SELECT group_concat(StoreID) FROM Store_detail) "
                            "FROM Store").toString(), QStringLiteral("3/3"));
        QCOMPARE(cells(w->dbgMain, {0}), (QStringList{"1", "2", "3"}));
        w->DataRefresh();
        QCOMPARE(cells(w->dbgMain, {0}), QStringList{"3"});
    }

    // " WHERE " and clauses joined by " AND ", conditions first and options after, and the
    // list runs what was written. An empty date becomes today; a date that cannot be read is
    // refused with the field's message, and the list keeps its filter.
    void filter_data()
    {
        QTest::addColumn<QString>("present");
        QTest::addColumn<QStringList>("steps"); // a name clicks, "name=text" types
        QTest::addColumn<QString>("filter");
        QTest::addColumn<QStringList>("ids");   // listed afterwards
        QTest::addColumn<QString>("message");
        const QStringList typed{"txtPaperID=P", "txtDetail=注", "txtTotalMoney=10", "cmbUserID=李四",
                                "txtCreateDate=2026-11-22", "cmbOperator_0=>", "cmbOperator_1=>"};
        QTest::newRow("conditions, then options")
            << "" << QStringList{"optFinish_2", "optDirection_1", "chkTotalMoney", "chkPaperID", "chkUserID"} + typed
            << " WHERE  PaperID Like '%P%'  AND  UserID=2 AND  TotalMoney>10 AND  Direction='1' AND  FinishFlag='0'"
            << QStringList{"2"} << "";
        QTest::newRow("refining adds with AND")
            << " WHERE Direction='0'" << QStringList{"chkCreateDate", "chkDetail"} + typed
            << " WHERE Direction='0' AND  Detail Like '%注%'  AND  CreateDate>#2026-11-22#" << QStringList{"4"} << "";
        QTest::newRow("empty date") << " WHERE ID>0" << QStringList{"chkCreateDate", "optSearchType_1", "txtCreateDate="}
                                    << " WHERE  CreateDate=#2026-11-23#" << QStringList{"3"} << "";
        QTest::newRow("month 13") << " WHERE ID>0" << QStringList{"chkCreateDate", "optSearchType_1", "txtCreateDate=2026-13-01"}
                                  << " WHERE ID>0" << QStringList{"1", "2", "3", "4"}
                                  << "数据输入格式不正确， 2026-13-01 不是有效的日期！";
    }
    void filter()
    {
        QFETCH(QString, present);
        QFETCH(QStringList, steps);
        QFETCH(QString, message);
        store(*db, {1, 1, 10});
        store(*db, {2, 1, 10.5, "1"});
        store(*db, {3, 1, 12, "1", "1", "1"});
        store(*db, {4, 1, 10});
        QVERIFY(db->exec("INSERT INTO SysUser(ID,Name,Pwd,rolestring,Status,StationID) VALUES(2,'李四','','11111111','1',1)"));
        frmStoreAdmin *w = list();
        w->curFilterSQL = present;
        w->DataRefresh();
        if (!message.isEmpty())
            prompts->expect(message);
        ModalScript modals;
        modals.on("frmStoreFilter", [&](QWidget *dlg) {
            for (const QString &step : steps) {
                if (step.contains(u'='))
                    QVERIFY(ModalScript::type(dlg, step.section(u'=', 0, 0), step.section(u'=', 1)));
                else
                    dlg->findChild<QAbstractButton *>(step)->click();
            }
            ModalScript::click(dlg, "btnOk");
            if (dlg->isVisible()) // refused: the user gives up
                ModalScript::click(dlg, "btnCancel");
        });
        w->ShowFilter();
        VERIFY_MODALS(modals);
        VERIFY_PROMPTS(*prompts);
        QString written = w->curFilterSQL; // as the engine reads it: without the marks around typed values
        written.removeIf([](QChar c) { return c.unicode() >= 0xFDD0 && c.unicode() <= 0xFDD5; });
        QTEST(written, "filter");
        QTEST(cells(w->dbgMain, {0}), "ids");
    }
};

QTEST_MAIN(TestStock)
#include "tst_stock.moc"
