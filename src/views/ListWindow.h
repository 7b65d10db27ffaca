#pragma once
#include "data/Recordset.h"
#include "data/RecordsetModel.h"

#include "platform/DbGrid.h"

#include <QPointer>
#include <QSet>
#include <QWidget>

class QMdiArea;
class QMdiSubWindow;

// Every list window of the program: one grid, dbgMain, filling the window; the query kept in
// parts (short, filter, group, sort) and joined on each refresh, or rows held in memory; sorting
// by a click on a head with one direction for the whole window; the current row kept over a
// refresh; opening the card window and the filter dialog by name and refreshing by the window's
// rule; printing the list; and telling the main window when the window comes to the front.
// A window built on it gives its query parts, its columns, its footers and its row colours.
class ListWindow : public QWidget {
    Q_OBJECT
    Q_PROPERTY(QString curShortSQL MEMBER curShortSQL)
    Q_PROPERTY(QString curFilterSQL MEMBER curFilterSQL)
    Q_PROPERTY(QString curGroupSQL MEMBER curGroupSQL)
    Q_PROPERTY(QString curSortSQL MEMBER curSortSQL)
    Q_PROPERTY(QString curFullSQL MEMBER curFullSQL)
    Q_PROPERTY(qint32 curSortDirection MEMBER curSortDirection)
public:
    // When the list runs again after its card window closes.
    enum class CardRefresh { WhenAutomatic, Always };

    explicit ListWindow(QWidget *parent = nullptr);

    RecordsetPtr curRecordSet;
    RecordsetPtr rsClone; // moved by bookmark to read a row without moving the grid
    QString curShortSQL;
    QString curFilterSQL;
    QString curGroupSQL; // between filter and order, for the summing reports
    QString curSortSQL;
    QString curFullSQL;
    qint32 curSortDirection = 0; // 1 ascending
    int curBookmark = -1;
    DbGrid *dbgMain;

    // The print settings every printed list shares: page footer with page, page count, the
    // time of printing and the company; a large bold page header; heads on every page; a
    // maximised preview at full size.
    static void preparePrintInfo(DbGrid *grid);

    // The shop's setting "AutoDataRefresh" is "1"; false when it cannot be read.
    static bool autoDataRefresh();
    // A number as the lists and their messages write it: plain, with as many decimals as it has.
    static QString numberText(double value);
    // Column helpers: a column showing its value's text, and one showing a plain number.
    static GridColumn textColumn(const QString &caption, const QString &field, int widthTwips,
                                 Qt::Alignment align);
    static GridColumn numberColumn(const QString &caption, const QString &field, int widthTwips,
                                   Qt::Alignment align);
    // A suspended record: struck through on the information background.
    static RowStyle suspendedRow();

public slots:
    virtual void DataRefresh();
    void ShowSortIcon(int ColIndex, qint32 Direction);
    void AddNew();
    void EditData();
    void ShowFilter();
    void PrintPreview();
    void PrintReport();

protected:
    void setColumns(const QList<GridColumn> &columns);
    // A click on this column's head changes neither order nor direction.
    void setUnsortedColumn(int column) { m_unsorted.insert(column); }
    // The column widens to its longest cell whenever rows arrive, so that values read whole
    // (phone numbers, dates) are never cut off; it never gets narrower than its own width.
    void setFitToCells(int column) { m_fitToCells.insert(column); }
    // The card window opened by AddNew and EditData, and when the list runs again afterwards.
    void setCardWindow(const QString &form, CardRefresh rule);
    void setFilterDialog(const QString &form) { m_filterForm = form; }
    void setPageHeader(const QString &header) { m_pageHeader = header; }
    // What the user is told when the preview or the print fails; the ticket lists' texts
    // unless a window words its own.
    struct PrintFailure {
        QString text;
        QString title;
    };
    void setPrintFailures(const PrintFailure &preview, const PrintFailure &print)
    {
        m_previewFailure = preview;
        m_printFailure = print;
    }
    // The window goes when another child window comes to the front, so each visit starts over.
    void setUnloadWhenLeft(bool unload) { m_unloadWhenLeft = unload; }
    RecordsetModel *gridModel() const { return m_model; }

    // The load step, once the deriving window has set its columns and query: the query runs
    // only with automatic refresh on, else the grid waits empty for tlRefresh.
    void Form_Load();
    // Opens the query as it stands and shows it with its totals (the load step's opening).
    void openQuery();
    // Rows held in memory instead of a query, shown, totalled and printed like any other.
    void showRows(const QStringList &fields, const QVector<Recordset::Row> &rows);

    // The footers; the grid's rows and rsClone are current when it runs.
    virtual void ShowTotal() {}
    // The column name to sort on for a field, where a bare name would be ambiguous.
    virtual QString sortFieldFor(const QString &field) const { return field; }
    // The row colour of a row, read through rsClone; the default style when not overridden.
    virtual RowStyle FetchRowStyle(int bookmark);
    // The text colour of one cell from its stored value, over the row's; none when not overridden.
    virtual QColor FetchCellColor(int column, const QVariant &value);
    // mActionType for EditData on the current row (rsClone is on it when there is one).
    virtual int editMode() { return 2; }
    // Moves rsClone to the grid's current row; false with no current row.
    bool moveCloneToCurrent();

    // The sum of a column's field over the rows the grid shows.
    double gridTotal(int column) const;
    // Sums of several columns' fields by the database over the filter, in one statement;
    // fromWhere is the statement's FROM part with its own condition. 0 each for an empty list,
    // nothing (a blank footer) when no filter is set.
    QList<QVariant> statementTotals(const QString &fromWhere, const QList<int> &columns);
    // Footer text of a total: the plain number, or blank for no value.
    static QString totalText(const QVariant &value);

    // The window came to the front among the main window's children / another one did.
    virtual void Form_Activate();
    virtual void Form_Deactivate();

    bool event(QEvent *event) override;

private:
    void headClick(int column);
    void fitColumns();
    void openCard(int actionType, qint32 id);
    void refreshAfterCard();
    bool printList(bool preview);
    void watchMdiArea();
    void subWindowActivated(QMdiSubWindow *window);

    RecordsetModel *m_model;
    QSet<int> m_unsorted;
    QSet<int> m_fitToCells;
    QString m_cardForm;
    CardRefresh m_cardRefresh = CardRefresh::WhenAutomatic;
    QString m_filterForm;
    QString m_pageHeader;
    PrintFailure m_previewFailure{QStringLiteral("打印预览失败，请检查您的系统中是否正确安装了打印机！"), QStringLiteral("预览")};
    PrintFailure m_printFailure{QStringLiteral("打印失败，请检查您的系统中是否正确安装了打印机！"), QStringLiteral("打印")};
    bool m_unloadWhenLeft = false;
    bool m_inMemory = false;
    QStringList m_memoryFields;
    QVector<Recordset::Row> m_memoryRows;
    QPointer<QMdiArea> m_area;
    bool m_active = false;
};
