#include "ClerkListWindow.h"

ClerkListWindow::ClerkListWindow(const QString &name, const QString &caption, int outstandingPairs,
                                 QWidget *parent)
    : SaleListWindow(outstandingPairs, true, parent)
{
    setObjectName(name);
    setWindowTitle(caption);
    setUnloadWhenLeft(true);
}

void ClerkListWindow::setDeliveryColumns(const QString &title)
{
    setColumns({
        numberColumn(QStringLiteral("编号"), QStringLiteral("ID"), 500, Qt::AlignRight),
        textColumn(QStringLiteral("开票时间"), QStringLiteral("CreateDate"), 1200, Qt::AlignHCenter),
        numberColumn(QStringLiteral("送水工编号"), QStringLiteral("SenderID"), 1000, Qt::AlignRight),
        numberColumn(QStringLiteral("应发货数量"), QStringLiteral("TotalAmount"), 1000, Qt::AlignHCenter),
        numberColumn(QStringLiteral("实际发货数量"), QStringLiteral("OutAmount"), 1000, Qt::AlignHCenter),
        numberColumn(QStringLiteral("应回收空瓶数"), QStringLiteral("TotalContainer"), 1000, Qt::AlignHCenter),
        numberColumn(QStringLiteral("实回收空瓶数"), QStringLiteral("InContainer"), 1000, Qt::AlignHCenter),
        textColumn(QStringLiteral("客户地址"), QStringLiteral("Address"), 3000, Qt::AlignLeft),
    });
    dbgMain->setCaption(title);
    dbgMain->setFooterVisible(true);
}

// The delivery lists report missing empties, not undelivered goods.
void ClerkListWindow::showDeliveryTotal()
{
    const QList<double> f = showSums({3, 4, 5, 6});
    dbgMain->setFooterText(7, QStringLiteral("共欠瓶：") + numberText(f[2] - f[3]) + QStringLiteral("个"));
}
