#include "TicketLines.h"

#include "data/Gateway.h"
#include "data/SqlText.h"
#include "platform/VbError.h"
#include "platform/VbRules.h"

namespace {
const char *const Captions[TicketLines::ShownColumns] = {"产品编号", "名称", "规格", "单价", "数量", "金额"};

QString variantText(const QVariant &v)
{
    if (!v.isValid() || v.isNull())
        return QString();
    switch (v.typeId()) {
    case QMetaType::Double:
    case QMetaType::Float:
        return NumText(v.toDouble());
    default:
        return v.toString();
    }
}
}

TicketLines::TicketLines(QObject *parent) : QAbstractTableModel(parent) {}

void TicketLines::setHandlers(BeforeUpdate before, AfterUpdate after)
{
    m_before = std::move(before);
    m_after = std::move(after);
}

QVariant TicketLines::value(int row, int column) const
{
    if (row < 0 || row >= m_rows.size() || column < 0 || column >= ColumnCount)
        return QVariant();
    return m_rows.at(row).at(column);
}

QString TicketLines::text(int row, int column) const { return variantText(value(row, column)); }

void TicketLines::setValue(int row, int column, const QVariant &value)
{
    if (row < 0 || column < 0 || column >= ColumnCount)
        return;
    if (row >= m_rows.size()) {
        // A value for the empty row below the last line makes a new line.
        beginInsertRows(QModelIndex(), int(m_rows.size()) + 1, row + 1);
        while (m_rows.size() <= row)
            m_rows.append(QVector<QVariant>(ColumnCount));
        endInsertRows();
    }
    m_rows[row][column] = value;
    emitRowChanged(row);
}

void TicketLines::clearRow(int row)
{
    if (row < 0 || row >= m_rows.size())
        return;
    m_rows[row] = QVector<QVariant>(ColumnCount);
    emitRowChanged(row);
}

void TicketLines::clear()
{
    beginResetModel();
    m_rows.clear();
    endResetModel();
    emit linesChanged();
}

void TicketLines::appendLine(const QVector<QVariant> &values)
{
    const int row = int(m_rows.size());
    beginInsertRows(QModelIndex(), row + 1, row + 1);
    QVector<QVariant> line(ColumnCount);
    for (int c = 0; c < ColumnCount && c < values.size(); ++c)
        line[c] = values.at(c);
    m_rows.append(line);
    endInsertRows();
    emitRowChanged(row);
}

bool TicketLines::isLine(int row) const { return !Trim(text(row, ProductID)).isEmpty(); }

bool TicketLines::fillProduct(int row, const QString &code)
{
    if (Trim(code).isEmpty()) {
        for (int c = ProductName; c <= ProductMoney; ++c)
            setValue(row, c, QVariant());
        return true;
    }
    RecordsetPtr rs = OpenRecordset(QStringLiteral("select * from product where Status='1' and ID =")
                                    + Sql::number(code));
    if (!rs || rs->recordCount() < 1)
        return false;
    rs->moveFirst();
    setValue(row, ProductName, rs->text(QStringLiteral("name")));
    setValue(row, ProductUnit, rs->text(QStringLiteral("unit")));
    setValue(row, ProductPrice, rs->field(QStringLiteral("price")));
    setValue(row, ProductAmount, 1);
    setValue(row, ProductMoney, text(row, ProductPrice));
    return true;
}

void TicketLines::computeMoney(int row)
{
    if (!isLine(row))
        return;
    setValue(row, ProductMoney, Val(text(row, ProductAmount)) * Val(text(row, ProductPrice)));
}

bool TicketLines::hasContainer(const QString &productCode)
{
    RecordsetPtr rs = OpenRecordset(
        QStringLiteral("select * from Product where IsContainer='0' and ContainerID<>0 and ID=")
        + Sql::number(Trim(productCode)));
    return rs && rs->recordCount() > 0;
}

TicketLines::Totals TicketLines::totals() const
{
    qint64 amount = 0, containers = 0;
    double money = 0;
    for (int row = 0; row < m_rows.size(); ++row) {
        if (!isLine(row))
            continue;
        amount += CLng(value(row, ProductAmount));
        money += CCur(value(row, ProductMoney));
        if (hasContainer(text(row, ProductID)))
            containers += CInt(value(row, ProductAmount));
    }
    if (amount > 2147483647 || amount < -2147483647 - 1 || containers > 2147483647
        || containers < -2147483647 - 1)
        throw VbError::overflow();
    Totals t;
    t.amount = qint32(amount);
    t.money = CCur(money);
    t.containers = qint32(containers);
    return t;
}

QString TicketLines::displayText(int column, const QVariant &value)
{
    const QString raw = variantText(value);
    if (column != ProductMoney || raw.isEmpty())
        return raw;
    const double v = Val(raw);
    return v > 0 ? Format(std::abs(v), QStringLiteral("￥##,###,###.00")) : QStringLiteral("0");
}

int TicketLines::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_rows.size()) + 1;
}

int TicketLines::columnCount(const QModelIndex &parent) const { return parent.isValid() ? 0 : ShownColumns; }

QVariant TicketLines::data(const QModelIndex &index, int role) const
{
    if (!index.isValid())
        return QVariant();
    const int column = index.column();
    switch (role) {
    case Qt::DisplayRole:
        return displayText(column, value(index.row(), column));
    case Qt::EditRole:
        return text(index.row(), column);
    case Qt::TextAlignmentRole:
        if (column == ProductPrice || column == ProductMoney)
            return QVariant::fromValue(Qt::AlignRight | Qt::AlignVCenter);
        return QVariant::fromValue(Qt::AlignLeft | Qt::AlignVCenter);
    case Qt::BackgroundRole:
        return isLocked(column) ? m_infoBrush : QVariant();
    default:
        return QVariant();
    }
}

bool TicketLines::setData(const QModelIndex &index, const QVariant &value, int role)
{
    if (!index.isValid() || role != Qt::EditRole || isLocked(index.column()))
        return false;
    const int row = index.row(), column = index.column();
    const QString typed = value.toString();
    // Nothing typed in the empty row makes no line.
    if (row >= m_rows.size() && Trim(typed).isEmpty())
        return false;
    if (row < m_rows.size() && typed == text(row, column))
        return false;
    if (m_before && !m_before(row, column, typed))
        return false;
    // Taking the code off blanks the whole row; the handler has done so already.
    if (!(column == ProductID && Trim(typed).isEmpty()))
        setValue(row, column, typed);
    if (m_after)
        m_after(row, column);
    return true;
}

Qt::ItemFlags TicketLines::flags(const QModelIndex &index) const
{
    if (!index.isValid())
        return Qt::NoItemFlags;
    Qt::ItemFlags f = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    if (!isLocked(index.column()))
        f |= Qt::ItemIsEditable;
    return f;
}

QVariant TicketLines::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (role != Qt::DisplayRole)
        return QVariant();
    if (orientation == Qt::Horizontal)
        return section >= 0 && section < ShownColumns ? QString::fromUtf8(Captions[section]) : QVariant();
    return section < m_rows.size() ? QVariant(section + 1) : QVariant(QStringLiteral("*"));
}

bool TicketLines::isLocked(int column)
{
    return column == ProductName || column == ProductUnit || column == ProductMoney;
}

void TicketLines::emitRowChanged(int row)
{
    emit dataChanged(index(row, 0), index(row, ShownColumns - 1));
    emit linesChanged();
}
