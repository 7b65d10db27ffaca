#pragma once
#include "Recordset.h"

#include <QAbstractTableModel>
#include <QColor>
#include <functional>

// One column of a grid over a snapshot: the head caption, the field shown, its width in
// twips (the unit the window layouts are given in), its alignment and its display text.
struct GridColumn {
    QString caption;
    QString field;
    int widthTwips = 1440;
    Qt::Alignment alignment = Qt::AlignLeft | Qt::AlignVCenter;
    // Display text of a value; empty means the value's own text with null as "".
    std::function<QString(const QVariant &)> format;
    bool visible = true;
    // The column's own cell colour (a title column); invalid keeps the grid's.
    QColor background = QColor();
};

// A read-only table model over a snapshot. Rows are the snapshot's visible rows; the
// snapshot's own cursor is left alone, so a window can keep a clone for its operations.
// Besides the display text it answers what a list grid asks (platform/GridRoles.h): each
// column's field and width in pixels, each row's bookmark.
class RecordsetModel : public QAbstractTableModel {
    Q_OBJECT
public:
    explicit RecordsetModel(QObject *parent = nullptr);

    void setColumns(QList<GridColumn> columns);
    const QList<GridColumn> &columns() const { return m_columns; }
    void setRecordset(RecordsetPtr rs);
    RecordsetPtr recordset() const { return m_rs; }

    // The raw value of a field at a row, for row styles and operations.
    QVariant value(int row, const QString &field) const;

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    int columnCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    // Finds rows by bookmark (GridRole::Bookmark) without walking the whole snapshot.
    QModelIndexList match(const QModelIndex &start, int role, const QVariant &value, int hits = 1,
                          Qt::MatchFlags flags = Qt::MatchFlags(Qt::MatchStartsWith | Qt::MatchWrap)) const override;

    static int twipsToPixels(int twips);

private:
    QList<GridColumn> m_columns;
    QVector<int> m_fieldIndex; // per column, into the snapshot's fields
    RecordsetPtr m_rs;
    void mapFields();
};
