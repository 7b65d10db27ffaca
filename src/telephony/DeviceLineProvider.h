#pragma once
#include "CallSource.h"
#include "LineProvider.h"

#include <QHash>
#include <QList>
#include <functional>

// The line API over caller-ID devices. Each initialisation takes a fresh look at which
// devices there are; an open device's rings and numbers become an offered call, its
// caller-ID message and its idle state. Calls are watched, never answered or placed.
class DeviceLineProvider : public LineProvider {
    Q_OBJECT
public:
    using Discover = std::function<QList<CallSource *>()>;
    explicit DeviceLineProvider(Discover discover, QObject *parent = nullptr);
    ~DeviceLineProvider() override;

    // The versions a device agrees to.
    static constexpr quint32 LowestVersion = 0x10003;
    static constexpr quint32 HighestVersion = 0x20002;
    // What initialisation hands back as the highest version the line API knows.
    static constexpr quint32 ApiVersion = 0x30000;

    qint32 lineInitializeEx(quint32 *hLineApp, Tapi::LINECALLBACK callback, const QString &appName,
                            quint32 *numDevs, quint32 *apiVersion,
                            const Tapi::LINEINITIALIZEEXPARAMS &params) override;
    qint32 lineShutdown(quint32 hLineApp) override;
    qint32 lineNegotiateAPIVersion(quint32 hLineApp, quint32 deviceID, quint32 lowVersion, quint32 highVersion,
                                   quint32 *apiVersion, Tapi::LINEEXTENSIONID *extensionID) override;
    qint32 lineGetDevCaps(quint32 hLineApp, quint32 deviceID, quint32 apiVersion, quint32 extVersion,
                          Tapi::LINEDEVCAPS *caps) override;
    qint32 lineGetAddressCaps(quint32 hLineApp, quint32 deviceID, quint32 addressID, quint32 apiVersion,
                              quint32 extVersion, Tapi::LINEADDRESSCAPS *caps) override;
    qint32 lineOpen(quint32 hLineApp, quint32 deviceID, quint32 *hLine, quint32 apiVersion, quint32 extVersion,
                    quintptr callbackInstance, quint32 privileges, quint32 mediaModes) override;
    qint32 lineClose(quint32 hLine) override;
    qint32 lineMakeCall(quint32 hLine, quint32 *hCall, const QString &number, quint32 countryCode) override;
    qint32 lineDrop(quint32 hCall) override;
    qint32 lineDeallocateCall(quint32 hCall) override;
    qint32 lineGetCallInfo(quint32 hCall, Tapi::LINECALLINFO *info) override;
    qint32 lineGetID(quint32 hLine, quint32 addressID, quint32 hCall, quint32 select, Tapi::VARSTRING *deviceID,
                     const QString &deviceClass) override;
    qint32 lineConfigDialog(quint32 deviceID, qint16 owner, const QString &deviceClass) override;
    qint32 lineTranslateDialog(quint32 hLineApp, quint32 deviceID, quint32 apiVersion, qint16 owner,
                               const QString &address) override;
    qint32 lineGetIcon(quint32 deviceID, const QString &deviceClass, QIcon *icon) override;

private:
    struct App {
        Tapi::LINECALLBACK callback = nullptr;
        QList<CallSource *> devices;
    };
    struct OpenLine {
        quint32 app = 0;
        CallSource *source = nullptr;
        quintptr instance = 0;
        quint32 currentCall = 0;
    };
    struct Call {
        quint32 line = 0;
        CallerIdInfo info;
        bool hasCallerId = false;
    };

    CallSource *device(quint32 hLineApp, quint32 deviceID, qint32 *rc) const;
    void post(quint32 hLine, quint32 hDevice, quint32 msg, quint32 p1, quint32 p2 = 0, quint32 p3 = 0);
    quint32 offer(quint32 hLine);
    void onRinging(quint32 hLine);
    void onCallerId(quint32 hLine, const CallerIdInfo &info);
    void onCallEnded(quint32 hLine);

    Discover m_discover;
    QHash<quint32, App> m_apps;
    QHash<quint32, OpenLine> m_lines;
    QHash<quint32, Call> m_calls;
    quint32 m_nextHandle = 0x100;
    qint32 m_nextRequest = 0;
};

// The devices of the system provider, in this order: a modem per serial port, then the
// caller-ID server whose address SysValue keeps under "NcidServer".
QList<CallSource *> DiscoverModems();
QList<CallSource *> DiscoverNcidServer();
