#include "ListWindow.h"

#include "data/Gateway.h"
#include "data/Session.h"

#include "platform/Clock.h"
#include "platform/Forms.h"
#include "platform/Modal.h"
#include "platform/Prompter.h"
#include "platform/VbError.h"
#include "platform/VbRules.h"

#include <QApplication>
#include <QEvent>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QStyle>
#include <QVBoxLayout>

namespace {
// The list's rows with the window's cell colours on top.
class ListModel : public RecordsetModel {
public:
    ListModel(ListWindow *window, std::function<QColor(int, const QVariant &)> cellColor)
        : RecordsetModel(window), m_cellColor(std::move(cellColor))
    {
    }
    QVariant data(const QModelIndex &index, int role) const override
    {
        if (role != Qt::ForegroundRole)
            return RecordsetModel::data(index, role);
        const QColor c = index.isValid() ? m_cellColor(index.column(), RecordsetModel::data(index, Qt::EditRole))
                                         : QColor();
        return c.isValid() ? QVariant(c) : QVariant();
    }

private:
    std::function<QColor(int, const QVariant &)> m_cellColor;
};
}

ListWindow::ListWindow(QWidget *parent)
    : QWidget(parent), dbgMain(new DbGrid(this)),
      m_model(new ListModel(this, [this](int column, const QVariant &v) { return FetchCellColor(column, v); }))
{
    dbgMain->setObjectName(QStringLiteral("dbgMain"));
    dbgMain->setModel(m_model);
    dbgMain->setRowStyleCallback([this](int bookmark) { return FetchRowStyle(bookmark); });
    connect(dbgMain, &DbGrid::HeadClick, this, &ListWindow::headClick);
    // The grid fills the window at every size.
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(dbgMain);
}

void ListWindow::setColumns(const QList<GridColumn> &columns) { m_model->setColumns(columns); }

void ListWindow::setCardWindow(const QString &form, CardRefresh rule)
{
    m_cardForm = form;
    m_cardRefresh = rule;
    connect(dbgMain, &DbGrid::DblClick, this, &ListWindow::EditData, Qt::UniqueConnection);
}

bool ListWindow::autoDataRefresh()
{
    try {
        return GetSysValue(QStringLiteral("AutoDataRefresh")) == QLatin1String("1");
    } catch (const VbError &) {
        return false; // the gateway has said why
    }
}

QString ListWindow::numberText(double value) { return QString::number(value, 'g', 15); }

GridColumn ListWindow::textColumn(const QString &caption, const QString &field, int widthTwips,
                                  Qt::Alignment align)
{
    GridColumn c;
    c.caption = caption;
    c.field = field;
    c.widthTwips = widthTwips;
    c.alignment = align | Qt::AlignVCenter;
    return c;
}

GridColumn ListWindow::numberColumn(const QString &caption, const QString &field, int widthTwips,
                                    Qt::Alignment align)
{
    GridColumn c = textColumn(caption, field, widthTwips, align);
    c.format = [](const QVariant &v) { return v.isNull() ? QString() : numberText(v.toDouble()); };
    return c;
}

RowStyle ListWindow::suspendedRow()
{
    RowStyle style;
    style.background = QApplication::palette().color(QPalette::ToolTipBase);
    style.strikeOut = true;
    return style;
}

void ListWindow::Form_Load()
{
    if (autoDataRefresh())
        openQuery();
}

void ListWindow::showRows(const QStringList &fields, const QVector<Recordset::Row> &rows)
{
    m_inMemory = true;
    m_memoryFields = fields;
    m_memoryRows = rows;
    m_model->setRecordset(nullptr);
    curRecordSet = std::make_shared<Recordset>(fields, rows, QString(), QSqlDatabase());
    rsClone = curRecordSet->clone();
    m_model->setRecordset(curRecordSet);
    fitColumns();
    dbgMain->MoveFirst();
    ShowTotal();
}

void ListWindow::openQuery()
{
    curRecordSet = OpenRecordset(curShortSQL + curFilterSQL + curGroupSQL + curSortSQL);
    if (!curRecordSet)
        return;
    rsClone = curRecordSet->clone();
    m_model->setRecordset(curRecordSet);
    fitColumns();
    dbgMain->MoveFirst();
    ShowTotal();
}

// A failed step leaves the grid as the gateway left it; the steps after it still run.
void ListWindow::DataRefresh()
{
    if (m_inMemory) {
        showRows(m_memoryFields, m_memoryRows);
        return;
    }
    curBookmark = dbgMain->Bookmark();
    // The same ticket stays current when it is still listed, wherever the new order puts it.
    QVariant keptID;
    if (curRecordSet && curBookmark >= 0)
        keptID = curRecordSet->valueAt(dbgMain->currentRow(), curRecordSet->fieldIndex(QStringLiteral("ID")));

    m_model->setRecordset(nullptr);
    curRecordSet.reset();
    rsClone.reset();
    curFullSQL = curShortSQL + curFilterSQL + curGroupSQL + curSortSQL;
    curRecordSet = OpenRecordset(curFullSQL);
    m_model->setRecordset(curRecordSet);
    if (!curRecordSet)
        return;
    rsClone = curRecordSet->clone();
    fitColumns();
    ShowTotal();

    int row = -1;
    const int id = curRecordSet->fieldIndex(QStringLiteral("ID"));
    if (keptID.isValid() && id >= 0) {
        for (int r = 0, n = curRecordSet->recordCount(); r < n; ++r) {
            if (curRecordSet->valueAt(r, id) == keptID) {
                row = r;
                break;
            }
        }
    }
    if (row >= 0)
        dbgMain->setCurrentRow(row);
    else if (!dbgMain->setBookmark(curBookmark))
        dbgMain->setCurrentRow(qMax(curBookmark, 0)); // as near to where it was as the rows allow
}

// One direction for the whole window: every click flips it, whichever head was clicked.
void ListWindow::headClick(int column)
{
    if (m_unsorted.contains(column))
        return;
    const QString field = dbgMain->dataField(column);
    curSortDirection = curSortDirection == 0 ? 1 : 0;
    const QString name = sortFieldFor(field);
    curSortSQL = QStringLiteral(" ORDER BY ") + name
                 + (curSortDirection == 1 ? QStringLiteral(" Asc") : QStringLiteral(" Desc"));
    ShowSortIcon(column, curSortDirection);
    DataRefresh();
}

void ListWindow::fitColumns()
{
    if (m_fitToCells.isEmpty())
        return;
    const QFontMetrics metrics(dbgMain->font());
    const int margins = 2 * dbgMain->style()->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, dbgMain) + 8;
    for (const int column : std::as_const(m_fitToCells)) {
        int widest = 0;
        for (int r = 0, n = m_model->rowCount(); r < n; ++r)
            widest = qMax(widest, metrics.horizontalAdvance(m_model->index(r, column).data().toString()));
        if (dbgMain->columnWidth(column) < widest + margins)
            dbgMain->setColumnWidth(column, widest + margins);
    }
}

void ListWindow::ShowSortIcon(int ColIndex, qint32 Direction) { dbgMain->setSortMark(ColIndex, Direction); }

RowStyle ListWindow::FetchRowStyle(int) { return {}; }

QColor ListWindow::FetchCellColor(int, const QVariant &) { return {}; }

void ListWindow::openCard(int actionType, qint32 id)
{
    QWidget *card = Forms::get(m_cardForm);
    if (!card)
        return;
    card->setProperty("mActionType", actionType);
    if (actionType != 1)
        card->setProperty("mCurID", id);
    Modal::exec(card);
    Forms::unload(m_cardForm); // every opening of a card starts over
}

void ListWindow::refreshAfterCard()
{
    if (m_cardRefresh == CardRefresh::Always || autoDataRefresh())
        DataRefresh();
}

void ListWindow::AddNew()
{
    if (m_cardForm.isEmpty())
        return;
    openCard(1, 0);
    refreshAfterCard();
}

void ListWindow::EditData()
{
    if (m_cardForm.isEmpty())
        return;
    const QString key = dbgMain->columnText(0);
    if (key.isEmpty()) {
        Msg::info(QStringLiteral("请先选定您要编辑的记录！"), QStringLiteral("提示"));
        return;
    }
    moveCloneToCurrent();
    openCard(editMode(), qint32(Val(key)));
    refreshAfterCard();
}

// The filter dialog writes curFilterSQL of the window in front, this one; confirmed or
// cancelled, the list is run again.
void ListWindow::ShowFilter()
{
    if (!m_filterForm.isEmpty()) {
        if (QWidget *filter = Forms::get(m_filterForm)) {
            Modal::exec(filter);
            Forms::unload(m_filterForm);
        }
    }
    DataRefresh();
}

void ListWindow::PrintPreview()
{
    if (!printList(true))
        Msg::error(m_previewFailure.text, m_previewFailure.title);
}

void ListWindow::PrintReport()
{
    if (!printList(false))
        Msg::error(m_printFailure.text, m_printFailure.title);
}

double ListWindow::gridTotal(int column) const
{
    const int field = curRecordSet ? curRecordSet->fieldIndex(dbgMain->dataField(column)) : -1;
    double sum = 0;
    for (int r = 0, n = field < 0 ? 0 : curRecordSet->recordCount(); r < n; ++r)
        sum += Val(curRecordSet->valueAt(r, field).toString());
    return sum;
}

QList<QVariant> ListWindow::statementTotals(const QString &fromWhere, const QList<int> &columns)
{
    QList<QVariant> totals;
    if (!rsClone || rsClone->recordCount() < 1) {
        for (int i = 0; i < columns.size(); ++i)
            totals << QVariant(0);
        return totals;
    }
    for (int i = 0; i < columns.size(); ++i)
        totals << QVariant();
    if (curFilterSQL.isEmpty())
        return totals;
    QStringList sums;
    for (int i = 0; i < columns.size(); ++i)
        sums << QStringLiteral("sum(%1) as TotalValue%2").arg(dbgMain->dataField(columns[i])).arg(i);
    RecordsetPtr rs = OpenRecordset(QStringLiteral("SELECT ") + sums.join(QLatin1Char(',')) + QStringLiteral(" from ")
                                    + fromWhere + curFilterSQL);
    if (!rs)
        return totals;
    rs->moveFirst();
    for (int i = 0; i < columns.size(); ++i)
        totals[i] = rs->eof() ? 0.0 : rs->field(QStringLiteral("TotalValue%1").arg(i)).toDouble();
    return totals;
}

QString ListWindow::totalText(const QVariant &value) { return value.isValid() ? numberText(value.toDouble()) : QString(); }

bool ListWindow::moveCloneToCurrent()
{
    const int bookmark = dbgMain->Bookmark();
    return rsClone && bookmark >= 0 && rsClone->setBookmark(bookmark);
}

void ListWindow::preparePrintInfo(DbGrid *grid)
{
    DbGridPrintInfo *info = grid->PrintInfo();
    info->PageFooter = QStringLiteral("\\t 第\\p页 共\\P页(") + DateTimeText(Clock::now())
                       + QStringLiteral("打印) ") + Session::CompanyName;
    info->PageHeaderFont.setPointSize(16);
    info->PageHeaderFont.setBold(true);
    info->RepeatColumnHeaders = true;
    info->PreviewCaption = QStringLiteral("打印预览");
    info->PreviewMaximize = true;
    info->PreviewInitZoom = 100;
}

// False when nothing printed, whatever the reason: the caller names the printer.
bool ListWindow::printList(bool preview)
{
    try {
        preparePrintInfo(dbgMain);
        dbgMain->PrintInfo()->PageHeader = m_pageHeader;
        return preview ? dbgMain->PrintInfo()->PrintPreview() : dbgMain->PrintInfo()->PrintData();
    } catch (const std::exception &) {
        return false;
    }
}

void ListWindow::Form_Activate() { SetToolState(objectName()); }

// A modal window this list opened itself is no change of child, so it stays while that is up.
void ListWindow::Form_Deactivate()
{
    if (m_unloadWhenLeft)
        Forms::unload(this);
}

// The main window puts list windows into its MDI area; the area says which child is in
// front. A modal window or another program taking the focus is no change of child.
bool ListWindow::event(QEvent *event)
{
    if (event->type() == QEvent::ParentChange || event->type() == QEvent::Show)
        watchMdiArea();
    return QWidget::event(event);
}

void ListWindow::watchMdiArea()
{
    auto *frame = qobject_cast<QMdiSubWindow *>(parentWidget());
    QMdiArea *area = frame ? frame->mdiArea() : nullptr;
    if (area == m_area)
        return;
    if (m_area)
        disconnect(m_area, nullptr, this, nullptr);
    m_area = area;
    if (area) {
        connect(area, &QMdiArea::subWindowActivated, this, &ListWindow::subWindowActivated);
        if (area->activeSubWindow() == frame)
            subWindowActivated(frame);
    }
}

void ListWindow::subWindowActivated(QMdiSubWindow *window)
{
    if (!window)
        return;
    const bool mine = window->widget() == this;
    if (mine && !m_active) {
        m_active = true;
        Form_Activate();
    } else if (!mine && m_active) {
        m_active = false;
        Form_Deactivate();
    }
}
