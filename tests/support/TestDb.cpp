#include "TestDb.h"

#include "data/Database.h"

#include <QSqlError>
#include <QSqlQuery>
#include <QtTest>

TestDb::TestDb()
{
    QString error;
    m_ok = m_dir.isValid() && Database::open(path(), &error);
    if (!m_ok)
        qWarning("test database could not be made: %s", qPrintable(error));
}

TestDb::~TestDb() { Database::close(); }

QString TestDb::path() const { return m_dir.filePath(QStringLiteral("Tarvik.mdb")); }
QString TestDb::folder() const { return m_dir.path(); }

bool TestDb::exec(const QString &engineSql) const
{
    QSqlQuery q(Database::connection());
    if (q.exec(engineSql))
        return true;
    qWarning("%s: %s", qPrintable(engineSql), qPrintable(q.lastError().text()));
    return false;
}

QVariant TestDb::scalar(const QString &engineSql) const
{
    QSqlQuery q(Database::connection());
    if (!q.exec(engineSql) || !q.next()) {
        qWarning("%s: %s", qPrintable(engineSql), qPrintable(q.lastError().text()));
        return QVariant();
    }
    return q.value(0);
}

int TestDb::count(const QString &table, const QString &where) const
{
    QString sql = QStringLiteral("SELECT count(*) FROM ") + table;
    if (!where.isEmpty())
        sql += QStringLiteral(" WHERE ") + where;
    return scalar(sql).toInt();
}
