#include "RecordsetModel.h"

#include "platform/GridRoles.h"

RecordsetModel::RecordsetModel(QObject *parent) : QAbstractTableModel(parent) {}

void RecordsetModel::setColumns(QList<GridColumn> columns)
{
    beginResetModel();
    m_columns = std::move(columns);
    mapFields();
    endResetModel();
}

void RecordsetModel::setRecordset(RecordsetPtr rs)
{
    beginResetModel();
    m_rs = std::move(rs);
    mapFields();
    endResetModel();
}

void RecordsetModel::mapFields()
{
    m_fieldIndex.clear();
    for (const GridColumn &c : m_columns)
        m_fieldIndex << (m_rs ? m_rs->fieldIndex(c.field) : -1);
}

QVariant RecordsetModel::value(int row, const QString &field) const
{
    return m_rs ? m_rs->valueAt(row, m_rs->fieldIndex(field)) : QVariant();
}

int RecordsetModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() || !m_rs ? 0 : m_rs->recordCount();
}

int RecordsetModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_columns.size());
}

QVariant RecordsetModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || !m_rs)
        return QVariant();
    const GridColumn &column = m_columns[index.column()];
    const QVariant v = m_rs->valueAt(index.row(), m_fieldIndex[index.column()]);
    switch (role) {
    case Qt::DisplayRole:
        if (column.format)
            return column.format(v);
        return v.isNull() ? QString() : v.toString();
    case Qt::EditRole:
        return v;
    case Qt::TextAlignmentRole:
        return int(column.alignment);
    case Qt::BackgroundRole:
        return column.background.isValid() ? QVariant(column.background) : QVariant();
    case GridRole::Bookmark:
        return m_rs->bookmarkAt(index.row());
    default:
        return QVariant();
    }
}

QVariant RecordsetModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || section < 0 || section >= m_columns.size())
        return QAbstractTableModel::headerData(section, orientation, role);
    if (role == Qt::DisplayRole || role == Qt::ToolTipRole) // narrow heads show the caption on hover
        return m_columns[section].caption;
    if (role == Qt::TextAlignmentRole)
        return int(Qt::AlignCenter);
    if (role == GridRole::DataField)
        return m_columns[section].field;
    if (role == GridRole::Width)
        return m_columns[section].visible ? twipsToPixels(m_columns[section].widthTwips) : 0;
    return QVariant();
}

QModelIndexList RecordsetModel::match(const QModelIndex &start, int role, const QVariant &value, int hits,
                                      Qt::MatchFlags flags) const
{
    if (role != GridRole::Bookmark || !m_rs)
        return QAbstractTableModel::match(start, role, value, hits, flags);
    const int bookmark = value.toInt();
    // Unfiltered snapshots keep bookmarks in row order.
    if (m_rs->bookmarkAt(bookmark) == bookmark)
        return {index(bookmark, qMax(0, start.column()))};
    for (int row = 0; row < m_rs->recordCount(); ++row)
        if (m_rs->bookmarkAt(row) == bookmark)
            return {index(row, qMax(0, start.column()))};
    return {};
}

int RecordsetModel::twipsToPixels(int twips) { return (twips + 7) / 15; }
