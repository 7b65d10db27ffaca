#pragma once
#include "CallSource.h"
#include "NcidLineParser.h"

#include <QTcpSocket>
#include <QTimer>

// A caller-ID server of the NCID kind, reached over TCP. Connecting never waits: when the
// server cannot be reached or goes away, a timer tries again until the line is closed.
class NcidCallSource : public CallSource {
    Q_OBJECT
public:
    static constexpr quint16 DefaultPort = 3333;

    NcidCallSource(const QString &host, quint16 port, QObject *parent = nullptr);
    ~NcidCallSource() override;

    QString name() const override;
    QString providerInfo() const override { return QStringLiteral("NCID caller ID"); }
    QString deviceID() const override;
    bool open() override;
    void close() override;

    void setReconnectDelay(int ms) { m_reconnect.setInterval(ms); }
    bool isConnected() const { return m_socket.state() == QAbstractSocket::ConnectedState; }

    // "host:port" as kept in SysValue; the default server when the text says nothing usable.
    static void readAddress(const QString &text, QString *host, quint16 *port);

private:
    void readSocket();
    void lost();

    QString m_host;
    quint16 m_port;
    QTcpSocket m_socket;
    QTimer m_reconnect;
    NcidLineParser m_parser;
    bool m_open = false;
    bool m_inCall = false;
};
