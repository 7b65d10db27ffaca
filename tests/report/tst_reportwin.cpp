#include "platform/Clock.h"
#include "platform/Forms.h"
#include "report/ReportForms.h"
#include "report/frmReport.h"
#include "support/ScriptedPrompter.h"
#include "support/TestDb.h"

#include <QtTest>

// The report window's rows and footers, over tickets written straight into a fresh database.
// Workers 张三 (1) and 李四 (2).
class TestReportWin : public QObject {
    Q_OBJECT
    std::unique_ptr<TestDb> m_db;

    // CreateDate, customer, worker (NULL: none), quantity, money and money paid; no bottles, a
    // fee of 1 each.
    void tickets()
    {
        for (const char *v : {"'2026-10-01',1,1,2,20,20", "'2026-10-01',1,2,1,1234.5,0", "'2026-10-02',2,NULL,3,30,30",
                              "'2026-09-30',1,1,1,10,0", "'2025-12-31',2,2,4,40,40"})
            QVERIFY2(m_db->exec(QStringLiteral("INSERT INTO Sale(CreateDate,CustomerID,SenderID,TotalAmount,TotalMoney,"
                                               "InMoney,TotalContainer,InContainer,TransferFee,FinishFlag) VALUES(")
                                + QLatin1String(v) + QStringLiteral(",0,0,1,'0')")), v);
    }

    // The report as the main window hands it over, shown so that it runs.
    frmReport *report(int kind, const QDate &start, const QDate &end, int id = 0)
    {
        auto *w = Forms::get<frmReport>("frmReport");
        w->setProperty("curReportType", kind);
        w->setProperty("curReportStart", start);
        w->setProperty("curReportEnd", end);
        w->setProperty("mCurID", id);
        w->show();
        return w;
    }

private slots:
    void initTestCase() { registerReportForms(); }
    void init()
    {
        Clock::set(QDateTime(QDate(2026, 11, 23), QTime(10, 0)));
        m_db = std::make_unique<TestDb>();
        QVERIFY(m_db->ok());
        QVERIFY(m_db->exec("INSERT INTO Sender(ID,Name,Status,StationID) VALUES(1,'张三','1',1),(2,'李四','1',1)"));
    }
    void cleanup()
    {
        Forms::unloadAll();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        m_db.reset();
        Clock::reset();
    }

    void reportRowsAndFooters_data()
    {
        QTest::addColumn<int>("kind");
        QTest::addColumn<QDate>("start");
        QTest::addColumn<QDate>("end");
        QTest::addColumn<int>("id");
        QTest::addColumn<QStringList>("rows"); // ReportDate=SumMoney/SumAmount
        QTest::addColumn<QStringList>("footers");
        const QDate sep(2026, 9, 1), oct(2026, 10, 31), from(2025, 1, 1), to(2026, 12, 31);
        const QString total = QStringLiteral("合     计:");
        // Sums stand as the query gives them: 1254.5, not 1,254.50.
        QTest::newRow("days, newest first") << 0 << sep << oct << 0
                                            << QStringList{"2026-10-02=30/3", "2026-10-01=1254.5/3", "2026-09-30=10/1"}
                                            << QStringList{total, "1294.5", "7", "1244.5", "0", "4"};
        QTest::newRow("worker's days, the ticket with no worker left out")
            << 2 << sep << oct << 1 << QStringList{"2026-10-01=20/2", "2026-09-30=10/1"}
            << QStringList{total, "30", "3", "10", "0", "2"};
        QTest::newRow("worker's months") << 5 << from << to << 2 << QStringList{"2026年10月=1234.5/1", "2025年12月=40/4"}
                                         << QStringList{total, "1274.5", "5", "1234.5", "0", "2"};
        QTest::newRow("start after end") << 0 << oct << sep << 0 << QStringList{} << QStringList{total, "0", "0", "0", "0", "0"};
    }
    void reportRowsAndFooters()
    {
        QFETCH(int, kind);
        QFETCH(QDate, start);
        QFETCH(QDate, end);
        QFETCH(int, id);
        tickets();
        ScriptedPrompter prompts; // no message of any kind
        frmReport *w = report(kind, start, end, id);
        QStringList rows, footers;
        const QAbstractItemModel *m = w->dbgMain->model();
        for (int r = 0; r < m->rowCount(); ++r)
            rows << m->index(r, 0).data().toString() + "=" + m->index(r, 1).data().toString() + "/"
                        + m->index(r, 2).data().toString();
        for (int c = 0; c < 6; ++c)
            footers << w->dbgMain->footerText(c);
        QTEST(rows, "rows");
        QTEST(footers, "footers");
        QCOMPARE(w->dbgMain->Caption(), w->curReportCaption);
        VERIFY_PROMPTS(prompts);
    }
};

QTEST_MAIN(TestReportWin)
#include "tst_reportwin.moc"
