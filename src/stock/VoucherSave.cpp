#include "VoucherSave.h"

#include "data/Gateway.h"
#include "data/Session.h"
#include "data/SqlText.h"
#include "platform/Prompter.h"
#include "views/LineTable.h"

namespace {
const QString Comma = QStringLiteral(",");
}

QString VoucherSave::insertStatement(const VoucherInput &input, qint16 userID)
{
    return QStringLiteral("insert into Store(PaperID,CreateDate,TotalAmount,TotalMoney,Detail,UserID,Direction,"
                          "HandInput,FinishFlag,StationID) values ('")
           + Sql::text(input.paperID) + QStringLiteral("',#") + Sql::date(input.createDate) + QStringLiteral("#,")
           + Sql::number(input.totalAmount) + Comma + Sql::number(input.totalMoney) + QStringLiteral(",'")
           + Sql::text(input.detail) + QStringLiteral("',") + QString::number(userID)
           + (input.goodsOut ? QStringLiteral(",'1','1','0',") : QStringLiteral(",'0','1','0',"))
           + Sql::number(input.stationID) + QStringLiteral(")");
}

QString VoucherSave::updateStatement(qint32 id, const VoucherInput &input, qint16 userID)
{
    return QStringLiteral("update Store set PaperID='") + Sql::text(input.paperID) + QStringLiteral("', Detail='")
           + Sql::text(input.detail) + QStringLiteral("', TotalAmount=") + Sql::number(input.totalAmount)
           + QStringLiteral(", TotalMoney=") + Sql::number(input.totalMoney) + QStringLiteral(",UserID=")
           + QString::number(userID) + QStringLiteral(", StationID=") + Sql::number(input.stationID)
           + (input.goodsOut ? QStringLiteral(", Direction='1' where ID=") : QStringLiteral(", Direction='0' where ID="))
           + QString::number(id);
}

QString VoucherSave::lineStatement(qint32 storeID, const LineTable &lines, int row)
{
    return QStringLiteral("insert into Store_detail(StoreID,ProductID,Price,MyAmount,MyMoney)  values(")
           + QString::number(storeID) + Comma + Sql::number(lines.text(row, LineTable::ProductID)) + Comma
           + Sql::number(lines.text(row, LineTable::ProductPrice)) + Comma
           + Sql::number(lines.text(row, LineTable::ProductAmount)) + Comma
           + Sql::number(lines.text(row, LineTable::ProductMoney)) + QStringLiteral(")");
}

bool VoucherSave::writeLines(qint32 storeID, const LineTable &lines)
{
    for (int row = 0; row < lines.lineCount(); ++row) {
        if (lines.isLine(row) && !ExecuteSql(lineStatement(storeID, lines, row)))
            return false;
    }
    return true;
}

// The input stays on the screen so that the user can save again.
bool VoucherSave::refused()
{
    Msg::error(QStringLiteral("库存单据没有保存：数据库没有接受这张单据，请检查输入后重新保存。"),
               QStringLiteral("系统错误"));
    return false;
}

bool VoucherSave::insert(const VoucherInput &input, const LineTable &lines, qint32 *newID)
{
    Transaction tx(Conn);
    // Without the transaction the header could be stored without its lines.
    if (!tx.begun())
        return refused();
    if (!ExecuteSql(insertStatement(input, Session::UserID)))
        return false;
    // Read inside the transaction, so it is this voucher's number.
    RecordsetPtr max = OpenRecordset(QStringLiteral("select max(ID) as MaxID from Store"));
    if (!max || max->recordCount() < 1)
        return false;
    max->moveFirst();
    const qint32 id = max->field(QStringLiteral("MaxID")).toInt();
    if (!writeLines(id, lines))
        return false;
    if (!tx.commit())
        return refused();
    if (newID)
        *newID = id;
    return true;
}

bool VoucherSave::update(qint32 id, const VoucherInput &input, const LineTable &lines)
{
    Transaction tx(Conn);
    if (!tx.begun())
        return refused();
    if (!ExecuteSql(updateStatement(id, input, Session::UserID)))
        return false;
    // A line delete that fails goes unnoticed: the lines are written again all the same.
    ExecuteSql(QStringLiteral("delete from store_detail where StoreID=") + QString::number(id));
    if (!writeLines(id, lines))
        return false;
    return tx.commit() || refused();
}
