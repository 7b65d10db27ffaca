#pragma once
#include "data/Database.h"
#include "data/Gateway.h"
#include "platform/Prompter.h"

#include <QCoreApplication>
#include <QFile>
#include <QSqlError>
#include <QSqlQuery>
#include <QString>
#include <QStringList>

// A fresh database of its own on the test server (started by CTest before the server tests,
// see scripts/test-server.sh), made by the program's creation step when opened. Dropped
// when the object goes.
class ServerDb {
public:
    // The server CTest started; false with the reason when the tests run without it.
    static bool testServer(Database::Server *server, QString *why)
    {
        const QString file = qEnvironmentVariable("TARVIK_TEST_SERVER");
        if (file.isEmpty()) {
            *why = QStringLiteral("TARVIK_TEST_SERVER is not set: run through ctest");
            return false;
        }
        return Database::readServerFile(file, server, why);
    }

    explicit ServerDb(bool open = true)
    {
        static int made = 0;
        if (!testServer(&m_server, &m_error))
            return;
        m_name = QStringLiteral("tarvik_%1_%2").arg(QCoreApplication::applicationPid()).arg(++made);
        if (!maintenance(QStringLiteral("DROP DATABASE IF EXISTS %1").arg(m_name))
            || !maintenance(QStringLiteral("CREATE DATABASE %1").arg(m_name)))
            return;
        m_server.database = m_name;
        m_ok = !open || Database::openServer(m_server, &m_error);
    }
    ~ServerDb()
    {
        Database::close();
        if (!m_name.isEmpty())
            maintenance(QStringLiteral("DROP DATABASE IF EXISTS %1 WITH (FORCE)").arg(m_name));
    }
    ServerDb(const ServerDb &) = delete;
    ServerDb &operator=(const ServerDb &) = delete;

    bool ok() const { return m_ok; }
    QString error() const { return m_error; }
    const Database::Server &server() const { return m_server; }

    // A second connection of the test's own (not yet open) to a server's database.
    static QSqlDatabase connection(const QString &name, const Database::Server &server)
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QPSQL"), name);
        db.setHostName(server.host);
        db.setPort(server.port);
        db.setDatabaseName(server.database);
        db.setUserName(server.user);
        db.setPassword(server.password);
        return db;
    }

    // A connection file naming this database, for programs started by the test.
    bool writeConnectionFile(const QString &path) const
    {
        QFile f(path);
        if (!f.open(QIODevice::WriteOnly))
            return false;
        f.write(QStringLiteral("[server]\nhost=%1\nport=%2\ndatabase=%3\nuser=%4\npassword=%5\n")
                    .arg(m_server.host)
                    .arg(m_server.port)
                    .arg(m_server.database, m_server.user, m_server.password)
                    .toUtf8());
        return true;
    }

private:
    bool maintenance(const QString &sql)
    {
        const QString name = QStringLiteral("tarvik-test-maintenance");
        bool ok = false;
        {
            Database::Server admin = m_server;
            admin.database = QStringLiteral("postgres");
            QSqlDatabase db = connection(name, admin);
            if (db.open()) {
                QSqlQuery q(db);
                ok = q.exec(sql);
                if (!ok)
                    m_error = q.lastError().text();
            } else {
                m_error = db.lastError().text();
            }
            db.close();
        }
        QSqlDatabase::removeDatabase(name);
        return ok;
    }

    Database::Server m_server;
    QString m_name;
    QString m_error;
    bool m_ok = false;
};

// Answers every question with yes and every input (the closing's date) with 11-22-2026, and
// keeps the title and the system's part of each message (the engines word their own errors
// differently).
class YesPrompter : public Prompter {
public:
    QStringList shown;
    YesPrompter() { Prompter::install(this); }
    ~YesPrompter() override { Prompter::install(nullptr); }
    QMessageBox::StandardButton message(const QString &title, const QString &text, QMessageBox::Icon,
                                        QMessageBox::StandardButtons buttons, QMessageBox::StandardButton) override
    {
        shown << title + QLatin1Char('|') + text.section(QStringLiteral("错误信息："), 0, 0);
        return buttons & QMessageBox::Yes ? QMessageBox::Yes : QMessageBox::Ok;
    }
    std::optional<QString> input(const QString &, const QString &, const QString &) override
    {
        return QStringLiteral("11-22-2026");
    }
};

// The first value of a statement's first row, through the gateway.
inline QVariant scalar(const QString &sql)
{
    RecordsetPtr rs = OpenRecordset(sql);
    if (!rs || rs->eof())
        return {};
    rs->moveFirst();
    return rs->field(0);
}
