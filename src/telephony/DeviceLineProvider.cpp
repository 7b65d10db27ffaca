#include "DeviceLineProvider.h"

using namespace Tapi;

DeviceLineProvider::DeviceLineProvider(Discover discover, QObject *parent)
    : LineProvider(parent), m_discover(std::move(discover))
{
}

DeviceLineProvider::~DeviceLineProvider()
{
    for (const OpenLine &line : std::as_const(m_lines)) {
        disconnect(line.source, nullptr, this, nullptr);
        line.source->close();
    }
}

qint32 DeviceLineProvider::lineInitializeEx(quint32 *hLineApp, LINECALLBACK callback, const QString &,
                                            quint32 *numDevs, quint32 *apiVersion, const LINEINITIALIZEEXPARAMS &)
{
    if (!hLineApp || !numDevs || !apiVersion || !callback)
        return LINEERR_INVALPARAM;
    if (*apiVersion < 0x20000)
        return LINEERR_INCOMPATIBLEAPIVERSION;
    App app;
    app.callback = callback;
    if (m_discover)
        app.devices = m_discover();
    for (CallSource *source : std::as_const(app.devices))
        source->setParent(this);
    const quint32 handle = ++m_nextHandle;
    m_apps.insert(handle, app);
    *hLineApp = handle;
    *numDevs = quint32(app.devices.size());
    *apiVersion = ApiVersion;
    return 0;
}

qint32 DeviceLineProvider::lineShutdown(quint32 hLineApp)
{
    if (!m_apps.contains(hLineApp))
        return LINEERR_INVALAPPHANDLE;
    for (auto it = m_lines.begin(); it != m_lines.end();) {
        if (it->app == hLineApp) {
            disconnect(it->source, nullptr, this, nullptr);
            it->source->close();
            it = m_lines.erase(it);
        } else {
            ++it;
        }
    }
    for (CallSource *source : m_apps.take(hLineApp).devices)
        source->deleteLater();
    return 0;
}

CallSource *DeviceLineProvider::device(quint32 hLineApp, quint32 deviceID, qint32 *rc) const
{
    const auto app = m_apps.constFind(hLineApp);
    if (app == m_apps.constEnd()) {
        *rc = LINEERR_INVALAPPHANDLE;
        return nullptr;
    }
    if (deviceID >= quint32(app->devices.size())) {
        *rc = LINEERR_BADDEVICEID;
        return nullptr;
    }
    *rc = 0;
    return app->devices[int(deviceID)];
}

qint32 DeviceLineProvider::lineNegotiateAPIVersion(quint32 hLineApp, quint32 deviceID, quint32 lowVersion,
                                                   quint32 highVersion, quint32 *apiVersion,
                                                   LINEEXTENSIONID *extensionID)
{
    qint32 rc = 0;
    if (!device(hLineApp, deviceID, &rc))
        return rc;
    const quint32 agreed = qMin(highVersion, HighestVersion);
    if (agreed < qMax(lowVersion, LowestVersion) || lowVersion > highVersion)
        return LINEERR_INCOMPATIBLEAPIVERSION;
    *apiVersion = agreed;
    *extensionID = LINEEXTENSIONID();
    return 0;
}

qint32 DeviceLineProvider::lineGetDevCaps(quint32 hLineApp, quint32 deviceID, quint32 apiVersion, quint32,
                                          LINEDEVCAPS *caps)
{
    qint32 rc = 0;
    CallSource *source = device(hLineApp, deviceID, &rc);
    if (!source)
        return rc;
    if (apiVersion == 0)
        return LINEERR_INCOMPATIBLEAPIVERSION;
    caps->prepare(LINEDEVCAPS::FixedSize);
    // The line API's own strings are in the machine's code page.
    const auto provider = caps->place(source->providerInfo().toLocal8Bit());
    caps->dwProviderInfoOffset = provider.offset;
    caps->dwProviderInfoSize = provider.size;
    const auto name = caps->place(source->name().toLocal8Bit());
    caps->dwLineNameOffset = name.offset;
    caps->dwLineNameSize = name.size;
    caps->dwPermanentLineID = qHash(source->deviceID()) & 0xFFFF;
    caps->dwStringFormat = STRINGFORMAT_ASCII;
    caps->dwAddressModes = 1;
    caps->dwNumAddresses = 1;
    caps->dwBearerModes = LINEBEARERMODE_VOICE;
    caps->dwMediaModes = LINEMEDIAMODE_INTERACTIVEVOICE | LINEMEDIAMODE_DATAMODEM;
    return 0;
}

qint32 DeviceLineProvider::lineGetAddressCaps(quint32 hLineApp, quint32 deviceID, quint32 addressID, quint32,
                                              quint32, LINEADDRESSCAPS *caps)
{
    qint32 rc = 0;
    CallSource *source = device(hLineApp, deviceID, &rc);
    if (!source)
        return rc;
    if (addressID != 0)
        return LINEERR_INVALPARAM;
    caps->prepare(LINEADDRESSCAPS::FixedSize);
    caps->dwLineDeviceID = deviceID;
    const auto address = caps->place(source->deviceID().toLocal8Bit());
    caps->dwAddressOffset = address.offset;
    caps->dwAddressSize = address.size;
    caps->dwMaxNumActiveCalls = 1;
    return 0;
}

qint32 DeviceLineProvider::lineOpen(quint32 hLineApp, quint32 deviceID, quint32 *hLine, quint32 apiVersion, quint32,
                                    quintptr callbackInstance, quint32, quint32 mediaModes)
{
    qint32 rc = 0;
    CallSource *source = device(hLineApp, deviceID, &rc);
    if (!source)
        return rc;
    if (apiVersion == 0)
        return LINEERR_INCOMPATIBLEAPIVERSION;
    if (mediaModes & ~quint32(LINEMEDIAMODE_INTERACTIVEVOICE | LINEMEDIAMODE_DATAMODEM))
        return LINEERR_INVALMEDIAMODE;
    for (const OpenLine &line : std::as_const(m_lines))
        if (line.source == source)
            return LINEERR_INUSE;
    if (!source->open())
        return LINEERR_RESOURCEUNAVAIL;

    const quint32 handle = ++m_nextHandle;
    m_lines.insert(handle, OpenLine{hLineApp, source, callbackInstance, 0});
    connect(source, &CallSource::ringing, this, [this, handle] { onRinging(handle); });
    connect(source, &CallSource::callerId, this, [this, handle](const CallerIdInfo &info) { onCallerId(handle, info); });
    connect(source, &CallSource::callEnded, this, [this, handle] { onCallEnded(handle); });
    *hLine = handle;
    return 0;
}

qint32 DeviceLineProvider::lineClose(quint32 hLine)
{
    const auto it = m_lines.find(hLine);
    if (it == m_lines.end())
        return LINEERR_INVALLINEHANDLE;
    disconnect(it->source, nullptr, this, nullptr);
    it->source->close();
    m_lines.erase(it);
    return 0;
}

qint32 DeviceLineProvider::lineMakeCall(quint32 hLine, quint32 *, const QString &, quint32)
{
    // The devices watch the line; calls out are dialled on the telephone itself.
    return m_lines.contains(hLine) ? LINEERR_OPERATIONUNAVAIL : LINEERR_INVALLINEHANDLE;
}

qint32 DeviceLineProvider::lineDrop(quint32 hCall)
{
    const auto it = m_calls.constFind(hCall);
    if (it == m_calls.constEnd())
        return LINEERR_INVALCALLHANDLE;
    // Nothing to hang up on a watched line: the call is let go and goes idle.
    const qint32 request = ++m_nextRequest;
    const quint32 line = it->line;
    post(line, 0, LINE_REPLY, quint32(request), 0);
    if (m_lines.value(line).currentCall == hCall) {
        m_lines[line].currentCall = 0;
        post(line, hCall, LINE_CALLSTATE, LINECALLSTATE_IDLE);
    }
    return request;
}

qint32 DeviceLineProvider::lineDeallocateCall(quint32 hCall)
{
    if (!m_calls.remove(hCall))
        return LINEERR_INVALCALLHANDLE;
    for (OpenLine &line : m_lines)
        if (line.currentCall == hCall)
            line.currentCall = 0;
    return 0;
}

qint32 DeviceLineProvider::lineGetCallInfo(quint32 hCall, LINECALLINFO *info)
{
    const auto it = m_calls.constFind(hCall);
    if (it == m_calls.constEnd())
        return LINEERR_INVALCALLHANDLE;
    info->prepare(LINECALLINFO::FixedSize);
    info->dwCallerIDFlags = it->info.numberFlags;
    if (!it->info.number.isEmpty()) {
        const auto number = info->place(it->info.number.toLocal8Bit());
        info->dwCallerIDOffset = number.offset;
        info->dwCallerIDSize = number.size;
        info->dwCallerIDFlags |= LINECALLPARTYID_ADDRESS;
    }
    if (!it->info.name.isEmpty()) {
        const auto name = info->place(it->info.name.toLocal8Bit());
        info->dwCallerIDNameOffset = name.offset;
        info->dwCallerIDNameSize = name.size;
        info->dwCallerIDFlags |= LINECALLPARTYID_NAME;
    }
    return 0;
}

qint32 DeviceLineProvider::lineGetID(quint32 hLine, quint32, quint32, quint32, VARSTRING *deviceID, const QString &)
{
    const auto it = m_lines.constFind(hLine);
    if (it == m_lines.constEnd())
        return LINEERR_INVALLINEHANDLE;
    deviceID->prepare(VARSTRING::FixedSize);
    const auto text = deviceID->place(it->source->deviceID().toLocal8Bit());
    deviceID->dwStringFormat = STRINGFORMAT_ASCII;
    deviceID->dwStringOffset = text.offset;
    deviceID->dwStringSize = text.size;
    return 0;
}

// Settings live in the program's own settings window; the devices have no dialogs of their own.
qint32 DeviceLineProvider::lineConfigDialog(quint32, qint16, const QString &) { return LINEERR_OPERATIONUNAVAIL; }

qint32 DeviceLineProvider::lineTranslateDialog(quint32, quint32, quint32, qint16, const QString &)
{
    return LINEERR_OPERATIONUNAVAIL;
}

qint32 DeviceLineProvider::lineGetIcon(quint32, const QString &, QIcon *icon)
{
    *icon = QIcon::fromTheme(QStringLiteral("call-start"));
    return 0;
}

void DeviceLineProvider::post(quint32 hLine, quint32 hDevice, quint32 msg, quint32 p1, quint32 p2, quint32 p3)
{
    const OpenLine line = m_lines.value(hLine);
    const App app = m_apps.value(line.app);
    if (app.callback)
        LineProvider::post(app.callback, hDevice, msg, line.instance, p1, p2, p3);
}

quint32 DeviceLineProvider::offer(quint32 hLine)
{
    const quint32 call = ++m_nextHandle;
    m_calls.insert(call, Call{hLine, {}, false});
    m_lines[hLine].currentCall = call;
    post(hLine, call, LINE_CALLSTATE, LINECALLSTATE_OFFERING, LINECALLPRIVILEGE_OWNER);
    return call;
}

void DeviceLineProvider::onRinging(quint32 hLine)
{
    if (!m_lines.contains(hLine))
        return;
    post(hLine, hLine, LINE_LINEDEVSTATE, LINEDEVSTATE_RINGING);
    if (!m_lines.value(hLine).currentCall)
        offer(hLine);
}

void DeviceLineProvider::onCallerId(quint32 hLine, const CallerIdInfo &info)
{
    if (!m_lines.contains(hLine))
        return;
    quint32 call = m_lines.value(hLine).currentCall;
    // A second number without an end between is a new call.
    if (call && m_calls.value(call).hasCallerId) {
        onCallEnded(hLine);
        call = 0;
    }
    if (!call)
        call = offer(hLine);
    Call &c = m_calls[call];
    c.info = info;
    c.hasCallerId = true;
    post(hLine, call, LINE_CALLINFO, LINECALLINFOSTATE_CALLERID);
}

void DeviceLineProvider::onCallEnded(quint32 hLine)
{
    if (!m_lines.contains(hLine))
        return;
    const quint32 call = m_lines.value(hLine).currentCall;
    if (!call)
        return;
    m_lines[hLine].currentCall = 0;
    post(hLine, call, LINE_CALLSTATE, LINECALLSTATE_IDLE);
}
