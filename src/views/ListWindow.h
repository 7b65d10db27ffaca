#pragma once
#include "data/Recordset.h"
#include "data/RecordsetModel.h"

#include "platform/DbGrid.h"

#include <QPointer>
#include <QWidget>

class QMdiArea;
class QMdiSubWindow;

// What every list window shares: one grid, dbgMain, filling the window; the query kept in
// three parts (short, filter, sort) and joined on each refresh; sorting by a click on a head
// with one direction for the whole window; the current row kept over a refresh; the list
// printing; and telling the main window when the window comes to the front. A window
// derived from it gives its columns, its totals, its sort names and its row colours.
class ListWindow : public QWidget {
    Q_OBJECT
    Q_PROPERTY(QString curShortSQL MEMBER curShortSQL)
    Q_PROPERTY(QString curFilterSQL MEMBER curFilterSQL)
    Q_PROPERTY(QString curSortSQL MEMBER curSortSQL)
    Q_PROPERTY(QString curFullSQL MEMBER curFullSQL)
    Q_PROPERTY(qint32 curSortDirection MEMBER curSortDirection)
public:
    explicit ListWindow(QWidget *parent = nullptr);

    RecordsetPtr curRecordSet;
    RecordsetPtr rsClone; // moved by bookmark to read a row without moving the grid
    QString curShortSQL;
    QString curFilterSQL;
    QString curSortSQL;
    QString curFullSQL;
    qint32 curSortDirection = 0; // 1 ascending
    int curBookmark = -1;
    DbGrid *dbgMain;

    // The print settings every printed list shares: page footer with page, page count, the
    // time of printing and the company; a large bold page header; heads on every page; a
    // maximised preview at full size.
    static void preparePrintInfo(DbGrid *grid);

public slots:
    virtual void DataRefresh();
    void ShowSortIcon(int ColIndex, qint32 Direction);

protected:
    void setColumns(const QList<GridColumn> &columns);
    RecordsetModel *gridModel() const { return m_model; }

    // Opens the query as it stands and shows it with its totals (the load step's opening).
    void openQuery();
    // The footers; the grid's rows and rsClone are current when it runs.
    virtual void ShowTotal() {}
    // The column name to sort on for a field, where a bare name would be ambiguous.
    virtual QString sortFieldFor(const QString &field) const { return field; }
    // The row colour of a row, read through rsClone; the default style when not overridden.
    virtual RowStyle FetchRowStyle(int bookmark);
    // Moves rsClone to the grid's current row; false with no current row.
    bool moveCloneToCurrent();
    // Prints the grid as a list under the given page header; false when nothing printed.
    bool printList(const QString &pageHeader, bool preview);

    // The window came to the front among the main window's children / another one did.
    virtual void Form_Activate();
    virtual void Form_Deactivate() {}

    bool event(QEvent *event) override;

private:
    void headClick(int column);
    void watchMdiArea();
    void subWindowActivated(QMdiSubWindow *window);

    RecordsetModel *m_model;
    QPointer<QMdiArea> m_area;
    bool m_active = false;
};
