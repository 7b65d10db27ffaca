#include "ClerkListWindow.h"

#include "platform/Forms.h"

ClerkListWindow::ClerkListWindow(const QString &name, const QString &caption, int outstandingPairs,
                                 QWidget *parent)
    : SaleListWindow(outstandingPairs, true, parent)
{
    setObjectName(name);
    setWindowTitle(caption);
}

void ClerkListWindow::setDeliveryColumns(const QString &title)
{
    using namespace SaleColumns;
    setColumns({
        number(QStringLiteral("编号"), QStringLiteral("ID"), 500, Qt::AlignRight),
        text(QStringLiteral("开票时间"), QStringLiteral("CreateDate"), 1200, Qt::AlignHCenter),
        number(QStringLiteral("送水工编号"), QStringLiteral("SenderID"), 1000, Qt::AlignRight),
        number(QStringLiteral("应发货数量"), QStringLiteral("TotalAmount"), 1000, Qt::AlignHCenter),
        number(QStringLiteral("实际发货数量"), QStringLiteral("OutAmount"), 1000, Qt::AlignHCenter),
        number(QStringLiteral("应回收空瓶数"), QStringLiteral("TotalContainer"), 1000, Qt::AlignHCenter),
        number(QStringLiteral("实回收空瓶数"), QStringLiteral("InContainer"), 1000, Qt::AlignHCenter),
        text(QStringLiteral("客户地址"), QStringLiteral("Address"), 3000, Qt::AlignLeft),
    });
    dbgMain->setCaption(title);
    dbgMain->setFooterVisible(true);
}

// The delivery lists report missing empties, not undelivered goods.
void ClerkListWindow::showDeliveryTotal()
{
    const QList<double> f = showSums({3, 4, 5, 6});
    dbgMain->setFooterText(7, QStringLiteral("共欠瓶：") + SaleColumns::numberText(f[2] - f[3]) + QStringLiteral("个"));
}

// Another child window in front unloads this one; a modal window it opened does not.
void ClerkListWindow::Form_Deactivate() { Forms::unload(this); }
