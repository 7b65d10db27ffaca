#pragma once
#include "support/ScriptedPrompter.h"
#include "support/TestDb.h"

// Rows written straight into a test database, for arranging what a window will find.
namespace Rows {
// An active customer of station 1 whose account number is its ID.
inline bool customer(const TestDb &db, int id, const QString &address, const QString &phone = QStringLiteral("5550000"),
                     const QString &status = QStringLiteral("1"), const QString &name = QStringLiteral("王五"))
{
    return db.exec(QStringLiteral("INSERT INTO Customer(ID,Account,Name,Address,Phone,CustType,Status,CreateDate,"
                                  "StationID) VALUES (%1,%1,'%2','%3','%4',1,'%5','2026-01-05',1)")
                       .arg(id).arg(name, address, phone, status));
}
}

// The start of the gateway's failure messages; the engine's description follows.
namespace Failed {
inline const QString Update = QStringLiteral("更新数据库时出现系统错误，错误信息：");
inline const QString Read = QStringLiteral("读取数据库时出现系统错误，错误信息：");
}

// The next message is the gateway's failure message of that kind (Failed::Read or Failed::Update).
inline void expectFailed(ScriptedPrompter &prompter, const QString &kind)
{
    prompter.expect(kind, QMessageBox::Ok, true);
}
