#include "frmUserAdmin.h"

frmUserAdmin::frmUserAdmin()
    : AdminListWindow(QStringLiteral("frmUserAdmin"), QStringLiteral("操作员管理"), QStringLiteral("frmUser"),
                      QStringLiteral("Select * from SysUser"),
                      {{QStringLiteral("用户名称"), QStringLiteral("Name")},
                       {QStringLiteral("备注"), QStringLiteral("Detail")}})
{
}
