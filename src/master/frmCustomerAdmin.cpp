#include "frmCustomerAdmin.h"

#include "data/Gateway.h"
#include "platform/Prompter.h"

namespace {
const QString Suspended = QStringLiteral("0");
}

frmCustomerAdmin::frmCustomerAdmin(QWidget *parent) : ListWindow(parent)
{
    setObjectName(QStringLiteral("frmCustomerAdmin"));
    setWindowTitle(QStringLiteral("客户资料管理"));
    BuildMyDBGrid();
    setCardWindow(QStringLiteral("frmCustomer"), CardRefresh::WhenAutomatic);
    setFilterDialog(QStringLiteral("frmCustFilter"));
    setPageHeader(QStringLiteral("\\t顾户资料一览表"));
    setPrintFailures({QStringLiteral("打印预览失败，请检查您的系统中是否正确安装了打印机"), QStringLiteral("预览")},
                     {QStringLiteral("打印失败，请检查您的系统中是否正确安装了打印机！"), QStringLiteral("预览")});
    curShortSQL = QStringLiteral("SELECT * FROM Customer");
    curSortSQL = QStringLiteral(" ORDER BY ID Asc");
    Form_Load();
}

void frmCustomerAdmin::BuildMyDBGrid()
{
    GridColumn id = numberColumn(QStringLiteral("系统序号"), QStringLiteral("ID"), 1000, Qt::AlignRight);
    id.visible = false;
    setColumns({
        id,
        numberColumn(QStringLiteral("开户编号"), QStringLiteral("Account"), 1000, Qt::AlignRight),
        textColumn(QStringLiteral("联系人"), QStringLiteral("Name"), 1200, Qt::AlignLeft),
        textColumn(QStringLiteral("联系电话"), QStringLiteral("Phone"), 1200, Qt::AlignLeft),
        textColumn(QStringLiteral("开户日期"), QStringLiteral("CreateDate"), 1200, Qt::AlignLeft),
        textColumn(QStringLiteral("联系地址"), QStringLiteral("Address"), 3000, Qt::AlignLeft),
        textColumn(QStringLiteral("备注"), QStringLiteral("Detail"), 2000, Qt::AlignLeft),
    });
    setUnsortedColumn(6);
    // Phone numbers and dates are read whole: a cut-off number is no use on the telephone.
    setFitToCells(3);
    setFitToCells(4);
    dbgMain->setCaption(QStringLiteral(":::客户资料一览表:::"));
}

// Suspended customers stay in the list, struck through.
RowStyle frmCustomerAdmin::FetchRowStyle(int bookmark)
{
    if (rsClone && rsClone->setBookmark(bookmark) && rsClone->text(QStringLiteral("Status")) == Suspended)
        return suspendedRow();
    return {};
}

void frmCustomerAdmin::DeleteData()
{
    if (!moveCloneToCurrent()) {
        Msg::info(QStringLiteral("请先选定您要禁用的数据！"), QStringLiteral("提示"));
        return;
    }
    const QString id = QString::number(rsClone->field(QStringLiteral("ID")).toLongLong());
    QString sql;
    if (rsClone->text(QStringLiteral("Status")) == QLatin1String("1")) {
        if (!Msg::ask(QStringLiteral("你确认要禁用该帐户吗？"), QStringLiteral("禁用帐户")))
            return;
        sql = QStringLiteral("UPDATE customer SET Status='0' where ID=") + id;
    } else {
        if (!Msg::ask(QStringLiteral("该帐户已禁用，要重新启用吗？"), QStringLiteral("启用帐户")))
            return;
        sql = QStringLiteral("UPDATE customer SET Status='1' where ID=") + id;
    }
    ExecuteSql(sql);
    DataRefresh();
}

void frmCustomerAdmin::DeletaAll()
{
    Msg::box(QStringLiteral("失败"), QStringLiteral("不能全部禁用！"), QMessageBox::NoIcon, QMessageBox::Ok);
}
