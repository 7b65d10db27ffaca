#pragma once
#include "CallSource.h"

#include <QByteArray>
#include <QList>

// Reads what a caller-ID server of the NCID kind sends: its start-up lines (200, 210, 25x,
// 300, and the call log it replays, which are all passed over), "CID:" lines with their
// fields by label in any order, ring counts, and "HUP:"/"END:" as the end of a call.
// Unknown lines are passed over.
class NcidLineParser {
public:
    struct Event {
        enum Kind { Ring, CallerId, End } kind;
        CallerIdInfo info;
    };

    QList<Event> feed(const QByteArray &bytes);
    // A connection that went away takes its unfinished line with it.
    void reset() { m_pending.clear(); }

    // The fields of "*LABEL*value*LABEL*value*" by label; false when the text has none.
    static bool readCallerId(const QString &fields, CallerIdInfo *info);

private:
    void readLine(const QString &line, QList<Event> *events);
    QByteArray m_pending;
};
