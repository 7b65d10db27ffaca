#include "frmProductAdmin.h"

#include "data/Gateway.h"

frmProductAdmin::frmProductAdmin()
    : AdminListWindow(QStringLiteral("产品及服务管理"), QStringLiteral("frmProduct"),
                      {QStringLiteral("名称"), QStringLiteral("单位"), QStringLiteral("单价")})
{
    setObjectName("frmProductAdmin");
    Form_Load();
}

QList<AdminListWindow::Row> frmProductAdmin::listRows()
{
    QList<Row> rows;
    RecordsetPtr rs = OpenRecordset("Select * from Product");
    if (!rs || rs->recordCount() == 0)
        return rows;
    for (rs->moveFirst(); !rs->eof(); rs->moveNext())
        rows << Row{"U" + rs->text("ID"), rs->text("Status") == "1",
                    {rs->text("name"), rs->text("Unit"), rs->text("price")}};
    return rows;
}
