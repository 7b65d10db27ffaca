#include "CWaitNDispatch.h"

#include <QDateTime>
#include <QEventLoop>
#include <QTimer>

#include <climits>
#include <cmath>

namespace {
// The wall clock in 100 ns steps, so that a millisecond count adds as ten thousand steps.
qint64 fileTimeNow() { return QDateTime::currentMSecsSinceEpoch() * 10000; }

// A difference in whole milliseconds, rounded, as a 32-bit number.
qint32 millisecondsBetween(qint64 from, qint64 to)
{
    return qint32(qint64(std::llround(double(to - from) / 10000.0)));
}

constexpr quint32 Infinite = 0xFFFFFFFFu;
}

CWaitNDispatch::~CWaitNDispatch() { Cancel(); }

void CWaitNDispatch::Cancel()
{
    if (m_hEvent) {
        m_signalled = true;
        m_hEvent->quit();
    }
}

void CWaitNDispatch::Wait(qint32 milliseconds)
{
    if (milliseconds == 0)
        return;
    if (m_IsWaiting)
        throw WaitError(NotReentrant, QStringLiteral("CWaitNDispatch"),
                        QStringLiteral("This function is not reentrant. If you want to wait for a second period use "
                                       "a new object"));
    m_IsWaiting = true;
    m_TimeNow = fileTimeNow();
    m_TimeEnd = m_TimeNow + qint64(milliseconds) * 10000;

    QPointer<CWaitNDispatch> self(this);
    QEventLoop loop;
    m_hEvent = &loop;
    m_signalled = false;

    // A negative remainder reads as a huge unsigned count: such a wait runs for weeks, and
    // -1 until it is cancelled.
    quint32 remaining = quint32(millisecondsBetween(m_TimeNow, m_TimeEnd));
    while (true) {
        QTimer timer;
        timer.setSingleShot(true);
        bool timedOut = false;
        QObject::connect(&timer, &QTimer::timeout, &loop, [&] {
            timedOut = true;
            loop.quit();
        });
        const bool whole = remaining != Infinite && remaining <= quint32(INT_MAX);
        if (remaining != Infinite)
            timer.start(int(qMin<quint32>(remaining, quint32(INT_MAX))));
        loop.exec();
        if (!self)
            return;
        if (m_signalled || (timedOut && whole))
            break;
        // A timer can only span part of a very long wait: the rest is measured afresh.
        m_TimeNow = fileTimeNow();
        const qint32 left = millisecondsBetween(m_TimeNow, m_TimeEnd);
        if (left < 1)
            break;
        remaining = quint32(left);
    }

    m_IsWaiting = false;
    Cancel();
    emit OnTimer();
    if (self)
        m_hEvent = nullptr;
}
