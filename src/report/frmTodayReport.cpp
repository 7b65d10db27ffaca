#include "frmTodayReport.h"

#include "PeriodClosing.h"
#include "frmSetTodayReport.h"

#include "data/Gateway.h"
#include "platform/Clock.h"
#include "platform/Forms.h"
#include "platform/Modal.h"
#include "platform/VbRules.h"

namespace {
const QStringList ReportFields{QStringLiteral("Item"), QStringLiteral("Amount"), QStringLiteral("Money")};
}

frmTodayReport::frmTodayReport(QWidget *parent) : ListWindow(parent)
{
    setObjectName(QStringLiteral("frmTodayReport"));
    setWindowTitle(QStringLiteral("实时盘点"));
    setUnloadWhenLeft(true);
    setUnsortedColumn(0);
    setUnsortedColumn(1);
    setUnsortedColumn(2);
    dbgMain->setFooterVisible(true);

    // Form_Load: the title is made before the dialog runs, so a day chosen there reaches the
    // title only at the next refresh, while the figures already follow it.
    ReportDate = Clock::today();
    curStationID = 1;
    SetMyDBGrid();
    askReport();
}

namespace {
// An unknown station gives the empty name, and the title goes on without it.
QString stationName(qint32 id) { return GetFieldByID(id, QStringLiteral("Station"), QStringLiteral("Name")); }
}

QString frmTodayReport::reportTitle() const
{
    return stationName(curStationID) + DateText(ReportDate) + QStringLiteral("日盘点表");
}

QString frmTodayReport::printHeader() const
{
    return QStringLiteral("\\t") + DateText(ReportDate) + stationName(curStationID) + QStringLiteral("日盘点表");
}

void frmTodayReport::SetMyDBGrid()
{
    GridColumn item = textColumn(QStringLiteral("         项           目"), ReportFields[0], 4000, Qt::AlignLeft);
    item.background = QColor(224, 224, 224);
    GridColumn amount = textColumn(QStringLiteral("  数     量   "), ReportFields[1], 3000, Qt::AlignHCenter);
    GridColumn money = textColumn(QStringLiteral(" 金    额  "), ReportFields[2], 3000, Qt::AlignHCenter);
    // A blank cell stays blank; a figure shows as money.
    money.format = [](const QVariant &v) {
        const QString text = v.toString();
        return text.isEmpty() ? QString() : Format(Val(text), QStringLiteral("Currency"));
    };
    setColumns({item, amount, money});
    dbgMain->setCaption(reportTitle());
}

void frmTodayReport::showReport(const ReportArray &rows)
{
    QVector<Recordset::Row> cells;
    cells.reserve(rows.size());
    for (const ReportRow &row : rows)
        cells.append({row[0], row[1], row[2]});
    showRows(ReportFields, cells);
}

void frmTodayReport::DataRefresh() { SetMyDBGrid(); }

void frmTodayReport::askReport()
{
    auto *dialog = Forms::get<frmSetTodayReport>(QStringLiteral("frmSetTodayReport"));
    if (!dialog)
        return;
    dialog->setReportWindow(this);
    Modal::exec(dialog);
    Forms::unload(QStringLiteral("frmSetTodayReport"));
}

void frmTodayReport::ShowFilter()
{
    askReport();
    DataRefresh();
}

void frmTodayReport::PrintSale() { PrintReport(); }

void frmTodayReport::PrintPreview()
{
    setPageHeader(printHeader());
    ListWindow::PrintPreview();
}

void frmTodayReport::PrintReport()
{
    setPageHeader(printHeader());
    ListWindow::PrintReport();
}

void frmTodayReport::FinishToday() { PeriodClosing().FinishToday(); }
