#include "GridPrinter.h"

#include "DbGrid.h"
#include "Modal.h"

#include <QEvent>
#include <QGraphicsView>
#include <QHeaderView>
#include <QScrollBar>
#include <QPageSetupDialog>
#include <QPainter>
#include <QPrintPreviewDialog>
#include <QPrintPreviewWidget>
#include <QPrinter>
#include <QPrinterInfo>
#include <QScreen>
#include <QTimer>

namespace {
QString g_outputFile;

// Below this a shrunk list is too small to read; wider lists print in bands instead.
constexpr double MinScale = 0.6;

struct Metrics {
    double toDevice = 1.0; // grid pixels to device units
    double rowH = 0;
    double headsH = 0;     // column heads: two lines when a caption is wider than its column
    double headerH = 0;    // page header band
    double footerH = 0;    // page footer band
};

double fontHeight(const QFont &font, int resolution)
{
    const double points = font.pointSizeF() > 0 ? font.pointSizeF() : font.pixelSize() * 72.0 / 96.0;
    return points * resolution / 72.0 * 1.25;
}

Metrics metrics(const DbGrid &grid, const DbGridPrintInfo &info, int resolution)
{
    Metrics m;
    const int screenDpi = grid.logicalDpiX() > 0 ? grid.logicalDpiX() : 96;
    m.toDevice = double(resolution) / screenDpi;
    m.rowH = fontHeight(grid.font(), resolution) * 1.5;
    m.headsH = m.rowH;
    QFont bold = grid.font();
    bold.setBold(true);
    const QFontMetrics fm(bold);
    const QHeaderView *head = grid.horizontalHeader();
    for (int c = 0; grid.model() && c < grid.model()->columnCount(); ++c)
        if (fm.horizontalAdvance(grid.model()->headerData(c, Qt::Horizontal).toString()) + 6 > head->sectionSize(c))
            m.headsH = m.rowH * 1.8;
    m.headerH = info.PageHeader.isEmpty() ? 0 : fontHeight(info.PageHeaderFont, resolution) * 1.8;
    m.footerH = info.PageFooter.isEmpty() ? 0 : fontHeight(grid.font(), resolution) * 2.0;
    return m;
}

QVector<int> shownColumns(const DbGrid &grid)
{
    QVector<int> columns;
    const QHeaderView *head = grid.horizontalHeader();
    for (int visual = 0; visual < head->count(); ++visual) {
        const int c = head->logicalIndex(visual);
        if (!head->isSectionHidden(c) && head->sectionSize(c) > 0)
            columns << c;
    }
    return columns;
}

void drawSections(QPainter &p, const QRectF &band, const QStringList &parts)
{
    const int aligns[3] = {Qt::AlignLeft, Qt::AlignHCenter, Qt::AlignRight};
    for (int i = 0; i < parts.size() && i < 3; ++i)
        p.drawText(band, aligns[i] | Qt::AlignVCenter, parts[i]);
}

int alignmentOf(const DbGrid &grid, int column)
{
    QAbstractItemModel *m = grid.model();
    const QVariant a = m && m->rowCount() > 0 ? m->index(0, column).data(Qt::TextAlignmentRole) : QVariant();
    return (a.isValid() ? (a.toInt() & Qt::AlignHorizontal_Mask) : Qt::AlignLeft) | Qt::AlignVCenter;
}

void drawCell(QPainter &p, const QRectF &cell, const QString &text, int align)
{
    p.drawRect(cell);
    const QRectF inner = cell.adjusted(cell.height() * 0.15, 0, -cell.height() * 0.15, 0);
    p.drawText(inner, align, p.fontMetrics().elidedText(text, Qt::ElideRight, int(inner.width())));
}
}

QStringList GridPrinter::sections(const QString &text, int page, int pageCount)
{
    QString filled = text;
    filled.replace(QLatin1String("\\p"), QString::number(page));
    filled.replace(QLatin1String("\\P"), QString::number(pageCount));
    return filled.split(QLatin1String("\\t"));
}

GridPrinter::Plan GridPrinter::plan(const DbGrid &grid, const DbGridPrintInfo &info, const QSizeF &page,
                                    int resolution)
{
    Plan plan;
    const Metrics m = metrics(grid, info, resolution);
    const QVector<int> columns = shownColumns(grid);
    const QHeaderView *head = grid.horizontalHeader();

    double total = 0;
    for (int c : columns)
        total += head->sectionSize(c) * m.toDevice;
    if (total <= page.width() || total <= 0) {
        plan.bands << columns;
    } else if (page.width() / total >= MinScale) {
        plan.scale = page.width() / total;
        plan.bands << columns;
    } else {
        QVector<int> band;
        double used = 0;
        for (int c : columns) {
            const double w = head->sectionSize(c) * m.toDevice;
            if (!band.isEmpty() && used + w > page.width()) {
                plan.bands << band;
                band.clear();
                used = 0;
            }
            band << c;
            used += w;
        }
        plan.bands << band;
    }

    // Rows per page in the scaled page; the footer line counts as one more row at the end.
    const double height = page.height() / plan.scale;
    const double body = height - (m.headerH + m.footerH) / plan.scale;
    const int rows = grid.model() ? grid.model()->rowCount() : 0;
    const int lines = rows + (grid.footerVisible() ? 1 : 0);
    int line = 0;
    bool first = true;
    do {
        const bool heads = first || info.RepeatColumnHeaders;
        const int room = qMax(1, int((body - (heads ? m.headsH : 0)) / m.rowH));
        const int take = qMin(room, lines - line);
        Page p;
        p.heads = heads;
        p.firstRow = qMin(line, rows);
        p.rowCount = qMax(0, qMin(line + take, rows) - line);
        p.footers = grid.footerVisible() && line + take == lines;
        for (int b = 0; b < plan.bands.size(); ++b) {
            p.band = b;
            plan.pages << p;
        }
        line += take;
        first = false;
    } while (line < lines);
    return plan;
}

bool GridPrinter::print(const DbGrid &grid, const DbGridPrintInfo &info, QPrinter *printer)
{
    QPainter p;
    if (!printer || !p.begin(printer))
        return false;
    const int resolution = printer->resolution();
    const QRectF pageRect = printer->pageRect(QPrinter::DevicePixel);
    const Plan plan = GridPrinter::plan(grid, info, pageRect.size(), resolution);
    const Metrics m = metrics(grid, info, resolution);
    const QHeaderView *head = grid.horizontalHeader();
    QAbstractItemModel *model = grid.model();

    QFont body = grid.font();
    QFont bold = body;
    bold.setBold(true);
    const double width = pageRect.width() / plan.scale;
    const double height = pageRect.height() / plan.scale;

    for (int n = 0; n < plan.pages.size(); ++n) {
        if (n > 0)
            printer->newPage();
        const Page &page = plan.pages[n];
        p.save();
        p.scale(plan.scale, plan.scale);
        p.setPen(QPen(Qt::black, 0));

        if (!info.PageHeader.isEmpty()) {
            p.setFont(info.PageHeaderFont);
            drawSections(p, QRectF(0, 0, width, m.headerH / plan.scale),
                         sections(info.PageHeader, n + 1, int(plan.pages.size())));
        }
        double y = m.headerH / plan.scale;
        const QVector<int> &band = plan.bands[page.band];
        auto cellX = [&](int index, double *x, double h) {
            const double w = head->sectionSize(band[index]) * m.toDevice;
            const QRectF r(*x, y, w, h);
            *x += w;
            return r;
        };

        if (page.heads) {
            p.setFont(bold);
            double x = 0;
            for (int i = 0; i < band.size(); ++i) {
                const QRectF r = cellX(i, &x, m.headsH);
                p.fillRect(r, QColor(230, 230, 230));
                p.drawRect(r);
                p.drawText(r.adjusted(m.rowH * 0.1, 0, -m.rowH * 0.1, 0),
                           Qt::AlignCenter | Qt::TextWrapAnywhere,
                           model ? model->headerData(band[i], Qt::Horizontal).toString() : QString());
            }
            y += m.headsH;
        }
        QFont struck = body;
        struck.setStrikeOut(true);
        for (int row = page.firstRow; row < page.firstRow + page.rowCount; ++row) {
            p.setFont(grid.rowStyle(row).strikeOut ? struck : body);
            double x = 0;
            for (int i = 0; i < band.size(); ++i)
                drawCell(p, cellX(i, &x, m.rowH), model->index(row, band[i]).data().toString(),
                         alignmentOf(grid, band[i]));
            y += m.rowH;
        }
        if (page.footers) {
            p.setFont(bold);
            double x = 0;
            for (int i = 0; i < band.size(); ++i) {
                const QRectF r = cellX(i, &x, m.rowH);
                p.drawRect(r);
            }
            // Footer texts may run on over empty cells to their right, as on screen.
            x = 0;
            for (int i = 0; i < band.size(); ++i) {
                const QRectF r = cellX(i, &x, m.rowH);
                const QString text = grid.footerText(band[i]);
                if (text.isEmpty())
                    continue;
                double right = width;
                double nx = x;
                for (int j = i + 1; j < band.size(); ++j) {
                    if (!grid.footerText(band[j]).isEmpty()) {
                        right = nx;
                        break;
                    }
                    nx += head->sectionSize(band[j]) * m.toDevice;
                }
                QRectF area(r.left(), r.top(), qMax(r.width(), right - r.left()), r.height());
                area.adjust(m.rowH * 0.15, 0, -m.rowH * 0.15, 0);
                const int align = area.width() > r.width() ? int(Qt::AlignLeft | Qt::AlignVCenter)
                                                           : alignmentOf(grid, band[i]);
                p.drawText(area, align, p.fontMetrics().elidedText(text, Qt::ElideRight, int(area.width())));
            }
        }
        if (!info.PageFooter.isEmpty()) {
            p.setFont(body);
            drawSections(p, QRectF(0, height - m.footerH / plan.scale, width, m.footerH / plan.scale),
                         sections(info.PageFooter, n + 1, int(plan.pages.size())));
        }
        p.restore();
    }
    return p.end();
}

namespace {
class PreviewZoom : public QObject {
public:
    PreviewZoom(QPrintPreviewDialog *dialog, double zoom) : QObject(dialog), m_dialog(dialog), m_zoom(zoom) {}

protected:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (watched == m_dialog && event->type() == QEvent::Show)
            QTimer::singleShot(0, this, [this] { apply(); });
        return false;
    }

private:
    void apply()
    {
        auto *view = m_dialog->findChild<QPrintPreviewWidget *>();
        if (!view)
            return;
        view->setZoomMode(QPrintPreviewWidget::CustomZoom);
        view->setZoomFactor(m_zoom);
        view->updatePreview(); // lets the dialog's zoom box show the new size
        if (auto *pages = view->findChild<QGraphicsView *>()) // the top of the first page
            pages->verticalScrollBar()->setValue(pages->verticalScrollBar()->minimum());
    }
    QPrintPreviewDialog *m_dialog;
    double m_zoom;
};
}

DbGridPrintInfo::DbGridPrintInfo(DbGrid *grid) : QObject(grid), m_grid(grid)
{
    PageHeaderFont = grid->font();
}

DbGridPrintInfo::~DbGridPrintInfo() { delete m_printer; }

void DbGridPrintInfo::setOutputFile(const QString &pdfPath) { g_outputFile = pdfPath; }

QPrinter *DbGridPrintInfo::printer()
{
    if (!m_printer)
        m_printer = new QPrinter(QPrinter::HighResolution);
    return m_printer;
}

bool DbGridPrintInfo::PrintPreview()
{
    QPrintPreviewDialog preview(printer(), m_grid->window());
    preview.setObjectName(QStringLiteral("dlgPrintPreview"));
    preview.setWindowTitle(PreviewCaption);
    bool drawn = true;
    connect(&preview, &QPrintPreviewDialog::paintRequested, &preview,
            [this, &drawn](QPrinter *target) { drawn = GridPrinter::print(*m_grid, *this, target) && drawn; });
    // Without a window manager to honour it, the maximised state alone leaves the dialog at
    // its small default size, so the geometry is set too.
    if (PreviewMaximize) {
        if (QScreen *screen = m_grid->screen())
            preview.setGeometry(screen->availableGeometry());
        preview.setWindowState(Qt::WindowMaximized);
    }
    // The zoom is set once the dialog is shown and laid out; before that the preview fits
    // the page to whatever size the dialog had.
    const double zoom = PreviewInitZoom / 100.0;
    auto *applyZoom = new PreviewZoom(&preview, zoom);
    preview.installEventFilter(applyZoom);
    Modal::exec(&preview);
    return drawn;
}

bool DbGridPrintInfo::PrintData()
{
    QPrinter *target = printer();
    if (!g_outputFile.isEmpty()) {
        target->setOutputFormat(QPrinter::PdfFormat);
        target->setOutputFileName(g_outputFile);
    } else if (target->outputFormat() != QPrinter::NativeFormat || QPrinterInfo::availablePrinters().isEmpty()) {
        return false;
    }
    return GridPrinter::print(*m_grid, *this, target);
}

void DbGridPrintInfo::PageSetup()
{
    QPageSetupDialog dialog(printer(), m_grid->window());
    dialog.setObjectName(QStringLiteral("dlgPageSetup"));
    dialog.setWindowTitle(QStringLiteral("打印设置"));
    Modal::exec(&dialog);
}
