// The today report window and its options dialog over a small shop: the figures of the
// chosen day, the titles on screen and on paper, the bar moving, and the window going when
// the operator turns to another list.
#include "support/ModalScript.h"
#include "support/Rows.h"
#include "workflow/TicketFixture.h"

#include "platform/Forms.h"
#include "platform/DbGrid.h"
#include "report/TodayForms.h"
#include "report/frmTodayReport.h"

#include <QLineEdit>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QProgressBar>
#include <QtTest>

namespace {
// Water (1) and its bucket (3), one worker, and a ticket on the 20th and on the day itself,
// both delivered and paid.
void smallShop(TestDb &db)
{
    QVERIFY(db.exec("UPDATE Station SET Name='东城站' WHERE ID=1"));
    QVERIFY(db.exec("INSERT INTO Product(ID,Name,Unit,Status,IsContainer,ContainerID,Price) VALUES "
                    "(1,'纯净水','桶','1','0',3,10),(3,'空桶','个','1','1',0,0)"));
    QVERIFY(db.exec("INSERT INTO Sender(ID,Name,Status,Price,StationID) VALUES (1,'张三','1',5,1)"));
    QVERIFY(Rows::customer(db, 1, QStringLiteral("东街1号")));
    Fixture::ticket(db, {1, "2026-11-20", 3, 3, 30, 30, 0, 0});
    Fixture::ticket(db, {2, "2026-11-23", 2, 2, 20, 20, 0, 0});
}

// Types the day into the options dialog and starts the stock-take.
ModalScript::Handler startWith(const QString &date)
{
    return [date](QWidget *dialog) {
        QVERIFY(ModalScript::type(dialog, QStringLiteral("txtDate"), date));
        QVERIFY(ModalScript::click(dialog, QStringLiteral("btnOk")));
    };
}

QString cell(frmTodayReport *w, int row, int column)
{
    return w->dbgMain->model()->index(row, column).data().toString();
}

// The last grid row whose item ends with text (the stock section comes last); -1 with none.
int lastRowOf(frmTodayReport *w, const QString &text)
{
    for (int r = w->dbgMain->model()->rowCount() - 1; r >= 0; --r)
        if (cell(w, r, 0).endsWith(text))
            return r;
    return -1;
}

void unloadEverything()
{
    Forms::setActiveChildProvider(nullptr);
    Forms::unloadAll();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}
}

class TestTodayWindow : public QObject {
    Q_OBJECT
private slots:
    void init() { Clock::set(QDateTime(Fixture::Today, QTime(18, 0))); }
    void cleanup() { unloadEverything(); }
    void dayFigures_data();
    void dayFigures();
    void titles_data();
    void titles();
    void progressMoves();
    void goesWhenAnotherListComesToFront_data();
    void goesWhenAnotherListComesToFront();
};

void TestTodayWindow::dayFigures_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("soldAmount");
    QTest::addColumn<QString>("soldMoney");
    QTest::addColumn<QString>("waterSold");
    QTest::addColumn<QString>("waterStock");

    // The stock counts every open delivered ticket up to the day, not later ones.
    QTest::newRow("today") << "11-23-2026" << "2" << "￥20.00" << "2" << "-5";
    QTest::newRow("a past day") << "11-20-2026" << "3" << "￥30.00" << "3" << "-3";
    QTest::newRow("a day with no sales") << "11-21-2026" << "" << "" << "0" << "-3";
}

void TestTodayWindow::dayFigures()
{
    QFETCH(QString, typed);
    TestDb db;
    QVERIFY(db.ok());
    smallShop(db);
    registerTodayForms();
    ModalScript modals;
    modals.on("frmSetTodayReport", startWith(typed));
    auto *w = Forms::get<frmTodayReport>("frmTodayReport");
    VERIFY_MODALS(modals);

    QCOMPARE(cell(w, 0, 0), QStringLiteral("今日销售总额："));
    QTEST(cell(w, 0, 1), "soldAmount");
    QTEST(cell(w, 0, 2), "soldMoney");
    QCOMPARE(cell(w, 1, 0), QStringLiteral("         其  中：纯净水"));
    QTEST(cell(w, 1, 1), "waterSold");
    const int stock = lastRowOf(w, QStringLiteral("其  中：纯净水"));
    QVERIFY(stock > 1);
    QTEST(cell(w, stock, 1), "waterStock");
    QCOMPARE(w->dbgMain->model()->index(stock, 0).data(Qt::BackgroundRole).value<QColor>(), QColor(224, 224, 224));
    QCOMPARE(cell(w, 3, 0) + cell(w, 3, 2), QString()); // the spacing after two products stays blank
    QCOMPARE(w->dbgMain->model()->rowCount(), 26);
}

void TestTodayWindow::titles_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<bool>("askedAgain");
    QTest::addColumn<QString>("title");
    QTest::addColumn<QString>("printed");

    // The day chosen on opening reaches the title only with the next refresh; asking again
    // retitles at once. The paper puts the date first, the screen the station.
    QTest::newRow("refresh after opening") << "11-20-2026" << false << "东城站2026-11-20日盘点表"
                                           << "\\t2026-11-20东城站日盘点表";
    QTest::newRow("asked again") << "10-01-2026" << true << "东城站2026-10-01日盘点表"
                                 << "\\t2026-10-01东城站日盘点表";
}

void TestTodayWindow::titles()
{
    QFETCH(QString, typed);
    QFETCH(bool, askedAgain);
    TestDb db;
    QVERIFY(db.ok());
    smallShop(db);
    registerTodayForms();
    ModalScript modals;
    modals.on("frmSetTodayReport", startWith(askedAgain ? QStringLiteral("11-23-2026") : typed));
    auto *w = Forms::get<frmTodayReport>("frmTodayReport");
    QCOMPARE(w->dbgMain->Caption(), QStringLiteral("东城站2026-11-23日盘点表"));
    if (askedAgain) {
        modals.on("frmSetTodayReport", startWith(typed));
        QVERIFY(Forms::call(w, "ShowFilter"));
    } else {
        QVERIFY(Forms::call(w, "DataRefresh"));
    }
    VERIFY_MODALS(modals);
    QTEST(w->dbgMain->Caption(), "title");

    const QString pdf = db.folder() + QStringLiteral("/today.pdf");
    DbGridPrintInfo::setOutputFile(pdf);
    QVERIFY(Forms::call(w, "PrintSale"));
    DbGridPrintInfo::setOutputFile(QString());
    QTEST(w->dbgMain->PrintInfo()->PageHeader, "printed");
    QVERIFY(QFileInfo(pdf).size() > 0);
}

void TestTodayWindow::progressMoves()
{
    TestDb db;
    QVERIFY(db.ok());
    smallShop(db);
    registerTodayForms();
    QList<int> values;
    int maximum = 0;
    ModalScript modals;
    modals.on("frmSetTodayReport", [&](QWidget *dialog) {
        auto *bar = ModalScript::child<QProgressBar>(dialog, QStringLiteral("pgbMain"));
        QVERIFY(bar);
        connect(bar, &QProgressBar::valueChanged, bar, [&, bar](int v) {
            values << v;
            maximum = bar->maximum();
        });
        startWith(QStringLiteral("11-23-2026"))(dialog);
    });
    auto *w = Forms::get<frmTodayReport>("frmTodayReport");
    VERIFY_MODALS(modals);

    // Two products, a bucket and a worker make fewer rows than the report's least, 25.
    QCOMPARE(maximum, 25);
    QVERIFY2(values.size() > 5, qPrintable(QString::number(values.size())));
    for (int i = 1; i < values.size(); ++i)
        QVERIFY(values[i] >= values[i - 1]);
    // The bar ends on the last row written: the stock of the last product.
    QCOMPARE(values.last(), lastRowOf(w, QStringLiteral("空桶")));
}

void TestTodayWindow::goesWhenAnotherListComesToFront_data()
{
    QTest::addColumn<bool>("otherInFront");
    QTest::addColumn<bool>("stays");
    QTest::newRow("another list to the front") << true << false;
    QTest::newRow("its own date dialog") << false << true;
}

void TestTodayWindow::goesWhenAnotherListComesToFront()
{
    QFETCH(bool, otherInFront);
    TestDb db;
    QVERIFY(db.ok());
    smallShop(db);
    registerTodayForms();
    QStringList toolStates;
    setToolStateHandler([&](const QString &form) { toolStates << form; });

    QMdiArea area;
    area.resize(900, 600);
    area.show();
    auto *other = new QWidget;
    QMdiSubWindow *otherFrame = area.addSubWindow(other);
    other->show();
    ModalScript modals;
    modals.on("frmSetTodayReport", startWith(QStringLiteral("11-23-2026")));
    QPointer<frmTodayReport> w = Forms::get<frmTodayReport>("frmTodayReport");
    QMdiSubWindow *frame = area.addSubWindow(w);
    w->show();
    area.setActiveSubWindow(frame);
    QCOMPARE(toolStates, QStringList{"frmTodayReport"});

    if (otherInFront) {
        area.setActiveSubWindow(otherFrame);
    } else {
        modals.on("frmSetTodayReport", [](QWidget *dialog) { QVERIFY(ModalScript::click(dialog, "btnCancel")); });
        QVERIFY(Forms::call(w, "ShowFilter"));
    }
    VERIFY_MODALS(modals);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QFETCH(bool, stays);
    QCOMPARE(!w.isNull(), stays);
    QCOMPARE(Forms::loaded("frmTodayReport") != nullptr, stays);
    setToolStateHandler(nullptr);
}

QTEST_MAIN(TestTodayWindow)
#include "tst_todaywin.moc"
