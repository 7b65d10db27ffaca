#include "LineTable.h"

#include "data/Gateway.h"
#include "data/SqlText.h"
#include "platform/Prompter.h"
#include "platform/VbError.h"
#include "platform/VbRules.h"

#include <cmath>

namespace {
const char *const Captions[LineTable::ShownColumns] = {"产品编号", "名称", "规格", "单价", "数量", "金额"};

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

// The grid formats price and money through FormatText; the quantity case stands ready unused.
bool formatted(int column) { return column == LineTable::ProductPrice || column == LineTable::ProductMoney; }
}

LineTable::LineTable(Options options, QObject *parent) : QAbstractTableModel(parent), m_options(options) {}

QVariant LineTable::value(int row, int column) const
{
    if (row < 0 || row >= m_rows.size() || column < 0 || column >= ColumnCount)
        return QVariant();
    return m_rows.at(row).at(column);
}

QString LineTable::text(int row, int column) const { return variantText(value(row, column)); }

void LineTable::setValue(int row, int column, const QVariant &value)
{
    if (row < 0 || column < 0 || column >= ColumnCount)
        return;
    if (row >= m_rows.size()) {
        // A value below the last line makes a new line; rows the grid already shows stay.
        const int shownBefore = rowCount();
        const int shownAfter = qMax(row + 2, m_options.rows);
        if (shownAfter > shownBefore)
            beginInsertRows(QModelIndex(), shownBefore, shownAfter - 1);
        while (m_rows.size() <= row)
            m_rows.append(QVector<QVariant>(ColumnCount));
        if (shownAfter > shownBefore)
            endInsertRows();
    }
    m_rows[row][column] = value;
    emitRowChanged(row);
}

void LineTable::clearRow(int row)
{
    if (row < 0 || row >= m_rows.size())
        return;
    m_rows[row] = QVector<QVariant>(ColumnCount);
    emitRowChanged(row);
}

void LineTable::clear()
{
    beginResetModel();
    m_rows.clear();
    endResetModel();
    emit linesChanged();
}

void LineTable::appendLine(const QVector<QVariant> &values)
{
    const int row = int(m_rows.size());
    for (int c = 0; c < ColumnCount && c < values.size(); ++c)
        setValue(row, c, values.at(c));
    if (values.isEmpty())
        setValue(row, ProductID, QVariant());
}

bool LineTable::isLine(int row) const { return !Trim(text(row, ProductID)).isEmpty(); }

bool LineTable::BeforeColUpdate(int row, int column, const QString &text)
{
    switch (column) {
    case ProductID:
        if (Trim(text).isEmpty()) {
            // Clearing the code is the one way to take a line off.
            clearRow(row);
        } else if (!FillProductInfoByID(row, text)) {
            Msg::error(QStringLiteral("产品编号不存在或已被禁用，请重新输入!"), QStringLiteral("商品编号"));
            return false;
        }
        return true;
    case ProductPrice:
        if (Val(text) == 0) {
            Msg::error(QStringLiteral("商品价格必须为数字，且不能为0！"), QStringLiteral("价格"));
            return false;
        }
        return true;
    case ProductAmount:
        if (Val(text) == 0) {
            Msg::error(QStringLiteral("商品数量必须为数字，且不能为0！"), QStringLiteral("数量"));
            return false;
        }
        return true;
    default:
        return true;
    }
}

void LineTable::AfterColUpdate(int row, int column)
{
    if (isLine(row))
        setValue(row, ProductMoney, Val(text(row, ProductAmount)) * Val(text(row, ProductPrice)));
    emit cellCommitted(row, column);
}

bool LineTable::FillProductInfoByID(int row, const QString &id)
{
    if (Trim(id).isEmpty()) {
        for (int c = ProductName; c <= ProductMoney; ++c)
            setValue(row, c, QVariant());
        return true;
    }
    RecordsetPtr rs = OpenRecordset(QStringLiteral("select * from product where Status='1' and ID =")
                                    + Sql::number(id));
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

QString LineTable::FormatText(int column, const QVariant &value)
{
    const QString raw = variantText(value);
    if (column != ProductAmount && column != ProductMoney)
        return raw;
    const double v = Val(raw);
    if (v <= 0)
        return QStringLiteral("0");
    return Format(std::abs(v), column == ProductMoney ? QStringLiteral("￥##,###,###.00")
                                                      : QStringLiteral("##,###,###.00"));
}

bool LineTable::hasContainer(const QString &productCode)
{
    RecordsetPtr rs = OpenRecordset(
        QStringLiteral("select * from Product where IsContainer='0' and ContainerID<>0 and ID=")
        + Sql::number(Trim(productCode)));
    return rs && rs->recordCount() > 0;
}

LineTable::Totals LineTable::totals() const
{
    qint64 amount = 0, containers = 0;
    double money = 0;
    for (int row = 0; row < m_rows.size(); ++row) {
        if (!isLine(row))
            continue;
        amount += CLng(value(row, ProductAmount));
        money += CCur(value(row, ProductMoney));
        if (m_options.countEmpties && hasContainer(text(row, ProductID)))
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

int LineTable::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : qMax(int(m_rows.size()) + 1, m_options.rows);
}

int LineTable::columnCount(const QModelIndex &parent) const { return parent.isValid() ? 0 : ShownColumns; }

QVariant LineTable::data(const QModelIndex &index, int role) const
{
    if (!index.isValid())
        return QVariant();
    const int column = index.column();
    switch (role) {
    case Qt::DisplayRole: {
        const QVariant v = value(index.row(), column);
        if (!formatted(column) || variantText(v).isEmpty())
            return variantText(v);
        return FormatText(column, v);
    }
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

bool LineTable::setData(const QModelIndex &index, const QVariant &value, int role)
{
    if (!index.isValid() || role != Qt::EditRole || isLocked(index.column()))
        return false;
    const int row = index.row(), column = index.column();
    const QString typed = value.toString();
    // Nothing typed in a row without a line makes no line.
    if (row >= m_rows.size() && Trim(typed).isEmpty())
        return false;
    // An unchanged price or quantity is no edit; a code committed again refills its line.
    if (column != ProductID && row < m_rows.size() && typed == text(row, column))
        return false;
    if (!BeforeColUpdate(row, column, typed)) {
        emit cellRefused(row, column);
        return false;
    }
    // A blank code has emptied the whole row already.
    if (!(column == ProductID && Trim(typed).isEmpty()))
        setValue(row, column, typed);
    AfterColUpdate(row, column);
    return true;
}

Qt::ItemFlags LineTable::flags(const QModelIndex &index) const
{
    if (!index.isValid())
        return Qt::NoItemFlags;
    Qt::ItemFlags f = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    if (!isLocked(index.column()))
        f |= Qt::ItemIsEditable;
    return f;
}

QVariant LineTable::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (role != Qt::DisplayRole)
        return QVariant();
    if (orientation == Qt::Horizontal)
        return section >= 0 && section < ShownColumns ? QString::fromUtf8(Captions[section]) : QVariant();
    return section < qMax(int(m_rows.size()), m_options.rows) ? QVariant(section + 1) : QVariant(QStringLiteral("*"));
}

bool LineTable::isLocked(int column)
{
    return column == ProductName || column == ProductUnit || column == ProductMoney;
}

void LineTable::emitRowChanged(int row)
{
    emit dataChanged(index(row, 0), index(row, ShownColumns - 1));
    emit linesChanged();
}
