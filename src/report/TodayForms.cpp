#include "TodayForms.h"

#include "frmSetTodayReport.h"
#include "frmTodayReport.h"

#include "platform/Forms.h"

void registerTodayForms()
{
    Forms::add(QStringLiteral("frmTodayReport"), [] { return new frmTodayReport; });
    Forms::add(QStringLiteral("frmSetTodayReport"), [] { return new frmSetTodayReport; });
}
