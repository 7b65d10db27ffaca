#pragma once
#include <QObject>
#include <QString>

// What a caller-ID device reports about a call. A number withheld or unknown at the far end
// comes as an empty number with the reason in numberFlags (line API party-id flags).
struct CallerIdInfo {
    QString number;
    QString name;
    quint32 numberFlags = 0;
};

// One device that watches a telephone line: a modem on a serial port, or a caller-ID server
// on the network. It only reports; the line provider turns the reports into line messages.
class CallSource : public QObject {
    Q_OBJECT
public:
    using QObject::QObject;
    virtual QString name() const = 0;
    virtual QString providerInfo() const = 0;
    // The port or address, for whoever asks the line for its device.
    virtual QString deviceID() const = 0;
    // Starts watching without waiting for the device; false when it cannot be reached at all.
    virtual bool open() = 0;
    virtual void close() = 0;

signals:
    void ringing();
    void callerId(const CallerIdInfo &info);
    void callEnded();
};
