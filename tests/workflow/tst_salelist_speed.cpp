#include "TicketFixture.h"

#include "data/Database.h"
#include "platform/Forms.h"
#include "workflow/WorkflowForms.h"
#include "workflow/frmSaleAdmin.h"

#include <QElapsedTimer>
#include <QFile>
#include <QScrollBar>
#include <QSqlQuery>
#include <QtTest>
#include <algorithm>
#include <ctime>

// The sale list of a shop with years of open tickets. TARVIK_SPEED_TICKETS sets the number
// of open tickets (100000 for the full measure); the default keeps the CTest run short.
class TestSaleListSpeed : public QObject {
    Q_OBJECT
private slots:
    void refreshAndScroll();
};

namespace {
qint64 residentKiB()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray &line : status.readAll().split('\n'))
        if (line.startsWith("VmRSS:"))
            return line.mid(6).trimmed().split(' ').value(0).toLongLong();
    return 0;
}

// Open tickets over four years, one customer for every five, two lines each.
bool generate(int tickets)
{
    QSqlDatabase db = Database::connection();
    db.transaction();
    QSqlQuery q(db);
    q.prepare("INSERT INTO Customer(ID,Account,Name,Address,Phone,Status,CreateDate) VALUES(?,?,?,?,?,'1','2022-01-01')");
    for (int c = 1; c <= tickets / 5 + 1; ++c) {
        q.addBindValue(c);
        q.addBindValue(c);
        q.addBindValue(QStringLiteral("客户%1").arg(c));
        q.addBindValue(QStringLiteral("幸福路%1号%2单元").arg(c % 977).arg(c));
        q.addBindValue(QStringLiteral("1390000%1").arg(c, 4, 10, QLatin1Char('0')));
        if (!q.exec())
            return false;
    }
    QSqlQuery sale(db), line(db);
    sale.prepare("INSERT INTO Sale(ID,CustomerID,SenderID,UserID,TotalAmount,OutAmount,TotalMoney,InMoney,"
                 "TotalContainer,InContainer,TransferFee,Detail,CreateDate,FinishFlag,StationID) "
                 "VALUES(?,?,?,1,?,?,?,?,?,?,0,'',?,'0',1)");
    line.prepare("INSERT INTO Sale_detail(SaleID,ProductID,Price,MyAmount,MyMoney,IsContainer) VALUES(?,?,?,?,?,?)");
    const QDate start(2022, 11, 23);
    for (int id = 1; id <= tickets; ++id) {
        const int amount = 1 + id % 4;
        for (const QVariant &v : {QVariant(id), QVariant(1 + id % (tickets / 5 + 1)), QVariant(1 + id % 12),
                                  QVariant(amount), QVariant(id % 3 ? amount : 0), QVariant(amount * 18.5),
                                  QVariant(id % 2 ? amount * 18.5 : 0), QVariant(amount), QVariant(id % 5 ? amount : 0),
                                  QVariant(start.addDays(id % 1460).toString(Qt::ISODate))})
            sale.addBindValue(v);
        if (!sale.exec())
            return false;
        for (const auto &[product, container] : {std::pair{1, "0"}, std::pair{2, "1"}}) {
            for (const QVariant &v : {QVariant(id), QVariant(product), QVariant(18.5), QVariant(amount),
                                      QVariant(amount * 18.5), QVariant(container)})
                line.addBindValue(v);
            if (!line.exec())
                return false;
        }
    }
    return db.commit();
}
}

void TestSaleListSpeed::refreshAndScroll()
{
    const int tickets = qEnvironmentVariableIntValue("TARVIK_SPEED_TICKETS") > 0
                            ? qEnvironmentVariableIntValue("TARVIK_SPEED_TICKETS")
                            : 5000;
    Clock::set(QDateTime(Fixture::Today, QTime(10, 0)));
    TestDb db;
    QVERIFY(db.ok());
    QElapsedTimer made;
    made.start();
    QVERIFY(generate(tickets));
    qInfo("generated %d open tickets in %lld ms", tickets, made.elapsed());
    Fixture::autoRefresh(true);
    registerWorkflowForms();

    auto *w = Forms::get<frmSaleAdmin>("frmSaleAdmin");
    w->resize(1000, 700);
    w->show();
    QCOMPARE(w->dbgMain->model()->rowCount(), tickets);
    QVERIFY(!w->dbgMain->footerText(3).isEmpty());

    // Wall time depends on what else the machine runs; the processor time of this process
    // is what the refresh itself costs.
    QList<qint64> times;
    QList<qint64> cpuTimes;
    QList<qint64> memory;
    for (int i = 0; i < 12; ++i) {
        QElapsedTimer t;
        t.start();
        const std::clock_t cpu = std::clock();
        w->DataRefresh();
        cpuTimes << qint64((std::clock() - cpu) * 1000 / CLOCKS_PER_SEC);
        times << t.elapsed();
        QCoreApplication::processEvents();
        memory << residentKiB();
    }
    QCOMPARE(w->dbgMain->model()->rowCount(), tickets);
    std::sort(times.begin(), times.end());
    std::sort(cpuTimes.begin(), cpuTimes.end());
    const qint64 growth = memory.last() - memory[2];
    qInfo("DataRefresh with footers over %d tickets: median %lld ms, best %lld ms, worst %lld ms", tickets,
          times[times.size() / 2], times.first(), times.last());
    qInfo("processor time per refresh: median %lld ms, best %lld ms", cpuTimes[cpuTimes.size() / 2], cpuTimes.first());
    qInfo("resident memory after refresh 3: %lld KiB, after refresh 12: %lld KiB (growth %lld KiB)", memory[2],
          memory.last(), growth);

    // Scrolling: draw the grid at twenty places from top to bottom, row colours included.
    QScrollBar *bar = w->dbgMain->verticalScrollBar();
    QElapsedTimer scroll;
    scroll.start();
    for (int step = 0; step <= 20; ++step) {
        bar->setValue(bar->maximum() * step / 20);
        w->dbgMain->viewport()->grab();
    }
    const double perPage = scroll.elapsed() / 21.0;
    qInfo("scrolling: %.1f ms per screenful drawn", perPage);
    w->dbgMain->MoveLast();
    QCOMPARE(w->currentTicket(), QStringLiteral("1"));

    QVERIFY2(cpuTimes[cpuTimes.size() / 2] < 300, "the sale list must refresh within 300 ms");
    QVERIFY2(growth < 20 * 1024, "memory must not grow with each refresh");
    QVERIFY2(perPage < 50, "scrolling must stay smooth");
    Forms::unloadAll();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

QTEST_MAIN(TestSaleListSpeed)
#include "tst_salelist_speed.moc"
