#pragma once
#include "LineProvider.h"

#include <QList>
#include <QStringList>

// A line provider that answers from a script and records every operation, for trying the
// line class without a telephone: each operation gives the result set here, and send()
// queues a line message for the open line as a device would.
class ScriptedLineProvider : public LineProvider {
    Q_OBJECT
public:
    struct Device {
        QByteArray lineName;         // placed as given, NULs and all
        qint32 negotiateResult = 0;
        quint32 version = 0x20000;   // agreed when the asked range reaches it
        Tapi::LINEEXTENSIONID extensionID;
        qint32 devCapsResult = 0;
        quint32 bearerModes = Tapi::LINEBEARERMODE_VOICE;
        quint32 mediaModes = Tapi::LINEMEDIAMODE_INTERACTIVEVOICE | Tapi::LINEMEDIAMODE_DATAMODEM;
    };
    QList<Device> devices;
    qint32 initializeResult = 0;
    quint32 initializeVersion = 0x30000;   // written back as the line API's version
    qint32 openResult = 0;
    qint32 closeResult = 0;
    qint32 makeCallResult = 1;
    qint32 dropResult = 2;
    qint32 callInfoResult = 0;
    QByteArray callerID;                   // the number lineGetCallInfo hands back
    QStringList log;                       // "lineOpen 0", "lineDeallocateCall 77", ...

    using LineProvider::LineProvider;

    // Queues a message for the line that was opened last.
    void send(quint32 hDevice, quint32 msg, quint32 p1, quint32 p2 = 0, quint32 p3 = 0);

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
    Tapi::LINECALLBACK m_callback = nullptr;
    quintptr m_instance = 0;
    quint32 m_nextHandle = 0x40;
};
