#pragma once
#include <QByteArray>
#include <QString>
#include <QtGlobal>

// The line API as the line class sees it: message and state numbers, result codes, the
// structures it reads, the callback that carries line messages, and the error texts. The
// numbers are the line API's published ones, so codes read the same whatever provider sits
// behind the line.
namespace Tapi {
// Line messages.
enum : quint32 {
    LINE_ADDRESSSTATE = 0,
    LINE_CALLINFO = 1,
    LINE_CALLSTATE = 2,
    LINE_CLOSE = 3,
    LINE_DEVSPECIFIC = 4,
    LINE_DEVSPECIFICFEATURE = 5,
    LINE_GATHERDIGITS = 6,
    LINE_GENERATE = 7,
    LINE_LINEDEVSTATE = 8,
    LINE_MONITORDIGITS = 9,
    LINE_MONITORMEDIA = 10,
    LINE_MONITORTONE = 11,
    LINE_REPLY = 12,
    LINE_REQUEST = 13,
};

// Call states.
enum : quint32 {
    LINECALLSTATE_IDLE = 0x1,
    LINECALLSTATE_OFFERING = 0x2,
    LINECALLSTATE_DIALTONE = 0x8,
    LINECALLSTATE_DIALING = 0x10,
    LINECALLSTATE_RINGBACK = 0x20,
    LINECALLSTATE_BUSY = 0x40,
    LINECALLSTATE_SPECIALINFO = 0x80,
    LINECALLSTATE_CONNECTED = 0x100,
    LINECALLSTATE_PROCEEDING = 0x200,
    LINECALLSTATE_DISCONNECTED = 0x4000,
};

enum : quint32 {
    LINECALLINFOSTATE_CALLERID = 0x8000,
    LINEDEVSTATE_RINGING = 0x4,
    LINEBEARERMODE_VOICE = 0x1,
    LINEMEDIAMODE_INTERACTIVEVOICE = 0x4,
    LINEMEDIAMODE_DATAMODEM = 0x10,
    LINECALLPRIVILEGE_NONE = 0x1,
    LINECALLPRIVILEGE_MONITOR = 0x2,
    LINECALLPRIVILEGE_OWNER = 0x4,
    LINECALLPARTYID_BLOCKED = 0x1,
    LINECALLPARTYID_OUTOFAREA = 0x2,
    LINECALLPARTYID_NAME = 0x8,
    LINECALLPARTYID_ADDRESS = 0x10,
    LINECALLPARTYID_UNAVAIL = 0x40,
    STRINGFORMAT_ASCII = 1,
    LINEINITIALIZEEXOPTION_USEHIDDENWINDOW = 1,
};

// Result codes (negative as 32-bit signed numbers).
enum : qint32 {
    LINEERR_ALLOCATED = qint32(0x80000001),
    LINEERR_BADDEVICEID = qint32(0x80000002),
    LINEERR_INCOMPATIBLEAPIVERSION = qint32(0x8000000C),
    LINEERR_INUSE = qint32(0x8000000F),
    LINEERR_INVALAPPHANDLE = qint32(0x80000014),
    LINEERR_INVALCALLHANDLE = qint32(0x80000018),
    LINEERR_INVALLINEHANDLE = qint32(0x8000002B),
    LINEERR_INVALMEDIAMODE = qint32(0x8000002F),
    LINEERR_INVALPARAM = qint32(0x80000032),
    LINEERR_NODEVICE = qint32(0x80000042),
    LINEERR_NODRIVER = qint32(0x80000043),
    LINEERR_OPERATIONFAILED = qint32(0x80000048),
    LINEERR_OPERATIONUNAVAIL = qint32(0x80000049),
    LINEERR_RESOURCEUNAVAIL = qint32(0x8000004B),
    LINEERR_STRUCTURETOOSMALL = qint32(0x8000004D),
    LINEERR_UNINITIALIZED = qint32(0x80000050),
    LINEERR_NOMULTIPLEINSTANCE = qint32(0x80000056),
};

// A structure handed back by the line API: fixed members first, then texts placed behind
// them and addressed by offset and size from the start. The caller sets dwTotalSize; a
// provider places what fits and reports in dwNeededSize what it would have needed.
struct VarBlock {
    quint32 dwTotalSize = 0;
    quint32 dwNeededSize = 0;
    quint32 dwUsedSize = 0;
    QByteArray bytes;

    // Clears the block to dwTotalSize bytes with fixedSize of them taken by fixed members.
    void prepare(quint32 fixedSize);
    struct Place {
        quint32 offset = 0;
        quint32 size = 0;
    };
    // Places text with its closing NUL after what is used; nothing placed when it does not fit.
    Place place(const QByteArray &text);
};

struct LINEEXTENSIONID {
    quint32 dwExtensionID0 = 0, dwExtensionID1 = 0, dwExtensionID2 = 0, dwExtensionID3 = 0;
};

struct LINEDEVCAPS : VarBlock {
    static constexpr quint32 FixedSize = 236;
    quint32 dwProviderInfoSize = 0, dwProviderInfoOffset = 0;
    quint32 dwSwitchInfoSize = 0, dwSwitchInfoOffset = 0;
    quint32 dwPermanentLineID = 0;
    quint32 dwLineNameSize = 0, dwLineNameOffset = 0;
    quint32 dwStringFormat = 0;
    quint32 dwAddressModes = 0;
    quint32 dwNumAddresses = 0;
    quint32 dwBearerModes = 0;
    quint32 dwMaxRate = 0;
    quint32 dwMediaModes = 0;
    quint32 dwGenerateToneModes = 0;
    quint32 dwGenerateToneMaxNumFreq = 0;
    quint32 dwNumTerminals = 0;
};

struct LINEADDRESSCAPS : VarBlock {
    static constexpr quint32 FixedSize = 176;
    quint32 dwLineDeviceID = 0;
    quint32 dwAddressSize = 0, dwAddressOffset = 0;
    quint32 dwMaxNumActiveCalls = 0;
};

struct LINECALLINFO : VarBlock {
    static constexpr quint32 FixedSize = 324;
    quint32 dwCallerIDFlags = 0;
    quint32 dwCallerIDSize = 0, dwCallerIDOffset = 0;
    quint32 dwCallerIDNameSize = 0, dwCallerIDNameOffset = 0;
};

struct VARSTRING : VarBlock {
    static constexpr quint32 FixedSize = 24;
    quint32 dwStringFormat = 0;
    quint32 dwStringSize = 0, dwStringOffset = 0;
};

struct LINEINITIALIZEEXPARAMS {
    quint32 dwTotalSize = 0, dwNeededSize = 0, dwUsedSize = 0, dwOptions = 0;
    quint32 hEvent = 0, dwCompletionKey = 0;
};

// The callback a line application gives at initialisation; every line message reaches it.
using LINECALLBACK = void (*)(quint32 hDevice, quint32 dwMsg, quintptr dwCallbackInstance, quint32 dwParam1,
                              quint32 dwParam2, quint32 dwParam3);
}

// Hands a line message to the line object whose identity came with it; a message for an
// identity of 0, or for a line object that is gone, is dropped.
void LineCallback(quint32 hDevice, quint32 dwMsg, quintptr dwCallbackInstance, quint32 dwParam1, quint32 dwParam2,
                  quint32 dwParam3);

// The English text of a line result code; "Unknown Error" for anything without one.
QString LineErrorText(qint64 code);
