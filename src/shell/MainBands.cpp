#include "CommandBar.h"

#include <initializer_list>

namespace {
struct Entry {
    const char *tool; // nullptr for a separator
    const char *caption = nullptr;
};

void fill(CommandBar &bar, const QString &band, std::initializer_list<Entry> entries)
{
    for (const Entry &e : entries) {
        if (!e.tool)
            bar.addSeparator(band);
        else
            bar.addTool(band, QString::fromUtf8(e.tool),
                        e.caption ? QString::fromUtf8(e.caption) : QString());
    }
}
const Entry sep{nullptr};
}

void buildMainCommandBar(CommandBar &bar)
{
    // Every tool once, with its toolbar caption, description and icon.
    const struct {
        const char *name, *caption, *description, *icon;
    } tools[] = {
        {"tlSaleAdmin", "销售开票", "", "accessories-text-editor"},
        {"tlMoneyAdmin", "销售收款", "", "accessories-calculator"},
        {"tlAmountAdmin", "销售发货", "", "mail-send"},
        {"tlContainerAdmin", "空瓶回收", "新顾客开户", "view-refresh"},
        {"tlStoreAdmin", "库存管理", "", "emblem-package"},
        {"tlTodayReport", "今日盘点", "", "appointment-soon"},
        {"tlExit", "退出", "退出系统", "application-exit"},
        {"tlAdd", "新建", "增加记录", "document-new"},
        {"tlEdit", "修改", "修改记录", "accessories-text-editor"},
        {"tlDel", "删除", "删除或禁用该记录", "edit-delete"},
        {"tlDelAll", "所有未入帐单据", "", "edit-delete"},
        {"tlPrintSale", "打印单据", "", "document-print"},
        {"tlFinish", "单据入帐", "", "emblem-default"},
        {"tlFilter", "查询", "过滤选择", "edit-find"},
        {"tlRefresh", "刷新", "刷新显示", "view-refresh"},
        {"tlChart", "图形分析", "图表显示", "x-office-spreadsheet"},
        {"tlOutAmount", "发货", "", "mail-send"},
        {"tlInAmount", "退货", "", "mail-reply-sender"},
        {"tlInMoney", "收款", "", "list-add"},
        {"tlOutMoney", "退款", "", "list-remove"},
        {"tlFirst", "最前一条", "最前一条", "go-first"},
        {"tlPrevious", "上一条", "上一条记录", "go-previous"},
        {"tlNext", "下一条", "下一条记录", "go-next"},
        {"tlLast", "最后一条", "最后一条", "go-last"},
        {"tlUserAdmin", "系统用户管理", "", "system-users"},
        {"tlChangePwd", "修改登录密码", "", "dialog-password"},
        {"tlSysConfigure", "系统参数设置", "", "preferences-system"},
        {"tlClearUser", "清理在线用户", "", "system-log-out"},
        {"tlSysReset", "重新启用系统", "", "system-shutdown"},
        {"tlSalePrintSetup", "定义单据打印格式", "", "document-page-setup"},
        {"tlPrintSetup", "打印设置", "", "printer"},
        {"tlPrintPreview", "打印预览", "", "document-print-preview"},
        {"tlPrint", "打印报表", "", "document-print"},
        {"tlShowNavigator", "导航条复位", "", "view-restore"},
        {"tlGrpStationAdmin", "下属煤气站设置", "", "network-wired"},
        {"tlSenderAdmin", "送水工管理", "", "contact-new"},
        {"tlCustomerAdmin", "客户资料管理", "", "address-book-new"},
        {"tlProductAdmin", "产品目录管理", "", "emblem-package"},
        {"tlInAllMoney", "对所有未入帐单据收款", "", ""},
        {"tlOutAllMoney", "对所有未入帐单据退款", "", ""},
        {"tlOutAllAmount", "对所有未入帐单据发货", "", ""},
        {"tlInAllAmount", "对所有未入帐单据退货", "", ""},
        {"tlInContainer", "回收当前单据空瓶", "", "view-refresh"},
        {"tlInAllContainer", "回收所有未入帐单据的空瓶", "", ""},
        {"tlOutContainer", "标志当前单据为欠瓶", "", "media-eject"},
        {"tlOutAllContainer", "标志所有未入帐单据为欠瓶", "", ""},
        {"mnuDayReport", "日销售额汇总表", "", "x-office-spreadsheet"},
        {"mnuMonthReport", "月销售额汇总表", "", "x-office-spreadsheet"},
        {"mnuCustDayReport", "客户日购水统计表", "", ""},
        {"mnuCustMonthReport", "客户月购水统计表", "", ""},
        {"mnuSenderDayReport", "送水工日业绩考核表", "", ""},
        {"mnuSenderMonthReport", "送水工月业绩考核表", "", ""},
        {"mnuHistoryCall", "客户来电记录", "", "contact-new"},
        {"tlTileVertical", "纵向平铺", "", ""},
        {"tlTileHorizontal", "横向平铺", "", ""},
        {"tlCascade", "窗口层叠", "", "window-new"},
        {"tlArrangeIcons", "排列图标", "", ""},
        {"tlHelp", "目录", "", "help-contents"},
        {"tlHomePage", "访问网站", "", "web-browser"},
        {"tlAbout", "关于.......", "", "help-about"},
        {"tlSysLog", "系统运行日志", "", ""},
    };
    for (const auto &t : tools)
        bar.defineTool(QString::fromUtf8(t.name), QString::fromUtf8(t.caption),
                       QString::fromUtf8(t.description), QString::fromUtf8(t.icon));

    using K = CommandBar::Kind;
    // The drop-downs first, so that the menu bar and tlDel can open them.
    bar.addBand("popFile", "", K::DropDown);
    fill(bar, "popFile", {{"tlUserAdmin"}, {"tlChangePwd"}, {"tlSysConfigure"}, {"tlClearUser"},
                          {"tlSysReset"}, sep, {"tlSalePrintSetup"}, {"tlPrintSetup"},
                          {"tlPrintPreview"}, {"tlPrint"}, sep, {"tlExit", "退出"}});
    bar.addBand("popOperate", "", K::DropDown);
    fill(bar, "popOperate",
         {{"tlAdd", "增加记录"}, {"tlEdit", "修改记录"}, {"tlDel", "删除记录"}, sep,
          {"tlFirst", "第一条记录"}, {"tlPrevious", "上一条记录"}, {"tlNext", "下一条记录"},
          {"tlLast", "最后一条记录"}, sep, {"tlRefresh", "刷新显示"}, {"tlFilter", "查询过滤"}, sep,
          {"tlShowNavigator"}});
    bar.addBand("popDaily", "", K::DropDown);
    fill(bar, "popDaily",
         {{"tlSaleAdmin", "销售开票管理"}, {"tlMoneyAdmin", "销售收款管理"},
          {"tlAmountAdmin", "销售出库管理"}, {"tlContainerAdmin", "空瓶回收管理"},
          {"tlStoreAdmin", "手工库存调整"}, sep, {"tlGrpStationAdmin"}, {"tlSenderAdmin"},
          {"tlCustomerAdmin"}, {"tlProductAdmin"}, sep, {"tlTodayReport", "今日盘点"}});
    bar.addBand("popMoney", "", K::DropDown);
    fill(bar, "popMoney", {{"tlInMoney", "对当前选中单据收款"}, {"tlInAllMoney"}, sep,
                           {"tlOutMoney", "对当前选中单据退款"}, {"tlOutAllMoney"}});
    bar.addBand("popAmount", "", K::DropDown);
    fill(bar, "popAmount", {{"tlOutAmount", "对当前单据发货"}, {"tlOutAllAmount"}, sep,
                            {"tlInAmount", "对当前单据退货"}, {"tlInAllAmount"}});
    bar.addBand("popContainer", "", K::DropDown);
    fill(bar, "popContainer", {{"tlInContainer"}, {"tlInAllContainer"}, sep, {"tlOutContainer"},
                               {"tlOutAllContainer"}});
    bar.addBand("popSearch", "", K::DropDown);
    fill(bar, "popSearch", {{"mnuDayReport"}, {"mnuMonthReport"}, {"mnuCustDayReport"},
                            {"mnuCustMonthReport"}, sep, {"mnuSenderDayReport"},
                            {"mnuSenderMonthReport"}, sep, {"mnuHistoryCall"}});
    bar.addBand("popWindows", "", K::DropDown);
    fill(bar, "popWindows",
         {{"tlTileVertical"}, {"tlTileHorizontal"}, {"tlCascade"}, {"tlArrangeIcons"}});
    bar.addBand("popHelp", "", K::DropDown);
    fill(bar, "popHelp", {{"tlHelp"}, {"tlHomePage"}, {"tlAbout"}});
    bar.addBand("popDel", "", K::DropDown);
    fill(bar, "popDel", {{"tlDelAll"}});

    bar.addBand("mnuMain", "主菜单", K::MenuBar);
    const struct {
        const char *tool, *caption, *band;
    } menus[] = {
        {"mnuFile", "文件(&F)", "popFile"},       {"mnuOperate", "操作(&O)", "popOperate"},
        {"mnuDaily", "日常业务(&R)", "popDaily"}, {"mnuMoney", "货款管理(&H)", "popMoney"},
        {"mnuAmount", "发货管理(&F)", "popAmount"}, {"mnuContainer", "空瓶管理(&K)", "popContainer"},
        {"mnuSearch", "查询统计(&C)", "popSearch"}, {"mnuWindows", "窗口(&W)", "popWindows"},
        {"mnuHelp", "帮助(&H)", "popHelp"},
    };
    for (const auto &m : menus)
        bar.addTool("mnuMain", QString::fromUtf8(m.tool), QString::fromUtf8(m.caption),
                    QString::fromUtf8(m.band));

    bar.addBand("barTool", "工具栏", K::ToolBar);
    fill(bar, "barTool", {{"tlExit"}, sep, {"tlAdd"}, {"tlEdit"}});
    bar.addTool("barTool", "tlDel", QString(), "popDel");
    fill(bar, "barTool", {{"tlPrintSale"}, sep, {"tlFinish"}, {"tlFilter"}, {"tlRefresh"}, sep,
                          {"tlChart"}, sep, {"tlOutAmount"}, {"tlInAmount"}, {"tlInMoney"},
                          {"tlOutMoney"}, sep, {"tlFirst"}, {"tlPrevious"}, {"tlNext"}, {"tlLast"}});

    bar.addBand("barNavigator", "常用操作", K::NavigationBar);
    bar.addChildBand("barNavigator", "barNavChild");
    fill(bar, "barNavChild", {{"tlSaleAdmin"}, {"tlMoneyAdmin"}, {"tlAmountAdmin"},
                              {"tlContainerAdmin"}, {"tlStoreAdmin"}, {"tlTodayReport"}});

    bar.addBand("barStatus", "状态栏", K::StatusBar);
    bar.addPanel("stbInfo", QString(), 1);
    bar.addPanel("stbCompany");
    bar.addPanel("stbUser");
    bar.addPanel("stbVersion", QStringLiteral("Tarvik 水气配送管理 " TARVIK_VERSION));
}
