#include "InstanceGuard.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QLocalServer>
#include <QLocalSocket>
#include <QThread>

InstanceGuard::InstanceGuard(const QString &key, QObject *parent)
    : QObject(parent), m_key(key), m_lock(QDir::temp().filePath(key + QStringLiteral(".lock")))
{
}

InstanceGuard::~InstanceGuard()
{
    if (m_server)
        m_server->close();
}

bool InstanceGuard::claim()
{
    // The lock decides who is first; a lock left by a crashed start is taken over.
    if (m_lock.tryLock(0)) {
        QLocalServer::removeServer(m_key);
        m_server = new QLocalServer(this);
        // A connection is the whole request: the later start has nothing else to say.
        connect(m_server, &QLocalServer::newConnection, this, [this] {
            while (QLocalSocket *socket = m_server->nextPendingConnection()) {
                connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
                emit raiseRequested();
            }
        });
        m_server->listen(m_key);
        return true;
    }
    // The first start may still be between taking the lock and listening.
    QLocalSocket socket;
    const QDeadlineTimer deadline(2000);
    while (!deadline.hasExpired()) {
        socket.connectToServer(m_key);
        if (socket.waitForConnected(500)) {
            socket.disconnectFromServer();
            break;
        }
        QThread::msleep(50);
    }
    return false;
}
