#pragma once
#include <QAbstractTableModel>
#include <QVariant>
#include <QVector>
#include <functional>

// The lines of a ticket (or a stock voucher): seven columns per row, of which the grid shows
// the first six. Below the last line the grid shows one empty row; a value committed there
// makes a new line. A row whose code column is blank does not count anywhere.
class TicketLines : public QAbstractTableModel {
    Q_OBJECT
public:
    enum Column { ProductID, ProductName, ProductUnit, ProductPrice, ProductAmount, ProductMoney, Spare };
    static constexpr int ColumnCount = 7;
    static constexpr int ShownColumns = 6;

    // The three due figures of a set of lines.
    struct Totals {
        qint32 amount = 0;
        double money = 0;
        qint32 containers = 0;
    };

    explicit TicketLines(QObject *parent = nullptr);

    // Called before a typed value is stored: the handler may change the row (a product code
    // fills the line) and may refuse the value, which leaves the cell as it was.
    using BeforeUpdate = std::function<bool(int row, int column, const QString &text)>;
    // Called after a typed value is stored.
    using AfterUpdate = std::function<void(int row, int column)>;
    void setHandlers(BeforeUpdate before, AfterUpdate after);

    // The stored lines, without the empty row for typing.
    int lineCount() const { return int(m_rows.size()); }
    QVariant value(int row, int column) const;
    QString text(int row, int column) const;
    void setValue(int row, int column, const QVariant &value);
    void clearRow(int row);
    void clear();
    void appendLine(const QVector<QVariant> &values);
    // True when the row holds a line: its trimmed code is not blank.
    bool isLine(int row) const;

    // Fills the row from an active product of that code: name, unit, price, quantity 1 and
    // the money of one. False, and the row untouched, when there is no such product.
    bool fillProduct(int row, const QString &code);
    // Line money from the quantity and the price as typed (the leading number of each).
    void computeMoney(int row);
    // Sums of the lines. Quantities count as whole numbers and the empties as 16-bit ones,
    // so a line too large for that raises an overflow (VbError).
    Totals totals() const;
    static bool hasContainer(const QString &productCode);

    // Grid display of the price and money columns: money as "￥##,###,###.00", "0" when it
    // is not above zero.
    static QString displayText(int column, const QVariant &value);

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    int columnCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    bool setData(const QModelIndex &index, const QVariant &value, int role = Qt::EditRole) override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

    // Background of the locked info columns.
    void setInfoBrush(const QVariant &brush) { m_infoBrush = brush; }
    static bool isLocked(int column);

signals:
    void linesChanged();

private:
    void emitRowChanged(int row);

    QVector<QVector<QVariant>> m_rows;
    BeforeUpdate m_before;
    AfterUpdate m_after;
    QVariant m_infoBrush;
};
