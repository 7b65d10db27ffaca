#pragma once
#include "TAPIDeclare.h"

#include <QIcon>
#include <QObject>

// What stands behind the line class: the line API's operations, each giving 0 or a line
// result code (the asynchronous ones a request id above 0), and the line messages, which a
// provider never hands over from inside an operation: they are queued and reach the
// callback from the event loop of the user-interface thread, one at a time.
class LineProvider : public QObject {
    Q_OBJECT
public:
    using QObject::QObject;

    virtual qint32 lineInitializeEx(quint32 *hLineApp, Tapi::LINECALLBACK callback, const QString &appName,
                                    quint32 *numDevs, quint32 *apiVersion,
                                    const Tapi::LINEINITIALIZEEXPARAMS &params) = 0;
    virtual qint32 lineShutdown(quint32 hLineApp) = 0;
    virtual qint32 lineNegotiateAPIVersion(quint32 hLineApp, quint32 deviceID, quint32 lowVersion,
                                           quint32 highVersion, quint32 *apiVersion,
                                           Tapi::LINEEXTENSIONID *extensionID) = 0;
    virtual qint32 lineGetDevCaps(quint32 hLineApp, quint32 deviceID, quint32 apiVersion, quint32 extVersion,
                                  Tapi::LINEDEVCAPS *caps) = 0;
    virtual qint32 lineGetAddressCaps(quint32 hLineApp, quint32 deviceID, quint32 addressID, quint32 apiVersion,
                                      quint32 extVersion, Tapi::LINEADDRESSCAPS *caps) = 0;
    virtual qint32 lineOpen(quint32 hLineApp, quint32 deviceID, quint32 *hLine, quint32 apiVersion,
                            quint32 extVersion, quintptr callbackInstance, quint32 privileges,
                            quint32 mediaModes) = 0;
    virtual qint32 lineClose(quint32 hLine) = 0;
    // number is null when no number is passed.
    virtual qint32 lineMakeCall(quint32 hLine, quint32 *hCall, const QString &number, quint32 countryCode) = 0;
    virtual qint32 lineDrop(quint32 hCall) = 0;
    virtual qint32 lineDeallocateCall(quint32 hCall) = 0;
    virtual qint32 lineGetCallInfo(quint32 hCall, Tapi::LINECALLINFO *info) = 0;
    virtual qint32 lineGetID(quint32 hLine, quint32 addressID, quint32 hCall, quint32 select,
                             Tapi::VARSTRING *deviceID, const QString &deviceClass) = 0;
    virtual qint32 lineConfigDialog(quint32 deviceID, qint16 owner, const QString &deviceClass) = 0;
    virtual qint32 lineTranslateDialog(quint32 hLineApp, quint32 deviceID, quint32 apiVersion, qint16 owner,
                                       const QString &address) = 0;
    virtual qint32 lineGetIcon(quint32 deviceID, const QString &deviceClass, QIcon *icon) = 0;

    // The provider every new line object uses unless it is given one: modems on the serial
    // ports, then the caller-ID server. Tests put their own in its place.
    static LineProvider *system();
    static void setSystem(LineProvider *provider);

protected:
    // Queues a line message for the callback; it runs once the event loop turns.
    void post(Tapi::LINECALLBACK callback, quint32 hDevice, quint32 msg, quintptr instance, quint32 p1,
              quint32 p2 = 0, quint32 p3 = 0);
};
