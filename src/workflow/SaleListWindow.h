#pragma once
#include "views/ListWindow.h"

#include <QVariant>

class TicketOperations;

// The ticket lists: the sale list and the three clerk lists. They run the same query over
// tickets and their customers, open a ticket in the ticket window, filter with the sale
// filter, print the current ticket, and colour a row blue while something of the figures
// the window looks after is still outstanding, grey once the ticket is closed.
class SaleListWindow : public ListWindow {
    Q_OBJECT
public:
    // The pairs of figures a window looks after: ordered/delivered, owed/paid, empties.
    enum Pair { Amount = 1, Money = 2, Container = 4 };

    ~SaleListWindow() override;

    // The ticket number in the current row (Columns(0)); empty with no current row.
    QString currentTicket() const;

public slots:
    void PrintSale();
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

    // "合      计" under the date column and the database's sums of the given columns;
    // gives the numbers the footers show.
    QList<double> showSums(const QList<int> &columns);

    QString sortFieldFor(const QString &field) const override;
    RowStyle FetchRowStyle(int bookmark) override;
    int editMode() override;

    TicketOperations *ops() const { return m_ops; }

private:
    friend class TicketOperations;

    int m_pairs;
    bool m_viewOnly;
    TicketOperations *m_ops;
};
