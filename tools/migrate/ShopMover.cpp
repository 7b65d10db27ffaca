#include "ShopMover.h"

#include <QDateTime>
#include <QFileInfo>
#include <QSqlDriver>
#include <QSqlError>
#include <QSqlField>
#include <QSqlQuery>
#include <QSqlRecord>
#include <cmath>

namespace {
const char *const SourceName = "tarvik-move-source";
const char *const Tables[] = {"Station", "SysUser", "SysValue", "Product", "Sender", "Customer",
                              "Sale",    "Sale_detail", "Store", "Store_detail", "Call"};
// Rows per insert statement: few round trips, statements of a few hundred kilobytes.
constexpr int Batch = 500;

enum class Kind { Number, Date, Text };

// What a column of the server's table holds.
QHash<QString, Kind> columnKinds(QSqlDatabase &db, const QString &table)
{
    QHash<QString, Kind> kinds;
    QSqlQuery q(db);
    q.exec(QStringLiteral("SELECT column_name, data_type FROM information_schema.columns WHERE table_name='%1'")
               .arg(table.toLower()));
    while (q.next()) {
        const QString type = q.value(1).toString();
        kinds.insert(q.value(0).toString(), type.startsWith(QLatin1String("timestamp")) ? Kind::Date
                                            : (type == QLatin1String("integer") || type == QLatin1String("double precision"))
                                                ? Kind::Number
                                                : Kind::Text);
    }
    return kinds;
}

// A value of the file as the server's column takes it: dates as the file writes them, an
// empty text in a number or date column as no value. Invalid when the value cannot go in.
QVariant forServer(const QVariant &value, Kind kind, bool *ok)
{
    *ok = true;
    if (value.isNull())
        return value;
    const QString text = value.toString().trimmed();
    if (kind == Kind::Date) {
        if (text.isEmpty())
            return QVariant(QMetaType(QMetaType::QDateTime));
        for (const char *form : {"yyyy-MM-dd HH:mm:ss", "yyyy-MM-dd"}) {
            const QDateTime when = QDateTime::fromString(text, QLatin1String(form));
            if (when.isValid())
                return when.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
        }
        *ok = false;
        return value;
    }
    if (kind == Kind::Number) {
        if (value.typeId() == QMetaType::QString) {
            if (text.isEmpty())
                return QVariant(QMetaType(QMetaType::Double));
            const double number = text.toDouble(ok);
            return *ok ? QVariant(number) : value;
        }
        return value;
    }
    return value.toString();
}
}

bool ShopMover::fail(const QString &why)
{
    m_error = why;
    QSqlDatabase::database(QLatin1String(SourceName), false).close();
    QSqlDatabase::removeDatabase(QLatin1String(SourceName));
    if (Database::isOpen())
        Database::connection().rollback();
    Database::close();
    return false;
}

bool ShopMover::copy(const QString &file, const Database::Server &server)
{
    m_checks.clear();
    m_agree = false;
    if (!QFileInfo::exists(file))
        return fail(QStringLiteral("找不到数据库文件 %1。").arg(file));
    {
        QSqlDatabase source = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QLatin1String(SourceName));
        source.setDatabaseName(file);
        source.setConnectOptions(QStringLiteral("QSQLITE_OPEN_READONLY"));
        if (!source.open())
            return fail(QStringLiteral("不能打开数据库文件 %1：%2").arg(file, source.lastError().text()));
    }
    QString error;
    if (!Database::openServer(server, &error))
        return fail(error);
    QSqlDatabase target = Database::connection();
    for (const char *table : {"Sale", "Customer", "Store", "Product", "Sender", "Call"}) {
        QSqlQuery q(target);
        if (!q.exec(QStringLiteral("SELECT count(*) FROM ") + QLatin1String(table)) || !q.next())
            return fail(q.lastError().text());
        if (q.value(0).toLongLong() > 0)
            return fail(QStringLiteral("服务器上的数据库 %1 里已经有数据（%2 表），不能把另一个店的数据搬进去。")
                            .arg(server.name(), QLatin1String(table)));
    }
    if (!target.transaction())
        return fail(target.lastError().text());
    for (const char *table : Tables) {
        // The creation step's own station, operator and settings give way to the file's.
        QSqlQuery clear(target);
        if (!clear.exec(QStringLiteral("DELETE FROM ") + QLatin1String(table)))
            return fail(clear.lastError().text());
        if (!copyTable(QLatin1String(table)))
            return false;
    }
    if (!Database::syncKeys(&error))
        return fail(error);
    if (!target.commit())
        return fail(target.lastError().text());
    m_agree = true;
    for (const char *table : Tables)
        if (!check(QLatin1String(table)))
            m_agree = false;
    QSqlDatabase::database(QLatin1String(SourceName), false).close();
    QSqlDatabase::removeDatabase(QLatin1String(SourceName));
    Database::close();
    return true;
}

bool ShopMover::copyTable(const QString &table)
{
    QSqlDatabase source = QSqlDatabase::database(QLatin1String(SourceName), false);
    QSqlDatabase target = Database::connection();
    const QHash<QString, Kind> kinds = columnKinds(target, table);
    QSqlQuery count(source);
    if (!count.exec(QStringLiteral("SELECT count(*) FROM ") + table) || !count.next())
        return fail(QStringLiteral("不能读取 %1 表：%2").arg(table, count.lastError().text()));
    const qint64 total = count.value(0).toLongLong();
    QSqlQuery rows(source);
    rows.setForwardOnly(true);
    if (!rows.exec(QStringLiteral("SELECT * FROM ") + table))
        return fail(QStringLiteral("不能读取 %1 表：%2").arg(table, rows.lastError().text()));
    const QSqlRecord record = rows.record();
    QStringList columns;
    QList<Kind> columnKind;
    for (int i = 0; i < record.count(); ++i) {
        columns << record.fieldName(i);
        columnKind << kinds.value(record.fieldName(i).toLower(), Kind::Text);
    }
    const QString head = QStringLiteral("INSERT INTO %1(%2) VALUES ").arg(table, columns.join(QLatin1Char(',')));
    QSqlDriver *driver = target.driver();
    QStringList values;
    qint64 done = 0;
    auto flush = [&]() {
        if (values.isEmpty())
            return true;
        QSqlQuery insert(target);
        if (!insert.exec(head + values.join(QLatin1Char(','))))
            return fail(QStringLiteral("不能写入 %1 表：%2").arg(table, insert.lastError().text()));
        done += values.size();
        values.clear();
        if (progress)
            progress(table, done, total);
        return true;
    };
    while (rows.next()) {
        QStringList row;
        for (int i = 0; i < columns.size(); ++i) {
            bool ok = true;
            const QVariant value = forServer(rows.value(i), columnKind[i], &ok);
            if (!ok)
                return fail(QStringLiteral("%1 表第 %2 行的 %3 '%4' 不能存入服务器。")
                                .arg(table)
                                .arg(done + values.size() + 1)
                                .arg(columns[i], rows.value(i).toString()));
            QSqlField field(columns[i], value.metaType());
            field.setValue(value);
            row << driver->formatValue(field);
        }
        values << QLatin1Char('(') + row.join(QLatin1Char(',')) + QLatin1Char(')');
        if (values.size() == Batch && !flush())
            return false;
    }
    if (!flush())
        return false;
    if (progress && total == 0)
        progress(table, 0, 0);
    return true;
}

// Rows, the sum of every number column and the characters of every text column, on both.
bool ShopMover::check(const QString &table)
{
    QSqlDatabase source = QSqlDatabase::database(QLatin1String(SourceName), false);
    QSqlDatabase target = Database::connection();
    const QHash<QString, Kind> kinds = columnKinds(target, table);
    QStringList what{QStringLiteral("count(*)")};
    QStringList fileWhat = what;
    QStringList labels{QStringLiteral("行数")};
    for (auto it = kinds.cbegin(); it != kinds.cend(); ++it) {
        if (it.value() == Kind::Number) {
            what << QStringLiteral("sum(%1)").arg(it.key());
            fileWhat << what.last();
            labels << QStringLiteral("%1 合计").arg(it.key());
        } else if (it.value() == Kind::Text) {
            what << QStringLiteral("sum(length(%1))").arg(it.key());
            fileWhat << what.last();
            labels << QStringLiteral("%1 字数").arg(it.key());
        } else {
            // An empty date in the file arrived as no date.
            what << QStringLiteral("count(%1)").arg(it.key());
            fileWhat << QStringLiteral("count(nullif(%1,''))").arg(it.key());
            labels << QStringLiteral("%1 个数").arg(it.key());
        }
    }
    const QString from = QStringLiteral(" FROM ") + table;
    QSqlQuery a(source), b(target);
    if (!a.exec(QStringLiteral("SELECT ") + fileWhat.join(QLatin1Char(',')) + from) || !a.next()
        || !b.exec(QStringLiteral("SELECT ") + what.join(QLatin1Char(',')) + from) || !b.next()) {
        m_checks << QStringLiteral("%1: 不能比较 (%2%3)").arg(table, a.lastError().text(), b.lastError().text());
        return false;
    }
    bool agree = true;
    for (int i = 0; i < what.size(); ++i) {
        const double x = a.value(i).toDouble(), y = b.value(i).toDouble();
        const bool same = a.value(i).isNull() == b.value(i).isNull() && std::abs(x - y) <= 1e-9 * std::max(1.0, std::abs(x));
        agree = agree && same;
        m_checks << QStringLiteral("%1 %2: %3 / %4 %5")
                        .arg(table, labels[i], a.value(i).toString(), b.value(i).toString(),
                             same ? QStringLiteral("一致") : QStringLiteral("不一致"));
    }
    return agree;
}
