#pragma once
#include "Recordset.h"

#include <QString>
#include <functional>

// The session's one connection. Transactions wrap the few multi-statement saves; begin one
// through Transaction below so that an early return can never leave it open.
class Connection {
public:
    bool BeginTrans();
    bool CommitTrans();
    bool RollbackTrans();
    bool inTransaction() const { return m_inTransaction; }

private:
    bool m_inTransaction = false;
};
extern Connection Conn;

// One transaction on a connection: begun when made, rolled back when it goes out of scope
// neither committed nor rolled back. commit() is false when the transaction had already
// ended or the engine refused it: the save did not happen.
class Transaction {
public:
    explicit Transaction(Connection &conn);
    ~Transaction();
    Transaction(const Transaction &) = delete;
    Transaction &operator=(const Transaction &) = delete;
    bool begun() const { return m_begun; }
    bool commit();
    bool rollback();

private:
    Connection &m_conn;
    bool m_begun;
    bool m_ended = false;
};

// Every window reaches the database through these routines. Statements are written in the
// classic dialect; typed values are wrapped with Sql::text / Sql::number (SqlText.h).

// Opens Tarvik.mdb where the program keeps it, making it when missing. Throws VbError
// (the engine's description) when it cannot be opened.
void OpenDatabase();

// Runs a statement. On failure shows "更新数据库时出现系统错误，错误信息：" with the engine's
// description and gives false.
bool ExecuteSql(const QString &sql);

// Opens a snapshot. On failure shows "读取数据库时出现系统错误，错误信息：" with the engine's
// description and gives nullptr.
RecordsetPtr OpenRecordset(const QString &sql);

// True when Value may be stored in Field of Table for row CurrentID (0 for a new row).
// Kind 0 compares as text, kinds 1 and 3 as numbers; only the first matching row counts.
bool CheckUnique(const QString &table, const QString &field, const QString &value, int kind,
                 qint64 currentID);

// These three swallow their own failures: a missing row, a null or an unknown column
// gives 0 or the empty text.
qint32 GetMinValue(const QString &table, const QString &field);
QString GetFieldByID(qint64 id, const QString &table, const QString &field);
qint32 GetSumValue(const QString &table, const QString &where, const QString &field);

// Named settings. A missing key reads as the empty text. When the statement itself fails,
// the read message is shown and a VbError (object not set) is thrown to the caller.
QString GetSysValue(const QString &name);
void SetSysValue(const QString &name, const QString &value);

// The customer ID for an account number typed by the user; 0 when there is none. Throws
// VbError after the read message when the statement fails.
qint32 GetCustomerIDByAccount(const QString &account);

// The printed ticket. The sale folder installs the routine that lays out and prints it.
void PreviewSale(qint32 saleID);
void PrintSale(qint32 saleID);
using SalePrinter = std::function<void(qint32 saleID, bool preview)>;
void setSalePrinter(SalePrinter printer);

namespace Gateway {
// The statement the engine would run: typed values checked and unwrapped, the dialect
// translated. False with the engine-style description when a typed value would change
// the statement's meaning.
bool prepareStatement(const QString &sql, QString *engineSql, QString *error);

// Told each statement these routines hand the engine, as the engine gets it: what
// ExecuteSql and OpenRecordset run, the transaction's own statements (the server's
// savepoints among them) and a snapshot's row written back, with its values in place. The
// benchmark replays them on the client library alone; the program sets none.
using StatementObserver = void (*)(const QString &engineSql);
void setStatementObserver(StatementObserver observer);
StatementObserver statementObserver();
}
