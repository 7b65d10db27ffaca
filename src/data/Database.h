#pragma once
#include <QSqlDatabase>
#include <QDate>
#include <QString>

// Where Tarvik.mdb lives and how a missing one is made. The same creation step serves the
// program and every test.
namespace Database {
inline constexpr const char *FileName = "Tarvik.mdb";
inline constexpr const char *ConnectionName = "Conn";

// Beside the program when a file lies there (even one that cannot be written: open() then
// refuses it rather than start an empty shop elsewhere) or when that folder is writable;
// else in the user's data folder.
QString defaultPath();
// The folder of the database file in use (sale.rpx lies beside it).
QString folder();

// Opens (creating when missing) the database file and makes it the session's connection.
// False with a description in *error when it cannot be opened or made.
bool open(const QString &path, QString *error = nullptr);
void close();

// How long a statement waits for another workstation's write before it fails (ms); takes
// effect at the next open.
void setBusyTimeout(int ms);

// What the engine's error code means for the shop, named after the file in use: another
// workstation writing, or a damaged file. Empty for any other code.
QString explain(int engineCode, const QString &path);
QString path();

// Copies the open database into the folder "backup" beside it with the engine's online
// backup, once a day (Tarvik-yyyy-MM-dd.mdb), and keeps the last seven days. False with the
// reason in *error; the day's copy already there is success.
bool backupDaily(const QDate &today, QString *error = nullptr);
bool isOpen();
QSqlDatabase connection();

// Makes the eleven tables, their indexes and the default rows in an empty database.
bool create(QSqlDatabase db, QString *error = nullptr);

// The company name a freshly made database carries.
QString defaultCompanyName();
}
