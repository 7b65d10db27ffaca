#include "ValidateField.h"

#include "platform/FieldMessages.h"
#include "platform/VbRules.h"

bool ValidateField(const QString &text, int kind)
{
    bool ok = true;
    switch (kind) {
    case 1:
        ok = isCLng(text);
        break;
    case 2:
        ok = isDate(text);
        break;
    case 3:
        ok = isCInt(text);
        break;
    default:
        return true;
    }
    if (!ok)
        ShowFieldError(text, kind);
    return ok;
}
