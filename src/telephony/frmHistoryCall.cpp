#include "frmHistoryCall.h"

#include "data/Gateway.h"
#include "data/SqlText.h"
#include "platform/Prompter.h"

#include <QHash>

frmHistoryCall::frmHistoryCall(QWidget *parent) : ListWindow(parent)
{
    setObjectName(QStringLiteral("frmHistoryCall"));
    setWindowTitle(QStringLiteral("客户管理"));
    BuildMyDBGrid();
    // A call whose number no customer has still shows, with an empty name and address; a
    // number that several customers share shows once for each.
    curShortSQL = QStringLiteral("SELECT a.ID as ID,a.CreateDate as CallDate,a.PhoneNumber as CallerID,"
                                 "b.Name as CustName,b.Address As CustAddress")
                  + QStringLiteral(" FROM Call a LEFT OUTER JOIN Customer b ON a.PhoneNumber=b.Phone");
    curFilterSQL.clear();
    curSortSQL = QStringLiteral(" ORDER BY a.ID Asc");
    // The customer filter narrows the calls on the joined customer columns.
    setFilterDialog(QStringLiteral("frmCustFilter"));
    setPageHeader(QStringLiteral("\\t来电资料一览表"));
    setPrintFailures({QStringLiteral("打印预览失败，请检查您的系统中是否正确安装了打印机"), QStringLiteral("预览")},
                     {QStringLiteral("打印失败，请检查您的系统中是否正确安装了打印机！"), QStringLiteral("预览")});
    setUnloadWhenLeft(true);
    Form_Load();
}

void frmHistoryCall::BuildMyDBGrid()
{
    // The time of a call must show to the second; where the screen font is wider than the
    // one the widths were chosen for, the column grows to fit it.
    const int timeTwips = qMax(1800, (dbgMain->fontMetrics().horizontalAdvance(QStringLiteral("2026-11-23 00:00:00"))
                                      + 12) * 15);
    setColumns({
        numberColumn(QStringLiteral("序号"), QStringLiteral("ID"), 600, Qt::AlignLeft),
        textColumn(QStringLiteral("电话号码"), QStringLiteral("CallerID"), 1400, Qt::AlignLeft),
        textColumn(QStringLiteral("来电时间"), QStringLiteral("CallDate"), timeTwips, Qt::AlignLeft),
        textColumn(QStringLiteral("客户姓名"), QStringLiteral("CustName"), 1400, Qt::AlignLeft),
        textColumn(QStringLiteral("客户地址"), QStringLiteral("CustAddress"), 3000, Qt::AlignLeft),
    });
    dbgMain->setCaption(QStringLiteral(":::客户来电一览表:::"));
}

// Both tables have an ID, and the heads show the select's names, not the tables' own.
QString frmHistoryCall::sortFieldFor(const QString &field) const
{
    static const QHash<QString, QString> columns = {
        {QStringLiteral("ID"), QStringLiteral("a.ID")},
        {QStringLiteral("CallerID"), QStringLiteral("a.PhoneNumber")},
        {QStringLiteral("CallDate"), QStringLiteral("a.CreateDate")},
        {QStringLiteral("CustName"), QStringLiteral("b.Name")},
        {QStringLiteral("CustAddress"), QStringLiteral("b.Address")},
    };
    return columns.value(field, field);
}

void frmHistoryCall::DeleteData()
{
    const QString id = dbgMain->columnText(0);
    if (id.isEmpty()) {
        Msg::info(QStringLiteral("请先选定您要删除的数据！"), QStringLiteral("提示"));
        return;
    }
    if (!Msg::askStop(QStringLiteral("你确认要删除当前来电记录吗？"), QStringLiteral("删除")))
        return;
    ExecuteSql(QStringLiteral("delete from Call where ID=") + Sql::number(id));
    DataRefresh();
}

void frmHistoryCall::DeleteAll()
{
    if (!Msg::askStop(QStringLiteral("你确认要删除所有历史来电记录吗？"), QStringLiteral("删除")))
        return;
    ExecuteSql(QStringLiteral("DELETE from Call"));
    DataRefresh();
}
