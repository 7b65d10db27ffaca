#include "frmSenderAdmin.h"

#include "data/Gateway.h"

frmSenderAdmin::frmSenderAdmin()
    : AdminListWindow(QStringLiteral("送水工管理"), QStringLiteral("frmSender"),
                      {QStringLiteral("姓名"), QStringLiteral("运费"), QStringLiteral("电话")})
{
    setObjectName("frmSenderAdmin");
    Form_Load();
}

QList<AdminListWindow::Row> frmSenderAdmin::listRows()
{
    QList<Row> rows;
    RecordsetPtr rs = OpenRecordset("Select * from Sender");
    if (!rs || rs->recordCount() == 0)
        return rows;
    for (rs->moveFirst(); !rs->eof(); rs->moveNext())
        rows << Row{"U" + rs->text("ID"), rs->text("Status") == "1",
                    {rs->text("Name"), rs->text("price"), rs->text("phone")}};
    return rows;
}
