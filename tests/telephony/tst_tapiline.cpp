// The caller-ID line over a scripted provider: versions, the device list, the call handle
// through line messages, text extraction and the error texts.
#include "platform/VbError.h"
#include "telephony/ScriptedLineProvider.h"
#include "telephony/cTAPILine.h"

#include <QtTest>

using namespace Tapi;

class TapiLineTest : public QObject {
    Q_OBJECT

    static ScriptedLineProvider::Device device(const QByteArray &name, qint32 negotiateResult = 0)
    {
        ScriptedLineProvider::Device d;
        d.lineName = name;
        d.negotiateResult = negotiateResult;
        return d;
    }
    // Two devices that agree on 2.0, "Modem A" and "Modem B", after those given.
    static void twoDevices(ScriptedLineProvider &p, const QList<ScriptedLineProvider::Device> &before = {})
    {
        p.devices = before + QList{device("Modem A"), device("Modem B")};
    }

private slots:
    void errorText_data()
    {
        QTest::addColumn<qint64>("code");
        QTest::addColumn<QString>("text");
        QTest::newRow("first") << qint64(0x80000001) << "Allocated";
        QTest::newRow("gap 4") << qint64(0x80000004) << "Unknown Error";
        QTest::newRow("after gap 4") << qint64(0x80000005) << "Call UnAvail";
        QTest::newRow("dial params") << qint64(0x80000025) << "Unknown Error";
        QTest::newRow("after dial params") << qint64(0x80000026) << "Invalid Digit List";
        QTest::newRow("gap 31") << qint64(0x80000031) << "Unknown Error";
        QTest::newRow("after gap 31") << qint64(0x80000032) << "Invalid Param";
        QTest::newRow("last") << qint64(0x80000056) << "No Multiple Instance";
        QTest::newRow("past last") << qint64(0x80000057) << "Unknown Error";
        QTest::newRow("zero") << qint64(0) << "Unknown Error";
        QTest::newRow("signed form") << qint64(qint32(0x8000004D)) << "Structure Too Small";
    }
    void errorText()
    {
        QFETCH(qint64, code);
        QTEST(LineErrorText(code), "text");
    }

    void extractText_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<int>("offset");
        QTest::addColumn<int>("size");
        QTest::addColumn<QString>("text");
        const QByteArray wide("W\0ABCDEFlinename\0tail", 21);
        QTest::newRow("plain") << QByteArray("xxModem\0", 8) << 2 << 6 << "Modem";
        QTest::newRow("size 0") << QByteArray("xxModem") << 2 << 0 << "";
        QTest::newRow("offset 0") << QByteArray("Modem") << 0 << 5 << "";
        QTest::newRow("cut at NUL") << QByteArray("xab\0cd", 6) << 1 << 5 << "ab";
        QTest::newRow("NUL second: from ninth") << (QByteArray("x") + wide) << 1 << 21 << "linename";
        QTest::newRow("NUL second, short") << QByteArray("xA\0BCD", 6) << 1 << 5 << "";
        QTest::newRow("size past end") << QByteArray("xyz") << 1 << 100 << "yz";
    }
    void extractText()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(int, offset);
        QFETCH(int, size);
        QTEST(cTAPILine::ExtractText(bytes, quint32(offset), quint32(size)), "text");
    }

    // The settings window lists the agreeing devices by number, trying the older range when
    // the first initialisation fails; HiAPI then holds what the line API wrote back.
    void deviceList()
    {
        ScriptedLineProvider p;
        twoDevices(p, {device("Broken", LINEERR_NODRIVER)});
        p.initializeVersion = 0x20001;
        cTAPILine line(&p);
        const QList<LineDevice> devices = ListLineDevices(line);
        QCOMPARE(devices.size(), 2);
        QCOMPARE(devices[0].number, 1);
        QCOMPARE(devices[0].name, QStringLiteral("Modem A"));
        QCOMPARE(devices[1].number, 2);
        QCOMPARE(line.HiAPI(), 0x20001);
        QVERIFY(p.log.contains(QStringLiteral("lineNegotiateAPIVersion 2 20001")));
        QCOMPARE(line.MaxNegotiatedAPI(), 0x20000);
        line.setCurrentLineID(0);
        QCOMPARE(line.NegotiatedAPIVersion(), 0);
        // The negotiation's failure is not the line's failure.
        QCOMPARE(line.LastError(), 0);

        ScriptedLineProvider none;
        none.initializeResult = LINEERR_NODRIVER;
        cTAPILine failed(&none);
        QVERIFY(ListLineDevices(failed).isEmpty());
        QCOMPARE(none.log, QStringList({"lineInitializeEx 30000", "lineInitializeEx 10004"}));
        QCOMPARE(failed.LastError(), LINEERR_NODRIVER);
        QCOMPARE(failed.LastError(), 0);
    }

    void currentLineAndOpen()
    {
        ScriptedLineProvider p;
        twoDevices(p);
        cTAPILine line(&p);
        QVERIFY(line.Create());
        line.setCurrentLineID(1);
        QCOMPARE(line.LineName(), QStringLiteral("Modem B"));
        QVERIFY(line.LineSupportsVoiceCalls());
        try {
            line.setCurrentLineID(2);
            QFAIL("a device past the list was taken");
        } catch (const VbError &e) {
            QCOMPARE(e.number(), 380);
        }
        QCOMPARE(line.CurrentLineID(), 1);
        QCOMPARE(line.LineName(), QStringLiteral("Modem B"));

        p.openResult = LINEERR_RESOURCEUNAVAIL;
        QVERIFY(!line.OpenLine(4, 16));
        QCOMPARE(line.LastError(), LINEERR_RESOURCEUNAVAIL);
        p.openResult = 0;
        QVERIFY(line.OpenLine(4, 16));
        QVERIFY(p.log.contains(QStringLiteral("lineOpen 1 20000 4 16")));
    }

    // Line messages in the order a provider sends them, and what the line makes of them.
    void messages_data()
    {
        QTest::addColumn<QList<QList<quint32>>>("sent");   // hDevice, msg, p1, p2
        QTest::addColumn<QStringList>("raised");
        QTest::addColumn<QString>("providerCalls");          // after lineOpen, joined by '|'
        QTest::addColumn<bool>("lineOpen");
        using L = QList<QList<quint32>>;
        QTest::newRow("offered call with number, then idle")
            << L{{77, LINE_CALLSTATE, LINECALLSTATE_OFFERING, 4}, {77, LINE_CALLINFO, LINECALLINFOSTATE_CALLERID, 0},
                 {77, LINE_CALLSTATE, LINECALLSTATE_IDLE, 0}}
            << QStringList{"InfoCallerID 5551234", "Idle"} << "lineGetCallInfo 77|lineDeallocateCall 77" << true;
        QTest::newRow("number before any offer reads no call")
            << L{{77, LINE_CALLINFO, LINECALLINFOSTATE_CALLERID, 0}} << QStringList{"InfoCallerID "}
            << "lineGetCallInfo 0" << true;
        QTest::newRow("disconnect drops, idle then deallocates nothing")
            << L{{77, LINE_CALLSTATE, LINECALLSTATE_OFFERING, 4}, {77, LINE_CALLSTATE, LINECALLSTATE_DISCONNECTED, 0},
                 {77, LINE_CALLSTATE, LINECALLSTATE_IDLE, 0}, {0, LINE_REPLY, 2, 0}}
            << QStringList{"Disconnected", "Idle", "DropCallResult 0"} << "lineDrop 77" << true;
        QTest::newRow("unknown reply and ignored states")
            << L{{0, LINE_REPLY, 9, 5}, {77, LINE_CALLSTATE, LINECALLSTATE_DIALTONE, 0},
                 {77, LINE_CALLSTATE, LINECALLSTATE_CONNECTED, 0}, {1, LINE_LINEDEVSTATE, 4, 0}}
            << QStringList{"Connected"} << "" << true;
        QTest::newRow("line closed by the provider")
            << L{{77, LINE_CALLSTATE, LINECALLSTATE_OFFERING, 4}, {1, LINE_CLOSE, 0, 0}}
            << QStringList{"LineClose"} << "" << false;
    }
    void messages()
    {
        QFETCH(QList<QList<quint32>>, sent);
        QFETCH(bool, lineOpen);

        ScriptedLineProvider p;
        twoDevices(p);
        p.callerID = QByteArray("5551234\0", 8);
        auto *line = new cTAPILine(&p);
        QVERIFY(line->Create());
        QVERIFY(line->OpenLine(4, 16));
        QStringList seen;
        const auto note = [&seen](const char *what) { return [&seen, what] { seen << what; }; };
        connect(line, &cTAPILine::InfoCallerID, this, [&](const QString &n) { seen << "InfoCallerID " + n; });
        connect(line, &cTAPILine::DropCallResult, this, [&](qint32 r) { seen << "DropCallResult " + QString::number(r); });
        connect(line, &cTAPILine::Idle, this, note("Idle"));
        connect(line, &cTAPILine::Connected, this, note("Connected"));
        connect(line, &cTAPILine::Disconnected, this, note("Disconnected"));
        connect(line, &cTAPILine::LineClose, this, note("LineClose"));
        const qsizetype before = p.log.size();
        for (const QList<quint32> &m : sent)
            p.send(m[0], m[1], m[2], m[3]);
        // Messages are queued: nothing reaches the line from inside send().
        QVERIFY(seen.isEmpty());
        QCoreApplication::processEvents();
        QTEST(seen, "raised");
        QTEST(p.log.mid(before).join(u'|'), "providerCalls");
        QCOMPARE(line->hLine() != 0, lineOpen);

        // Going away lets go of the call, closes the line, shuts the application down.
        p.log.clear();
        p.send(78, LINE_CALLSTATE, LINECALLSTATE_OFFERING);
        QCoreApplication::processEvents();
        delete line;
        QCOMPARE(p.log.first(), QStringLiteral("lineDeallocateCall 78"));
        QVERIFY(p.log.last().startsWith(QLatin1String("lineShutdown")));
        QCOMPARE(p.log.size(), lineOpen ? 3 : 2);
        // A message still queued for the line that is gone finds nobody.
        p.send(78, LINE_CALLINFO, LINECALLINFOSTATE_CALLERID);
        QCoreApplication::processEvents();
    }
};

QTEST_MAIN(TapiLineTest)
#include "tst_tapiline.moc"
