#pragma once
#include <QDate>
#include <QString>

// The statement and the title of the period report of one kind: one row per day (kinds 0
// to 2) or per month (3 to 5), over all tickets (0, 3), one customer (1, 4) or one delivery
// worker (2, 5). The report window keeps the parts and joins them on each refresh, with
// the group between the filter and the order.
class ReportQuery {
public:
    ReportQuery(qint32 reportType, const QDate &start, const QDate &end, qint32 curID);

    QString shortSql() const;
    QString filterSql() const;
    QString groupSql() const;
    QString sortSql() const; // the order the report opens with
    QString fullSql() const;

    // The title. A kind beyond 5 keeps the title it had; the worker's name is read from
    // the database for kinds 2 and 5.
    QString caption(const QString &previous = QString()) const;

    // What a click on the column of field sorts by, and the ORDER BY clause for it.
    QString sortExpression(const QString &field) const;
    // The ORDER BY clause for a click on the column of field, as the sums it shows.
    QString sortSqlFor(const QString &field, qint32 sortDirection) const;

    bool byMonth() const { return m_type >= 3; }

private:
    QString dateKey() const;

    qint32 m_type;
    QDate m_start;
    QDate m_end;
    qint32 m_id;
};
