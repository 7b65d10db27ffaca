#include "frmReport.h"

#include "ReportQuery.h"

#include "platform/Prompter.h"
#include "platform/VbRules.h"

#include <QPrinterInfo>

frmReport::frmReport(QWidget *parent) : ListWindow(parent)
{
    setObjectName(QStringLiteral("frmReport"));
    setWindowTitle(QStringLiteral("查询结果"));
    setFilterDialog(QStringLiteral("frmSaleFilter"));
}

void frmReport::showEvent(QShowEvent *event)
{
    // The dialog's choice arrives between loading and showing.
    if (!m_loaded)
        Form_Load();
    ListWindow::showEvent(event);
}

void frmReport::setChoice(const ReportChoice &choice)
{
    curReportType = choice.type;
    mCurID = choice.id;
    curReportStart = choice.start;
    curReportEnd = choice.end;
    curStationID = choice.station;
}

void frmReport::Form_Load()
{
    m_loaded = true;
    SetMyReportCaption();
    SetMyDBGrid();
    const ReportQuery query(curReportType, curReportStart, curReportEnd, mCurID);
    curShortSQL = query.shortSql();
    curFilterSQL = query.filterSql();
    curGroupSQL = query.groupSql();
    curSortSQL = query.sortSql();
    curFullSQL = query.fullSql();
    openQuery();
}

void frmReport::SetMyDBGrid()
{
    const auto centred = Qt::AlignHCenter;
    setColumns({
        textColumn(QStringLiteral("日 期"), QStringLiteral("ReportDate"), 1200, centred),
        numberColumn(QStringLiteral("金额"), QStringLiteral("SumMoney"), 1800, centred),
        numberColumn(QStringLiteral("数量"), QStringLiteral("SumAmount"), 1800, centred),
        numberColumn(QStringLiteral("欠钱数"), QStringLiteral("LackMoney"), 1800, centred),
        numberColumn(QStringLiteral("欠瓶数"), QStringLiteral("LackContainer"), 1800, centred),
        numberColumn(QStringLiteral("送水费数"), QStringLiteral("TotalFee"), 1800, centred),
    });
    dbgMain->setCaption(curReportCaption);
    dbgMain->setFooterVisible(true);
}

void frmReport::SetMyReportCaption()
{
    curReportCaption = ReportQuery(curReportType, curReportStart, curReportEnd, mCurID).caption(curReportCaption);
    // The grid prints the title at the left of the page heading.
    setPageHeader(curReportCaption + QStringLiteral("\\t"));
}

void frmReport::ShowTotal()
{
    dbgMain->setFooterText(0, QStringLiteral("合     计:"));
    for (int column = 1; column <= 5; ++column)
        dbgMain->setFooterText(column, numberText(GetColTotalValue(column)));
}

// The footers add up what the grid shows, so a filter or a sort never needs a second query.
double frmReport::GetColTotalValue(int ColIndex)
{
    if (!rsClone || rsClone->recordCount() < 1)
        return 0;
    const QAbstractItemModel *rows = dbgMain->model();
    double sum = 0;
    for (int row = 0, n = rows->rowCount(); row < n; ++row)
        sum += Val(rows->index(row, ColIndex).data().toString());
    return sum;
}

QString frmReport::sortFieldFor(const QString &field) const
{
    return ReportQuery(curReportType, curReportStart, curReportEnd, mCurID).sortExpression(field);
}

void frmReport::PrintReport()
{
    preparePrintInfo(dbgMain);
    DbGridPrintInfo *info = dbgMain->PrintInfo();
    info->PageHeader = curReportCaption + QStringLiteral("\\t");
    QString failure;
    try {
        if (!info->PrintData())
            failure = QPrinterInfo::availablePrinters().isEmpty() ? QStringLiteral("没有安装打印机")
                                                                  : QStringLiteral("打印机未能打印");
    } catch (const std::exception &e) {
        failure = QString::fromLocal8Bit(e.what());
    }
    if (!failure.isEmpty())
        Msg::error(QStringLiteral("打印错误：") + failure, QStringLiteral("打印"));
}

void frmReport::PrintSale() { PrintReport(); }
