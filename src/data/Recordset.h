#pragma once
#include <QSqlDatabase>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVector>
#include <memory>

// A client-side snapshot of a query's rows. Moving, bookmarks, clones and the "ID=n" filter
// work on the snapshot alone; update() writes the current row back to its table by key.
class Recordset {
public:
    using Row = QVector<QVariant>;
    using Bookmark = int;

    // Snapshot of what the statement (already in the engine's dialect) selected.
    // table is the single table the statement reads, or empty when it reads several.
    Recordset(QStringList fields, QVector<Row> rows, QString table, QSqlDatabase db);

    int recordCount() const;
    bool eof() const;
    bool bof() const;
    void moveFirst();
    void moveLast();
    void moveNext();
    void movePrevious();
    // Position among the visible rows (0-based); -1 before the first, recordCount() after the last.
    int absolutePosition() const;
    void setAbsolutePosition(int position);

    Bookmark bookmark() const;            // the current row, stable across filters and clones
    bool setBookmark(Bookmark bookmark);  // false when that row is not visible
    Bookmark bookmarkAt(int position) const; // of a visible row, without moving; -1 outside

    // A second cursor over the same rows: it sees updates made through either.
    std::shared_ptr<Recordset> clone() const;

    // "ID=12" keeps the rows whose ID is 12 (any "Field=value"); empty text shows all rows.
    // A filter that names a field the set does not have, or is no "Field=value", throws
    // VbError (3001) and leaves the set unfiltered, all rows visible from the first.
    void setFilter(const QString &filter);
    QString filter() const;

    const QStringList &fieldNames() const;
    int fieldIndex(const QString &name) const; // case-blind; -1 when absent
    bool hasField(const QString &name) const;

    // Value of the current row; an invalid QVariant at BOF/EOF or for an unknown field.
    QVariant field(const QString &name) const;
    QVariant field(int index) const;
    // Text of the field with null read as the empty text.
    QString text(const QString &name) const;
    // Value at a visible row, for grids.
    QVariant valueAt(int position, int fieldIndex) const;

    // Changes a field of the current row in the snapshot; update() stores it.
    void setField(const QString &name, const QVariant &value);
    // Writes the changed fields of the current row back, by ID when the row has one,
    // otherwise by the row's original values. False (with the engine's message in
    // lastError()) when the engine refused.
    bool update();
    QString lastError() const;

private:
    struct Data {
        QStringList fields;
        QVector<Row> rows;
        QString table;
        QSqlDatabase db;
    };
    Recordset(std::shared_ptr<Data> data);
    void rebuildView();
    bool filterNamesField() const;
    int currentRow() const; // index into data rows, -1 when none

    std::shared_ptr<Data> m_data;
    QVector<int> m_view; // visible data rows
    int m_pos = 0;       // position in m_view
    QString m_filter;
    QHash<int, QVariant> m_pending; // field index -> new value of the current row
    QString m_lastError;
};

using RecordsetPtr = std::shared_ptr<Recordset>;
