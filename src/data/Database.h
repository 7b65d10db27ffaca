#pragma once
#include "JetDialect.h"

#include <QDate>
#include <QSqlDatabase>
#include <QSqlError>
#include <QString>

// Where Tarvik.mdb lives and how a missing one is made. The same creation step serves the
// program and every test.
namespace Database {
inline constexpr const char *FileName = "Tarvik.mdb";
inline constexpr const char *ConnectionName = "Conn";
// A shop with several workstations keeps its data on a PostgreSQL server: this file beside
// the program names it, and while it lies there the program works on that server.
inline constexpr const char *ServerFileName = "Tarvik-server.ini";

// What the connection file holds.
struct Server {
    QString host;
    int port = 5432;
    QString database;
    QString user;
    QString password;
    // "database on host:port", as the shop's messages name the server.
    QString name() const;
};
// The connection file beside the program (it may not exist).
QString serverFilePath();
// Reads a connection file; false with the reason in *error when it is unreadable or lacks
// the server or the database.
bool readServerFile(const QString &file, Server *server, QString *error = nullptr);
// Opens the server's database as the session's connection, making the tables, indexes and
// default rows when it has none. False with a description naming the server.
bool openServer(const Server &server, QString *error = nullptr);
// Opens what a path names: a connection file (*.ini) its server, anything else a database file.
bool openPath(const QString &path, QString *error = nullptr);
// The engine behind the open connection, for the dialect.
JetDialect::Target target();
// The statements that start a write transaction: another workstation's write waits for it.
QStringList beginStatements();
// Sets every key's next value beyond the highest key of its table (after rows were copied
// in with their keys). Nothing to do on the embedded engine.
bool syncKeys(QString *error = nullptr);

// Beside the program when a file lies there (even one that cannot be written: open() then
// refuses it rather than start an empty shop elsewhere) or when that folder is writable;
// else in the user's data folder.
QString defaultPath();
// The folder of the database file in use, or the program's own when on a server (sale.rpx
// lies there).
QString folder();

// Opens (creating when missing) the database file and makes it the session's connection.
// False with a description in *error when it cannot be opened or made.
bool open(const QString &path, QString *error = nullptr);
void close();

// How long a statement waits for another workstation's write before it fails (ms); takes
// effect at the next open.
void setBusyTimeout(int ms);

// What an engine's error means for the shop, named after the file or server in use: another
// workstation writing, a damaged file, a server gone. Empty for any other error.
QString explain(int engineCode, const QString &path);
QString explain(const QSqlError &error);
// The file in use, or the server's name.
QString path();

// Copies the open database into the folder "backup" beside it with the engine's online
// backup, once a day (Tarvik-yyyy-MM-dd.mdb), and keeps the last seven days. False with the
// reason in *error; the day's copy already there is success.
bool backupDaily(const QDate &today, QString *error = nullptr);
bool isOpen();
QSqlDatabase connection();

// Makes the eleven tables, their indexes and the default rows in an empty database, for the
// engine of the connection given.
bool create(QSqlDatabase db, QString *error = nullptr);

// The company name a freshly made database carries.
QString defaultCompanyName();
}
