#include "PageDesigner.h"

#include "PageLayout.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

namespace {
constexpr int PaperOffset = 12;  // pixels of grey around the paper
constexpr int CornerGrip = 6;    // pixels at a field's bottom right that start a resize
constexpr int MinimumTwips = 120;

int toTwips(int pixels) { return qRound(pixels / PageDesigner::Zoom); }
}

PageDesigner::PageDesigner(QWidget *parent) : QWidget(parent)
{
    setMouseTracking(true);
    setFocusPolicy(Qt::ClickFocus);
    setAutoFillBackground(true);
    QPalette pal = palette();
    pal.setColor(QPalette::Window, QColor(128, 128, 128));
    setPalette(pal);
}

void PageDesigner::setPage(PageLayout *page)
{
    m_page = page;
    m_selected.clear();
    m_changed = false;
    refreshSize();
    update();
}

QSize PageDesigner::sizeHint() const
{
    if (!m_page)
        return QSize(400, 300);
    return QSize(qRound(m_page->paperWidth * Zoom) + 2 * PaperOffset,
                 qRound(m_page->paperHeight * Zoom) + 2 * PaperOffset);
}

void PageDesigner::refreshSize()
{
    setMinimumSize(sizeHint());
    resize(sizeHint());
}

QPoint PageDesigner::origin() const
{
    if (!m_page)
        return QPoint(PaperOffset, PaperOffset);
    return QPoint(PaperOffset + qRound(m_page->leftMargin * Zoom),
                  PaperOffset + qRound(m_page->topMargin * Zoom));
}

QRect PageDesigner::fieldArea(const QString &name) const
{
    const PageField *f = m_page ? m_page->field(name) : nullptr;
    if (!f)
        return QRect();
    const QRect &r = f->rect;
    return QRect(origin() + QPoint(qRound(r.left() * Zoom), qRound(r.top() * Zoom)),
                 QSize(qMax(4, qRound(r.width() * Zoom)), qMax(4, qRound(r.height() * Zoom))));
}

QString PageDesigner::fieldAt(const QPoint &pos) const
{
    if (!m_page)
        return QString();
    for (auto it = m_page->fields.crbegin(); it != m_page->fields.crend(); ++it)
        if (fieldArea(it->name).adjusted(0, 0, 1, 1).contains(pos))
            return it->name;
    return QString();
}

void PageDesigner::paintEvent(QPaintEvent *)
{
    QPainter p(this);
    if (!m_page)
        return;
    const QRect paper(PaperOffset, PaperOffset, qRound(m_page->paperWidth * Zoom),
                      qRound(m_page->paperHeight * Zoom));
    p.fillRect(paper.translated(3, 3), QColor(90, 90, 90));
    p.fillRect(paper, Qt::white);
    // The band that holds the fields, so the user sees where the ticket ends.
    const QRect band(origin(), QSize(paper.right() - origin().x() - PaperOffset,
                                     qRound(m_page->bodyHeight * Zoom)));
    p.setPen(QPen(QColor(160, 190, 230), 1, Qt::DashLine));
    p.drawRect(band);

    for (const auto &f : m_page->fields) {
        const QRect area = fieldArea(f.name);
        const bool chosen = f.name == m_selected;
        p.setPen(QPen(chosen ? QColor(0, 90, 200) : QColor(150, 150, 150), 1,
                      f.visible ? Qt::SolidLine : Qt::DotLine));
        p.setBrush(chosen ? QBrush(QColor(225, 238, 255)) : QBrush(Qt::NoBrush));
        p.drawRect(area);

        QFont font = f.font();
        font.setPixelSize(qMax(6, qRound(f.fontSize * 20 * Zoom)));
        p.setFont(font);
        p.setPen(f.visible ? Qt::black : QColor(170, 170, 170));
        p.drawText(area.adjusted(2, 0, -1, 0), Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                   f.text);
        if (chosen)
            p.fillRect(QRect(area.bottomRight() - QPoint(CornerGrip - 1, CornerGrip - 1),
                             QSize(CornerGrip, CornerGrip)),
                       QColor(0, 90, 200));
    }
}

void PageDesigner::mousePressEvent(QMouseEvent *event)
{
    const QPoint pos = event->position().toPoint();
    const QString hit = fieldAt(pos);
    if (hit != m_selected) {
        m_selected = hit;
        update();
    }
    if (hit.isEmpty()) {
        m_drag = Drag::None;
        return;
    }
    if (event->button() == Qt::RightButton) {
        m_drag = Drag::None;
        emit fieldRightClicked(hit, event->globalPosition().toPoint());
        return;
    }
    if (event->button() != Qt::LeftButton)
        return;
    const QRect area = fieldArea(hit);
    const QPoint fromCorner = area.bottomRight() - pos;
    m_drag = fromCorner.x() < CornerGrip && fromCorner.y() < CornerGrip ? Drag::Resize : Drag::Move;
    m_pressPos = pos;
    m_pressRect = m_page->field(hit)->rect;
}

void PageDesigner::mouseMoveEvent(QMouseEvent *event)
{
    const QPoint pos = event->position().toPoint();
    if (m_drag == Drag::None || !(event->buttons() & Qt::LeftButton)) {
        const QString over = fieldAt(pos);
        const QRect area = fieldArea(over);
        const QPoint fromCorner = area.bottomRight() - pos;
        setCursor(over.isEmpty() ? Qt::ArrowCursor
                  : fromCorner.x() < CornerGrip && fromCorner.y() < CornerGrip ? Qt::SizeFDiagCursor
                                                                                : Qt::SizeAllCursor);
        return;
    }
    if (!m_page->field(m_selected))
        return;
    const QPoint delta = pos - m_pressPos;
    QRect r = m_pressRect;
    if (m_drag == Drag::Move) {
        r.moveTopLeft(r.topLeft() + QPoint(toTwips(delta.x()), toTwips(delta.y())));
        // A field stays on the paper.
        r.moveLeft(qBound(-m_page->leftMargin, r.left(), m_page->paperWidth - m_page->leftMargin - 1));
        r.moveTop(qBound(-m_page->topMargin, r.top(), m_page->paperHeight - m_page->topMargin - 1));
    } else {
        r.setWidth(qMax(MinimumTwips, r.width() + toTwips(delta.x())));
        r.setHeight(qMax(MinimumTwips, r.height() + toTwips(delta.y())));
    }
    place(r);
}

void PageDesigner::place(const QRect &twips)
{
    PageField *f = m_page ? m_page->field(m_selected) : nullptr;
    if (!f || twips == f->rect)
        return;
    f->rect = twips;
    m_changed = true;
    emit layoutChanged();
    update();
}

void PageDesigner::mouseReleaseEvent(QMouseEvent *) { m_drag = Drag::None; }

void PageDesigner::keyPressEvent(QKeyEvent *event)
{
    const PageField *f = m_page ? m_page->field(m_selected) : nullptr;
    const int step = toTwips(1);
    QPoint by;
    switch (event->key()) {
    case Qt::Key_Left: by = QPoint(-step, 0); break;
    case Qt::Key_Right: by = QPoint(step, 0); break;
    case Qt::Key_Up: by = QPoint(0, -step); break;
    case Qt::Key_Down: by = QPoint(0, step); break;
    default: break;
    }
    if (!f || by.isNull()) {
        QWidget::keyPressEvent(event);
        return;
    }
    place(f->rect.translated(by));
}
