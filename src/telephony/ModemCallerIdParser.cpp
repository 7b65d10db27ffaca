#include "ModemCallerIdParser.h"

#include "TAPIDeclare.h"

#include <QRegularExpression>

namespace {
// A line longer than this without an end is noise on the port, not a modem reply.
constexpr int LongestLine = 1024;

// "P" stands for a number or name the caller keeps private, "O" for one the exchange
// does not have.
quint32 absenceFlag(const QByteArray &value)
{
    if (value == "P")
        return Tapi::LINECALLPARTYID_BLOCKED;
    if (value == "O")
        return Tapi::LINECALLPARTYID_OUTOFAREA;
    return 0;
}

QString modemText(const QByteArray &bytes) { return QString::fromLatin1(bytes).trimmed(); }
}

void ModemCallerIdParser::reset()
{
    m_pending.clear();
    m_record = CallerIdInfo();
    m_hasNumber = m_hasName = false;
}

QList<ModemCallerIdParser::Event> ModemCallerIdParser::feed(const QByteArray &bytes)
{
    QList<Event> events;
    m_pending += bytes;
    qsizetype start = 0;
    for (qsizetype i = 0; i < m_pending.size(); ++i) {
        const char c = m_pending[i];
        if (c == '\r' || c == '\n') {
            readLine(m_pending.mid(start, i - start), &events);
            start = i + 1;
        }
    }
    m_pending.remove(0, start);
    if (m_pending.size() > LongestLine)
        m_pending.clear();
    return events;
}

QList<ModemCallerIdParser::Event> ModemCallerIdParser::flush()
{
    QList<Event> events;
    finishRecord(&events);
    return events;
}

void ModemCallerIdParser::finishRecord(QList<Event> *events)
{
    if (m_hasNumber)
        events->append(Event{Event::CallerId, m_record});
    m_record = CallerIdInfo();
    m_hasNumber = m_hasName = false;
}

void ModemCallerIdParser::readLine(const QByteArray &raw, QList<Event> *events)
{
    const QByteArray line = raw.trimmed();
    if (line.isEmpty())
        return;
    if (line == "OK") {
        events->append(Event{Event::Ok, {}});
        return;
    }
    if (line == "ERROR") {
        events->append(Event{Event::Error, {}});
        return;
    }
    if (line == "RING") {
        // The next ring closes the caller's lines: the modem has said all it knows.
        finishRecord(events);
        events->append(Event{Event::Ring, {}});
        return;
    }

    static const QRegularExpression field(QStringLiteral("^(DATE|TIME|NMBR|NAME|DDN_NMBR|MESG)\\s*=\\s*(.*)$"));
    const QRegularExpressionMatch m = field.match(QString::fromLatin1(line));
    if (m.hasMatch()) {
        const QString key = m.captured(1);
        const QByteArray value = m.captured(2).trimmed().toLatin1();
        if (key == QLatin1String("NMBR") || (key == QLatin1String("DDN_NMBR") && !m_hasNumber)) {
            const quint32 absent = absenceFlag(value);
            m_record.number = absent ? QString() : modemText(value);
            m_record.numberFlags = absent ? absent : (value.isEmpty() ? quint32(Tapi::LINECALLPARTYID_UNAVAIL) : 0u);
            m_hasNumber = true;
        } else if (key == QLatin1String("NAME")) {
            m_record.name = absenceFlag(value) ? QString() : modemText(value);
            m_hasName = true;
        }
        // The name comes last when the exchange sends one.
        if (m_hasNumber && m_hasName)
            finishRecord(events);
        return;
    }

    CallerIdInfo info;
    if (readPacket(line, &info))
        events->append(Event{Event::CallerId, info});
}

bool ModemCallerIdParser::readPacket(const QByteArray &hex, CallerIdInfo *info)
{
    static const QRegularExpression hexOnly(QStringLiteral("^([0-9A-Fa-f]{2}){4,}$"));
    if (!hexOnly.match(QString::fromLatin1(hex)).hasMatch())
        return false;
    const QByteArray packet = QByteArray::fromHex(hex);
    const int type = quint8(packet[0]);
    const int length = quint8(packet[1]);
    // Message type, length, the message, the checksum: a cut packet or one with more behind
    // it is not taken.
    if (packet.size() != length + 3)
        return false;
    quint8 sum = 0;
    for (const char c : packet)
        sum += quint8(c);
    if (sum != 0)
        return false;
    const QByteArray body = packet.mid(2, length);

    CallerIdInfo read;
    if (type == 0x04) {
        // Single message: month, day, hour and minute as eight digits, then the number.
        if (body.size() < 8)
            return false;
        const QByteArray number = body.mid(8);
        const quint32 absent = absenceFlag(number);
        read.number = absent ? QString() : modemText(number);
        read.numberFlags = absent ? absent : (number.isEmpty() ? quint32(Tapi::LINECALLPARTYID_UNAVAIL) : 0u);
    } else if (type == 0x80) {
        // Multiple message: parameters of type, length and data.
        bool haveNumber = false;
        QByteArray directory;
        int i = 0;
        while (i < body.size()) {
            if (i + 2 > body.size())
                return false;
            const int param = quint8(body[i]);
            const int size = quint8(body[i + 1]);
            if (i + 2 + size > body.size())
                return false;
            const QByteArray data = body.mid(i + 2, size);
            switch (param) {
            case 0x02:
                read.number = modemText(data);
                haveNumber = true;
                break;
            case 0x03:
                directory = data;
                break;
            case 0x04:
                read.numberFlags |= absenceFlag(data) ? absenceFlag(data) : quint32(Tapi::LINECALLPARTYID_UNAVAIL);
                break;
            case 0x07:
                read.name = modemText(data);
                break;
            default:
                break;
            }
            i += 2 + size;
        }
        if (!haveNumber && !directory.isEmpty())
            read.number = modemText(directory);
        if (read.number.isEmpty() && !read.numberFlags)
            read.numberFlags = Tapi::LINECALLPARTYID_UNAVAIL;
    } else {
        // Message-waiting and other packets carry no caller.
        return false;
    }
    *info = read;
    return true;
}
