#include "RecordsetModel.h"

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
    default:
        return QVariant();
    }
}

QVariant RecordsetModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || section < 0 || section >= m_columns.size())
        return QAbstractTableModel::headerData(section, orientation, role);
    if (role == Qt::DisplayRole)
        return m_columns[section].caption;
    if (role == Qt::TextAlignmentRole)
        return int(Qt::AlignCenter);
    return QVariant();
}

int RecordsetModel::twipsToPixels(int twips) { return (twips + 7) / 15; }
