#include "frmMoneyAdmin.h"

#include "TicketOperations.h"

frmMoneyAdmin::frmMoneyAdmin(QWidget *parent)
    : ClerkListWindow(QStringLiteral("frmMoneyAdmin"), QStringLiteral("销售收款"), Money, parent)
{
    SetMyDBGrid();
    Form_Load();
}

void frmMoneyAdmin::SetMyDBGrid()
{
    setColumns({
        numberColumn(QStringLiteral("编号"), QStringLiteral("ID"), 500, Qt::AlignRight),
        textColumn(QStringLiteral("开票时间"), QStringLiteral("CreateDate"), 1200, Qt::AlignHCenter),
        numberColumn(QStringLiteral("送水工编号"), QStringLiteral("SenderID"), 1000, Qt::AlignRight),
        numberColumn(QStringLiteral("应收现金"), QStringLiteral("TotalMoney"), 1000, Qt::AlignRight),
        numberColumn(QStringLiteral("实收现金"), QStringLiteral("InMoney"), 1000, Qt::AlignRight),
        textColumn(QStringLiteral("客户地址"), QStringLiteral("Address"), 3000, Qt::AlignLeft),
    });
    dbgMain->setCaption(QStringLiteral(":::今日收款单据列表:::"));
    dbgMain->setFooterVisible(true);
}

void frmMoneyAdmin::ShowTotal()
{
    const QList<double> f = showSums({3, 4});
    dbgMain->setFooterText(5, QStringLiteral("共欠钱：") + numberText(f[0] - f[1]) + QStringLiteral("元"));
}

void frmMoneyAdmin::InMoney() { ops()->InMoney(); }
void frmMoneyAdmin::OutMoney() { ops()->OutMoney(); }
void frmMoneyAdmin::InAllMoney() { ops()->InAllMoney(); }
void frmMoneyAdmin::OutAllMoney() { ops()->OutAllMoney(); }
