#pragma once
#include "CallSource.h"
#include "ModemCallerIdParser.h"

#include <QPointer>
#include <QTimer>

class QSerialPort;

// A voice/data modem on a serial or USB port. On opening it switches caller ID on
// ("AT+VCID=1", and "AT#CID=1" for modems that do not know the first); a modem that takes
// neither still reports its rings. A ring offers a call, the caller's number follows, and
// a quiet line after the last ring means the caller has given up or the call was taken.
class ModemCallSource : public CallSource {
    Q_OBJECT
public:
    ModemCallSource(const QString &portName, const QString &description, QObject *parent = nullptr);
    ~ModemCallSource() override;

    QString name() const override;
    QString providerInfo() const override { return QStringLiteral("Modem caller ID"); }
    QString deviceID() const override { return m_portName; }
    bool open() override;
    void close() override;

    // How long the modem may take to answer a command, and how long after the last ring the
    // call counts as over. Rings come every four to six seconds.
    void setReplyTimeout(int ms) { m_replyTimer.setInterval(ms); }
    void setRingSilence(int ms) { m_silenceTimer.setInterval(ms); }
    // True once the modem has accepted one of the caller-ID commands.
    bool callerIdOn() const { return m_callerIdOn; }

private:
    void readPort();
    void handle(const QList<ModemCallerIdParser::Event> &events);
    void send(const QByteArray &command);
    void commandFailed();
    void lineQuiet();

    QString m_portName;
    QString m_description;
    QPointer<QSerialPort> m_port;
    ModemCallerIdParser m_parser;
    QTimer m_replyTimer;
    QTimer m_silenceTimer;
    QTimer m_quietTimer;
    int m_command = -1;
    bool m_callerIdOn = false;
    bool m_inCall = false;
};
