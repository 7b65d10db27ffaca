#include "frmCustFilter.h"

#include "views/DataCombo.h"
#include "data/Gateway.h"
#include "data/SqlText.h"
#include "platform/VbRules.h"

#include <QCheckBox>
#include <QComboBox>
#include <QRadioButton>

using Kind = ConditionRow::Kind;

frmCustFilter::frmCustFilter()
    : FilterDialog(QStringLiteral("frmCustFilter"), QStringLiteral("客户资料过滤器"), Joining::WhereAnd)
{
    const auto compare = [](const char *left) {
        return [left](const ConditionRow &r) { return QLatin1String(left) + r.opText() + Sql::number(r.text()); };
    };
    const auto contains = [](const char *left) {
        return [left](const ConditionRow &r) {
            return QLatin1String(left) + Sql::text(Trim(r.text())) + QStringLiteral("%' ");
        };
    };
    addCondition("chkAccount", QStringLiteral("顾客帐户"), "txtAccount", Kind::Number, 0, compare(" Account"));
    // Account numbers are 16-bit whole numbers.
    setValueKind("txtAccount", 3);
    addCondition("chkName", QStringLiteral("顾客姓名字符串包含："), "txtName", Kind::Text, -1, contains(" Name Like '%"));
    addCondition("chkPhone", QStringLiteral("联系电话字符串包含："), "txtPhone", Kind::Text, -1,
                 contains(" phone Like '%"));
    addCondition("chkCustType", QStringLiteral("用户类型为："), "cmbCustType", Kind::Choice, -1,
                 [](const ConditionRow &r) { return " CustType=" + QString::number(r.position()); });
    addCondition("chkCreateDate", QStringLiteral("开户日期"), "txtCreateDate", Kind::Date, 1,
                 [](const ConditionRow &r) { return " CreateDate" + r.opText() + ConditionRow::typedDate(r.text()); });
    addCondition("chkAddress", QStringLiteral("联系地址字符串包含："), "txtAddress", Kind::Text, -1,
                 contains(" Address Like '%"));
    // The customer table keeps no running totals: these two go to the database as they stand
    // and the list's refresh reports the missing column.
    addCondition("chkTotalBuyMoney", QStringLiteral("购水总额"), "txtTotalBuyMoney", Kind::Number, 2,
                 compare(" TotalBuyMoney"));
    addCondition("chkTotalDebt", QStringLiteral("欠款总额"), "txtTotalDebt", Kind::Number, 3, compare(" TotalDebt"));
    addClause([this] {
        if (optStatus[1]->isChecked())
            return QStringLiteral(" Status='1'");
        return optStatus[2]->isChecked() ? QStringLiteral(" Status='0'") : QString();
    });
    // The lowest station stands for all of them.
    addCondition("chkStation", QStringLiteral("所属供水站为："), "cmbStation", Kind::List, -1, [](const ConditionRow &r) {
        return r.boundText() != QString::number(GetMinValue("Station", "ID")) ? " StationID=" + r.boundText()
                                                                               : QString();
    });
    optStatus = addOptions(QStringLiteral("帐户状态"), "optStatus",
                           {QStringLiteral("所有帐户"), QStringLiteral("有效帐户"), QStringLiteral("无效帐户")});

    findChild<QComboBox *>(QStringLiteral("cmbCustType"))
        ->addItems({QStringLiteral("未开户客户"), QStringLiteral("已开户客户"), QStringLiteral("开户大客户"),
                    QStringLiteral("托管户"), QStringLiteral("其它")});
    keepStationOutOfSight();
    finishLayout();
}
