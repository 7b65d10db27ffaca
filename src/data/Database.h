#pragma once
#include <QSqlDatabase>
#include <QString>

// Where Tarvik.mdb lives and how a missing one is made. The same creation step serves the
// program and every test.
namespace Database {
inline constexpr const char *FileName = "Tarvik.mdb";
inline constexpr const char *ConnectionName = "Conn";

// Beside the program when that folder is writable, else in the user's data folder.
QString defaultPath();
// The folder of the database file in use (sale.rpx lies beside it).
QString folder();

// Opens (creating when missing) the database file and makes it the session's connection.
// False with a description in *error when it cannot be opened or made.
bool open(const QString &path, QString *error = nullptr);
void close();
bool isOpen();
QSqlDatabase connection();

// Makes the eleven tables, their indexes and the default rows in an empty database.
bool create(QSqlDatabase db, QString *error = nullptr);

// The company name a freshly made database carries.
QString defaultCompanyName();
}
