#include "data/Session.h"
#include "platform/Clock.h"
#include "platform/Forms.h"
#include "platform/Modal.h"
#include "report/ReportChartData.h"
#include "report/ReportForms.h"
#include "report/frmChart.h"
#include "report/frmReport.h"
#include "support/ModalScript.h"
#include "support/ScriptedPrompter.h"
#include "support/TestDb.h"
#include "views/DataCombo.h"

#include <QAction>
#include <QAreaSeries>
#include <QChart>
#include <QLineSeries>
#include <QLineEdit>
#include <QPushButton>
#include <QToolBar>
#include <QValueAxis>
#include <QXYSeries>
#include <QtTest>

namespace {
// Money (or quantity) over the rows of a chart's line or area.
QList<QPointF> pointsOf(QAbstractSeries *series)
{
    if (auto *area = qobject_cast<QAreaSeries *>(series))
        return area->upperSeries()->points();
    return static_cast<QXYSeries *>(series)->points();
}
}

// The report dialog, the report window and its chart, over tickets written straight into a
// fresh database. Workers 张三 (1) and 李四 (2); customer 1 has account 101.
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
    // The dialog shown modally for a kind of report, played by the handler.
    void dialog(int kind, ModalScript &modals, const ModalScript::Handler &handler)
    {
        QWidget *dialog = Forms::get("frmSetReport");
        dialog->setProperty("curReportType", kind);
        modals.on("frmSetReport", handler);
        Modal::exec(dialog);
        VERIFY_MODALS(modals);
    }

private slots:
    void initTestCase() { registerReportForms(); }
    void init()
    {
        Clock::set(QDateTime(QDate(2026, 11, 23), QTime(10, 0)));
        m_db = std::make_unique<TestDb>();
        QVERIFY(m_db->ok());
        QVERIFY(m_db->exec("INSERT INTO Sender(ID,Name,Status,StationID) VALUES(1,'张三','1',1),(2,'李四','1',1)"));
        QVERIFY(m_db->exec("INSERT INTO Customer(ID,Account,Address,Status) VALUES(1,101,'东大街1号','1')"));
    }
    void cleanup()
    {
        Forms::unloadAll();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        m_db.reset();
        Clock::reset();
    }

    // What the user does in the dialog: the account typed (null: none), whether the focus then
    // leaves it, and the worker chosen (0: none).
    void dialogChecks_data()
    {
        QTest::addColumn<int>("kind");
        QTest::addColumn<QString>("account");
        QTest::addColumn<bool>("leave");
        QTest::addColumn<int>("worker");
        QTest::addColumn<QString>("message");
        QTest::addColumn<QString>("accountAfter");
        QTest::addColumn<bool>("okEnabled");
        QTest::newRow("customer, nothing typed") << 1 << QString() << false << 0 << "" << "" << false;
        QTest::newRow("customer, account typed") << 4 << "101" << true << 0 << "" << "101" << true;
        QTest::newRow("customer, left empty") << 1 << "  " << true << 0 << "" << "0" << true;
        QTest::newRow("customer, beyond 16 bits")
            << 1 << "40000" << true << 0 << "数据输入格式不正确， 40000 不是有效的整数！" << "40000" << true;
        QTest::newRow("worker, none chosen") << 2 << QString() << false << 0 << "" << "" << false;
        QTest::newRow("worker chosen") << 5 << QString() << false << 2 << "" << "" << true;
        QTest::newRow("whole shop") << 3 << QString() << false << 0 << "" << "" << true;
    }
    void dialogChecks()
    {
        QFETCH(int, kind);
        QFETCH(QString, account);
        QFETCH(bool, leave);
        QFETCH(int, worker);
        QFETCH(QString, message);
        ScriptedPrompter prompts;
        if (!message.isEmpty())
            prompts.expect(message);
        ModalScript modals;
        bool okSeen = false;
        QString accountSeen, focusSeen;
        dialog(kind, modals, [&](QWidget *w) {
            auto *txtAccount = w->findChild<QLineEdit *>("txtAccount");
            QApplication::setActiveWindow(w); // focus moves only inside the active window
            QVERIFY(QTest::qWaitForWindowActive(w));
            QCOMPARE(w->findChild<QLineEdit *>("txtEndDate")->text(), QStringLiteral("2026-11-23"));
            if (!account.isNull()) {
                txtAccount->setFocus();
                ModalScript::type(w, "txtAccount", account);
            }
            if (leave)
                w->findChild<QLineEdit *>("txtStartDate")->setFocus();
            if (worker)
                w->findChild<DataCombo *>("cmbSender")->setCurrentIndex(worker - 1);
            okSeen = w->findChild<QPushButton *>("btnOk")->isEnabled();
            accountSeen = txtAccount->text();
            focusSeen = QApplication::focusWidget() ? QApplication::focusWidget()->objectName() : QString();
            ModalScript::click(w, "btnCancel");
        });
        VERIFY_PROMPTS(prompts);
        QTEST(okSeen, "okEnabled");
        QTEST(accountSeen, "accountAfter");
        if (!message.isEmpty()) // a refused account keeps the focus until it is put right
            QCOMPARE(focusSeen, QStringLiteral("txtAccount"));
        QCOMPARE(Forms::loaded("frmSetReport"), nullptr);
    }

    // The calendar, cancelled, still writes the date picked last in this session; OK closes the
    // report that was open, so a new one takes its place.
    void calendarAndOk()
    {
        QWidget *old = report(0, QDate(2026, 11, 1), QDate(2026, 11, 30));
        Session::PickedDate = QDate(2026, 1, 5);
        ModalScript modals;
        QString start;
        QPointer<QWidget> shown;
        dialog(3, modals, [&](QWidget *w) {
            shown = w;
            modals.on("frmPickDate", [](QWidget *pick) { static_cast<QDialog *>(pick)->reject(); });
            ModalScript::click(w, "btnPickStart");
            start = w->findChild<QLineEdit *>("txtStartDate")->text();
            ModalScript::click(w, "btnOk");
        });
        QCOMPARE(start, QStringLiteral("2026-01-05"));
        QVERIFY(shown && shown->property("mResult").toBool());
        QCOMPARE(Forms::loaded("frmReport"), nullptr);
        QVERIFY(Forms::get("frmReport") != old);
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
        QTest::newRow("customer's months") << 4 << from << to << 2 << QStringList{"2026年10月=30/3", "2025年12月=40/4"}
                                           << QStringList{total, "70", "7", "0", "0", "2"};
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

    void labelSteps_data()
    {
        QTest::addColumn<int>("rows");
        QTest::addColumn<int>("step");
        QTest::newRow("one row") << 1 << 40;
        QTest::newRow("seven rows round up") << 7 << 6;
        QTest::newRow("sixteen rows, half to even") << 16 << 2;
        QTest::newRow("eighty rows") << 80 << 0;
        QTest::newRow("more than eighty") << 81 << 0;
    }
    void labelSteps()
    {
        QFETCH(int, rows);
        QTEST(ReportChartData::labelStep(rows), "step");
    }

    // The chart draws the open report's rows in the report's order, money and quantity, as lines
    // or as areas; the walk leaves the report's rows at their end.
    void chartOverReport_data()
    {
        QTest::addColumn<QDate>("start");
        QTest::addColumn<bool>("area");
        QTest::addColumn<QList<QPointF>>("money");
        QTest::addColumn<QList<QPointF>>("amount");
        const QList<QPointF> money{{0, 30}, {13, 1254.5}, {26, 10}}, amount{{0, 3}, {13, 3}, {26, 1}};
        QTest::newRow("empty report") << QDate(2020, 1, 1) << false << QList<QPointF>{} << QList<QPointF>{};
        QTest::newRow("three days as lines") << QDate(2026, 9, 1) << false << money << amount;
        QTest::newRow("three days as areas") << QDate(2026, 9, 1) << true << money << amount;
    }
    void chartOverReport()
    {
        QFETCH(QDate, start);
        QFETCH(bool, area);
        tickets();
        frmReport *w = report(0, start, start.year() == 2020 ? QDate(2020, 1, 31) : QDate(2026, 10, 31));
        auto *chart = Forms::get<frmChart>("frmChart");
        chart->setProperty("curChartCaption", w->curReportCaption);
        chart->show();
        if (area)
            chart->tlShowArea();
        const QList<QAbstractSeries *> series = chart->chart()->series();
        QCOMPARE(series.size(), 2);
        QCOMPARE(series[0]->name() + "|" + series[1]->name(), QStringLiteral("销售金额|销售数量"));
        QCOMPARE(qobject_cast<QAreaSeries *>(series[0]) != nullptr, area);
        QTEST(pointsOf(series[0]), "money");
        QTEST(pointsOf(series[1]), "amount");
        QCOMPARE(chart->chart()->title(), w->curReportCaption);
        QVERIFY(w->curRecordSet->eof());
    }

    void mouseTools()
    {
        tickets();
        report(0, QDate(2026, 9, 1), QDate(2026, 10, 31));
        auto *chart = Forms::get<frmChart>("frmChart");
        chart->resize(800, 500);
        chart->show();
        auto checked = [chart] {
            QStringList on;
            for (QAction *tool : chart->findChild<QToolBar *>("barTool")->actions())
                if (tool->isChecked())
                    on << tool->objectName();
            return on;
        };
        chart->tlRotate();
        chart->tlRotate();
        QCOMPARE(checked(), QStringList{"tlRotate"});
        QCOMPARE(chart->curAction, 3);

        auto *axis = qobject_cast<QValueAxis *>(chart->chart()->axes(Qt::Horizontal).value(0));
        QVERIFY(axis);
        const double homeMin = axis->min(), homeMax = axis->max();
        chart->tlDrag();
        QCOMPARE(checked(), QStringList{"tlDrag"});
        QWidget *area = static_cast<QAbstractScrollArea *>(chart->findChild<QWidget *>("chtMain"))->viewport();
        const QPointF from(400, 200), to(300, 200);
        QMouseEvent press(QEvent::MouseButtonPress, from, area->mapToGlobal(from), Qt::LeftButton, Qt::LeftButton, {});
        QMouseEvent move(QEvent::MouseMove, to, area->mapToGlobal(to), Qt::NoButton, Qt::LeftButton, {});
        QMouseEvent release(QEvent::MouseButtonRelease, to, area->mapToGlobal(to), Qt::LeftButton, Qt::NoButton, {});
        for (QMouseEvent *event : {&press, &move, &release})
            QApplication::sendEvent(area, event);
        QVERIFY(axis->min() > homeMin); // dragged to the left: later rows come into view

        chart->tlScale();
        QCOMPARE(chart->curAction, 4);
        chart->tlReset();
        QCOMPARE(chart->curAction, 0);
        QCOMPARE(checked(), QStringList{});
        QCOMPARE(axis->min(), homeMin);
        QCOMPARE(axis->max(), homeMax);
    }
};

QTEST_MAIN(TestReportWin)
#include "tst_reportwin.moc"
