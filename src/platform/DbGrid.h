#pragma once
#include "GridRoles.h"

#include <QColor>
#include <QFont>
#include <QTableView>
#include <functional>

class QLabel;
class QPrinter;
class DbGrid;
class DbGridFooter;

// How one row is drawn; an invalid colour keeps the grid's own.
struct RowStyle {
    QColor foreground;
    QColor background;
    bool strikeOut = false;
};

// The print settings of a grid and its list printing: page header and footer ("\t" moves to
// the next of the three sections, "\p" is the page number, "\P" the page count), the header
// font, whether column heads repeat on every page, and how the preview opens. The printer
// keeps what the user chose in PageSetup for the grid's life.
class DbGridPrintInfo : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString PageHeader MEMBER PageHeader)
    Q_PROPERTY(QString PageFooter MEMBER PageFooter)
    Q_PROPERTY(QFont PageHeaderFont MEMBER PageHeaderFont)
    Q_PROPERTY(bool RepeatColumnHeaders MEMBER RepeatColumnHeaders)
    Q_PROPERTY(QString PreviewCaption MEMBER PreviewCaption)
    Q_PROPERTY(bool PreviewMaximize MEMBER PreviewMaximize)
    Q_PROPERTY(int PreviewInitZoom MEMBER PreviewInitZoom)
public:
    explicit DbGridPrintInfo(DbGrid *grid);
    ~DbGridPrintInfo() override;

    QString PageHeader;
    QString PageFooter;
    QFont PageHeaderFont;
    bool RepeatColumnHeaders = false;
    QString PreviewCaption;
    bool PreviewMaximize = false;
    int PreviewInitZoom = 100;

    QPrinter *printer();

public slots:
    // Each gives false when nothing could be printed (no printer, nothing to draw on).
    bool PrintPreview();
    bool PrintData();
    void PageSetup();

public:
    // Tests and the PDF export send the printed list to a file instead of the printer.
    static void setOutputFile(const QString &pdfPath);

private:
    DbGrid *m_grid;
    QPrinter *m_printer = nullptr;
};

// The grid of every list window: a read-only table with a title line above the heads, a
// footer line below the rows, sort marks in the heads and row styles asked of the window row
// by row. Its model gives each column's field and width and each row's bookmark (GridRoles.h),
// so Bookmark() is the snapshot's bookmark of the current row, as the windows' clones expect.
class DbGrid : public QTableView {
    Q_OBJECT
    Q_PROPERTY(QString Caption READ Caption WRITE setCaption)
public:
    explicit DbGrid(QWidget *parent = nullptr);

    QString Caption() const;
    void setCaption(const QString &caption);

    void setModel(QAbstractItemModel *model) override;

    int columnCount() const;
    QString dataField(int column) const;
    // Columns(i).Value and .Text of the current row: invalid and empty with no current row.
    QVariant columnValue(int column) const;
    QString columnText(int column) const;

    void setFooterVisible(bool visible);
    bool footerVisible() const;
    void setFooterText(int column, const QString &text);
    QString footerText(int column) const;

    // The heading mark of a sort: 1 ascending, 0 descending on column; column -1 clears it.
    void setSortMark(int column, int direction);
    int sortMarkColumn() const;
    int sortMarkDirection() const;

    // The row bookmark of the current row; -1 with none. Setting one that is no longer among
    // the rows leaves the current row where it is and gives false.
    int Bookmark() const;
    bool setBookmark(int bookmark);
    // Selects a row by position (clamped); with no rows there is no current row.
    void setCurrentRow(int row);
    int currentRow() const;

    // The window's row colours, given a row's bookmark.
    using RowStyleCallback = std::function<RowStyle(int bookmark)>;
    void setRowStyleCallback(RowStyleCallback callback);
    RowStyle rowStyle(int row) const;

    DbGridPrintInfo *PrintInfo() const { return m_printInfo; }

    Q_INVOKABLE bool AtBOF() const; // BOF and EOF of the rows (EOF is a C macro)
    Q_INVOKABLE bool AtEOF() const;

public slots:
    void MoveFirst();
    void MoveLast();
    void MoveNext();
    void MovePrevious();
    void PageSetup();

signals:
    void HeadClick(int column);
    void DblClick();

protected:
    void updateGeometries() override;
    void currentChanged(const QModelIndex &current, const QModelIndex &previous) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void applyColumnLayout();
    void fitHeads();
    void fitFooters();
    void layoutFrame();

    QLabel *m_title;
    DbGridFooter *m_footer;
    DbGridPrintInfo *m_printInfo;
    RowStyleCallback m_rowStyle;
    QStringList m_footerTexts;
    QStringList m_layoutFields; // the columns whose widths were last applied
    int m_sortColumn = -1;
    int m_sortDirection = 0;
    bool m_atBof = false;
    bool m_atEof = false;
    bool m_inLayout = false;

    friend class DbGridFooter;
    friend class DbGridDelegate;
};
