// What the modem and the caller-ID server write, read into rings, numbers and call ends.
#include "telephony/ModemCallerIdParser.h"
#include "telephony/NcidLineParser.h"
#include "telephony/TAPIDeclare.h"

#include <QtTest>

namespace {
// A caller-ID packet in hex: type, length, body and the checksum that makes the bytes add
// up to zero.
QByteArray packet(int type, const QByteArray &body)
{
    QByteArray bytes;
    bytes.append(char(type)).append(char(body.size())).append(body);
    quint8 sum = 0;
    for (char c : bytes)
        sum += quint8(c);
    bytes.append(char(quint8(0x100 - sum)));
    return bytes.toHex().toUpper();
}
QByteArray param(int type, const QByteArray &data) { return QByteArray(1, char(type)) + char(data.size()) + data; }

// Events in one text: "RING", "OK", "ERROR", "CID number/name/flags", "END".
QString modemEvents(const QList<ModemCallerIdParser::Event> &events)
{
    QStringList out;
    for (const auto &e : events) {
        switch (e.kind) {
        case ModemCallerIdParser::Event::Ok: out << "OK"; break;
        case ModemCallerIdParser::Event::Error: out << "ERROR"; break;
        case ModemCallerIdParser::Event::Ring: out << "RING"; break;
        case ModemCallerIdParser::Event::CallerId:
            out << QStringLiteral("CID %1/%2/%3").arg(e.info.number, e.info.name).arg(e.info.numberFlags);
            break;
        }
    }
    return out.join(u',');
}
}

class ParsersTest : public QObject {
    Q_OBJECT
private slots:
    void modem_data()
    {
        QTest::addColumn<QByteArray>("session");
        QTest::addColumn<QString>("events");
        const QByteArray mdmf = packet(0x80, param(0x01, "11231405") + param(0x02, "13905551234") + param(0x07, "WANG WU"));
        QTest::newRow("formatted, name last")
            << QByteArray("AT+VCID=1\r\r\nOK\r\n\r\nRING\r\n\r\nDATE = 1123\r\nTIME = 1405\r\nNMBR = 5551234\r\n"
                          "NAME = WANG WU\r\n\r\nRING\r\n")
            << "OK,RING,CID 5551234/WANG WU/0,RING";
        QTest::newRow("formatted, no name, closed by the next ring")
            << QByteArray("RING\r\nDATE=1123\r\nTIME=1405\r\nNMBR=0427-555\r\nRING\r\n") << "RING,CID 0427-555//0,RING";
        QTest::newRow("private and unavailable")
            << QByteArray("NMBR = P\r\nNAME = P\r\nNMBR = O\r\nNAME = O\r\n") << "CID //1,CID //2";
        QTest::newRow("directory number, message item ignored")
            << QByteArray("MESG = 060342\r\nDDN_NMBR = 5550001\r\nNAME = LI\r\n") << "CID 5550001/LI/0";
        QTest::newRow("raw multiple-message") << mdmf + "\r\n" << "CID 13905551234/WANG WU/0";
        QTest::newRow("raw multiple-message, number withheld")
            << packet(0x80, param(0x01, "11231405") + param(0x04, "P") + param(0x08, "P")) + "\r\n" << "CID //1";
        QTest::newRow("raw single-message") << packet(0x04, "112314055551234") + "\r\n" << "CID 5551234//0";
        QTest::newRow("raw single-message, out of area") << packet(0x04, "11231405O") + "\r\n" << "CID //2";
        QTest::newRow("bad checksum")
            << QByteArray(mdmf).replace(mdmf.size() - 2, 2, mdmf.right(2) == "00" ? "01" : "00") + "\r\n" << "";
        QTest::newRow("cut packet") << mdmf.left(mdmf.size() - 6) + "\r\n" << "";
        QTest::newRow("parameter longer than the message")
            << packet(0x80, QByteArray("\x02\x20") + "5551234") + "\r\n" << "";
        QTest::newRow("message waiting packet") << packet(0x06, "\x42\x42\x42") + "\r\n" << "";
        QTest::newRow("garbage and cut lines")
            << QByteArray("\x01\xff\xfe\r\nNMB\r\nZZ = 1\r\n12345\r\nRI") << "";
        QTest::newRow("name not in ASCII")
            << QByteArray("NMBR = 5551234\r\nNAME = \xe7\x8e\x8b\xff\r\n") << "CID 5551234/\u00e7\u008e\u008b\u00ff/0";
        QTest::newRow("error reply") << QByteArray("AT#CID=1\r\nERROR\r\n") << "ERROR";
        QTest::newRow("number without a name, given at the end") << QByteArray("DATE = 1123\r\nNMBR = 5551234\r\n")
                                                                << "CID 5551234//0";
    }
    void modem()
    {
        QFETCH(QByteArray, session);
        // Bytes arrive in pieces: the parser must not depend on where the port cut them.
        for (int piece : {1, 3, 64}) {
            ModemCallerIdParser parser;
            QList<ModemCallerIdParser::Event> got;
            for (qsizetype i = 0; i < session.size(); i += piece)
                got += parser.feed(session.mid(i, piece));
            got += parser.flush(); // the port closes or the ring stops
            QTEST(modemEvents(got), "events");
        }
    }

    void ncid_data()
    {
        QTest::addColumn<QByteArray>("session");
        QTest::addColumn<QString>("events");
        QTest::newRow("start-up and call log are not calls")
            << QByteArray("200 NCID Server: ncidd 1.14\n210 API: 1.11 Feature Set 1 2 3 4\n254 Start of call log\n"
                          "CIDLOG: *DATE*11222026*TIME*0900*LINE*-*NMBR*5550000*MESG*NONE*NAME*OLD*\n"
                          "250 End of call log\n300 End of connection startup\n")
            << "";
        QTest::newRow("call and its end")
            << QByteArray("CIDINFO: *LINE*POTS*RING*1*TIME*14:05:00*\n"
                          "CID: *DATE*11232026*TIME*1405*LINE*POTS*NMBR*5551234*MESG*NONE*NAME*王五*\n"
                          "END: *HTYPE*BYE*DATE*11232026*TIME*1406*SCALL*x*ECALL*y*CTYPE*IN*LINE*POTS*NMBR*5551234*NAME*王五*\n")
            << "RING,CID 5551234/王五/0,END";
        QTest::newRow("fields in another order, CR LF")
            << QByteArray("CID: *NAME*LI*NMBR*5550001*LINE*-*TIME*1405*DATE*11232026*\r\nHUP: *DATE*x*\r\n")
            << "CID 5550001/LI/0,END";
        QTest::newRow("special values")
            << QByteArray("CID: *DATE*1*TIME*1*LINE*-*NMBR*PRIVATE*MESG*NONE*NAME*NO NAME*\n"
                          "CID: *DATE*1*TIME*1*LINE*-*NMBR*OUT-OF-AREA*MESG*NONE*NAME*OUT-OF-AREA*\n"
                          "CID: *DATE*1*TIME*1*LINE*-*NMBR*-*MESG*NONE*NAME*-*\n")
            << "CID //1,CID //2,CID //64";
        QTest::newRow("unknown lines and broken ones")
            << QByteArray("MSG: hello\nXYZ\nCID: *DATE*1*TIME*2*\nCID:\n\n401 bad\nCID: *NMBR*555") << "";
        QTest::newRow("a quote in a number comes through as sent")
            << QByteArray("CID: *NMBR*555'1*NAME*X*\n") << "CID 555'1/X/0";
    }
    void ncid()
    {
        QFETCH(QByteArray, session);
        NcidLineParser parser;
        QStringList got;
        for (qsizetype i = 0; i < session.size(); i += 5) {
            for (const auto &e : parser.feed(session.mid(i, 5))) {
                if (e.kind == NcidLineParser::Event::Ring)
                    got << "RING";
                else if (e.kind == NcidLineParser::Event::End)
                    got << "END";
                else
                    got << QStringLiteral("CID %1/%2/%3").arg(e.info.number, e.info.name).arg(e.info.numberFlags);
            }
        }
        QTEST(got.join(u','), "events");
    }
};

QTEST_MAIN(ParsersTest)
#include "tst_calleridparsers.moc"
