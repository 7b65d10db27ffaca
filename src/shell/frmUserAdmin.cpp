#include "frmUserAdmin.h"

#include "data/Gateway.h"

frmUserAdmin::frmUserAdmin()
    : AdminListWindow(QStringLiteral("操作员管理"), QStringLiteral("frmUser"),
                      {QStringLiteral("用户名称"), QStringLiteral("备注")})
{
    setObjectName("frmUserAdmin");
    Form_Load();
}

QList<AdminListWindow::Row> frmUserAdmin::listRows()
{
    QList<Row> rows;
    RecordsetPtr rs = OpenRecordset("Select * from SysUser");
    if (!rs || rs->recordCount() == 0)
        return rows;
    for (rs->moveFirst(); !rs->eof(); rs->moveNext())
        rows << Row{"U" + rs->text("ID"), rs->text("Status") == "1", {rs->text("Name"), rs->text("Detail")}};
    return rows;
}
