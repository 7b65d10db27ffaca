#pragma once
#include "CallSource.h"

#include <QByteArray>
#include <QList>

// Reads what a voice/data modem writes while it watches the line: command replies, RING,
// the formatted caller-ID lines (DATE = , TIME = , NMBR = , NAME = , DDN_NMBR = , MESG = )
// and the raw single- and multiple-message packets in hex. Anything it cannot read, a packet
// with a bad checksum or a cut line among them, is dropped without a word.
class ModemCallerIdParser {
public:
    struct Event {
        enum Kind { Ok, Error, Ring, CallerId } kind;
        CallerIdInfo info;
    };

    // Bytes as they come from the port, in pieces of any size.
    QList<Event> feed(const QByteArray &bytes);
    // The formatted lines of a caller not yet reported, when the modem has gone quiet.
    QList<Event> flush();
    void reset();

    // One raw packet in hex; false when it is not a well-formed caller-ID packet.
    static bool readPacket(const QByteArray &hex, CallerIdInfo *info);

private:
    void readLine(const QByteArray &line, QList<Event> *events);
    void finishRecord(QList<Event> *events);

    QByteArray m_pending;
    CallerIdInfo m_record;
    bool m_hasNumber = false;
    bool m_hasName = false;
};
