#pragma once
#include <QWidget>

class PageLayout;

// Shows a page layout as paper with its fields, at screen size, and lets the user move a
// field by dragging it and resize it by dragging its bottom right corner. A right click on a
// field is handed to the owner, which decides what to offer. Changes go straight into the
// layout; isChanged() tells whether anything moved since the last setChanged(false). The arrow
// keys nudge the chosen field by one screen pixel, for fine work on pre-printed paper.
class PageDesigner : public QWidget {
    Q_OBJECT
public:
    explicit PageDesigner(QWidget *parent = nullptr);

    void setPage(PageLayout *page);
    PageLayout *page() const { return m_page; }

    bool isChanged() const { return m_changed; }
    void setChanged(bool changed) { m_changed = changed; }

    // Widget pixels per twip: 96 dpi on screen.
    static constexpr double Zoom = 96.0 / 1440.0;
    QRect fieldArea(const QString &name) const; // where the field is drawn, in widget pixels
    QString fieldAt(const QPoint &pos) const;   // topmost field under pos, empty when none
    QString selected() const { return m_selected; }

    QSize sizeHint() const override;

signals:
    void fieldRightClicked(const QString &name, const QPoint &globalPos);
    void layoutChanged();

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    enum class Drag { None, Move, Resize };
    QPoint origin() const; // the top left margin corner, in widget pixels
    void refreshSize();
    void place(const QRect &twips);

    PageLayout *m_page = nullptr;
    bool m_changed = false;
    QString m_selected;
    Drag m_drag = Drag::None;
    QPoint m_pressPos;
    QRect m_pressRect; // twips
};
