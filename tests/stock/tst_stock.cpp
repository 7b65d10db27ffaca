// Stock vouchers as the shop keys them, and their list's footers and deletions.
#include "support/Rows.h"

#include "data/Gateway.h"
#include "data/Session.h"
#include "platform/Clock.h"
#include "platform/Forms.h"
#include "stock/StockForms.h"
#include "stock/frmStore.h"
#include "stock/frmStoreAdmin.h"
#include "views/LineTable.h"

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
QStringList ids(const DbGrid *grid)
{
    QStringList out;
    for (int r = 0; r < grid->model()->rowCount(); ++r)
        out << grid->model()->index(r, 0).data().toString();
    return out;
}
}

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

    // A carried-forward voucher opens with no save. A hand-made one turned from out to in keeps
    // its number, date and lines and passes to the user who saved it; the window closes.
    void storedVoucher_data()
    {
        QTest::addColumn<QString>("handInput");
        QTest::addColumn<QString>("finish");
        QTest::newRow("hand-made, open") << "1" << "0";
        QTest::newRow("generated and carried forward") << "0" << "1";
    }
    void storedVoucher()
    {
        QFETCH(QString, handInput);
        QFETCH(QString, finish);
        store(*db, {7, 2, 20, "1", handInput, finish, 2});
        Session::UserID = 3;
        QPointer<frmStore> form = open(2, 7);
        QCOMPARE(form->xayDetail()->lineCount(), 2);
        QCOMPARE(button(form, "btnSave")->isVisible(), handInput == "1");
        if (handInput != "1")
            return;
        radio(form, "optType_0")->click();
        button(form, "btnSave")->click();
        QVERIFY(!form || !form->isVisible());
        QCOMPARE(db->count("Store"), 1);
        QCOMPARE(db->count("Store", "ID=7 AND Direction='0' AND UserID=3 AND CreateDate='2026-11-27' AND HandInput='1'"), 1);
        QCOMPARE(db->count("Store_detail", "StoreID=7"), 2);
    }

    // Sums are the database's over the filter in whole money (halves to even); the count is
    // the rows'.
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
    }

    // One voucher is deleted, header and lines, only when it is open and hand-made and the
    // user says yes.
    void deleteData_data()
    {
        QTest::addColumn<QString>("state"); // HandInput and FinishFlag of voucher P4; empty: no voucher
        QTest::addColumn<QString>("message");
        QTest::addColumn<QMessageBox::StandardButton>("answer");
        QTest::addColumn<int>("left");
        const QString ask = QStringLiteral("你确认要删除原始单据号为P4的单据吗？");
        QTest::newRow("nothing chosen") << "" << "请先选定您要删除或作废的单据！" << QMessageBox::Ok << 0;
        QTest::newRow("generated") << "00" << "此单据由系统所生成，不能直接由手工删除或禁用！" << QMessageBox::Ok << 1;
        QTest::newRow("closed") << "11" << "此单据已被审核入帐，不能再删除！" << QMessageBox::Ok << 1;
        QTest::newRow("answered no") << "10" << ask << QMessageBox::No << 1;
        QTest::newRow("answered yes") << "10" << ask << QMessageBox::Yes << 0;
    }
    void deleteData()
    {
        QFETCH(QString, state);
        QFETCH(QString, message);
        QFETCH(QMessageBox::StandardButton, answer);
        QFETCH(int, left);
        if (!state.isEmpty())
            store(*db, {4, 2, 20, "0", state.left(1), state.mid(1), 2});
        frmStoreAdmin *w = list();
        prompts->expect(message, answer);
        w->DeleteData();
        VERIFY_PROMPTS(*prompts);
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
        QCOMPARE(db->scalar("SELECT group_concat(ID) || '/' || (SELECT group_concat(StoreID) FROM Store_detail) "
                            "FROM Store").toString(), QStringLiteral("3/3"));
        QCOMPARE(ids(w->dbgMain), (QStringList{"1", "2", "3"}));
        w->DataRefresh();
        QCOMPARE(ids(w->dbgMain), QStringList{"3"});
    }
};

QTEST_MAIN(TestStock)
#include "tst_stock.moc"
