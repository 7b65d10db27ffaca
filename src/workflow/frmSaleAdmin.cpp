#include "frmSaleAdmin.h"

#include "TicketOperations.h"

#include "data/Session.h"
#include "platform/VbRules.h"

#include <QCloseEvent>

frmSaleAdmin::frmSaleAdmin(QWidget *parent) : SaleListWindow(Amount | Money | Container, false, parent)
{
    setObjectName(QStringLiteral("frmSaleAdmin"));
    setWindowTitle(QStringLiteral("销售开票"));
    SetMyDBGrid();
    Form_Load();
}

void frmSaleAdmin::SetMyDBGrid()
{
    setColumns({
        numberColumn(QStringLiteral("编号"), QStringLiteral("ID"), 500, Qt::AlignRight),
        textColumn(QStringLiteral("开票时间"), QStringLiteral("CreateDate"), 1200, Qt::AlignHCenter),
        numberColumn(QStringLiteral("送水工编号"), QStringLiteral("SenderID"), 600, Qt::AlignRight),
        numberColumn(QStringLiteral("应收现金"), QStringLiteral("TotalMoney"), 600, Qt::AlignRight),
        numberColumn(QStringLiteral("实收现金"), QStringLiteral("InMoney"), 600, Qt::AlignRight),
        numberColumn(QStringLiteral("应发货数量"), QStringLiteral("TotalAmount"), 800, Qt::AlignHCenter),
        numberColumn(QStringLiteral("实际发货数量"), QStringLiteral("OutAmount"), 800, Qt::AlignHCenter),
        numberColumn(QStringLiteral("应回收空瓶数"), QStringLiteral("TotalContainer"), 800, Qt::AlignHCenter),
        numberColumn(QStringLiteral("实回收空瓶数"), QStringLiteral("InContainer"), 800, Qt::AlignHCenter),
        textColumn(QStringLiteral("客户地址"), QStringLiteral("Address"), 3000, Qt::AlignLeft),
    });
    dbgMain->setCaption(QStringLiteral(":::今日销售单据列表:::"));
    dbgMain->setFooterVisible(true);
}

// The debt line subtracts what the footers show, so blank footers count as nothing owed.
void frmSaleAdmin::ShowTotal()
{
    const QList<double> f = showSums({3, 4, 5, 6, 7, 8});
    dbgMain->setFooterText(9, QStringLiteral("共欠钱：") + numberText(f[0] - f[1])
                                  + QStringLiteral("元       欠瓶：") + numberText(f[4] - f[5])
                                  + QStringLiteral("个"));
}

void frmSaleAdmin::DeleteData() { ops()->DeleteData(); }
void frmSaleAdmin::DeleteAll() { ops()->DeleteAll(); }
void frmSaleAdmin::InMoney() { ops()->InMoney(); }
void frmSaleAdmin::InAllMoney() { ops()->InAllMoney(); }
void frmSaleAdmin::OutMoney() { ops()->OutMoney(); }
void frmSaleAdmin::OutAllMoney() { ops()->OutAllMoney(); }
void frmSaleAdmin::OutAmount() { ops()->OutAmount(); }
void frmSaleAdmin::OutAllAmount() { ops()->OutAllAmount(); }
void frmSaleAdmin::InAmount() { ops()->InAmount(); }
void frmSaleAdmin::InAllAmount() { ops()->InAllAmount(); }
void frmSaleAdmin::InContainer() { ops()->InContainer(); }
void frmSaleAdmin::InAllContainer() { ops()->InAllContainer(); }
void frmSaleAdmin::OutContainer() { ops()->OutContainer(); }
void frmSaleAdmin::OutAllContainer() { ops()->OutAllContainer(); }

// The user cannot close the home window; only the rights check, for an operator who may not
// see it, lets it go (the program's own unloading does not ask).
void frmSaleAdmin::closeEvent(QCloseEvent *event)
{
    if (Session::SaleAdminClosable)
        event->accept();
    else
        event->ignore();
}
