#include "TestDb.h"

#include "data/Database.h"

#include <QSqlError>
#include <QSqlQuery>

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
    if (q.exec(engineSql) && q.next())
        return q.value(0);
    qWarning("%s: %s", qPrintable(engineSql), qPrintable(q.lastError().text()));
    return QVariant();
}

int TestDb::count(const QString &table, const QString &where) const
{
    const QString filter = where.isEmpty() ? QString() : QStringLiteral(" WHERE ") + where;
    return scalar(QStringLiteral("SELECT count(*) FROM ") + table + filter).toInt();
}
