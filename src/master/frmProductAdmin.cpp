#include "frmProductAdmin.h"

frmProductAdmin::frmProductAdmin()
    : AdminListWindow(QStringLiteral("frmProductAdmin"), QStringLiteral("产品及服务管理"),
                      QStringLiteral("frmProduct"), QStringLiteral("Select * from Product"),
                      {{QStringLiteral("名称"), QStringLiteral("name")},
                       {QStringLiteral("单位"), QStringLiteral("Unit")},
                       {QStringLiteral("单价"), QStringLiteral("price")}})
{
}
