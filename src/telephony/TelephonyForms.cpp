#include "TelephonyForms.h"

#include "frmHistoryCall.h"
#include "frmTodayCall.h"

#include "platform/Forms.h"

void registerTelephonyForms()
{
    Forms::add(QStringLiteral("frmHistoryCall"), [] { return new frmHistoryCall; });
    Forms::add(QStringLiteral("frmTodayCall"), [] { return new frmTodayCall; });
}
