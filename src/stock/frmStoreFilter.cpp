#include "frmStoreFilter.h"

#include "data/Gateway.h"
#include "data/SqlText.h"
#include "views/DataCombo.h"

#include <QCheckBox>
#include <QRadioButton>

using Kind = ConditionRow::Kind;

frmStoreFilter::frmStoreFilter()
    : FilterDialog(QStringLiteral("frmStoreFilter"), QStringLiteral("库存资料过滤器"), Joining::WhereAnd)
{
    const auto compare = [](const char *left) {
        return [left](const ConditionRow &r) { return QLatin1String(left) + r.opText() + Sql::number(r.text()); };
    };
    addCondition("chkPaperID", QStringLiteral("原始单据号包括字符："), "txtPaperID", Kind::Text, -1,
                 [](const ConditionRow &r) { return " PaperID Like '%" + Sql::text(r.text()) + "%' "; });
    addCondition("chkDetail", QStringLiteral("备注中含字符串："), "txtDetail", Kind::Text, -1,
                 [](const ConditionRow &r) { return " Detail Like '%" + Sql::text(r.text()) + "%' "; });
    addCondition("chkUserID", QStringLiteral("操作员为："), "cmbUserID", Kind::List, -1,
                 [](const ConditionRow &r) { return " UserID=" + Sql::number(r.boundText()); });
    addCondition("chkCreateDate", QStringLiteral("单据日期"), "txtCreateDate", Kind::Date, 0,
                 [](const ConditionRow &r) { return " CreateDate" + r.opText() + ConditionRow::typedDate(r.text()); })
        .emptyDateIsToday = true;
    addCondition("chkTotalMoney", QStringLiteral("总金额"), "txtTotalMoney", Kind::Number, 1, compare(" TotalMoney"));
    addCondition("chkTotalAmount", QStringLiteral("总数量"), "txtTotalAmount", Kind::Number, 2,
                 compare(" TotalAmount"));
    addClause([this] {
        if (optDirection[1]->isChecked())
            return QStringLiteral(" Direction='1'");
        return optDirection[2]->isChecked() ? QStringLiteral(" Direction='0'") : QString();
    });
    addClause([this] {
        if (optFinish[1]->isChecked())
            return QStringLiteral(" FinishFlag='1'");
        return optFinish[2]->isChecked() ? QStringLiteral(" FinishFlag='0'") : QString();
    });
    // After the options; the lowest station stands for all of them.
    addCondition("chkStation", QStringLiteral("所属供水站为："), "cmbStation", Kind::List, -1, [](const ConditionRow &r) {
        return r.boundText() != QString::number(GetMinValue("Station", "ID")) ? " StationID=" + Sql::number(r.boundText())
                                                                               : QString();
    });
    optDirection = addOptions(QStringLiteral("单据种类"), "optDirection",
                              {QStringLiteral("所有单据"), QStringLiteral("出货单据"), QStringLiteral("进货单据")});
    optFinish = addOptions(QStringLiteral("结转状态"), "optFinish",
                           {QStringLiteral("所有单据"), QStringLiteral("已结转单据"), QStringLiteral("未结转单据")});
    finishLayout();

    keepStationOutOfSight();
    findChild<DataCombo *>(QStringLiteral("cmbUserID"))
        ->setRowSource(OpenRecordset("select * from SysUser where Status='1'"), "Name", "ID");
}
