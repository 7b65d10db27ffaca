#include "frmStoreAdmin.h"

#include "data/Gateway.h"
#include "platform/Prompter.h"
#include "platform/VbRules.h"

#include <cmath>

namespace {
enum Column { ColID, ColDate, ColPaperID, ColDirection, ColAmount, ColMoney, ColUser, ColDetail };
}

frmStoreAdmin::frmStoreAdmin(QWidget *parent) : ListWindow(parent)
{
    setObjectName(QStringLiteral("frmStoreAdmin"));
    setWindowTitle(QStringLiteral("库存管理"));
    setCardWindow(QStringLiteral("frmStore"), CardRefresh::WhenAutomatic);
    setFilterDialog(QStringLiteral("frmStoreFilter"));
    setPageHeader(QStringLiteral("\\t库存单据一览表"));
    SetMyDBGrid();
    curShortSQL = QStringLiteral(" SELECT * FROM Store");
    curFilterSQL.clear(); // the filter brings its own " WHERE "
    curSortSQL = QStringLiteral(" ORDER BY ID Asc");
    Form_Load();
}

QString frmStoreAdmin::directionText(const QVariant &direction)
{
    return direction.toString() == QLatin1String("1") ? QStringLiteral("出货单据") : QStringLiteral("进货单据");
}

// The sign is left to the cell's colour.
QString frmStoreAdmin::moneyText(const QVariant &money)
{
    const double v = Val(money.toString());
    return v == 0 ? QStringLiteral("0") : Format(std::abs(v), QStringLiteral("￥##,###,###.00"));
}

void frmStoreAdmin::SetMyDBGrid()
{
    GridColumn direction = textColumn(QStringLiteral("单据种类"), QStringLiteral("Direction"), 1000, Qt::AlignLeft);
    direction.format = directionText;
    GridColumn money = textColumn(QStringLiteral("金额"), QStringLiteral("TotalMoney"), 1600, Qt::AlignRight);
    money.format = moneyText;
    setColumns({
        numberColumn(QStringLiteral("系统序号"), QStringLiteral("ID"), 1000, Qt::AlignRight),
        // Wide enough for a whole date in the screen font.
        textColumn(QStringLiteral("发生日期"), QStringLiteral("CreateDate"), 1200, Qt::AlignLeft),
        textColumn(QStringLiteral("原始单据号"), QStringLiteral("PaperID"), 1000, Qt::AlignLeft),
        direction,
        // The quantity shows as it is stored.
        numberColumn(QStringLiteral("数量"), QStringLiteral("TotalAmount"), 1600, Qt::AlignRight),
        money,
        numberColumn(QStringLiteral("操作员编号"), QStringLiteral("UserID"), 1000, Qt::AlignRight),
        textColumn(QStringLiteral("备注"), QStringLiteral("Detail"), 3000, Qt::AlignLeft),
    });
    setUnsortedColumn(ColDetail);
    dbgMain->setCaption(QStringLiteral(":::进出库单据列表:::"));
    dbgMain->setFooterVisible(true);
    dbgMain->setFooterText(ColDate, QStringLiteral("总计："));
}

// Sums come from the database over the filter, whole numbers only; the count from the rows.
void frmStoreAdmin::ShowTotal()
{
    dbgMain->setFooterText(ColAmount, QStringLiteral("总数量：")
                                          + QString::number(GetSumValue(QStringLiteral("Store"), curFilterSQL,
                                                                        QStringLiteral("TotalAmount"))));
    dbgMain->setFooterText(ColMoney, QStringLiteral("总金额：")
                                         + QString::number(GetSumValue(QStringLiteral("Store"), curFilterSQL,
                                                                       QStringLiteral("TotalMoney")))
                                         + QStringLiteral("元"));
    dbgMain->setFooterText(ColDetail, QStringLiteral("共") + QString::number(rsClone ? rsClone->recordCount() : 0)
                                          + QStringLiteral("张"));
}

RowStyle frmStoreAdmin::FetchRowStyle(int bookmark)
{
    if (rsClone && rsClone->setBookmark(bookmark) && rsClone->text(QStringLiteral("FinishFlag")) == QLatin1String("1"))
        return {QColor(), QColor(0xE0, 0xE0, 0xE0)};
    return {};
}

QColor frmStoreAdmin::FetchCellColor(int column, const QVariant &value)
{
    if ((column != ColAmount && column != ColMoney) || value.isNull())
        return {};
    // Read as a whole number: -0.4 is no negative.
    return std::nearbyint(Val(value.toString())) < 0 ? QColor(255, 0, 0) : QColor();
}

void frmStoreAdmin::DeleteData()
{
    const QString id = dbgMain->columnText(ColID);
    if (id.isEmpty()) {
        Msg::info(QStringLiteral("请先选定您要删除或作废的单据！"), QStringLiteral("提示"));
        return;
    }
    if (!moveCloneToCurrent())
        return;
    if (rsClone->text(QStringLiteral("HandInput")) == QLatin1String("0")) {
        Msg::error(QStringLiteral("此单据由系统所生成，不能直接由手工删除或禁用！"), QStringLiteral("失败"));
        return;
    }
    if (rsClone->text(QStringLiteral("FinishFlag")) != QLatin1String("0")) {
        Msg::info(QStringLiteral("此单据已被审核入帐，不能再删除！"), QStringLiteral("提示"));
        return;
    }
    if (!Msg::ask(QStringLiteral("你确认要删除原始单据号为") + rsClone->text(QStringLiteral("PaperID"))
                      + QStringLiteral("的单据吗？"),
                  QStringLiteral("删除单据")))
        return;
    // Two statements with no transaction: a failure between them leaves the lines behind.
    const QString key = NumText(Val(id));
    ExecuteSql(QStringLiteral("Delete from Store where ID=") + key);
    ExecuteSql(QStringLiteral(" Delete from Store_Detail where StoreID=") + key);
    DataRefresh();
}

// Every open voucher goes, generated ones too; the list shows them until the next refresh.
void frmStoreAdmin::DeleteAll()
{
    if (!Msg::ask(QStringLiteral("你确认要删除所有未入帐的库存出入库单吗？"), QStringLiteral("删除")))
        return;
    RecordsetPtr rs = OpenRecordset(QStringLiteral("select * from Store where FinishFlag='0'"));
    if (!rs)
        return;
    if (rs->recordCount() > 0) {
        for (rs->moveFirst(); !rs->eof(); rs->moveNext())
            ExecuteSql(QStringLiteral("Delete from Store_Detail where StoreID=") + rs->text(QStringLiteral("ID")));
    }
    ExecuteSql(QStringLiteral("Delete from Store where FinishFlag='0'"));
}
