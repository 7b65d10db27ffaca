#include "ReportQuery.h"

#include "data/Gateway.h"
#include "data/SqlText.h"
#include "platform/VbRules.h"

namespace {
// The month as the report shows it, "2026年11月": sorted as text, so 9月 comes after 12月.
const QString MonthKey = QStringLiteral("Year(CreateDate) & '年' & Month(CreateDate) &'月'");
}

ReportQuery::ReportQuery(qint32 reportType, const QDate &start, const QDate &end, qint32 curID)
    : m_type(reportType), m_start(start), m_end(end), m_id(curID)
{
}

QString ReportQuery::dateKey() const { return byMonth() ? MonthKey : QStringLiteral("CreateDate"); }

QString ReportQuery::shortSql() const
{
    return QStringLiteral("select Sum(TotalAmount) as SumAmount,Sum(TotalMoney) as SumMoney,"
                          "sum(TotalContainer-InContainer) as LackContainer")
           + QStringLiteral(",sum(TotalMoney-InMoney) as LackMoney,Sum(TransferFee) as TotalFee")
           + QStringLiteral(",") + dateKey() + QStringLiteral(" as ReportDate from Sale");
}

QString ReportQuery::filterSql() const
{
    // The period was typed in the report dialog: the gateway takes it only as dates.
    QString sql = QStringLiteral(" WHERE CreateDate>=#") + Sql::date(DateText(m_start))
                  + QStringLiteral("# and CreateDate<=#") + Sql::date(DateText(m_end)) + QStringLiteral("#");
    if (m_type == 1 || m_type == 4)
        sql += QStringLiteral(" and CustomerID=") + QString::number(m_id);
    else if (m_type == 2 || m_type == 5)
        sql += QStringLiteral(" and SenderID=") + QString::number(m_id);
    return sql;
}

QString ReportQuery::groupSql() const { return QStringLiteral(" Group by ") + dateKey(); }

QString ReportQuery::sortSql() const { return QStringLiteral(" ORDER BY ") + dateKey() + QStringLiteral(" Desc "); }

QString ReportQuery::fullSql() const { return shortSql() + filterSql() + groupSql() + sortSql(); }

QString ReportQuery::caption(const QString &previous) const
{
    const QString start = DateText(m_start);
    const QString end = DateText(m_end);
    const QString id = QString::number(m_id);
    auto workerName = [&] { return GetFieldByID(m_id, QStringLiteral("Sender"), QStringLiteral("Name")); };
    switch (m_type) {
    case 0:
        return start + QStringLiteral("至") + end + QStringLiteral(" 日业务状况汇总表");
    case 1:
        return QStringLiteral("客户：") + id + QLatin1Char(' ') + start + QStringLiteral("----") + end
               + QStringLiteral(" 日购水状况汇总表");
    case 2:
        return QStringLiteral("送水工：") + workerName() + QLatin1Char(' ') + start + QStringLiteral("至") + end
               + QStringLiteral(" 日购水状况汇总表");
    case 3:
        return start + QStringLiteral("至") + end + QStringLiteral(" 月度销售额汇总表");
    case 4:
        return QStringLiteral("客户:") + id + QLatin1Char(' ') + start + QStringLiteral("至") + end
               + QStringLiteral(" 月度销售额汇总表");
    case 5:
        return QStringLiteral("送水工：") + workerName() + start + QStringLiteral("至") + end
               + QStringLiteral(" 月度销售额汇总表");
    default:
        return previous;
    }
}

QString ReportQuery::sortExpression(const QString &field) const
{
    // The columns show sums and a key; the order must name what they were made of.
    if (field.compare(QLatin1String("ReportDate"), Qt::CaseInsensitive) == 0)
        return dateKey();
    if (field.compare(QLatin1String("SumAmount"), Qt::CaseInsensitive) == 0)
        return QStringLiteral("Sum(TotalAmount)");
    if (field.compare(QLatin1String("SumMoney"), Qt::CaseInsensitive) == 0)
        return QStringLiteral("Sum(TotalMoney)");
    if (field.compare(QLatin1String("LackMoney"), Qt::CaseInsensitive) == 0)
        return QStringLiteral("Sum(TotalMoney-InMoney)");
    if (field.compare(QLatin1String("LackContainer"), Qt::CaseInsensitive) == 0)
        return QStringLiteral("Sum(TotalContainer-InContainer)");
    if (field.compare(QLatin1String("TotalFee"), Qt::CaseInsensitive) == 0)
        return QStringLiteral("Sum(TransferFee)");
    return field;
}

QString ReportQuery::sortSqlFor(const QString &field, qint32 sortDirection) const
{
    return QStringLiteral(" ORDER BY ") + sortExpression(field)
           + (sortDirection == 1 ? QStringLiteral(" Asc") : QStringLiteral(" Desc"));
}
