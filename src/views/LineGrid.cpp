#include "LineGrid.h"

#include "LineTable.h"

#include "data/RecordsetModel.h"
#include "platform/VbRules.h"

#include <QComboBox>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPointer>
#include <QTimer>

#include <climits>

ProductDropDown::ProductDropDown(QObject *parent)
    : QStyledItemDelegate(parent), m_products(new RecordsetModel(this))
{
    auto plain = [](const QVariant &v) {
        return v.isNull() ? QString() : v.typeId() == QMetaType::Double ? NumText(v.toDouble()) : v.toString();
    };
    const Qt::Alignment left = Qt::AlignLeft | Qt::AlignVCenter;
    m_products->setColumns({{QStringLiteral("产品编号"), QStringLiteral("ID"), 900, left, plain},
                            {QStringLiteral("产品名称"), QStringLiteral("Name"), 2000, left, plain},
                            {QStringLiteral("单位"), QStringLiteral("Unit"), 900, left, plain},
                            {QStringLiteral("价格"), QStringLiteral("Price"), 900, Qt::AlignRight | Qt::AlignVCenter, plain}});
}

void ProductDropDown::setRows(const RecordsetPtr &rows) { m_products->setRecordset(rows); }

QWidget *ProductDropDown::createEditor(QWidget *parent, const QStyleOptionViewItem &,
                                       const QModelIndex &) const
{
    auto *combo = new QComboBox(parent);
    combo->setEditable(true);
    combo->setInsertPolicy(QComboBox::NoInsert);
    // A typed code stands as typed: no completion may turn "1" into "10".
    combo->setCompleter(nullptr);
    auto *list = new QTableView(combo);
    list->setSelectionBehavior(QAbstractItemView::SelectRows);
    list->verticalHeader()->hide();
    list->horizontalHeader()->setStretchLastSection(true);
    list->horizontalHeader()->setMinimumHeight(list->horizontalHeader()->fontMetrics().height() + 8);
    combo->setView(list);
    combo->setModel(m_products);
    combo->setModelColumn(0);
    int width = 0;
    for (int c = 0; c < m_products->columns().size(); ++c) {
        const int w = RecordsetModel::twipsToPixels(m_products->columns().at(c).widthTwips);
        list->setColumnWidth(c, w);
        width += w;
    }
    list->setMinimumWidth(width + 24);
    return combo;
}

void ProductDropDown::setEditorData(QWidget *editor, const QModelIndex &index) const
{
    auto *combo = static_cast<QComboBox *>(editor);
    combo->setCurrentIndex(-1);
    combo->setEditText(index.data(Qt::EditRole).toString());
}

void ProductDropDown::setModelData(QWidget *editor, QAbstractItemModel *model, const QModelIndex &index) const
{
    auto *combo = static_cast<QComboBox *>(editor);
    model->setData(index, combo->currentText(), Qt::EditRole);
}

LineGrid::LineGrid(QWidget *parent) : QTableView(parent), m_dropDown(new ProductDropDown(this))
{
    m_dropDown->setObjectName(QStringLiteral("dbdProduct"));
    setEditTriggers(QAbstractItemView::AnyKeyPressed | QAbstractItemView::DoubleClicked
                    | QAbstractItemView::EditKeyPressed);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setSelectionBehavior(QAbstractItemView::SelectItems);
    // Tab is ours (focusNextPrevChild): the view's own walk would stop at locked cells.
    setTabKeyNavigation(false);
    verticalHeader()->setDefaultSectionSize(verticalHeader()->minimumSectionSize() + 6);
}

void LineGrid::setLines(LineTable *lines)
{
    m_lines = lines;
    lines->setInfoBrush(QBrush(palette().color(QPalette::Window)));
    setModel(lines);
    setItemDelegateForColumn(LineTable::ProductID, m_dropDown);
    const int widths[] = {1100, 2200, 1000, 1000, 900, 1300};
    for (int c = 0; c < LineTable::ShownColumns; ++c)
        setColumnWidth(c, RecordsetModel::twipsToPixels(widths[c]));
    horizontalHeader()->setStretchLastSection(true);
    connect(lines, &LineTable::cellRefused, this, [this] { m_refused = true; });
}

bool LineGrid::finishEditing()
{
    if (state() != EditingState)
        return true;
    QWidget *editor = indexWidget(currentIndex());
    if (!editor)
        return true;
    m_refused = false;
    commitData(editor);
    const bool refused = m_refused;
    closeEditor(editor, QAbstractItemDelegate::NoHint);
    return !refused;
}

void LineGrid::closeEditor(QWidget *editor, QAbstractItemDelegate::EndEditHint hint)
{
    const QModelIndex at = currentIndex();
    const bool refused = m_refused;
    m_refused = false;
    const bool tab = hint == QAbstractItemDelegate::EditNextItem || hint == QAbstractItemDelegate::EditPreviousItem;
    QTableView::closeEditor(editor, refused || tab ? QAbstractItemDelegate::NoHint : hint);
    if (refused) {
        // Open the same cell again so the operator can put the value right.
        QPointer<LineGrid> self(this);
        QTimer::singleShot(0, this, [self, at] {
            if (self && at.isValid()) {
                self->setCurrentIndex(at);
                self->edit(at);
            }
        });
        return;
    }
    if (tab) {
        step(hint == QAbstractItemDelegate::EditNextItem);
        return;
    }
    if (hint != QAbstractItemDelegate::SubmitModelCache || !at.isValid())
        return;
    // Keying a line: code, quantity, then the next line's code.
    QModelIndex next;
    if (at.column() == LineTable::ProductID || at.column() == LineTable::ProductPrice)
        next = model()->index(at.row(), LineTable::ProductAmount);
    else
        next = model()->index(at.row() + 1, LineTable::ProductID);
    if (next.isValid())
        setCurrentIndex(next);
}

void LineGrid::keyPressEvent(QKeyEvent *event)
{
    // Enter on a cell that is not being edited starts editing it, as F2 does.
    if ((event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) && state() != EditingState
        && currentIndex().isValid() && (currentIndex().flags() & Qt::ItemIsEditable)) {
        edit(currentIndex());
        return;
    }
    QTableView::keyPressEvent(event);
}

bool LineGrid::focusNextPrevChild(bool next)
{
    // Tab from inside an editor that did not handle it itself (the code's drop-down).
    if (state() == EditingState) {
        if (!finishEditing())
            return true;
    }
    step(next);
    return true;
}

QModelIndex LineGrid::typedCell(const QModelIndex &from, bool next) const
{
    if (!m_lines)
        return QModelIndex();
    int lastLine = -1;
    for (int r = 0; r < m_lines->lineCount(); ++r)
        if (m_lines->isLine(r))
            lastLine = r;
    // The walk ends at the code of the row where the next line would start.
    const int endRow = lastLine + 1;
    static const int typed[] = {LineTable::ProductID, LineTable::ProductPrice, LineTable::ProductAmount};
    auto isStop = [endRow](int r, int c) { return r < endRow || (r == endRow && c == LineTable::ProductID); };
    const int here = from.isValid() ? from.row() * LineTable::ColumnCount + from.column() : (next ? -1 : INT_MAX);
    if (next) {
        for (int r = qMax(0, from.row()); r <= endRow; ++r)
            for (int c : typed)
                if (isStop(r, c) && r * LineTable::ColumnCount + c > here)
                    return model()->index(r, c);
    } else {
        for (int r = from.isValid() ? qMin(from.row(), endRow) : endRow; r >= 0; --r)
            for (int i = 2; i >= 0; --i)
                if (isStop(r, typed[i]) && r * LineTable::ColumnCount + typed[i] < here)
                    return model()->index(r, typed[i]);
    }
    return QModelIndex();
}

void LineGrid::step(bool next)
{
    const QModelIndex to = typedCell(currentIndex(), next);
    if (to.isValid()) {
        setCurrentIndex(to);
        return;
    }
    QTableView::focusNextPrevChild(next);
}
