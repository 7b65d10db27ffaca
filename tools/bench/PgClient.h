#pragma once
#include "data/Database.h"

#include <QString>
#include <QStringList>
#include <QVariant>

struct pg_conn;

// A bare client-library connection to a server's database: what the program's statements
// cost with nothing of the program around them, and the few statements the bench itself
// needs (counts, copies of a database).
class PgClient {
public:
    PgClient() = default;
    ~PgClient();
    PgClient(const PgClient &) = delete;
    PgClient &operator=(const PgClient &) = delete;

    bool connect(const Database::Server &server);
    void disconnect();
    QString error() const { return m_error; }

    // Runs one statement; false with the server's message in error().
    bool exec(const QString &sql);
    // The first value of the first row; invalid on failure or when there is no row.
    QVariant value(const QString &sql);
    // Runs the statements one by one, reading every value of every row; false at the first
    // the server refuses.
    bool replay(const QStringList &statements);
    // The server's version number (150018 for 15.18).
    int serverVersion() const;
    // The server process serving this connection.
    int backendPid() const;

private:
    pg_conn *m_conn = nullptr;
    QString m_error;
};
