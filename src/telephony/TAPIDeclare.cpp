#include "TAPIDeclare.h"

#include <array>

namespace Tapi {
void VarBlock::prepare(quint32 fixedSize)
{
    // A caller's size below the fixed part still gets the fixed part: providers report
    // what is missing in dwNeededSize instead of writing past the end.
    bytes = QByteArray(int(qMax(dwTotalSize, fixedSize)), '\0');
    dwNeededSize = fixedSize;
    dwUsedSize = fixedSize;
}

VarBlock::Place VarBlock::place(const QByteArray &text)
{
    const QByteArray data = text + '\0';
    dwNeededSize += quint32(data.size());
    if (quint64(dwUsedSize) + quint64(data.size()) > dwTotalSize)
        return {};
    Place p{dwUsedSize, quint32(data.size())};
    bytes.replace(int(p.offset), data.size(), data);
    dwUsedSize += p.size;
    return p;
}
}

namespace {
// The texts of codes 0x80000001 upwards; an empty entry is a code with no text.
const std::array<const char *, 0x56> ErrorTexts = {
    "Allocated", "Bad Device ID", "Bearer Mode Unavail", "", "Call UnAvail", "Completion Overrun",
    "Conference Full", "Dial Billing", "Dial Dialtone", "Dial Prompt", "Dial Quiet", "Incompatible API Version",
    "Incompatible Ext Version", "Ini File Corrupt", "In Use", "Invalid Address", "Invalid Address ID",
    "Invalid Address Mode", "Invalid Address State", "Invalid App Handle", "Invalid App Name",
    "Invalid Bearer Mode", "Invalid Call Completion Mode", "Invalid Call Handle", "Invalid Call Params",
    "Invalid Call Privilege", "Invalid Call Select", "Invalid Call State", "Invalid Call State List",
    "Invalid Card", "Invalid Completion ID", "Invalid Conf Call Handle", "Invalid Consult Call Handle",
    "Invalid Country Code", "Invalid Device Class", "Invalid Device Handle",
    "" /* invalid dial params: passed over on purpose */, "Invalid Digit List", "Invalid Digit Mode",
    "Invalid Digits", "Invalid Ext Version", "Invalid Group ID", "Invalid Line Handle", "Invalid Line State",
    "Invalid Location", "Invalid Media List", "Invalid Media Mode", "Invalid Message ID", "", "Invalid Param",
    "Invalid Park ID", "Invalid Park Mode", "Invalid Pointer", "Invalid Priv Select", "Invalid Rate",
    "Invalid Request Mode", "Invalid Terminal ID", "Invalid Terminal Mode", "Invalid Time Out", "Invalid Tone",
    "Invalid Tone List", "Invalid Tone Mode", "Invalid Transfer Mode", "Line Mapper Failed", "No Conference",
    "No Device", "No Driver", "No Memory", "No Request", "Not Owner", "Not Registered", "Operation Failed",
    "Operation Unavailable", "Rate Unavailable", "Resource Unavailable", "Request Overrun",
    "Structure Too Small", "Target Not found", "Target Self", "Uninitialized", "UserUser Info Too Big",
    "Re-init", "Address Blocked", "Billing Rejected", "Invalid Feature", "No Multiple Instance",
};
}

QString LineErrorText(qint64 code)
{
    const quint32 value = quint32(code);
    if (value >= 0x80000001u && value <= 0x80000056u) {
        const char *text = ErrorTexts[value - 0x80000001u];
        if (*text)
            return QString::fromLatin1(text);
    }
    return QStringLiteral("Unknown Error");
}
