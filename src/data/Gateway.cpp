#include "Gateway.h"

#include "Database.h"
#include "JetDialect.h"
#include "SqlText.h"
#include "SqliteSnapshot.h"

#include "platform/Clock.h"
#include "platform/Prompter.h"
#include "platform/VbError.h"

#include <QFileInfo>
#include <QRegularExpression>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <algorithm>
#include <cmath>

Connection Conn;

namespace {
const QString ErrorTitle = QStringLiteral("系统错误");
const QString UpdateFailed = QStringLiteral("更新数据库时出现系统错误，错误信息：");
const QString ReadFailed = QStringLiteral("读取数据库时出现系统错误，错误信息：");

SalePrinter g_salePrinter;
Gateway::StatementObserver g_observer = nullptr;

bool execute(QSqlQuery &q, const QString &statement)
{
    if (g_observer)
        g_observer(statement);
    return q.exec(statement);
}

bool isPlainNumber(const QString &text)
{
    static const QRegularExpression number(
        QStringLiteral(R"(^\s*[+-]?(\d+\.?\d*|\.\d+)([eE][+-]?\d+)?\s*$)"));
    return number.match(text).hasMatch();
}

// The single table a plain "select ... from T [where ...]" reads, so that an update of
// its snapshot can be written back; empty for joins and anything else.
QString singleTable(const QString &engineSql)
{
    static const QRegularExpression pattern(
        QStringLiteral(R"(^\s*select\s.*?\sfrom\s+([A-Za-z_][A-Za-z0-9_]*)\s*(where\s.*|order\s.*|group\s.*)?$)"),
        QRegularExpression::CaseInsensitiveOption | QRegularExpression::DotMatchesEverythingOption);
    const auto m = pattern.match(engineSql);
    return m.hasMatch() ? m.captured(1) : QString();
}

// Rounded to the nearest whole number, halves to even, as sums are read everywhere.
qint32 toLong(const QVariant &v)
{
    bool ok = false;
    const double d = v.toDouble(&ok);
    if (!ok || !std::isfinite(d))
        return 0;
    const double r = std::nearbyint(d);
    if (r > 2147483647.0 || r < -2147483648.0)
        return 0;
    return static_cast<qint32>(r);
}

// The engine's description, and for a busy or damaged file what the shop should do about it.
QString described(const QSqlError &e)
{
    const QString meaning = Database::explain(e);
    return meaning.isEmpty() ? e.text() : e.text() + QLatin1Char('\n') + meaning;
}

bool runOnConnection(const QString &statement, QSqlError *failure = nullptr)
{
    QSqlQuery q(Database::connection());
    if (execute(q, statement))
        return true;
    if (failure)
        *failure = q.lastError();
    return false;
}

// On the server a failed statement spoils its whole transaction, while on the file it fails
// alone and the save goes on (or rolls back) as the caller decides. Inside a transaction each
// statement is therefore its own savepoint there.
bool execStatement(QSqlQuery &q, const QString &engineSql)
{
    const bool guarded = Conn.inTransaction() && Database::target() == JetDialect::Target::PostgreSQL;
    if (guarded && !runOnConnection(QStringLiteral("SAVEPOINT statement")))
        return execute(q, engineSql);
    const bool ok = execute(q, engineSql);
    if (guarded)
        runOnConnection(ok ? QStringLiteral("RELEASE SAVEPOINT statement") : QStringLiteral("ROLLBACK TO SAVEPOINT statement"));
    return ok;
}

// The server hands dates back as dates; the windows read them as the file keeps them: ISO
// text, with the time only where there is one.
QVariant asStored(const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::QDateTime: {
        const QDateTime when = value.toDateTime();
        if (when.isNull())
            return value;
        return when.time() == QTime(0, 0) ? when.date().toString(Qt::ISODate)
                                          : when.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
    }
    case QMetaType::QDate:
        return value.isNull() ? value : QVariant(value.toDate().toString(Qt::ISODate));
    default:
        return value;
    }
}

// Runs an engine statement and keeps all its rows; nullptr with the engine's text in *error.
RecordsetPtr snapshot(const QString &engineSql, QString *error)
{
    // Large lists read straight from the embedded engine; a failure takes the driver's road
    // below, which reports it.
    if (RecordsetPtr rs = SqliteSnapshot::open(Database::connection(), engineSql, singleTable(engineSql))) {
        if (g_observer)
            g_observer(engineSql);
        return rs;
    }
    QSqlQuery q(Database::connection());
    // Read forward only, the server would hand the rows over one by one, and the savepoint
    // released after the statement would discard those not yet read.
    q.setForwardOnly(Database::target() == JetDialect::Target::SQLite);
    if (!execStatement(q, engineSql)) {
        *error = described(q.lastError());
        return nullptr;
    }
    QStringList fields;
    const QSqlRecord rec = q.record();
    for (int i = 0; i < rec.count(); ++i)
        fields << rec.fieldName(i);
    QVector<Recordset::Row> rows;
    while (q.next()) {
        Recordset::Row row(fields.size());
        for (int i = 0; i < fields.size(); ++i)
            row[i] = asStored(q.value(i));
        rows.append(std::move(row));
    }
    return std::make_shared<Recordset>(fields, std::move(rows), singleTable(engineSql), Database::connection());
}
}

void Gateway::setStatementObserver(StatementObserver observer) { g_observer = observer; }

Gateway::StatementObserver Gateway::statementObserver() { return g_observer; }

bool Gateway::prepareStatement(const QString &sql, QString *engineSql, QString *error)
{
    const QString broken = QStringLiteral("查询表达式中的语法错误 (操作符丢失)。");
    const auto isMark = [](QChar c) { return c >= Sql::TextOpen && c <= Sql::DateClose; };
    QString plain;
    plain.reserve(sql.size());
    for (qsizetype i = 0; i < sql.size(); ++i) {
        const QChar c = sql.at(i);
        if (!isMark(c)) {
            plain.append(c);
            continue;
        }
        // Opening marks are the even ones; a stray closing mark means a value was cut.
        if ((c.unicode() - Sql::TextOpen.unicode()) % 2 != 0) {
            *error = broken;
            return false;
        }
        const QChar close(c.unicode() + 1);
        const qsizetype end = sql.indexOf(close, i + 1);
        if (end < 0) {
            *error = broken;
            return false;
        }
        const QString value = sql.mid(i + 1, end - i - 1);
        if (std::any_of(value.cbegin(), value.cend(), isMark)) {
            *error = broken;
            return false;
        }
        if (c == Sql::TextOpen && value.contains(QLatin1Char('\''))) {
            *error = QStringLiteral("输入的文字 '%1' 中含有单引号 (')，单引号不能存入数据库。").arg(value);
            return false;
        }
        if (c == Sql::NumberOpen) {
            if (!isPlainNumber(value)) {
                *error = QStringLiteral("输入的 '%1' 不是一个数字。").arg(value);
                return false;
            }
            if (!std::isfinite(value.trimmed().toDouble())) {
                *error = QStringLiteral("输入的数字 '%1' 太大，超出了数据库能存的范围。").arg(value);
                return false;
            }
        }
        if (c == Sql::DateOpen && !JetDialect::isDate(value)) {
            *error = QStringLiteral("输入的 '%1' 不是一个有效的日期 (应如 2026-1-31 或 1/31/2026)。").arg(value);
            return false;
        }
        plain.append(value);
        i = end;
    }
    *engineSql = JetDialect::translate(plain, Database::target());
    return true;
}

// The write is taken at once, so a second workstation saving at the same moment waits out
// the busy timeout here instead of failing half way through its save.
bool Connection::BeginTrans()
{
    if (m_inTransaction)
        return false; // the engine has no nested transactions
    QSqlError failure;
    const QStringList begin = Database::beginStatements();
    bool ok = true;
    for (const QString &statement : begin) {
        ok = runOnConnection(statement, &failure);
        if (!ok) {
            if (statement != begin.first())
                runOnConnection(QStringLiteral("ROLLBACK"));
            break;
        }
    }
    m_inTransaction = ok;
    if (!m_inTransaction)
        Msg::error(UpdateFailed + described(failure), ErrorTitle);
    return m_inTransaction;
}

// False when there was nothing to commit (an earlier rollback ended it) or the engine refused
// (a full disk): either way what the caller wrote is not all stored.
bool Connection::CommitTrans()
{
    const bool open = m_inTransaction;
    m_inTransaction = false;
    if (!open)
        return false;
    QSqlError failure;
    if (runOnConnection(QStringLiteral("COMMIT"), &failure))
        return true;
    // A full disk or a lost file says so before the caller's own "not saved".
    Msg::error(UpdateFailed + described(failure), ErrorTitle);
    runOnConnection(QStringLiteral("ROLLBACK")); // a refused commit may leave the transaction open
    return false;
}

bool Connection::RollbackTrans()
{
    const bool open = m_inTransaction;
    m_inTransaction = false;
    return open && runOnConnection(QStringLiteral("ROLLBACK"));
}

Transaction::Transaction(Connection &conn) : m_conn(conn), m_begun(conn.BeginTrans()) {}

Transaction::~Transaction()
{
    if (m_begun && !m_ended && m_conn.inTransaction())
        m_conn.RollbackTrans();
}

bool Transaction::commit()
{
    m_ended = true;
    return m_conn.CommitTrans();
}

bool Transaction::rollback()
{
    m_ended = true;
    return m_conn.RollbackTrans();
}

void OpenDatabase()
{
    QString error;
    // A connection file beside the program puts the shop on its server.
    if (QFileInfo::exists(Database::serverFilePath())) {
        Database::Server server;
        if (!Database::readServerFile(Database::serverFilePath(), &server, &error)
            || !Database::openServer(server, &error))
            throw VbError(-2147467259, error);
        return;
    }
    if (!Database::open(Database::defaultPath(), &error))
        throw VbError(-2147467259, error);
    // The first start of a day keeps a copy of the shop; a copy that cannot be made (a full
    // disk) does not keep the shop from working today.
    Database::backupDaily(Clock::today());
}

bool ExecuteSql(const QString &sql)
{
    QString engineSql, error;
    if (Gateway::prepareStatement(sql, &engineSql, &error)) {
        QSqlQuery q(Database::connection());
        if (execStatement(q, JetDialect::spareUnchanged(engineSql, Database::target())))
            return true;
        error = described(q.lastError());
    }
    Msg::error(UpdateFailed + error, ErrorTitle);
    return false;
}

RecordsetPtr OpenRecordset(const QString &sql)
{
    QString engineSql, error;
    if (Gateway::prepareStatement(sql, &engineSql, &error)) {
        if (RecordsetPtr rs = snapshot(engineSql, &error))
            return rs;
    }
    Msg::error(ReadFailed + error, ErrorTitle);
    return nullptr;
}

bool CheckUnique(const QString &table, const QString &field, const QString &value, int kind,
                 qint64 currentID)
{
    QString sql;
    if (kind == 0)
        sql = QStringLiteral("select * from ") + table + QStringLiteral(" where ") + field
              + QStringLiteral(" ='") + Sql::text(value) + QStringLiteral("'");
    else if (kind == 1 || kind == 3)
        sql = QStringLiteral("select * from ") + table + QStringLiteral(" where ") + field
              + QStringLiteral(" =") + Sql::number(value);
    RecordsetPtr rs = OpenRecordset(sql);
    if (!rs)
        return false;
    if (rs->recordCount() < 1)
        return true;
    if (currentID == 0)
        return false;
    rs->moveFirst();
    return rs->field(QStringLiteral("ID")).toLongLong() == currentID;
}

qint32 GetMinValue(const QString &table, const QString &field)
{
    RecordsetPtr rs = OpenRecordset(QStringLiteral("select min(") + field
                                    + QStringLiteral(") as NewField from ") + table);
    if (!rs || rs->eof())
        return 0;
    return toLong(rs->field(QStringLiteral("NewField")));
}

QString GetFieldByID(qint64 id, const QString &table, const QString &field)
{
    RecordsetPtr rs = OpenRecordset(QStringLiteral("select * from ") + table
                                    + QStringLiteral(" where ID=") + QString::number(id));
    if (!rs || rs->eof())
        return QString();
    return rs->text(field);
}

qint32 GetSumValue(const QString &table, const QString &where, const QString &field)
{
    QString sql = QStringLiteral("select sum(") + field + QStringLiteral(") as TotalValue from ") + table;
    if (!where.isEmpty())
        sql += where;
    RecordsetPtr rs = OpenRecordset(sql);
    if (!rs || rs->eof())
        return 0;
    return toLong(rs->field(QStringLiteral("TotalValue")));
}

QString GetSysValue(const QString &name)
{
    RecordsetPtr rs = OpenRecordset(QStringLiteral("Select * from SysValue where Name='")
                                    + Sql::text(name) + QStringLiteral("'"));
    if (!rs)
        throw VbError::objectNotSet();
    if (rs->recordCount() < 1)
        return QString();
    rs->moveFirst();
    return rs->text(QStringLiteral("myValue"));
}

void SetSysValue(const QString &name, const QString &value)
{
    RecordsetPtr rs = OpenRecordset(QStringLiteral("Select * from SysValue where Name='")
                                    + Sql::text(name) + QStringLiteral("'"));
    if (!rs)
        throw VbError::objectNotSet();
    if (rs->recordCount() > 0) {
        // The one row changed through its snapshot rather than through statement text.
        rs->moveFirst();
        rs->setField(QStringLiteral("MyValue"), value);
        if (!rs->update())
            Msg::error(UpdateFailed + rs->lastError(), ErrorTitle);
        return;
    }
    ExecuteSql(QStringLiteral("insert into Sysvalue(Name,myValue) values('") + Sql::text(name)
               + QStringLiteral("','") + Sql::text(value) + QStringLiteral("')"));
}

qint32 GetCustomerIDByAccount(const QString &account)
{
    RecordsetPtr rs = OpenRecordset(QStringLiteral("Select * from customer where Account=")
                                    + Sql::number(account));
    if (!rs)
        throw VbError::objectNotSet();
    if (rs->recordCount() < 1)
        return 0;
    rs->moveFirst();
    return toLong(rs->field(QStringLiteral("ID")));
}

void setSalePrinter(SalePrinter printer) { g_salePrinter = std::move(printer); }

void PreviewSale(qint32 saleID)
{
    if (g_salePrinter)
        g_salePrinter(saleID, true);
}

void PrintSale(qint32 saleID)
{
    if (g_salePrinter)
        g_salePrinter(saleID, false);
}
