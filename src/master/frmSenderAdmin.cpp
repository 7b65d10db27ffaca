#include "frmSenderAdmin.h"

frmSenderAdmin::frmSenderAdmin()
    : AdminListWindow(QStringLiteral("frmSenderAdmin"), QStringLiteral("送水工管理"),
                      QStringLiteral("frmSender"), QStringLiteral("Select * from Sender"),
                      {{QStringLiteral("姓名"), QStringLiteral("Name")},
                       {QStringLiteral("运费"), QStringLiteral("price")},
                       {QStringLiteral("电话"), QStringLiteral("phone")}})
{
}
