#pragma once
#include "data/Recordset.h"

#include <QStyledItemDelegate>
#include <QTableView>

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

// The editable grid of ticket lines. Typing in a cell starts editing it; Enter commits and
// moves on the way a line is keyed: code, then quantity, then the next line's code. A cell
// whose value was refused opens again for correction.
class TicketGrid : public QTableView {
    Q_OBJECT
public:
    explicit TicketGrid(QWidget *parent = nullptr);
    ProductDropDown *productDropDown() const { return m_dropDown; }
    // Marks the cell being committed as refused, so that it opens again for correction.
    void refuseCommit() { m_refused = true; }

protected:
    void closeEditor(QWidget *editor, QAbstractItemDelegate::EndEditHint hint) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    ProductDropDown *m_dropDown;
    bool m_refused = false;
};
