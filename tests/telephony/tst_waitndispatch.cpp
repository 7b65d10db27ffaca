// Waiting while events flow: ending by Cancel, one OnTimer per wait, no re-entry.
#include "telephony/CWaitNDispatch.h"

#include <QTimer>
#include <QtTest>

class WaitTest : public QObject {
    Q_OBJECT
private slots:
    void zeroAndIdleCancel()
    {
        CWaitNDispatch w;
        int timers = 0;
        connect(&w, &CWaitNDispatch::OnTimer, this, [&] { ++timers; });
        w.Cancel();
        w.Wait(0);
        QCOMPARE(timers, 0);
        QVERIFY(!w.IsWaiting());
    }

    // -1 never ends by itself, nor a long wait soon: only the Cancel from an event handler
    // ends them, and the handler sees the wait still running.
    void cancelledFromAHandler_data()
    {
        QTest::addColumn<int>("milliseconds");
        QTest::newRow("forever") << -1;
        QTest::newRow("long") << 600000;
    }
    void cancelledFromAHandler()
    {
        QFETCH(int, milliseconds);
        CWaitNDispatch w;
        QList<bool> waitingAtTimer;
        bool waitingInHandler = false;
        QString reentry;
        connect(&w, &CWaitNDispatch::OnTimer, this, [&] { waitingAtTimer << w.IsWaiting(); });
        QTimer::singleShot(0, this, [&] {
            waitingInHandler = w.IsWaiting();
            try {
                w.Wait(10);
            } catch (const WaitError &e) {
                reentry = QStringLiteral("%1|%2|%3").arg(e.number(), 0, 16).arg(e.source(), e.description());
            }
            w.Cancel();
        });
        w.Wait(milliseconds);
        QVERIFY(waitingInHandler);
        QCOMPARE(waitingAtTimer, QList<bool>{false});
        QCOMPARE(reentry, QStringLiteral("-7ffbfc17|CWaitNDispatch|This function is not reentrant. If you want to "
                                         "wait for a second period use a new object"));
        // The object waits again afterwards.
        w.Wait(1);
        QCOMPARE(waitingAtTimer.size(), 2);
    }
};

QTEST_MAIN(WaitTest)
#include "tst_waitndispatch.moc"
