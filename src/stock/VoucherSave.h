#pragma once
#include <QString>

class LineTable;

// What the voucher window hands to the database: the header as the user typed it and the
// direction chosen. Totals are the texts the window shows.
struct VoucherInput {
    QString paperID;
    QString createDate;
    QString totalAmount;
    QString totalMoney;
    QString detail;
    QString stationID;
    bool goodsOut = false; // '1' out of the store, '0' into it
};

// Stores a hand-made stock voucher: its header and every line together, in one transaction,
// or nothing at all. The gateway reports a refused statement itself; a commit the database
// refuses is told here. Each save gives false when the voucher was not stored.
class VoucherSave {
public:
    // A new voucher; its number is read back inside the same transaction.
    static bool insert(const VoucherInput &input, const LineTable &lines, qint32 *newID = nullptr);
    // A stored voucher: its header rewritten (date and origin kept) and its lines replaced.
    static bool update(qint32 id, const VoucherInput &input, const LineTable &lines);

    static QString insertStatement(const VoucherInput &input, qint16 userID);
    static QString updateStatement(qint32 id, const VoucherInput &input, qint16 userID);
    // The statement of one line (a row with a product code).
    static QString lineStatement(qint32 storeID, const LineTable &lines, int row);

private:
    static bool writeLines(qint32 storeID, const LineTable &lines);
    static bool refused();
};
