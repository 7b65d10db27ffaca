#pragma once
#include <QFont>
#include <QList>
#include <QSizeF>
#include <QStringList>
#include <QVector>

class DbGrid;
class DbGridPrintInfo;
class QPainter;
class QPrinter;

// Prints a grid as a list: the page header, the column heads (on every page when asked),
// the rows, the grid's footer line after the last row, and the page footer. A list wider
// than the page is shrunk to fit when that keeps it readable, and otherwise printed in
// bands of whole columns, each band on its own pages.
namespace GridPrinter {

// The three sections of a header or footer text, split at each "\t" (backslash and t), with
// "\p" as the page number and "\P" as the page count.
QStringList sections(const QString &text, int page, int pageCount);

struct Page {
    int band = 0;        // index into Plan::bands
    int firstRow = 0;
    int rowCount = 0;
    bool heads = false;  // column heads at the top
    bool footers = false; // the grid's footer line after the rows
};

struct Plan {
    double scale = 1.0;            // drawing scale from the grid's sizes to the page
    QList<QVector<int>> bands;      // columns (model indexes) of each band, in display order
    QList<Page> pages;
};

// How the list falls onto pages of the given printable size, in the printer's device units
// at the given resolution.
Plan plan(const DbGrid &grid, const DbGridPrintInfo &info, const QSizeF &page, int resolution);

// Draws every page on the printer; false when the printer cannot be drawn on.
bool print(const DbGrid &grid, const DbGridPrintInfo &info, QPrinter *printer);
}
