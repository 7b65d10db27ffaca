#include "ModemCallSource.h"

#include "DeviceLineProvider.h"

#include <QFileInfo>
#include <QSerialPort>
#include <QSerialPortInfo>

namespace {
// Tried in order until the modem says OK.
const QByteArray CallerIdCommands[] = {"AT+VCID=1", "AT#CID=1"};
constexpr int CommandCount = 2;
// Formatted caller-ID lines come in one burst; this much quiet ends the burst.
constexpr int BurstQuiet = 400;
}

ModemCallSource::ModemCallSource(const QString &portName, const QString &description, QObject *parent)
    : CallSource(parent), m_portName(portName), m_description(description)
{
    m_replyTimer.setSingleShot(true);
    m_replyTimer.setInterval(3000);
    m_silenceTimer.setSingleShot(true);
    m_silenceTimer.setInterval(8000);
    m_quietTimer.setSingleShot(true);
    m_quietTimer.setInterval(BurstQuiet);
    connect(&m_replyTimer, &QTimer::timeout, this, &ModemCallSource::commandFailed);
    connect(&m_silenceTimer, &QTimer::timeout, this, &ModemCallSource::lineQuiet);
    connect(&m_quietTimer, &QTimer::timeout, this, [this] { handle(m_parser.flush()); });
}

ModemCallSource::~ModemCallSource() { close(); }

QString ModemCallSource::name() const
{
    const QString port = QFileInfo(m_portName).fileName();
    return m_description.isEmpty() ? port : port + QLatin1Char(' ') + m_description;
}

bool ModemCallSource::open()
{
    close();
    auto *port = new QSerialPort(this);
    port->setPortName(m_portName);
    if (!port->open(QIODevice::ReadWrite)) {
        delete port;
        return false;
    }
    port->setBaudRate(QSerialPort::Baud115200);
    port->setDataBits(QSerialPort::Data8);
    port->setParity(QSerialPort::NoParity);
    port->setStopBits(QSerialPort::OneStop);
    port->setFlowControl(QSerialPort::NoFlowControl);
    m_port = port;
    m_parser.reset();
    m_callerIdOn = false;
    connect(port, &QSerialPort::readyRead, this, &ModemCallSource::readPort);
    // A pulled USB modem: the line is simply no longer watched.
    connect(port, &QSerialPort::errorOccurred, this, [this](QSerialPort::SerialPortError error) {
        if (error == QSerialPort::ResourceError)
            close();
    });
    m_command = 0;
    send(CallerIdCommands[0]);
    return true;
}

void ModemCallSource::close()
{
    m_replyTimer.stop();
    m_silenceTimer.stop();
    m_quietTimer.stop();
    m_command = -1;
    if (m_port) {
        QSerialPort *port = m_port;
        m_port = nullptr;
        port->disconnect(this);
        port->close();
        port->deleteLater();
    }
    if (m_inCall) {
        m_inCall = false;
        emit callEnded();
    }
}

void ModemCallSource::send(const QByteArray &command)
{
    if (!m_port)
        return;
    m_port->write(command + '\r');
    m_replyTimer.start();
}

void ModemCallSource::commandFailed()
{
    m_replyTimer.stop();
    if (m_command < 0)
        return;
    if (++m_command < CommandCount) {
        send(CallerIdCommands[m_command]);
        return;
    }
    // No caller ID on this modem: the rings still show that someone calls.
    m_command = -1;
}

void ModemCallSource::readPort()
{
    if (!m_port)
        return;
    handle(m_parser.feed(m_port->readAll()));
    m_quietTimer.start();
}

void ModemCallSource::handle(const QList<ModemCallerIdParser::Event> &events)
{
    for (const ModemCallerIdParser::Event &event : events) {
        switch (event.kind) {
        case ModemCallerIdParser::Event::Ok:
            if (m_command >= 0) {
                m_replyTimer.stop();
                m_command = -1;
                m_callerIdOn = true;
            }
            break;
        case ModemCallerIdParser::Event::Error:
            if (m_command >= 0)
                commandFailed();
            break;
        case ModemCallerIdParser::Event::Ring:
            m_inCall = true;
            m_silenceTimer.start();
            emit ringing();
            break;
        case ModemCallerIdParser::Event::CallerId:
            m_inCall = true;
            m_silenceTimer.start();
            emit callerId(event.info);
            break;
        }
    }
}

void ModemCallSource::lineQuiet()
{
    if (!m_inCall)
        return;
    m_inCall = false;
    emit callEnded();
}

QList<CallSource *> DiscoverModems()
{
    QList<CallSource *> modems;
    for (const QSerialPortInfo &port : QSerialPortInfo::availablePorts())
        modems << new ModemCallSource(port.systemLocation(), port.description());
    return modems;
}
