#include "ScriptedLineProvider.h"

using namespace Tapi;

void ScriptedLineProvider::send(quint32 hDevice, quint32 msg, quint32 p1, quint32 p2, quint32 p3)
{
    if (m_callback)
        post(m_callback, hDevice, msg, m_instance, p1, p2, p3);
}

qint32 ScriptedLineProvider::lineInitializeEx(quint32 *hLineApp, LINECALLBACK callback, const QString &,
                                              quint32 *numDevs, quint32 *apiVersion, const LINEINITIALIZEEXPARAMS &)
{
    log << QStringLiteral("lineInitializeEx %1").arg(*apiVersion, 0, 16);
    if (initializeResult != 0)
        return initializeResult;
    m_callback = callback;
    *hLineApp = ++m_nextHandle;
    *numDevs = quint32(devices.size());
    *apiVersion = initializeVersion;
    return 0;
}

qint32 ScriptedLineProvider::lineShutdown(quint32 hLineApp)
{
    log << QStringLiteral("lineShutdown %1").arg(hLineApp);
    return 0;
}

qint32 ScriptedLineProvider::lineNegotiateAPIVersion(quint32, quint32 deviceID, quint32 lowVersion,
                                                     quint32 highVersion, quint32 *apiVersion,
                                                     LINEEXTENSIONID *extensionID)
{
    log << QStringLiteral("lineNegotiateAPIVersion %1 %2").arg(deviceID).arg(highVersion, 0, 16);
    const Device &d = devices.value(int(deviceID));
    if (d.negotiateResult != 0)
        return d.negotiateResult;
    if (d.version < lowVersion || d.version > highVersion)
        return LINEERR_INCOMPATIBLEAPIVERSION;
    *apiVersion = d.version;
    *extensionID = d.extensionID;
    return 0;
}

qint32 ScriptedLineProvider::lineGetDevCaps(quint32, quint32 deviceID, quint32, quint32, LINEDEVCAPS *caps)
{
    const Device &d = devices.value(int(deviceID));
    if (d.devCapsResult != 0)
        return d.devCapsResult;
    caps->prepare(LINEDEVCAPS::FixedSize);
    // Placed without a closing NUL of its own, so a test decides every byte.
    const auto name = caps->place(d.lineName);
    caps->dwLineNameOffset = name.offset;
    caps->dwLineNameSize = name.size ? name.size - 1 : 0;
    caps->dwBearerModes = d.bearerModes;
    caps->dwMediaModes = d.mediaModes;
    caps->dwPermanentLineID = deviceID + 100;
    return 0;
}

qint32 ScriptedLineProvider::lineGetAddressCaps(quint32, quint32, quint32, quint32, quint32, LINEADDRESSCAPS *caps)
{
    caps->prepare(LINEADDRESSCAPS::FixedSize);
    return 0;
}

qint32 ScriptedLineProvider::lineOpen(quint32, quint32 deviceID, quint32 *hLine, quint32 apiVersion, quint32,
                                      quintptr callbackInstance, quint32 privileges, quint32 mediaModes)
{
    log << QStringLiteral("lineOpen %1 %2 %3 %4").arg(deviceID).arg(apiVersion, 0, 16).arg(privileges).arg(mediaModes);
    if (openResult != 0)
        return openResult;
    m_instance = callbackInstance;
    *hLine = ++m_nextHandle;
    return 0;
}

qint32 ScriptedLineProvider::lineClose(quint32 hLine)
{
    log << QStringLiteral("lineClose %1").arg(hLine);
    return closeResult;
}

qint32 ScriptedLineProvider::lineMakeCall(quint32 hLine, quint32 *hCall, const QString &number, quint32)
{
    log << QStringLiteral("lineMakeCall %1 %2").arg(hLine).arg(number.isNull() ? QStringLiteral("-") : number);
    if (makeCallResult >= 1)
        *hCall = ++m_nextHandle;
    return makeCallResult;
}

qint32 ScriptedLineProvider::lineDrop(quint32 hCall)
{
    log << QStringLiteral("lineDrop %1").arg(hCall);
    return dropResult;
}

qint32 ScriptedLineProvider::lineDeallocateCall(quint32 hCall)
{
    log << QStringLiteral("lineDeallocateCall %1").arg(hCall);
    return 0;
}

qint32 ScriptedLineProvider::lineGetCallInfo(quint32 hCall, LINECALLINFO *info)
{
    log << QStringLiteral("lineGetCallInfo %1").arg(hCall);
    if (callInfoResult != 0 || hCall == 0)
        return callInfoResult != 0 ? callInfoResult : LINEERR_INVALCALLHANDLE;
    info->prepare(LINECALLINFO::FixedSize);
    const auto number = info->place(callerID);
    info->dwCallerIDOffset = number.offset;
    info->dwCallerIDSize = number.size;
    return 0;
}

qint32 ScriptedLineProvider::lineGetID(quint32, quint32, quint32, quint32, VARSTRING *, const QString &)
{
    return LINEERR_OPERATIONUNAVAIL;
}

qint32 ScriptedLineProvider::lineConfigDialog(quint32, qint16, const QString &) { return LINEERR_OPERATIONUNAVAIL; }

qint32 ScriptedLineProvider::lineTranslateDialog(quint32, quint32, quint32, qint16, const QString &)
{
    return LINEERR_OPERATIONUNAVAIL;
}

qint32 ScriptedLineProvider::lineGetIcon(quint32, const QString &, QIcon *) { return LINEERR_OPERATIONUNAVAIL; }
