#include "DbGrid.h"

#include <QHeaderView>
#include <QLabel>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QStyle>
#include <QStyledItemDelegate>

// The footer line under the rows: one cell per column, bold on the tool-tip colour, following
// the heads when columns scroll or change width. A text longer than its cell runs on over the
// empty cells to its right, as the debt line of the last column does.
class DbGridFooter : public QWidget {
public:
    explicit DbGridFooter(DbGrid *grid) : QWidget(grid), m_grid(grid)
    {
        QFont bold = font();
        bold.setBold(true);
        setFont(bold);
    }
    QSize sizeHint() const override { return {0, fontMetrics().height() + 8}; }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter p(this);
        const QHeaderView *head = m_grid->horizontalHeader();
        const QColor back = palette().color(QPalette::ToolTipBase);
        const QColor line = palette().color(QPalette::Mid);
        p.fillRect(rect(), palette().color(QPalette::Window));
        const int n = head->count();
        for (int visual = 0; visual < n; ++visual) {
            const int column = head->logicalIndex(visual);
            if (head->isSectionHidden(column))
                continue;
            const QRect cell(head->sectionViewportPosition(column), 0, head->sectionSize(column), height());
            p.fillRect(cell, back);
            p.setPen(line);
            p.drawRect(cell.adjusted(0, 0, -1, -1));
        }
        p.setPen(palette().color(QPalette::ToolTipText));
        for (int visual = 0; visual < n; ++visual) {
            const int column = head->logicalIndex(visual);
            const QString text = m_grid->footerText(column);
            if (head->isSectionHidden(column) || text.isEmpty())
                continue;
            int right = width();
            for (int next = visual + 1; next < n; ++next) {
                const int other = head->logicalIndex(next);
                if (!head->isSectionHidden(other) && !m_grid->footerText(other).isEmpty()) {
                    right = head->sectionViewportPosition(other);
                    break;
                }
            }
            const int left = head->sectionViewportPosition(column);
            QRect area(left + 3, 0, qMax(head->sectionSize(column), right - left) - 6, height());
            int align = Qt::AlignVCenter;
            const QVariant a = m_grid->model() && m_grid->model()->rowCount() > 0
                                   ? m_grid->model()->index(0, column).data(Qt::TextAlignmentRole)
                                   : QVariant();
            align |= a.isValid() ? (a.toInt() & Qt::AlignHorizontal_Mask) : Qt::AlignLeft;
            if (area.width() > head->sectionSize(column))
                align = (align & ~Qt::AlignHorizontal_Mask) | Qt::AlignLeft;
            p.save();
            p.setClipRect(area);
            p.drawText(area, align, text);
            p.restore();
        }
    }

private:
    DbGrid *m_grid;
};

// Draws each row in the style the window gives for it. Styles are asked once per row and
// paint, not once per cell, since the window reads them from its snapshot.
class DbGridDelegate : public QStyledItemDelegate {
public:
    explicit DbGridDelegate(DbGrid *grid) : QStyledItemDelegate(grid), m_grid(grid) {}
    void reset() { m_row = -1; }

protected:
    void initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const override
    {
        QStyledItemDelegate::initStyleOption(option, index);
        if (index.row() != m_row) {
            m_row = index.row();
            m_style = m_grid->rowStyle(m_row);
        }
        if (m_style.foreground.isValid())
            option->palette.setColor(QPalette::Text, m_style.foreground);
        if (m_style.background.isValid())
            option->backgroundBrush = m_style.background;
        option->font.setStrikeOut(m_style.strikeOut);
    }

private:
    DbGrid *m_grid;
    mutable int m_row = -1;
    mutable RowStyle m_style;
};

DbGrid::DbGrid(QWidget *parent)
    : QTableView(parent), m_title(new QLabel(this)), m_footer(new DbGridFooter(this)),
      m_printInfo(new DbGridPrintInfo(this))
{
    m_title->setAlignment(Qt::AlignCenter);
    m_title->setAutoFillBackground(true);
    m_title->setFrameShape(QFrame::StyledPanel);
    m_title->hide();
    m_footer->hide();

    setEditTriggers(NoEditTriggers);
    setSelectionBehavior(SelectRows);
    setSelectionMode(SingleSelection);
    setItemDelegate(new DbGridDelegate(this));
    setVerticalScrollMode(ScrollPerPixel);
    setHorizontalScrollMode(ScrollPerPixel);
    setWordWrap(false);
    verticalHeader()->hide();
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 6);
    horizontalHeader()->setSectionsClickable(true);
    horizontalHeader()->setHighlightSections(false);
    horizontalHeader()->setSortIndicatorShown(false);
    connect(horizontalHeader(), &QHeaderView::sectionClicked, this, &DbGrid::HeadClick);
    connect(horizontalHeader(), &QHeaderView::sectionResized, m_footer, qOverload<>(&QWidget::update));
    connect(horizontalHeader(), &QHeaderView::sectionMoved, m_footer, qOverload<>(&QWidget::update));
    connect(horizontalScrollBar(), &QScrollBar::valueChanged, m_footer, qOverload<>(&QWidget::update));
}

QString DbGrid::Caption() const { return m_title->text(); }

void DbGrid::setCaption(const QString &caption)
{
    m_title->setText(caption);
    m_title->setVisible(!caption.isEmpty());
    updateGeometries();
}

void DbGrid::setModel(QAbstractItemModel *model)
{
    if (QAbstractItemModel *old = this->model())
        old->disconnect(this);
    QTableView::setModel(model);
    if (model) {
        connect(model, &QAbstractItemModel::modelReset, this, [this] {
            static_cast<DbGridDelegate *>(itemDelegate())->reset();
            m_atBof = m_atEof = false;
            applyColumnLayout();
        });
        connect(model, &QAbstractItemModel::headerDataChanged, this, &DbGrid::applyColumnLayout);
        connect(model, &QAbstractItemModel::dataChanged, this,
                [this] { static_cast<DbGridDelegate *>(itemDelegate())->reset(); });
    }
    applyColumnLayout();
}

// Widths come from the model's heads when the columns are set up; new rows under the same
// columns keep the widths the user has dragged.
void DbGrid::applyColumnLayout()
{
    QAbstractItemModel *m = model();
    if (!m)
        return;
    const int n = m->columnCount();
    m_footerTexts.resize(qMax(n, int(m_footerTexts.size())));
    QStringList fields;
    for (int c = 0; c < n; ++c)
        fields << dataField(c) + QLatin1Char('|') + m->headerData(c, Qt::Horizontal).toString();
    if (fields == m_layoutFields)
        return;
    m_layoutFields = fields;
    for (int c = 0; c < n; ++c) {
        const QVariant width = m->headerData(c, Qt::Horizontal, GridRole::Width);
        if (width.isValid() && horizontalHeader()->sectionSize(c) != width.toInt())
            setColumnWidth(c, width.toInt());
    }
    fitHeads();
    m_footer->update();
}

// Every head shows its whole caption, with room for the sort mark: heads that differ only
// in their first word (应收现金, 实收现金) must not be cut to look alike.
void DbGrid::fitHeads()
{
    QHeaderView *head = horizontalHeader();
    if (!model())
        return;
    const int room = 2 * style()->pixelMetric(QStyle::PM_HeaderMargin, nullptr, head)
                     + style()->pixelMetric(QStyle::PM_HeaderMarkSize, nullptr, head) + 8;
    for (int c = 0; c < head->count(); ++c) {
        if (head->isSectionHidden(c) || head->sectionSize(c) == 0)
            continue;
        const int needed = head->fontMetrics().horizontalAdvance(model()->headerData(c, Qt::Horizontal).toString()) + room;
        if (head->sectionSize(c) < needed)
            setColumnWidth(c, needed);
    }
}

int DbGrid::columnCount() const { return model() ? model()->columnCount() : 0; }

QString DbGrid::dataField(int column) const
{
    return model() ? model()->headerData(column, Qt::Horizontal, GridRole::DataField).toString() : QString();
}

QVariant DbGrid::columnValue(int column) const
{
    const int row = currentRow();
    if (row < 0 || !model())
        return QVariant();
    return model()->index(row, column).data(Qt::EditRole);
}

QString DbGrid::columnText(int column) const
{
    const int row = currentRow();
    if (row < 0 || !model())
        return QString();
    return model()->index(row, column).data(Qt::DisplayRole).toString();
}

void DbGrid::setFooterVisible(bool visible)
{
    m_footer->setVisible(visible);
    updateGeometries();
}

bool DbGrid::footerVisible() const { return !m_footer->isHidden(); }

void DbGrid::setFooterText(int column, const QString &text)
{
    if (column < 0)
        return;
    if (column >= m_footerTexts.size())
        m_footerTexts.resize(column + 1);
    m_footerTexts[column] = text;
    fitFooters();
    m_footer->update();
}

// A total never shows cut: its column widens when the text cannot run on to the right. Run
// again when the grid is shown, since the fonts it is shown with may differ from its own.
void DbGrid::fitFooters()
{
    QHeaderView *head = horizontalHeader();
    for (int column = 0; column < head->count() && column < m_footerTexts.size(); ++column) {
        const QString &text = m_footerTexts[column];
        if (text.isEmpty())
            continue;
        const int next = head->visualIndex(column) + 1;
        const bool runsOn = next >= head->count() || footerText(head->logicalIndex(next)).isEmpty();
        const int needed = m_footer->fontMetrics().horizontalAdvance(text) + 8;
        if (!runsOn && head->sectionSize(column) < needed)
            setColumnWidth(column, needed);
    }
}

void DbGrid::showEvent(QShowEvent *event)
{
    QTableView::showEvent(event);
    fitHeads();
    fitFooters();
}

void DbGrid::changeEvent(QEvent *event)
{
    QTableView::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) {
        QFont bold = font();
        bold.setBold(true);
        m_footer->setFont(bold);
        fitHeads();
        fitFooters();
    }
}

QString DbGrid::footerText(int column) const
{
    return column >= 0 && column < m_footerTexts.size() ? m_footerTexts[column] : QString();
}

void DbGrid::setSortMark(int column, int direction)
{
    m_sortColumn = column;
    m_sortDirection = direction;
    QHeaderView *head = horizontalHeader();
    if (column < 0) {
        head->setSortIndicatorShown(false);
        return;
    }
    // The heads draw Qt's descending order as the upward arrow that marks an ascending sort.
    head->setSortIndicator(column, direction == 1 ? Qt::DescendingOrder : Qt::AscendingOrder);
    head->setSortIndicatorShown(true);
}

int DbGrid::sortMarkColumn() const { return m_sortColumn; }
int DbGrid::sortMarkDirection() const { return m_sortDirection; }

int DbGrid::Bookmark() const
{
    const int row = currentRow();
    if (row < 0)
        return -1;
    const QVariant b = model()->index(row, 0).data(GridRole::Bookmark);
    return b.isValid() ? b.toInt() : row;
}

bool DbGrid::setBookmark(int bookmark)
{
    if (!model() || bookmark < 0)
        return false;
    const int rows = model()->rowCount();
    // Bookmarks follow the row order of an unfiltered snapshot, so look there first.
    if (bookmark < rows && Bookmark() != bookmark) {
        const QVariant b = model()->index(bookmark, 0).data(GridRole::Bookmark);
        if (!b.isValid() || b.toInt() == bookmark) {
            setCurrentRow(bookmark);
            return true;
        }
    }
    if (Bookmark() == bookmark)
        return true;
    const QModelIndexList hit = model()->match(model()->index(0, 0), GridRole::Bookmark, bookmark, 1,
                                               Qt::MatchExactly);
    if (hit.isEmpty())
        return false;
    setCurrentRow(hit.first().row());
    return true;
}

void DbGrid::setCurrentRow(int row)
{
    if (!model() || model()->rowCount() == 0)
        return;
    row = qBound(0, row, model()->rowCount() - 1);
    const QModelIndex at = model()->index(row, qMax(0, currentIndex().column()));
    setCurrentIndex(at);
    scrollTo(at);
    m_atBof = m_atEof = false;
}

int DbGrid::currentRow() const
{
    const QModelIndex at = currentIndex();
    return at.isValid() ? at.row() : -1;
}

void DbGrid::setRowStyleCallback(RowStyleCallback callback)
{
    m_rowStyle = std::move(callback);
    static_cast<DbGridDelegate *>(itemDelegate())->reset();
    viewport()->update();
}

RowStyle DbGrid::rowStyle(int row) const
{
    if (!m_rowStyle || !model() || row < 0 || row >= model()->rowCount())
        return {};
    const QVariant b = model()->index(row, 0).data(GridRole::Bookmark);
    return m_rowStyle(b.isValid() ? b.toInt() : row);
}

bool DbGrid::AtBOF() const { return !model() || model()->rowCount() == 0 || m_atBof; }
bool DbGrid::AtEOF() const { return !model() || model()->rowCount() == 0 || m_atEof; }

void DbGrid::MoveFirst() { setCurrentRow(0); }

void DbGrid::MoveLast()
{
    if (model())
        setCurrentRow(model()->rowCount() - 1);
}

// Moving past either end leaves the last row shown and marks the end, so that the next
// move brings the user back instead of losing the current row.
void DbGrid::MoveNext()
{
    if (!model() || model()->rowCount() == 0)
        return;
    const int row = currentRow();
    if (row >= model()->rowCount() - 1) {
        m_atEof = true;
        return;
    }
    setCurrentRow(row + 1);
}

void DbGrid::MovePrevious()
{
    if (!model() || model()->rowCount() == 0)
        return;
    const int row = currentRow();
    if (row <= 0) {
        if (row < 0)
            setCurrentRow(0);
        m_atBof = true;
        return;
    }
    setCurrentRow(row - 1);
}

void DbGrid::PageSetup() { m_printInfo->PageSetup(); }

void DbGrid::currentChanged(const QModelIndex &current, const QModelIndex &previous)
{
    QTableView::currentChanged(current, previous);
    m_atBof = m_atEof = false;
}

void DbGrid::mouseDoubleClickEvent(QMouseEvent *event)
{
    QTableView::mouseDoubleClickEvent(event);
    if (event->button() == Qt::LeftButton)
        emit DblClick();
}

// The base class lays out the heads and the rows; the title above the heads and the footer
// under the rows take their room from the rows, and the scroll range follows.
void DbGrid::updateGeometries()
{
    if (m_inLayout)
        return; // our own margin change below; the outer call finishes the layout
    m_inLayout = true;
    QTableView::updateGeometries();
    layoutFrame();
    m_inLayout = false;
}

void DbGrid::layoutFrame()
{
    QHeaderView *head = horizontalHeader();
    const QMargins old = viewportMargins();
    const int headH = head->isHidden() ? 0 : old.top();
    const int titleH = m_title->isHidden() ? 0 : m_title->sizeHint().height() + 4;
    const int footH = m_footer->isHidden() ? 0 : m_footer->sizeHint().height();
    const int left = old.left();
    const QMargins margins(left, headH + titleH, 0, footH);

    // Each bar is decided here, once, from what the rows and the columns need in the room
    // the new margins leave, the other bar's width counted; the ranges go in before the
    // margins, whose layout shows or hides the bars by them. Ranges taken from the room of
    // the moment let a list about as tall as its window show its bar, lose the room to it,
    // hide it again and so on for ever.
    const QSize room = maximumViewportSize()
                       + QSize(old.left() + old.right() - margins.left() - margins.right(),
                               old.top() + old.bottom() - margins.top() - margins.bottom());
    QScrollBar *bar = verticalScrollBar();
    QScrollBar *hbar = horizontalScrollBar();
    const int rows = verticalHeader()->length();
    const int columns = head->length();
    const bool vAsNeeded = verticalScrollBarPolicy() == Qt::ScrollBarAsNeeded;
    const bool hAsNeeded = horizontalScrollBarPolicy() == Qt::ScrollBarAsNeeded;
    bool needV = vAsNeeded && rows > room.height();
    const bool needH = hAsNeeded && columns > room.width() - (needV ? bar->sizeHint().width() : 0);
    if (needH && vAsNeeded && !needV)
        needV = rows > room.height() - hbar->sizeHint().height();
    const QSize view(room.width() - (needV ? bar->sizeHint().width() : 0),
                     room.height() - (needH ? hbar->sizeHint().height() : 0));
    // Set again from the room the rows really got: a bar shown as needed keeps the decision
    // above even where a style lays the rows out a pixel or two off the reckoning.
    const auto setRanges = [&](QSize size) {
        const int v = qMax(0, rows - size.height()), h = qMax(0, columns - size.width());
        bar->setRange(0, vAsNeeded ? (needV ? qMax(1, v) : 0) : v);
        bar->setPageStep(size.height());
        bar->setSingleStep(verticalHeader()->defaultSectionSize());
        hbar->setRange(0, hAsNeeded ? (needH ? qMax(1, h) : 0) : h);
        hbar->setPageStep(size.width());
    };
    setRanges(view);
    setViewportMargins(margins);
    const QRect vg = viewport()->geometry();
    setRanges(vg.size());

    if (!head->isHidden())
        head->setGeometry(vg.left(), vg.top() - headH, vg.width(), headH);
    if (!m_title->isHidden())
        m_title->setGeometry(vg.left() - left, vg.top() - headH - titleH, vg.width() + left, titleH);
    if (!m_footer->isHidden())
        m_footer->setGeometry(vg.left(), vg.bottom() + 1, vg.width(), footH);
    m_footer->update();
}
