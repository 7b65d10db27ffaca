#pragma once
#include <QSqlDatabase>
#include <QSqlError>
#include <QString>

// The PostgreSQL side of the database: its tables and what its errors mean. Database picks
// it when the connection is a server's.
namespace ServerEngine {
inline constexpr const char *Driver = "QPSQL";
bool isServer(const QSqlDatabase &db);
bool create(QSqlDatabase &db, QString *error);
bool syncKeys(QSqlDatabase &db, QString *error);
QString explain(const QSqlError &error, const QString &serverName);
}
