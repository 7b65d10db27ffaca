#pragma once
#include "platform/VbError.h"

#include <QObject>
#include <QPointer>

class QEventLoop;

// The failure of a wait, with the source that raised it.
class WaitError : public VbError {
public:
    WaitError(int number, const QString &source, const QString &description)
        : VbError(number, description), m_source(source) {}
    QString source() const { return m_source; }

private:
    QString m_source;
};

// Waits a number of milliseconds on the user-interface thread while events keep flowing, so
// windows repaint and line messages arrive meanwhile. One wait at a time per object.
class CWaitNDispatch : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool IsWaiting READ IsWaiting)
public:
    using QObject::QObject;
    ~CWaitNDispatch() override;

    bool IsWaiting() const { return m_IsWaiting; }
    // Returns when the time is up or Cancel was called. 0 returns at once; a negative count
    // is read as a very long wait (-1 lasts until Cancel). Throws WaitError when this object
    // is already waiting.
    Q_INVOKABLE void Wait(qint32 milliseconds);
    Q_INVOKABLE void Cancel();

    static constexpr int NotReentrant = int(0x800403E9);

signals:
    // Once at the end of each wait, run out or cancelled, with IsWaiting already false.
    void OnTimer();

private:
    qint64 m_TimeNow = 0;    // 100 ns units
    qint64 m_TimeEnd = 0;
    QPointer<QEventLoop> m_hEvent;
    bool m_signalled = false;
    bool m_IsWaiting = false;
};
