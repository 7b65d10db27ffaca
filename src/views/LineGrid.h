#pragma once
#include "data/Recordset.h"

#include <QStyledItemDelegate>
#include <QTableView>

class LineTable;
class RecordsetModel;

// The product drop-down of the code column: the code can be typed, or picked from the
// active products shown with name, unit and price.
class ProductDropDown : public QStyledItemDelegate {
    Q_OBJECT
public:
    explicit ProductDropDown(QObject *parent = nullptr);
    void setRows(const RecordsetPtr &rows);

    QWidget *createEditor(QWidget *parent, const QStyleOptionViewItem &option,
                          const QModelIndex &index) const override;
    void setEditorData(QWidget *editor, const QModelIndex &index) const override;
    void setModelData(QWidget *editor, QAbstractItemModel *model, const QModelIndex &index) const override;

private:
    RecordsetModel *m_products;
};

// The editable grid of lines (dbgDetail). Typing in a cell starts editing it; Enter commits
// and moves on the way a line is keyed: code, then quantity, then the next line's code. Tab
// and Shift+Tab step through the cells that take typing, line by line, and leave the grid
// after the code of the row where the next line starts. A refused cell opens again.
class LineGrid : public QTableView {
    Q_OBJECT
public:
    explicit LineGrid(QWidget *parent = nullptr);
    void setLines(LineTable *lines);
    LineTable *lines() const { return m_lines; }
    ProductDropDown *productDropDown() const { return m_dropDown; }
    // Commits the cell being edited as leaving it would; false when its value was refused.
    bool finishEditing();

protected:
    void closeEditor(QWidget *editor, QAbstractItemDelegate::EndEditHint hint) override;
    void keyPressEvent(QKeyEvent *event) override;
    bool focusNextPrevChild(bool next) override;

private:
    // The next (or previous) cell that takes typing, or an invalid index past either end.
    QModelIndex typedCell(const QModelIndex &from, bool next) const;
    // Moves to that cell, or leaves the grid when there is none.
    void step(bool next);

    LineTable *m_lines = nullptr;
    ProductDropDown *m_dropDown;
    bool m_refused = false;
};
