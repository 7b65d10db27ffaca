#include "SqliteSnapshot.h"

#include <QSqlDriver>
#include <sqlite3.h>

RecordsetPtr SqliteSnapshot::open(QSqlDatabase db, const QString &engineSql, const QString &table)
{
    if (!db.driver() || db.driverName() != QLatin1String("QSQLITE"))
        return nullptr;
    const QVariant handle = db.driver()->handle();
    if (!handle.isValid() || qstrcmp(handle.typeName(), "sqlite3*") != 0)
        return nullptr;
    sqlite3 *engine = *static_cast<sqlite3 *const *>(handle.constData());
    if (!engine)
        return nullptr;

    sqlite3_stmt *stmt = nullptr;
    const void *tail = nullptr;
    if (sqlite3_prepare16_v2(engine, engineSql.constData(), int(engineSql.size() * sizeof(QChar)), &stmt, &tail)
            != SQLITE_OK
        || !stmt) {
        sqlite3_finalize(stmt);
        return nullptr;
    }
    // A second statement is the driver's to refuse.
    const qsizetype used = static_cast<const QChar *>(tail) - engineSql.constData();
    if (!QStringView(engineSql).mid(used).trimmed().isEmpty()) {
        sqlite3_finalize(stmt);
        return nullptr;
    }
    // Names as the driver gives them: no quotes, no table in front.
    const int columns = sqlite3_column_count(stmt);
    QStringList fields;
    for (int i = 0; i < columns; ++i) {
        QString name = QString(reinterpret_cast<const QChar *>(sqlite3_column_name16(stmt, i))).remove(QLatin1Char('"'));
        const int dot = name.lastIndexOf(QLatin1Char('.'));
        fields << (dot < 0 ? name : name.mid(dot + 1));
    }
    QVector<Recordset::Row> rows;
    int rc;
    while ((rc = sqlite3_step(stmt)) == SQLITE_ROW) {
        Recordset::Row row(columns);
        for (int i = 0; i < columns; ++i) {
            switch (sqlite3_column_type(stmt, i)) {
            case SQLITE_INTEGER:
                row[i] = qint64(sqlite3_column_int64(stmt, i));
                break;
            case SQLITE_FLOAT:
                row[i] = sqlite3_column_double(stmt, i);
                break;
            case SQLITE_NULL:
                row[i] = QVariant(QMetaType::fromType<QString>());
                break;
            case SQLITE_BLOB:
                row[i] = QByteArray(static_cast<const char *>(sqlite3_column_blob(stmt, i)), sqlite3_column_bytes(stmt, i));
                break;
            default:
                row[i] = QString(reinterpret_cast<const QChar *>(sqlite3_column_text16(stmt, i)),
                                 sqlite3_column_bytes16(stmt, i) / int(sizeof(QChar)));
                break;
            }
        }
        rows.append(std::move(row));
    }
    sqlite3_finalize(stmt);
    if (rc != SQLITE_DONE)
        return nullptr;
    return std::make_shared<Recordset>(fields, std::move(rows), table, db);
}
