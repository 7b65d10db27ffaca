#include "ToolState.h"

#include "CommandBar.h"
#include "frmMain.h"

#include "data/Gateway.h"
#include "data/Session.h"
#include "platform/Forms.h"

namespace {
struct Off {
    const char *band;
    QStringList tools;
};

// What each position of rolestring switches off when it holds "0".
const QList<QList<Off>> &refusals()
{
    static const QList<QList<Off>> table = {
        {{"popFile", {"tlUserAdmin", "tlSysConfigure", "tlSysReset", "tlSalePrintSetup"}},
         {"popDaily", {"tlSenderAdmin", "tlProductAdmin", "tlCustomerAdmin", "tlGrpStationAdmin"}}},
        {{"popDaily", {"tlSaleAdmin"}}},
        {{"popDaily", {"tlMoneyAdmin"}}, {"mnuMain", {"mnuMoney"}}, {"barTool", {"tlOutMoney", "tlInMoney"}}},
        {{"popDaily", {"tlAmountAdmin"}}, {"mnuMain", {"mnuAmount"}}, {"barTool", {"tlOutAmount", "tlInAmount"}}},
        {{"popDaily", {"tlContainerAdmin"}}, {"mnuMain", {"mnuContainer"}}},
        {{"popDaily", {"tlStoreAdmin"}}},
        {{"popDaily", {"tlTodayReport"}}},
        {{"mnuMain", {"mnuSearch"}}},
    };
    return table;
}

struct WindowState {
    QStringList toolsOff;
    QList<QPair<QString, QString>> captions;
    QStringList menusOff;
    QStringList delOff;
};

const QHash<QString, WindowState> &windowStates()
{
    static const QStringList all3 = {"mnuAmount", "mnuContainer", "mnuMoney"};
    static const QHash<QString, WindowState> table = {
        {"frmSaleAdmin", {{"tlChart", "tlFinish"}, {}, {}, {}}},
        {"frmStoreAdmin",
         {{"tlChart", "tlFinish", "tlPrintSale", "tlInMoney", "tlOutMoney", "tlInAmount", "tlOutAmount"},
          {}, all3, {}}},
        {"frmMoneyAdmin",
         {{"tlAdd", "tlDel", "tlChart", "tlFinish", "tlInAmount", "tlOutAmount"},
          {{"tlEdit", "打开"}}, {"mnuAmount", "mnuContainer"}, {}}},
        {"frmAmountAdmin",
         {{"tlAdd", "tlDel", "tlChart", "tlFinish", "tlInMoney", "tlOutMoney"},
          {{"tlEdit", "打开"}}, {"mnuContainer", "mnuMoney"}, {}}},
        {"frmContainerAdmin",
         {{"tlAdd", "tlDel", "tlChart", "tlFinish", "tlInMoney", "tlOutMoney", "tlInAmount", "tlOutAmount"},
          {{"tlEdit", "打开"}}, {"mnuAmount", "mnuMoney"}, {}}},
        {"frmCustomerAdmin",
         {{"tlChart", "tlPrintSale", "tlFinish", "tlInMoney", "tlOutMoney", "tlInAmount", "tlOutAmount"},
          {}, all3, {"tlDelAll"}}},
        {"frmReport",
         {{"tlFilter", "tlAdd", "tlEdit", "tlDel", "tlFinish", "tlInMoney", "tlOutMoney", "tlInAmount", "tlOutAmount"},
          {{"tlPrintSale", "打印报表"}}, all3, {}}},
        {"frmTodayReport",
         {{"tlAdd", "tlEdit", "tlDel", "tlChart", "tlInMoney", "tlOutMoney", "tlInAmount", "tlOutAmount"},
          {{"tlPrintSale", "打印报表"}, {"tlFilter", "设定日期"}}, all3, {}}},
        {"frmHistoryCall",
         {{"tlAdd", "tlEdit", "tlFilter", "tlChart", "tlPrintSale", "tlFinish", "tlInMoney", "tlOutMoney", "tlInAmount", "tlOutAmount"},
          {}, all3, {}}},
    };
    return table;
}
}

bool ToolState::applyRights(CommandBar &bar, const QString &roleString)
{
    // One station is in daily use and it has no window: the station tool is off for all.
    bar.setEnabled("popDaily", "tlGrpStationAdmin", false);
    bool saleRefused = false;
    const auto &table = refusals();
    for (int position = 0; position < table.size() && position < roleString.size(); ++position) {
        if (roleString.at(position) != QLatin1Char('0'))
            continue;
        for (const Off &off : table.at(position)) {
            for (const QString &tool : off.tools)
                bar.setEnabled(off.band, tool, false);
        }
        if (position == 1)
            saleRefused = true;
    }
    return saleRefused;
}

void ToolState::apply(CommandBar &bar, const QString &formName)
{
    bar.setPanelText("stbCompany", Session::CompanyName);
    bar.setPanelText("stbUser", GetFieldByID(Session::UserID, "SysUser", "Name"));
    bar.setAllEnabled("barTool", true);
    bar.setAllEnabled("popDel", true);
    for (const char *menu : {"mnuAmount", "mnuContainer", "mnuMoney"})
        bar.setEnabled("mnuMain", menu, true);
    bar.setCaption("barTool", "tlDel", "删除");
    bar.setCaption("barTool", "tlEdit", "修改");
    bar.setCaption("barTool", "tlPrintSale", "打印单据");
    bar.setCaption("barTool", "tlFilter", "查询");

    const auto it = windowStates().constFind(formName);
    if (it == windowStates().constEnd())
        return;
    for (const QString &tool : it->toolsOff)
        bar.setEnabled("barTool", tool, false);
    for (const auto &[tool, caption] : it->captions)
        bar.setCaption("barTool", tool, caption);
    for (const QString &menu : it->menusOff)
        bar.setEnabled("mnuMain", menu, false);
    for (const QString &tool : it->delOff)
        bar.setEnabled("popDel", tool, false);
}

void SetRights(qint16 userID)
{
    frmMain *main = frmMain::current();
    if (!main)
        return;
    const QString roleString = GetFieldByID(userID, "SysUser", "rolestring");
    if (ToolState::applyRights(*main->acbMain(), roleString)) {
        Session::SaleAdminClosable = true;
        Forms::unload("frmSaleAdmin");
    }
}
