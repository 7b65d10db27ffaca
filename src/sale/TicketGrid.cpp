#include "TicketGrid.h"

#include "TicketLines.h"

#include "data/RecordsetModel.h"
#include "platform/VbRules.h"

#include <QComboBox>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPointer>
#include <QTimer>

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

TicketGrid::TicketGrid(QWidget *parent) : QTableView(parent), m_dropDown(new ProductDropDown(this))
{
    m_dropDown->setObjectName(QStringLiteral("dbdProduct"));
    setItemDelegateForColumn(TicketLines::ProductID, m_dropDown);
    setEditTriggers(QAbstractItemView::AnyKeyPressed | QAbstractItemView::DoubleClicked
                    | QAbstractItemView::EditKeyPressed);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setSelectionBehavior(QAbstractItemView::SelectItems);
    // Tab leaves the grid for the next field; Enter moves within it.
    setTabKeyNavigation(false);
    verticalHeader()->setDefaultSectionSize(verticalHeader()->minimumSectionSize() + 6);
}

void TicketGrid::closeEditor(QWidget *editor, QAbstractItemDelegate::EndEditHint hint)
{
    const QModelIndex at = currentIndex();
    const bool refused = m_refused;
    m_refused = false;
    QTableView::closeEditor(editor, refused ? QAbstractItemDelegate::NoHint : hint);
    if (refused) {
        // Open the same cell again so the operator can put the value right.
        QPointer<TicketGrid> self(this);
        QTimer::singleShot(0, this, [self, at] {
            if (self && at.isValid()) {
                self->setCurrentIndex(at);
                self->edit(at);
            }
        });
        return;
    }
    if (hint != QAbstractItemDelegate::SubmitModelCache || !at.isValid())
        return;
    // Keying a line: code, quantity, then the next line's code.
    QModelIndex next;
    if (at.column() == TicketLines::ProductID || at.column() == TicketLines::ProductPrice)
        next = model()->index(at.row(), TicketLines::ProductAmount);
    else
        next = model()->index(at.row() + 1, TicketLines::ProductID);
    if (next.isValid())
        setCurrentIndex(next);
}

void TicketGrid::keyPressEvent(QKeyEvent *event)
{
    // Enter on a cell that is not being edited starts editing it, as F2 does.
    if ((event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) && state() != EditingState
        && currentIndex().isValid() && (currentIndex().flags() & Qt::ItemIsEditable)) {
        edit(currentIndex());
        return;
    }
    QTableView::keyPressEvent(event);
}
