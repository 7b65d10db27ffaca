#pragma once
#include "Recordset.h"

#include <QSqlDatabase>

// Reads a result straight from the embedded engine into a snapshot, with the same field
// names and value types the Qt driver gives, but without its per-row buffers: the ticket
// lists of a shop with years of open tickets read a hundred thousand rows on every refresh.
namespace SqliteSnapshot {
// The snapshot, or nullptr when the connection is not the embedded engine or the statement
// fails; the caller then takes the driver's road, which also reports the failure.
RecordsetPtr open(QSqlDatabase db, const QString &engineSql, const QString &table);
}
