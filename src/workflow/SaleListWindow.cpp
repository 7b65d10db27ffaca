#include "SaleListWindow.h"

#include "TicketOperations.h"

#include "data/Gateway.h"
#include "platform/Clock.h"
#include "platform/Prompter.h"
#include "platform/VbRules.h"

namespace {
const QString ListQuery = QStringLiteral(
    "SELECT Sale.ID as ID,Sale.CreateDate as CreateDate,Sale.UserID as UserID,Sale.FinishFlag,"
    "Sale.SenderID as SenderID,Customer.Address as Address,TotalAmount,TotalMoney,TotalContainer,"
    "TransferFee,InContainer,OutAmount,InMoney FROM Sale,Customer where Sale.CustomerID=Customer.ID ");
const QString TotalsFrom = QStringLiteral("Sale,Customer where Sale.CustomerID=Customer.ID ");
}

SaleListWindow::SaleListWindow(int outstandingPairs, bool viewOnly, QWidget *parent)
    : ListWindow(parent), m_pairs(outstandingPairs), m_viewOnly(viewOnly), m_ops(new TicketOperations(this))
{
    setCardWindow(QStringLiteral("frmSale"), viewOnly ? CardRefresh::Always : CardRefresh::WhenAutomatic);
    setFilterDialog(QStringLiteral("frmSaleFilter"));
    setPageHeader(QStringLiteral("\\t销售单据一览表"));
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
    ListWindow::Form_Load();
}

QString SaleListWindow::currentTicket() const { return dbgMain->columnText(0); }

// A closed ticket can only be read; the clerk lists never edit.
int SaleListWindow::editMode()
{
    if (m_viewOnly || !rsClone || dbgMain->Bookmark() < 0)
        return 0;
    return rsClone->text(QStringLiteral("FinishFlag")) == QLatin1String("1") ? 0 : 2;
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

// Totals come from the database over the whole filter, not from the rows on screen.
QVariant SaleListWindow::GetColTotalValue(int ColIndex) { return statementTotals(TotalsFrom, {ColIndex}).value(0); }

QList<double> SaleListWindow::showSums(const QList<int> &columns)
{
    dbgMain->setFooterText(1, QStringLiteral("合      计"));
    const QList<QVariant> totals = statementTotals(TotalsFrom, columns);
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
