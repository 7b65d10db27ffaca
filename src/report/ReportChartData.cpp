#include "ReportChartData.h"

#include "platform/VbRules.h"

int ReportChartData::labelStep(int rows) { return rows > 0 ? CInt(40.0 / rows) : 0; }

ReportChartData ReportChartData::fromRows(Recordset &rows)
{
    ReportChartData data;
    const int n = rows.recordCount();
    if (n <= 0)
        return data;
    data.step = labelStep(n);
    double position = 0;
    for (rows.moveFirst(); !rows.eof(); rows.moveNext()) {
        data.labels.append({position, rows.text(QStringLiteral("ReportDate"))});
        data.money.append(rows.field(QStringLiteral("SumMoney")).toDouble());
        data.amount.append(rows.field(QStringLiteral("SumAmount")).toDouble());
        position += data.step;
    }
    return data;
}
