#include "frmSaleFilter.h"

#include "views/DataCombo.h"
#include "data/Gateway.h"
#include "data/SqlText.h"
#include "platform/VbRules.h"

#include <QCheckBox>
#include <QRadioButton>

using Kind = ConditionRow::Kind;

frmSaleFilter::frmSaleFilter() : FilterDialog(QStringLiteral("frmSaleFilter"), QStringLiteral("销售单据过滤器"), Joining::OwnWords)
{
    const auto compare = [](const char *left) {
        return [left](const ConditionRow &r) { return QLatin1String(left) + r.opText() + Sql::number(r.text()); };
    };
    addCondition("chkAddress", QStringLiteral("客户地址包括字符串："), "txtAddress", Kind::Text, -1,
                 [](const ConditionRow &r) { return " AND Address Like '%" + Sql::text(Trim(r.text())) + "%' "; });
    addCondition("chkAccount", QStringLiteral("客户帐号："), "txtAccount", Kind::Number, 0,
                 [](const ConditionRow &r) { return " AND Account" + r.opText() + Sql::number(Trim(r.text())); });
    addCondition("chkUserID", QStringLiteral("操作员为："), "cmbUserID", Kind::List, -1,
                 [](const ConditionRow &r) { return " AND Sale.UserID=" + NumText(Val(r.boundText())); });
    addCondition("chkCreateDate", QStringLiteral("单据日期"), "txtCreateDate", Kind::Date, 1,
                 [](const ConditionRow &r) { return " AND Sale.CreateDate" + r.opText() + ConditionRow::typedDate(r.text()); });
    addCondition("chkID", QStringLiteral("单据编号"), "txtID", Kind::Number, 2,
                 [](const ConditionRow &r) { return " AND Sale.ID" + r.opText() + NumText(Val(r.text())); });
    addCondition("chkTotalMoney", QStringLiteral("单据金额"), "txtTotalMoney", Kind::Number, 3, compare(" And TotalMoney"));
    addCondition("chkTotalAmount", QStringLiteral("单据数量"), "txtTotalAmount", Kind::Number, 4,
                 compare(" And TotalAmount"));
    addCondition("chkMoneyBalance", QStringLiteral("欠钱金额"), "txtMoneyBalance", Kind::Number, 5,
                 compare(" And (TotalMoney-InMoney)"));
    addCondition("chkContainerBalance", QStringLiteral("欠瓶金度"), "txtContainerBalance", Kind::Number, 6,
                 compare(" And (TotalContainer-InContainer)"));
    addCondition("chkSenderID", QStringLiteral("送水员为："), "cmbSenderID", Kind::List, -1,
                 [](const ConditionRow &r) { return " AND Sale.SenderID=" + NumText(Val(r.boundText())); });
    addClause([this] {
        if (optFinish[1]->isChecked())
            return QStringLiteral(" AND Sale.FinishFlag='1'");
        return optFinish[2]->isChecked() ? QStringLiteral(" AND FinishFlag='0'") : QString();
    });
    // The lowest station stands for all of them.
    addCondition("chkStation", QStringLiteral("所辖供水站："), "cmbStation", Kind::List, -1, [](const ConditionRow &r) {
        return r.boundText() != QString::number(GetMinValue("Station", "ID")) ? " AND Sale.StationID=" + r.boundText()
                                                                               : QString();
    });
    optFinish = addOptions(QStringLiteral("单据状态"), "optFinish",
                           {QStringLiteral("所有单据"), QStringLiteral("已结转单据"), QStringLiteral("未结转单据")});
    finishLayout();

    keepStationOutOfSight();
    findChild<DataCombo *>(QStringLiteral("cmbUserID"))
        ->setRowSource(OpenRecordset("select * from SysUser where Status='1'"), "Name", "ID");
    findChild<DataCombo *>(QStringLiteral("cmbSenderID"))
        ->setRowSource(OpenRecordset("Select * from Sender where Status='1'"), "Name", "ID");
}
