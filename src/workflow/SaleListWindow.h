#pragma once
#include "views/ListWindow.h"

#include <QVariant>

class TicketOperations;

// The ticket lists: the sale list and the three clerk lists. They run the same query over
// tickets and their customers, open a ticket in the ticket window, filter with the sale
// filter, print the list and the current ticket, and colour a row blue while something of
// the figures the window looks after is still outstanding, grey once the ticket is closed.
class SaleListWindow : public ListWindow {
    Q_OBJECT
public:
    // The pairs of figures a window looks after: ordered/delivered, owed/paid, empties.
    enum Pair { Amount = 1, Money = 2, Container = 4 };

    ~SaleListWindow() override;

    // The ticket number in the current row (Columns(0)); empty with no current row.
    QString currentTicket() const;

public slots:
    void AddNew();
    void EditData();
    void ShowFilter();
    void PrintSale();
    void PrintPreview();
    void PrintReport();
    // The database's sum of a column's field over the filter: 0 for an empty list, nothing
    // (a blank footer) when no filter is set.
    QVariant GetColTotalValue(int ColIndex);

protected:
    // viewOnly: tickets open for reading only, and the list refreshes after every ticket
    // window, whatever the setting of automatic refresh says.
    SaleListWindow(int outstandingPairs, bool viewOnly, QWidget *parent = nullptr);

    // Sets the query and, with automatic refresh on, opens it. To be called at the end of the
    // deriving window's constructor, once its columns are set.
    void Form_Load();

    // The totals of several columns, each as GetColTotalValue gives it, in one statement.
    QList<QVariant> columnTotals(const QList<int> &columns);
    // Footer text of a total: the plain number, or blank for no value.
    static QString totalText(const QVariant &value);
    // "合      计" under the date column and the window's sums; gives the footers' numbers.
    QList<double> showSums(const QList<int> &columns);

    QString sortFieldFor(const QString &field) const override;
    RowStyle FetchRowStyle(int bookmark) override;

    TicketOperations *ops() const { return m_ops; }

private:
    friend class TicketOperations;
    void openTicket(int actionType, qint32 id);
    bool refreshAfterTicket() const;

    int m_pairs;
    bool m_viewOnly;
    TicketOperations *m_ops;
};

// Column helpers shared by the four lists.
namespace SaleColumns {
GridColumn text(const QString &caption, const QString &field, int widthTwips, Qt::Alignment align);
GridColumn number(const QString &caption, const QString &field, int widthTwips, Qt::Alignment align);
bool autoDataRefresh();
// A number as the lists and their messages write it: plain, with as many decimals as it has.
QString numberText(double value);
}
