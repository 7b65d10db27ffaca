#include "ListWindow.h"

#include "data/Gateway.h"
#include "data/Session.h"

#include "platform/Clock.h"
#include "platform/Forms.h"
#include "platform/VbRules.h"

#include <QEvent>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QVBoxLayout>

ListWindow::ListWindow(QWidget *parent)
    : QWidget(parent), dbgMain(new DbGrid(this)), m_model(new RecordsetModel(this))
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

void ListWindow::openQuery()
{
    curRecordSet = OpenRecordset(curShortSQL + curFilterSQL + curSortSQL);
    if (!curRecordSet)
        return;
    rsClone = curRecordSet->clone();
    m_model->setRecordset(curRecordSet);
    dbgMain->MoveFirst();
    ShowTotal();
}

// A failed step leaves the grid as the gateway left it; the steps after it still run.
void ListWindow::DataRefresh()
{
    curBookmark = dbgMain->Bookmark();
    // The same ticket stays current when it is still listed, wherever the new order puts it.
    QVariant keptID;
    if (curRecordSet && curBookmark >= 0)
        keptID = curRecordSet->valueAt(dbgMain->currentRow(), curRecordSet->fieldIndex(QStringLiteral("ID")));

    m_model->setRecordset(nullptr);
    curRecordSet.reset();
    rsClone.reset();
    curFullSQL = curShortSQL + curFilterSQL + curSortSQL;
    curRecordSet = OpenRecordset(curFullSQL);
    m_model->setRecordset(curRecordSet);
    if (!curRecordSet)
        return;
    rsClone = curRecordSet->clone();
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
    const QString field = dbgMain->dataField(column);
    curSortDirection = curSortDirection == 0 ? 1 : 0;
    const QString name = sortFieldFor(field);
    curSortSQL = QStringLiteral(" ORDER BY ") + name
                 + (curSortDirection == 1 ? QStringLiteral(" Asc") : QStringLiteral(" Desc"));
    ShowSortIcon(column, curSortDirection);
    DataRefresh();
}

void ListWindow::ShowSortIcon(int ColIndex, qint32 Direction) { dbgMain->setSortMark(ColIndex, Direction); }

RowStyle ListWindow::FetchRowStyle(int) { return {}; }

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

bool ListWindow::printList(const QString &pageHeader, bool preview)
{
    preparePrintInfo(dbgMain);
    dbgMain->PrintInfo()->PageHeader = pageHeader;
    return preview ? dbgMain->PrintInfo()->PrintPreview() : dbgMain->PrintInfo()->PrintData();
}

void ListWindow::Form_Activate() { SetToolState(objectName()); }

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
