// From the telephone line to the ticket: a modem played through a pseudo-terminal, a
// caller-ID server played by a TCP server in the test, and the reaction on the open ticket.
#include "support/Rows.h"
#include "support/ScriptedPrompter.h"
#include "support/TestDb.h"

#include "data/Gateway.h"
#include "data/Session.h"
#include "platform/Clock.h"
#include "platform/Forms.h"
#include "sale/TicketForms.h"
#include "telephony/CallerIdHandler.h"
#include "telephony/DeviceLineProvider.h"
#include "telephony/ModemCallSource.h"
#include "telephony/NcidCallSource.h"
#include "telephony/cTAPILine.h"

#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTcpServer>
#include <QTcpSocket>
#include <QtTest>

#include <fcntl.h>
#include <stdlib.h>
#include <unistd.h>

namespace {
// The modem's side of a pseudo-terminal pair; the line opens the other side as its port.
class FakeModem {
public:
    FakeModem()
    {
        m_fd = posix_openpt(O_RDWR | O_NOCTTY);
        if (m_fd >= 0 && grantpt(m_fd) == 0 && unlockpt(m_fd) == 0) {
            port = QString::fromLocal8Bit(ptsname(m_fd));
            fcntl(m_fd, F_SETFL, fcntl(m_fd, F_GETFL) | O_NONBLOCK);
        }
    }
    ~FakeModem()
    {
        if (m_fd >= 0)
            ::close(m_fd);
    }
    void say(const QByteArray &text) { QVERIFY(::write(m_fd, text.constData(), size_t(text.size())) == text.size()); }
    // Everything the line has written to the modem so far.
    QByteArray heard()
    {
        char buf[256];
        ssize_t n;
        while ((n = ::read(m_fd, buf, sizeof buf)) > 0)
            m_heard.append(buf, n);
        return m_heard;
    }
    QString port;

private:
    int m_fd = -1;
    QByteArray m_heard;
};

// The numbers and idles a line raises, in order.
QStringList *record(cTAPILine *line, QObject *context)
{
    auto *seen = new QStringList;
    QObject::connect(line, &cTAPILine::InfoCallerID, context, [seen](const QString &n) { *seen << n; });
    QObject::connect(line, &cTAPILine::Idle, context, [seen] { *seen << QStringLiteral("Idle"); });
    QObject::connect(line, &cTAPILine::destroyed, [seen] { delete seen; });
    return seen;
}
}

class CallerIdRoadTest : public QObject {
    Q_OBJECT
    std::unique_ptr<TestDb> db;
    std::unique_ptr<ScriptedPrompter> prompts;

    // A line over the fake modem, opened the way the settings window opens it.
    struct ModemLine {
        FakeModem modem;
        ModemCallSource *source = nullptr;
        std::unique_ptr<DeviceLineProvider> provider;
        std::unique_ptr<cTAPILine> line;
    };
    void openModemLine(ModemLine &m, int replyTimeout = 3000)
    {
        QVERIFY(!m.modem.port.isEmpty());
        m.provider = std::make_unique<DeviceLineProvider>([&m, replyTimeout] {
            m.source = new ModemCallSource(m.modem.port, QStringLiteral("test modem"));
            m.source->setReplyTimeout(replyTimeout);
            m.source->setRingSilence(300);
            return QList<CallSource *>{m.source};
        });
        m.line = std::make_unique<cTAPILine>(m.provider.get());
        const QList<LineDevice> devices = ListLineDevices(*m.line);
        QCOMPARE(devices.size(), 1);
        QVERIFY(devices[0].name.endsWith(QLatin1String("test modem")));
        m.line->setCurrentLineID(devices[0].number);
        QVERIFY(m.line->OpenLine(4, 16));
    }

    // The ticket window open for a new ticket, as the caller-ID reaction expects it.
    static QWidget *newTicket()
    {
        QWidget *sale = Forms::get(QStringLiteral("frmSale"));
        sale->setProperty("mActionType", 1);
        sale->show();
        return sale;
    }

private slots:
    void initTestCase()
    {
        registerTicketForms();
        Session::UserID = 1;
        Clock::set(QDateTime(QDate(2026, 11, 23), QTime(9, 30)));
    }
    void init()
    {
        db = std::make_unique<TestDb>();
        QVERIFY(db->ok());
        prompts = std::make_unique<ScriptedPrompter>();
        Rows::customer(*db, 7, QStringLiteral("西街7号"), QStringLiteral("5557777"));
    }
    void cleanup()
    {
        const QStringList problems = prompts->problems(); // no message unless a case expects one
        Forms::unloadAll();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        prompts.reset();
        db.reset();
        QVERIFY2(problems.isEmpty(), qPrintable(problems.join(u'\n')));
    }

    // Sample sessions of a modem: how it answers the caller-ID commands, then one call.
    void modemSessions_data()
    {
        QTest::addColumn<QByteArrayList>("replies");   // to AT+VCID=1, then to AT#CID=1; empty: silence
        QTest::addColumn<QByteArray>("call");
        QTest::addColumn<QStringList>("raised");
        QTest::newRow("formatted lines")
            << QByteArrayList{"OK"}
            << QByteArray("RING\r\n\r\nDATE = 1123\r\nTIME = 0930\r\nNMBR = 5551234\r\nNAME = WANG\r\n\r\nRING\r\n")
            << QStringList{"5551234", "Idle"};
        QTest::newRow("raw packet after the fallback command")
            << QByteArrayList{"ERROR", "OK"} << QByteArray("RING\r\n800F01083131323330393330020335353531\r\nRING\r\n")
            << QStringList{"555", "Idle"};
        QTest::newRow("no caller ID: rings only") << QByteArrayList{"ERROR", "ERROR"}
                                                  << QByteArray("RING\r\nRING\r\n") << QStringList{"Idle"};
        QTest::newRow("silent modem, broken packet") << QByteArrayList{"", ""}
                                                     << QByteArray("RING\r\n8012010831\r\n\xff\xfe\r\nRING\r\n")
                                                     << QStringList{"Idle"};
        QTest::newRow("private caller") << QByteArrayList{"OK"} << QByteArray("RING\r\nNMBR = P\r\nNAME = P\r\n")
                                        << QStringList{"", "Idle"};
    }
    void modemSessions()
    {
        QFETCH(QByteArrayList, replies);
        QFETCH(QByteArray, call);
        ModemLine m;
        openModemLine(m, 200);
        QStringList *seen = record(m.line.get(), this);
        const QByteArray commands[] = {"AT+VCID=1\r", "AT#CID=1\r"};
        for (int i = 0; i < replies.size(); ++i) {
            QTRY_VERIFY(m.modem.heard().endsWith(commands[i]));
            if (!replies[i].isEmpty())
                m.modem.say(replies[i] + "\r\n");
        }
        QTRY_COMPARE(m.source->callerIdOn(), replies.last() == "OK");
        m.modem.say(call);
        QFETCH(QStringList, raised);
        QTRY_COMPARE(*seen, raised);
    }

    void modemThatCannotBeOpened()
    {
        DeviceLineProvider provider([] { return QList<CallSource *>{new ModemCallSource("/nonexistent/tty0", {})}; });
        cTAPILine line(&provider);
        QVERIFY(line.Create());
        QVERIFY(!line.OpenLine(4, 16));
        QCOMPARE(line.LastError(), Tapi::LINEERR_RESOURCEUNAVAIL);
    }

    // The server's address comes from SysValue; unknown lines and a line cut by a lost
    // connection raise nothing, and the line comes back when the server does.
    void ncidServer()
    {
        QTcpServer server;
        QVERIFY(server.listen(QHostAddress::LocalHost, 0));
        SetSysValue(QStringLiteral("NcidServer"), QStringLiteral("127.0.0.1:%1").arg(server.serverPort()));
        NcidCallSource *source = nullptr;
        DeviceLineProvider provider([&] {
            const QList<CallSource *> found = DiscoverNcidServer();
            source = qobject_cast<NcidCallSource *>(found.value(0));
            source->setReconnectDelay(50);
            return found;
        });
        cTAPILine line(&provider);
        QCOMPARE(ListLineDevices(line).value(0).name, QStringLiteral("NCID 127.0.0.1:%1").arg(server.serverPort()));
        line.setCurrentLineID(0);
        QVERIFY(line.OpenLine(4, 16));
        QStringList *seen = record(&line, this);

        QTRY_VERIFY(server.hasPendingConnections());
        QTcpSocket *first = server.nextPendingConnection();
        first->write("200 NCID Server: test\n210 API: 1.11\n254 Start of call log\n"
                     "CIDLOG: *DATE*11222026*TIME*0900*LINE*-*NMBR*5550000*MESG*NONE*NAME*OLD*\n"
                     "250 End of call log\n300 End of connection startup\nWHAT: *X*1*\n"
                     "CID: *DATE*11232026*TIME*0930*LINE*-*NMBR*5551234*MESG*NONE*NAME*NO NAME*\n"
                     "END: *HTYPE*BYE*LINE*-*NMBR*5551234*\nCID: *DATE*11232026*TIME*0931*LI");
        QTRY_COMPARE(*seen, QStringList({"5551234", "Idle"}));
        first->disconnectFromHost();

        QTRY_VERIFY(server.hasPendingConnections());
        QTcpSocket *second = server.nextPendingConnection();
        second->write("NE*-*NMBR*5559999*NAME*X*\n200 NCID Server: test\n"
                      "CID: *NAME*LI*NMBR*5550002*DATE*11232026*TIME*0932*LINE*-*\n");
        QTRY_COMPARE(*seen, QStringList({"5551234", "Idle", "5550002"}));
        // A server gone in the middle of a call ends the call.
        second->abort();
        QTRY_COMPARE(seen->size(), 4);
        QCOMPARE(seen->last(), QStringLiteral("Idle"));
        QVERIFY(line.hLine() != 0);
    }

    // The reaction to a number, in both builds, and where it holds back.
    void handler_data()
    {
        QTest::addColumn<bool>("handlingOff");
        QTest::addColumn<QString>("number");
        QTest::addColumn<QString>("ticket");        // "new", "edit", "hidden"
        QTest::addColumn<QString>("storedNumber");  // empty: no Call row
        QTest::addColumn<QString>("account");       // what the ticket shows
        QTest::addColumn<bool>("focusOnLines");
        QTest::newRow("delivered build") << true << "5557777" << "new" << "" << "" << false;
        QTest::newRow("known caller") << false << "5557777" << "new" << "5557777" << "7" << true;
        QTest::newRow("stored as it came") << false << " 5557777 " << "new" << " 5557777 " << "7" << true;
        QTest::newRow("unknown caller") << false << "5550000" << "new" << "5550000" << "" << false;
        QTest::newRow("spaces only") << false << "   " << "new" << "" << "" << false;
        QTest::newRow("ticket being edited") << false << "5557777" << "edit" << "" << "" << false;
        QTest::newRow("ticket window hidden") << false << "5557777" << "hidden" << "" << "" << false;
        QTest::newRow("quote in the number") << false << "555'7" << "new" << "" << "" << false;
    }
    void handler()
    {
        QFETCH(bool, handlingOff);
        QFETCH(QString, number);
        QFETCH(QString, ticket);
        QFETCH(QString, storedNumber);
        QFETCH(QString, account);

        QWidget *sale = newTicket();
        sale->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(sale));
        auto *remark = sale->findChild<QPlainTextEdit *>(QStringLiteral("txtDetail"));
        remark->setPlainText(QStringLiteral("上一位顾客"));
        if (ticket == QLatin1String("edit"))
            sale->setProperty("mActionType", 2);
        if (ticket == QLatin1String("hidden"))
            sale->hide();

        const bool reacts = !handlingOff && !number.trimmed().isEmpty() && ticket == QLatin1String("new");
        if (reacts && number.contains(u'\'')) {
            expectFailed(*prompts, Failed::Update);
            // The ticket's own phone lookup meets the same quote and says so.
            expectFailed(*prompts, Failed::Read);
            prompts->expect(QStringLiteral("查找客户信息时出现错误！"));
        }
        int beeps = 0;
        CallerIdHandler handler(handlingOff);
        handler.setBeeper([&] { ++beeps; });
        handler.Tapiline_InfoCallerID(number);

        QCOMPARE(beeps, reacts ? 1 : 0);
        QCOMPARE(db->scalar("SELECT group_concat(PhoneNumber || '@' || CreateDate, '|') FROM Call").toString(),
                 storedNumber.isEmpty() ? QString() : storedNumber + "@2026-11-23 09:30:00");
        // ResetInput dropped what was on the ticket before the call.
        QCOMPARE(remark->toPlainText().isEmpty(), reacts);
        QCOMPARE(sale->findChild<QLineEdit *>(QStringLiteral("txtCustPhone"))->text(),
                 reacts ? (account.isEmpty() ? number : QStringLiteral("5557777")) : QString());
        QCOMPARE(sale->findChild<QLineEdit *>(QStringLiteral("txtCustAccount"))->text(), account);
        QTEST(sale->findChild<QWidget *>(QStringLiteral("dbgDetail"))->hasFocus(), "focusOnLines");
    }

    // A ring on the modem ends as a Call row and the caller on the open ticket.
    void ringToTicket()
    {
        QWidget *sale = newTicket();
        ModemLine m;
        openModemLine(m);
        CallerIdHandler handler(false);
        handler.setBeeper([] {});
        handler.attach(m.line.get());
        QTRY_VERIFY(m.modem.heard().endsWith("AT+VCID=1\r"));
        m.modem.say("OK\r\nRING\r\nDATE = 1123\r\nTIME = 0930\r\nNMBR = 5557777\r\nNAME = WANG\r\n");
        QTRY_COMPARE(db->count("Call", "PhoneNumber='5557777'"), 1);
        QCOMPARE(sale->findChild<QLineEdit *>(QStringLiteral("txtCustAccount"))->text(), QStringLiteral("7"));
        QCOMPARE(sale->findChild<QLineEdit *>(QStringLiteral("txtCustAddress"))->text(), QStringLiteral("西街7号"));
    }
};

QTEST_MAIN(CallerIdRoadTest)
#include "tst_calleridroad.moc"
