#include "NcidCallSource.h"

#include "DeviceLineProvider.h"
#include "data/Gateway.h"
#include "platform/VbError.h"

NcidCallSource::NcidCallSource(const QString &host, quint16 port, QObject *parent)
    : CallSource(parent), m_host(host), m_port(port)
{
    m_reconnect.setSingleShot(true);
    m_reconnect.setInterval(5000);
    connect(&m_reconnect, &QTimer::timeout, this, [this] {
        if (m_open && m_socket.state() == QAbstractSocket::UnconnectedState)
            m_socket.connectToHost(m_host, m_port);
    });
    connect(&m_socket, &QTcpSocket::readyRead, this, &NcidCallSource::readSocket);
    connect(&m_socket, &QTcpSocket::disconnected, this, &NcidCallSource::lost);
    connect(&m_socket, &QTcpSocket::errorOccurred, this, &NcidCallSource::lost);
}

NcidCallSource::~NcidCallSource()
{
    m_socket.disconnect(this);
    m_open = false;
    m_socket.abort();
}

QString NcidCallSource::name() const { return QStringLiteral("NCID ") + deviceID(); }

QString NcidCallSource::deviceID() const { return m_host + QLatin1Char(':') + QString::number(m_port); }

bool NcidCallSource::open()
{
    m_open = true;
    m_parser.reset();
    m_socket.abort();
    m_socket.connectToHost(m_host, m_port);
    return true;
}

void NcidCallSource::close()
{
    m_open = false;
    m_reconnect.stop();
    m_socket.abort();
    m_parser.reset();
    if (m_inCall) {
        m_inCall = false;
        emit callEnded();
    }
}

void NcidCallSource::lost()
{
    m_parser.reset();
    // What the server knew about the call went with it.
    if (m_inCall) {
        m_inCall = false;
        emit callEnded();
    }
    if (m_open && !m_reconnect.isActive())
        m_reconnect.start();
}

void NcidCallSource::readSocket()
{
    for (const NcidLineParser::Event &event : m_parser.feed(m_socket.readAll())) {
        switch (event.kind) {
        case NcidLineParser::Event::Ring:
            m_inCall = true;
            emit ringing();
            break;
        case NcidLineParser::Event::CallerId:
            m_inCall = true;
            emit callerId(event.info);
            break;
        case NcidLineParser::Event::End:
            if (m_inCall) {
                m_inCall = false;
                emit callEnded();
            }
            break;
        }
    }
}

void NcidCallSource::readAddress(const QString &text, QString *host, quint16 *port)
{
    *host = QStringLiteral("127.0.0.1");
    *port = DefaultPort;
    const QString t = text.trimmed();
    if (t.isEmpty())
        return;
    const qsizetype colon = t.lastIndexOf(QLatin1Char(':'));
    if (colon < 0) {
        *host = t;
        return;
    }
    bool ok = false;
    const uint p = t.mid(colon + 1).toUInt(&ok);
    if (colon > 0)
        *host = t.left(colon);
    if (ok && p > 0 && p <= 65535)
        *port = quint16(p);
}

QList<CallSource *> DiscoverNcidServer()
{
    QString text;
    try {
        text = GetSysValue(QStringLiteral("NcidServer"));
    } catch (const VbError &) {
        // No settings to read: the server on this machine is the one to try.
    }
    QString host;
    quint16 port = 0;
    NcidCallSource::readAddress(text, &host, &port);
    return {new NcidCallSource(host, port)};
}
