#include "cTAPILine.h"

#include "LineProvider.h"
#include "platform/VbError.h"

#include <QCoreApplication>
#include <QHash>
#include <QPainter>

using namespace Tapi;

namespace {
// Line objects by the identity they give with lineOpen. A message for an identity that is no
// longer here finds nobody.
QHash<quintptr, QPointer<cTAPILine>> &liveLines()
{
    static QHash<quintptr, QPointer<cTAPILine>> lines;
    return lines;
}
quintptr g_nextIdentity = 0;

VbError invalidValue() { return VbError(380, QStringLiteral("无效的属性值")); }
VbError outOfRange() { return VbError(9, QStringLiteral("下标越界")); }
}

void LineCallback(quint32 hDevice, quint32 dwMsg, quintptr dwCallbackInstance, quint32 dwParam1, quint32 dwParam2,
                  quint32 dwParam3)
{
    if (dwCallbackInstance == 0)
        return;
    // Held for the length of the call: a signal handler may let go of the line meanwhile.
    QPointer<cTAPILine> line = liveLines().value(dwCallbackInstance);
    if (line)
        line->DispatchLineMessage(hDevice, dwMsg, dwParam1, dwParam2, dwParam3);
}

cTAPILine::cTAPILine(LineProvider *provider, QObject *parent)
    : QObject(parent), m_provider(provider ? provider : LineProvider::system()), m_identity(++g_nextIdentity)
{
    liveLines().insert(m_identity, this);
}

cTAPILine::~cTAPILine()
{
    liveLines().remove(m_identity);
    if (m_provider) {
        if (m_hCall) {
            m_provider->lineDeallocateCall(m_hCall);
            m_hCall = 0;
        }
        if (m_hLine)
            CloseLine();
        if (m_hLineApp) {
            m_provider->lineShutdown(m_hLineApp);
            m_hLineApp = 0;
        }
    }
}

int cTAPILine::lineIndex() const
{
    if (m_CurrentLineID < 0 || m_CurrentLineID >= m_APIVersions.size())
        throw outOfRange();
    return m_CurrentLineID;
}

qint32 cTAPILine::NegotiatedAPIVersion() const { return qint32(m_APIVersions[lineIndex()]); }

const LINEEXTENSIONID &cTAPILine::extensionID() const { return m_ExtensionIDs[lineIndex()]; }

void cTAPILine::setCurrentLineID(qint32 id)
{
    if (id < 0 || id > m_numLines - 1)
        throw invalidValue();
    m_CurrentLineID = id;
    ReadLineCaps();
    ReadAddressCaps();
}

qint32 cTAPILine::LastError()
{
    const qint32 code = m_LastError;
    m_LastError = 0;
    return code;
}

QString cTAPILine::GetID(qint32 select, const QString &deviceClass)
{
    if (!m_hLine || !m_provider)
        return QString();
    VARSTRING buffer;
    buffer.dwTotalSize = 2073;
    buffer.dwStringFormat = STRINGFORMAT_ASCII;
    m_provider->lineGetID(m_hLine, 0, m_hCall, quint32(select), &buffer, deviceClass);
    return ExtractText(buffer.bytes, buffer.dwStringOffset, buffer.dwStringSize);
}

bool cTAPILine::Create()
{
    if (!m_provider)
        return false;
    LINEINITIALIZEEXPARAMS params;
    params.dwTotalSize = 24;
    params.dwOptions = LINEINITIALIZEEXOPTION_USEHIDDENWINDOW;
    quint32 app = m_hLineApp;
    quint32 count = quint32(m_numLines);
    quint32 version = quint32(m_HiAPI);
    const qint32 rc = m_provider->lineInitializeEx(&app, &LineCallback, QCoreApplication::applicationName(), &count,
                                                   &version, params);
    m_hLineApp = app;
    m_numLines = qint32(count);
    m_HiAPI = qint32(version);
    if (rc != 0) {
        m_LastError = rc;
        return false;
    }
    if (m_numLines < 1)
        return false;

    m_APIVersions = QList<quint32>(m_numLines, 0);
    m_ExtensionIDs = QList<LINEEXTENSIONID>(m_numLines);
    for (int i = 0; i < m_numLines; ++i) {
        LINEEXTENSIONID ext;
        quint32 agreed = 0;
        if (m_provider->lineNegotiateAPIVersion(m_hLineApp, quint32(i), quint32(m_LowAPI), quint32(m_HiAPI),
                                                &agreed, &ext)
            != 0) {
            // A line that cannot agree is marked with 0 and left out of the device list.
            m_APIVersions[i] = 0;
            continue;
        }
        m_APIVersions[i] = agreed;
        m_ExtensionIDs[i] = ext;
        if (agreed > m_MaxNegotiatedAPI)
            m_MaxNegotiatedAPI = agreed;
    }
    try {
        ReadLineCaps();
        ReadAddressCaps();
    } catch (const VbError &) {
        // A selected line beyond a shrunken device list keeps its old capabilities.
    }
    return true;
}

void cTAPILine::ReadLineCaps()
{
    const int i = lineIndex();
    m_DevCaps = LINEDEVCAPS();
    m_DevCaps.dwTotalSize = 2285;
    const qint32 rc = m_provider ? m_provider->lineGetDevCaps(m_hLineApp, quint32(i), m_APIVersions[i], 0, &m_DevCaps)
                                 : LINEERR_NODRIVER;
    if (rc != 0) {
        m_LastError = rc;
        return;
    }
    const QByteArray &b = m_DevCaps.bytes;
    m_LineName = ExtractText(b, m_DevCaps.dwLineNameOffset, m_DevCaps.dwLineNameSize);
    m_ProviderInfo = ExtractText(b, m_DevCaps.dwProviderInfoOffset, m_DevCaps.dwProviderInfoSize);
    m_SwitchInfo = ExtractText(b, m_DevCaps.dwSwitchInfoOffset, m_DevCaps.dwSwitchInfoSize);
    m_PermanentLineID = m_DevCaps.dwPermanentLineID;
    m_StringFormat = m_DevCaps.dwStringFormat;
    m_numAddresses = m_DevCaps.dwNumAddresses;
    m_maxDataRate = m_DevCaps.dwMaxRate;
    m_BearerModes = m_DevCaps.dwBearerModes;
    m_AddressModes = m_DevCaps.dwAddressModes;
    m_mediamodes = m_DevCaps.dwMediaModes;
    m_GenerateToneMaxNumFreq = m_DevCaps.dwGenerateToneMaxNumFreq;
    m_GenerateToneModes = m_DevCaps.dwGenerateToneModes;
    m_numTerminals = m_DevCaps.dwNumTerminals;
}

void cTAPILine::ReadAddressCaps()
{
    const int i = lineIndex();
    m_AddressCaps = LINEADDRESSCAPS();
    m_AddressCaps.dwTotalSize = 2225;
    const qint32 rc = m_provider
                          ? m_provider->lineGetAddressCaps(m_hLineApp, quint32(i), 0, m_APIVersions[i], 0, &m_AddressCaps)
                          : LINEERR_NODRIVER;
    if (rc != 0)
        m_LastError = rc;
}

bool cTAPILine::LineSupportsVoiceCalls() const
{
    return (m_BearerModes & LINEBEARERMODE_VOICE) && (m_mediamodes & LINEMEDIAMODE_INTERACTIVEVOICE);
}

bool cTAPILine::OpenLine(qint32 privileges, qint32 mediaModes)
{
    if (m_hLine)
        return false;
    const quint32 version = m_APIVersions[lineIndex()];
    quint32 line = 0;
    const qint32 rc = m_provider ? m_provider->lineOpen(m_hLineApp, quint32(m_CurrentLineID), &line, version, 0,
                                                        m_identity, quint32(privileges), quint32(mediaModes))
                                 : LINEERR_NODRIVER;
    if (rc != 0) {
        m_LastError = rc;
        return false;
    }
    m_hLine = line;
    return true;
}

bool cTAPILine::MakeCallAsynch(const QString &number)
{
    if (!m_hLine || !m_provider)
        return false;
    quint32 call = m_hCall;
    const qint32 rc = m_provider->lineMakeCall(m_hLine, &call, number.isEmpty() ? QString() : number, 0);
    m_hCall = call;
    if (rc >= 1) {
        m_MakeCallRequest = rc;
        return true;
    }
    m_LastError = rc;
    return false;
}

bool cTAPILine::DropCallAsynch()
{
    if (!m_hCall || !m_provider)
        return false;
    const qint32 rc = m_provider->lineDrop(m_hCall);
    if (rc >= 1) {
        m_DropCallRequest = rc;
        m_hCall = 0;
        return true;
    }
    m_LastError = rc;
    return false;
}

bool cTAPILine::CloseLine()
{
    if (!m_hLine || !m_provider)
        return false;
    const qint32 rc = m_provider->lineClose(m_hLine);
    if (rc != 0) {
        m_LastError = rc;
        return false;
    }
    m_hLine = 0;
    m_hCall = 0;
    return true;
}

namespace {
qint16 narrowOwner(qint64 owner)
{
    if (owner < -32768 || owner > 32767)
        throw VbError::overflow();
    return qint16(owner);
}
}

bool cTAPILine::ConfigDialog(qint64 owner, const QString &deviceClass)
{
    const qint16 window = narrowOwner(owner);
    const qint32 rc = m_provider ? m_provider->lineConfigDialog(quint32(m_CurrentLineID), window,
                                                                deviceClass.isEmpty() ? QString() : deviceClass)
                                 : LINEERR_NODRIVER;
    if (rc == 0)
        return true;
    m_LastError = rc;
    return false;
}

bool cTAPILine::DialingPropertiesDialog(qint64 owner, const QString &address)
{
    const qint16 window = narrowOwner(owner);
    const qint32 rc = m_provider ? m_provider->lineTranslateDialog(m_hLineApp, quint32(m_CurrentLineID),
                                                                   m_MaxNegotiatedAPI, window,
                                                                   address.isEmpty() ? QString() : address)
                                 : LINEERR_NODRIVER;
    if (rc == 0)
        return true;
    m_LastError = rc;
    return false;
}

bool cTAPILine::PaintDevIcon(QPainter *context, int x, int y, int width, int height)
{
    QIcon icon;
    const qint32 rc = m_provider ? m_provider->lineGetIcon(quint32(m_CurrentLineID), QString(), &icon)
                                 : LINEERR_NODRIVER;
    if (rc != 0) {
        m_LastError = rc;
        return false;
    }
    if (context && !icon.isNull())
        icon.paint(context, x, y, width, height);
    return true;
}

QString cTAPILine::ExtractText(const QByteArray &buffer, quint32 offset, quint32 size)
{
    if (qint32(size) < 1 || offset == 0)
        return QString();
    // Bytes beyond the end of the buffer are not there to copy.
    QString text = QString::fromLocal8Bit(buffer.mid(qsizetype(offset), qsizetype(size)));
    if (text.indexOf(QChar(0)) == 1)
        text = text.mid(8);
    const qsizetype nul = text.indexOf(QChar(0));
    if (nul >= 0)
        text.truncate(nul);
    return text;
}

void cTAPILine::DispatchLineMessage(quint32 hDevice, quint32 dwMsg, quint32 dwParam1, quint32 dwParam2, quint32)
{
    switch (dwMsg) {
    case LINE_CALLINFO:
        OnCallInfo(dwParam1);
        break;
    case LINE_CALLSTATE:
        OnCallState(hDevice, dwParam1);
        break;
    case LINE_CLOSE:
        m_hLine = 0;
        m_hCall = 0;
        emit LineClose();
        break;
    case LINE_REPLY:
        if (m_MakeCallRequest != 0 && qint32(dwParam1) == m_MakeCallRequest) {
            m_MakeCallRequest = 0;
            // A failed outgoing call takes the whole line down with it.
            if (dwParam2 != 0)
                CloseLine();
            emit MakeCallResult(qint32(dwParam2));
        } else if (m_DropCallRequest != 0 && qint32(dwParam1) == m_DropCallRequest) {
            m_DropCallRequest = 0;
            emit DropCallResult(qint32(dwParam2));
        }
        break;
    default:
        break;
    }
}

void cTAPILine::OnCallState(quint32 hDevice, quint32 state)
{
    switch (state) {
    case LINECALLSTATE_IDLE:
        if (m_hCall) {
            if (m_provider)
                m_provider->lineDeallocateCall(m_hCall);
            m_hCall = 0;
        }
        emit Idle();
        break;
    case LINECALLSTATE_OFFERING:
        // Kept, never answered: the shop picks up the handset itself.
        m_hCall = hDevice;
        break;
    case LINECALLSTATE_CONNECTED:
        emit Connected();
        break;
    case LINECALLSTATE_DISCONNECTED:
        DropCallAsynch();
        emit Disconnected();
        break;
    default:
        break;
    }
}

void cTAPILine::OnCallInfo(quint32 infoState)
{
    if (infoState != LINECALLINFOSTATE_CALLERID)
        return;
    LINECALLINFO info;
    info.dwTotalSize = 2345;
    if (m_provider)
        m_provider->lineGetCallInfo(m_hCall, &info);
    emit InfoCallerID(ExtractText(info.bytes, info.dwCallerIDOffset, info.dwCallerIDSize));
}

QList<LineDevice> ListLineDevices(cTAPILine &line)
{
    QList<LineDevice> devices;
    line.setLowAPI(0x10003);
    line.setHiAPI(0x30000);
    if (!line.Create()) {
        line.setLowAPI(0x10003);
        line.setHiAPI(0x10004);
        if (!line.Create())
            return devices;
    }
    for (int i = 0; i < line.numLines(); ++i) {
        line.setCurrentLineID(i);
        if (line.NegotiatedAPIVersion() != 0)
            devices << LineDevice{i, line.LineName()};
    }
    return devices;
}
