#include "SaleListWindow.h"

#include "TicketOperations.h"

#include "data/Gateway.h"
#include "platform/Clock.h"
#include "platform/Forms.h"
#include "platform/Modal.h"
#include "platform/Prompter.h"
#include "platform/VbError.h"
#include "platform/VbRules.h"

namespace {
const QString ListQuery = QStringLiteral(
    "SELECT Sale.ID as ID,Sale.CreateDate as CreateDate,Sale.UserID as UserID,Sale.FinishFlag,"
    "Sale.SenderID as SenderID,Customer.Address as Address,TotalAmount,TotalMoney,TotalContainer,"
    "TransferFee,InContainer,OutAmount,InMoney FROM Sale,Customer where Sale.CustomerID=Customer.ID ");
const QString PageHeader = QStringLiteral("\\t销售单据一览表");
}

QString SaleColumns::numberText(double value) { return QString::number(value, 'g', 15); }

GridColumn SaleColumns::text(const QString &caption, const QString &field, int widthTwips, Qt::Alignment align)
{
    GridColumn c;
    c.caption = caption;
    c.field = field;
    c.widthTwips = widthTwips;
    c.alignment = align | Qt::AlignVCenter;
    return c;
}

GridColumn SaleColumns::number(const QString &caption, const QString &field, int widthTwips, Qt::Alignment align)
{
    GridColumn c = text(caption, field, widthTwips, align);
    c.format = [](const QVariant &v) { return v.isNull() ? QString() : numberText(v.toDouble()); };
    return c;
}

bool SaleColumns::autoDataRefresh()
{
    try {
        return GetSysValue(QStringLiteral("AutoDataRefresh")) == QLatin1String("1");
    } catch (const VbError &) {
        return false; // the gateway has said why
    }
}

SaleListWindow::SaleListWindow(int outstandingPairs, bool viewOnly, QWidget *parent)
    : ListWindow(parent), m_pairs(outstandingPairs), m_viewOnly(viewOnly), m_ops(new TicketOperations(this))
{
    connect(dbgMain, &DbGrid::DblClick, this, &SaleListWindow::EditData);
}

SaleListWindow::~SaleListWindow() { delete m_ops; }

// Today's tickets and every ticket still open. The date is fixed when the window loads, so a
// session past midnight keeps yesterday's until a filter replaces it.
void SaleListWindow::Form_Load()
{
    curFilterSQL = QStringLiteral(" and (Sale.FinishFlag='0' or Sale.CreateDate=") + JetDate(Clock::today())
                   + QStringLiteral(")");
    curShortSQL = ListQuery;
    curSortSQL = QStringLiteral(" ORDER BY Sale.ID Desc");
    if (SaleColumns::autoDataRefresh())
        openQuery();
}

QString SaleListWindow::currentTicket() const { return dbgMain->columnText(0); }

void SaleListWindow::openTicket(int actionType, qint32 id)
{
    QWidget *ticket = Forms::get(QStringLiteral("frmSale"));
    if (!ticket)
        return;
    ticket->setProperty("mActionType", actionType);
    if (actionType != 1)
        ticket->setProperty("mCurID", id);
    Modal::exec(ticket);
    Forms::unload(QStringLiteral("frmSale"));
}

bool SaleListWindow::refreshAfterTicket() const { return m_viewOnly || SaleColumns::autoDataRefresh(); }

void SaleListWindow::AddNew()
{
    openTicket(1, 0);
    if (refreshAfterTicket())
        DataRefresh();
}

void SaleListWindow::EditData()
{
    if (currentTicket().isEmpty()) {
        Msg::info(QStringLiteral("请先选定您要编辑的记录！"), QStringLiteral("提示"));
        return;
    }
    int mode = 0;
    if (!m_viewOnly && moveCloneToCurrent())
        mode = rsClone->text(QStringLiteral("FinishFlag")) == QLatin1String("1") ? 0 : 2;
    openTicket(mode, qint32(Val(currentTicket())));
    if (refreshAfterTicket())
        DataRefresh();
}

// The filter dialog writes curFilterSQL of the window in front, this one; confirmed or
// cancelled, the list is run again.
void SaleListWindow::ShowFilter()
{
    if (QWidget *filter = Forms::get(QStringLiteral("frmSaleFilter"))) {
        Modal::exec(filter);
        Forms::unload(QStringLiteral("frmSaleFilter"));
    }
    DataRefresh();
}

void SaleListWindow::PrintSale()
{
    const QString ticket = currentTicket();
    if (ticket.isEmpty())
        return;
    try {
        ::PrintSale(qint32(Val(ticket)));
    } catch (const std::exception &) {
        Msg::error(QStringLiteral("打印单据时出现错误！"), QStringLiteral("错误"));
    }
}

void SaleListWindow::PrintPreview()
{
    bool printed = false;
    try {
        printed = printList(PageHeader, true);
    } catch (const std::exception &) {
    }
    if (!printed)
        Msg::error(QStringLiteral("打印预览失败，请检查您的系统中是否正确安装了打印机！"), QStringLiteral("预览"));
}

void SaleListWindow::PrintReport()
{
    bool printed = false;
    try {
        printed = printList(PageHeader, false);
    } catch (const std::exception &) {
    }
    if (!printed)
        Msg::error(QStringLiteral("打印失败，请检查您的系统中是否正确安装了打印机！"), QStringLiteral("打印"));
}

QVariant SaleListWindow::GetColTotalValue(int ColIndex) { return columnTotals({ColIndex}).value(0); }

// Totals come from the database over the whole filter, not from the rows on screen; with no
// filter at all they stay blank.
QList<QVariant> SaleListWindow::columnTotals(const QList<int> &columns)
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
    RecordsetPtr rs = OpenRecordset(QStringLiteral("SELECT ") + sums.join(QLatin1Char(','))
                                    + QStringLiteral(" from Sale,Customer where Sale.CustomerID=Customer.ID ")
                                    + curFilterSQL);
    if (!rs)
        return totals;
    rs->moveFirst();
    for (int i = 0; i < columns.size(); ++i)
        totals[i] = rs->eof() ? 0.0 : rs->field(QStringLiteral("TotalValue%1").arg(i)).toDouble();
    return totals;
}

QString SaleListWindow::totalText(const QVariant &value)
{
    return value.isValid() ? SaleColumns::numberText(value.toDouble()) : QString();
}

QList<double> SaleListWindow::showSums(const QList<int> &columns)
{
    dbgMain->setFooterText(1, QStringLiteral("合      计"));
    const QList<QVariant> totals = columnTotals(columns);
    QList<double> read;
    for (int i = 0; i < columns.size(); ++i) {
        dbgMain->setFooterText(columns[i], totalText(totals[i]));
        read << Val(dbgMain->footerText(columns[i]));
    }
    return read;
}

// Only these two names are in both tables.
QString SaleListWindow::sortFieldFor(const QString &field) const
{
    if (field == QLatin1String("ID"))
        return QStringLiteral("Sale.ID");
    if (field == QLatin1String("CreateDate"))
        return QStringLiteral("Sale.CreateDate");
    return field;
}

RowStyle SaleListWindow::FetchRowStyle(int bookmark)
{
    if (!rsClone || !rsClone->setBookmark(bookmark))
        return {};
    auto owing = [this](const char *total, const char *done) {
        return rsClone->field(QLatin1String(total)).toDouble() - rsClone->field(QLatin1String(done)).toDouble() > 0;
    };
    const bool outstanding = ((m_pairs & Amount) && owing("TotalAmount", "OutAmount"))
                             || ((m_pairs & Money) && owing("TotalMoney", "InMoney"))
                             || ((m_pairs & Container) && owing("TotalContainer", "InContainer"));
    if (outstanding)
        return {QColor(0, 0, 255), QColor()};
    if (rsClone->text(QStringLiteral("FinishFlag")) == QLatin1String("1"))
        return {QColor(), QColor(224, 224, 224)};
    return {};
}
