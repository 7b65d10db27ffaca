#include "PgClient.h"

#include <libpq-fe.h>

namespace {
// A value of a connection string, quoted so that spaces and quotes in a password survive.
QByteArray quoted(const QString &value)
{
    QByteArray text = value.toUtf8();
    text.replace('\\', "\\\\").replace('\'', "\\'");
    return '\'' + text + '\'';
}
}

PgClient::~PgClient() { disconnect(); }

bool PgClient::connect(const Database::Server &server)
{
    disconnect();
    const QByteArray info = "host=" + quoted(server.host) + " port=" + QByteArray::number(server.port)
                            + " dbname=" + quoted(server.database) + " user=" + quoted(server.user)
                            + " password=" + quoted(server.password)
                            + " connect_timeout=10 client_encoding=UTF8 application_name=tarvik-bench";
    m_conn = PQconnectdb(info.constData());
    if (PQstatus(m_conn) == CONNECTION_OK) {
        // The server's notices (a database not there to drop) are no news to the bench.
        PQsetNoticeProcessor(m_conn, [](void *, const char *) {}, nullptr);
        return true;
    }
    m_error = QString::fromUtf8(PQerrorMessage(m_conn)).trimmed();
    disconnect();
    return false;
}

void PgClient::disconnect()
{
    if (m_conn)
        PQfinish(m_conn);
    m_conn = nullptr;
}

bool PgClient::exec(const QString &sql)
{
    PGresult *result = PQexec(m_conn, sql.toUtf8().constData());
    const ExecStatusType status = PQresultStatus(result);
    const bool ok = status == PGRES_COMMAND_OK || status == PGRES_TUPLES_OK;
    if (!ok)
        m_error = sql + QStringLiteral(": ") + QString::fromUtf8(PQresultErrorMessage(result)).trimmed();
    PQclear(result);
    return ok;
}

QVariant PgClient::value(const QString &sql)
{
    PGresult *result = PQexec(m_conn, sql.toUtf8().constData());
    QVariant value;
    if (PQresultStatus(result) == PGRES_TUPLES_OK && PQntuples(result) > 0 && PQnfields(result) > 0) {
        if (!PQgetisnull(result, 0, 0))
            value = QString::fromUtf8(PQgetvalue(result, 0, 0));
    } else {
        m_error = sql + QStringLiteral(": ") + QString::fromUtf8(PQresultErrorMessage(result)).trimmed();
    }
    PQclear(result);
    return value;
}

bool PgClient::replay(const QStringList &statements)
{
    volatile qint64 sink = 0;
    for (const QString &sql : statements) {
        PGresult *result = PQexec(m_conn, sql.toUtf8().constData());
        const ExecStatusType status = PQresultStatus(result);
        if (status != PGRES_COMMAND_OK && status != PGRES_TUPLES_OK) {
            m_error = sql + QStringLiteral(": ") + QString::fromUtf8(PQresultErrorMessage(result)).trimmed();
            PQclear(result);
            return false;
        }
        const int rows = PQntuples(result), columns = PQnfields(result);
        for (int row = 0; row < rows; ++row)
            for (int column = 0; column < columns; ++column)
                if (!PQgetisnull(result, row, column))
                    sink = sink + PQgetlength(result, row, column) + *PQgetvalue(result, row, column);
        PQclear(result);
    }
    return true;
}

int PgClient::serverVersion() const { return m_conn ? PQserverVersion(m_conn) : 0; }

int PgClient::backendPid() const { return m_conn ? PQbackendPID(m_conn) : 0; }
