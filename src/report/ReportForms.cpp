#include "ReportForms.h"

#include "frmChart.h"
#include "frmReport.h"
#include "frmSetReport.h"

#include "platform/Forms.h"

void registerReportForms()
{
    Forms::add(QStringLiteral("frmSetReport"), [] { return new frmSetReport; });
    Forms::add(QStringLiteral("frmReport"), [] { return new frmReport; });
    Forms::add(QStringLiteral("frmChart"), [] { return new frmChart; });
}
