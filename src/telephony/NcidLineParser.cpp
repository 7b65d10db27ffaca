#include "NcidLineParser.h"

#include "TAPIDeclare.h"

#include <QHash>

namespace {
constexpr int LongestLine = 4096;

QHash<QString, QString> fieldsByLabel(const QString &text)
{
    QHash<QString, QString> fields;
    const QStringList parts = text.trimmed().split(QLatin1Char('*'));
    // parts: "", label, value, label, value, ..., ""
    for (qsizetype i = 1; i + 1 < parts.size(); i += 2)
        fields.insert(parts[i].trimmed().toUpper(), parts[i + 1].trimmed());
    return fields;
}
}

QList<NcidLineParser::Event> NcidLineParser::feed(const QByteArray &bytes)
{
    QList<Event> events;
    m_pending += bytes;
    qsizetype start = 0;
    for (qsizetype i = 0; i < m_pending.size(); ++i) {
        if (m_pending[i] == '\n') {
            readLine(QString::fromUtf8(m_pending.mid(start, i - start)).trimmed(), &events);
            start = i + 1;
        }
    }
    m_pending.remove(0, start);
    if (m_pending.size() > LongestLine)
        m_pending.clear();
    return events;
}

bool NcidLineParser::readCallerId(const QString &text, CallerIdInfo *info)
{
    const QHash<QString, QString> fields = fieldsByLabel(text);
    if (!fields.contains(QStringLiteral("NMBR")))
        return false;
    const QString number = fields.value(QStringLiteral("NMBR"));
    const QString upper = number.toUpper();
    CallerIdInfo read;
    if (upper == QLatin1String("PRIVATE") || upper == QLatin1String("P") || upper == QLatin1String("ANONYMOUS")
        || upper == QLatin1String("BLOCKED"))
        read.numberFlags = Tapi::LINECALLPARTYID_BLOCKED;
    else if (upper == QLatin1String("OUT-OF-AREA") || upper == QLatin1String("O"))
        read.numberFlags = Tapi::LINECALLPARTYID_OUTOFAREA;
    else if (number.isEmpty() || number == QLatin1String("-") || upper == QLatin1String("NO NUMBER")
             || upper == QLatin1String("UNAVAILABLE"))
        read.numberFlags = Tapi::LINECALLPARTYID_UNAVAIL;
    else
        read.number = number;

    const QString name = fields.value(QStringLiteral("NAME"));
    const QString upperName = name.toUpper();
    if (!(name == QLatin1String("-") || upperName == QLatin1String("NO NAME") || upperName == QLatin1String("PRIVATE")
          || upperName == QLatin1String("OUT-OF-AREA") || upperName == QLatin1String("UNAVAILABLE")
          || upperName == QLatin1String("ANONYMOUS")))
        read.name = name;
    *info = read;
    return true;
}

void NcidLineParser::readLine(const QString &line, QList<Event> *events)
{
    if (line.startsWith(QLatin1String("CID:"))) {
        CallerIdInfo info;
        if (readCallerId(line.mid(4), &info))
            events->append(Event{Event::CallerId, info});
    } else if (line.startsWith(QLatin1String("CIDINFO:"))) {
        const QHash<QString, QString> fields = fieldsByLabel(line.mid(8));
        bool ok = false;
        const int ring = fields.value(QStringLiteral("RING")).toInt(&ok);
        if (ok)
            events->append(Event{ring > 0 ? Event::Ring : Event::End, {}});
    } else if (line.startsWith(QLatin1String("HUP:")) || line.startsWith(QLatin1String("END:"))) {
        events->append(Event{Event::End, {}});
    }
    // The start-up lines, the replayed call log and anything newer than this reader are
    // not calls.
}
