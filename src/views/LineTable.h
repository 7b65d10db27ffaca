#pragma once
#include <QAbstractTableModel>
#include <QVariant>
#include <QVector>

// The lines of a ticket or a stock voucher (xayDetail) with the rules of keying them: a
// product code fills its line, price and quantity must be numbers other than 0, the line
// money follows, and a blank code takes the line off. Seven columns per row, of which the
// grid shows the first six. Below the last line stands one empty row; a value committed
// there makes a new line. A row whose trimmed code is blank does not count anywhere.
class LineTable : public QAbstractTableModel {
    Q_OBJECT
public:
    enum Column { ProductID, ProductName, ProductUnit, ProductPrice, ProductAmount, ProductMoney, Spare };
    static constexpr int ColumnCount = 7;
    static constexpr int ShownColumns = 6;

    // What tells a ticket's lines from a voucher's.
    struct Options {
        int rows = 0;              // empty rows the grid shows from the start
        bool countEmpties = false; // totals count the empties due back
    };
    static Options ticket() { return {0, true}; }
    static Options voucher() { return {10, false}; }

    // The due figures of a set of lines; containers stays 0 where empties are not counted.
    struct Totals {
        qint32 amount = 0;
        double money = 0;
        qint32 containers = 0;
    };

    explicit LineTable(Options options, QObject *parent = nullptr);
    const Options &options() const { return m_options; }

    // The stored lines, without the empty row for typing.
    int lineCount() const { return int(m_rows.size()); }
    QVariant value(int row, int column) const;
    QString text(int row, int column) const;
    void setValue(int row, int column, const QVariant &value);
    void clearRow(int row);
    void clear();
    void appendLine(const QVector<QVariant> &values);
    bool isLine(int row) const;

    // Checks a typed value before it is stored, with the messages the operator knows; false
    // when the cell is refused. A code fills the row from its product, a blank one empties it.
    bool BeforeColUpdate(int row, int column, const QString &text);
    // After a stored value: the line money from quantity and price, then cellCommitted.
    void AfterColUpdate(int row, int column);
    // Fills the row from an active product: name, unit, price, quantity 1 and the money of
    // one. False, and the row untouched, when there is no such product.
    bool FillProductInfoByID(int row, const QString &id);
    // What the grid shows for a stored value of the columns marked for it (price, money).
    static QString FormatText(int column, const QVariant &value);

    // Sums of the lines. Quantities count as whole numbers and the empties as 16-bit ones,
    // so a line too large for that raises an overflow (VbError).
    Totals totals() const;
    static bool hasContainer(const QString &productCode);

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
    // A typed value was stored and its line recomputed: time for the window's totals.
    void cellCommitted(int row, int column);
    // A typed value was refused after its message; the cell should open again.
    void cellRefused(int row, int column);

private:
    void emitRowChanged(int row);

    Options m_options;
    QVector<QVector<QVariant>> m_rows;
    QVariant m_infoBrush;
};
