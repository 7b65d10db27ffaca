#include "ShopGenerator.h"

#include "data/Database.h"

#include <QRandomGenerator>
#include <QSqlError>
#include <QSqlQuery>
#include <QVariantList>

namespace {
struct Line {
    int product;
    double price, amount, money;
    bool container;
};

class Writer {
public:
    explicit Writer(QSqlDatabase db) : m_db(db) {}
    bool ok() const { return m_error.isEmpty(); }
    QString error() const { return m_error; }

    QSqlQuery prepare(const QString &sql)
    {
        QSqlQuery q(m_db);
        if (!q.prepare(sql))
            fail(q);
        return q;
    }
    void run(QSqlQuery &q, const QVariantList &values)
    {
        if (!ok())
            return;
        for (int i = 0; i < values.size(); ++i)
            q.bindValue(i, values[i]);
        if (!q.exec())
            fail(q);
    }
    void fail(const QSqlQuery &q)
    {
        if (ok())
            m_error = q.lastError().text();
    }

private:
    QSqlDatabase m_db;
    QString m_error;
};
}

bool ShopGenerator::fill(const Size &size, QString *error)
{
    QSqlDatabase db = Database::connection();
    QRandomGenerator random(20261123);
    Writer w(db);
    if (!db.transaction()) {
        if (error)
            *error = db.lastError().text();
        return false;
    }
    const QVariant none(QMetaType(QMetaType::Int)); // null: generated vouchers have no station

    // Products: every fourth is a bottle; the goods before it come in it.
    QSqlQuery product = w.prepare(QStringLiteral(
        "INSERT INTO Product(ID,Name,Unit,Detail,IsDefault,Status,IsContainer,ContainerID,Price) VALUES(?,?,?,'',?,'1',?,?,?)"));
    QVector<int> goods;
    QVector<int> containerOf(size.products + 1, 0);
    QVector<double> priceOf(size.products + 1, 0);
    for (int id = 1; id <= size.products; ++id) {
        const bool bottle = id % 4 == 0;
        const int container = bottle ? 0 : ((id + 3) / 4) * 4;
        containerOf[id] = container <= size.products ? container : 0;
        priceOf[id] = bottle ? 0 : 8 + (id % 7) * 6.5;
        if (!bottle)
            goods << id;
        w.run(product, {id, bottle ? QStringLiteral("空瓶%1").arg(id) : QStringLiteral("商品%1").arg(id),
                        bottle ? QStringLiteral("个") : QStringLiteral("桶"), id <= 4 ? "1" : "0", bottle ? "1" : "0",
                        containerOf[id], priceOf[id]});
    }
    QSqlQuery sender = w.prepare(
        QStringLiteral("INSERT INTO Sender(ID,Name,Phone,Detail,Status,Price,StationID) VALUES(?,?,'','','1',2,1)"));
    for (int id = 1; id <= size.workers; ++id)
        w.run(sender, {id, QStringLiteral("送水工%1").arg(id)});
    QSqlQuery customer = w.prepare(QStringLiteral(
        "INSERT INTO Customer(ID,Account,Name,Address,Phone,Detail,CustType,Status,UserID,CreateDate,StationID) "
        "VALUES(?,?,?,?,?,'',1,'1',1,?,1)"));
    const QDate first = size.lastDay.addDays(1 - size.days);
    for (int id = 1; id <= size.customers; ++id)
        w.run(customer, {id, id, QStringLiteral("客户%1").arg(id), QStringLiteral("幸福路%1号").arg(id),
                         QStringLiteral("55%1").arg(id, 6, 10, QLatin1Char('0')), first.toString(Qt::ISODate)});

    QSqlQuery sale = w.prepare(QStringLiteral(
        "INSERT INTO Sale(ID,CustomerID,SenderID,UserID,TotalAmount,TotalMoney,TotalContainer,InMoney,OutAmount,"
        "InContainer,TransferFee,Detail,CreateDate,FinishFlag,StationID) VALUES(?,?,?,1,?,?,?,?,?,?,2,'',?,?,1)"));
    QSqlQuery saleLine = w.prepare(QStringLiteral(
        "INSERT INTO Sale_detail(SaleID,ProductID,Price,MyAmount,MyMoney,IsContainer) VALUES(?,?,?,?,?,?)"));
    QSqlQuery store = w.prepare(QStringLiteral(
        "INSERT INTO Store(PaperID,CreateDate,TotalAmount,TotalMoney,Detail,UserID,Direction,HandInput,FinishFlag,"
        "StationID) VALUES(?,?,?,?,?,1,?,?,'1',?)"));
    QSqlQuery storeLine = w.prepare(
        QStringLiteral("INSERT INTO Store_detail(StoreID,ProductID,Price,MyAmount,MyMoney) VALUES(?,?,?,?,?)"));
    qint64 storeID = 0;
    qint64 saleID = 0;
    const QDate closedUpTo = size.lastDay.addDays(-size.openDays);

    for (QDate day = first; day <= size.lastDay && w.ok(); day = day.addDays(1)) {
        const QString date = day.toString(Qt::ISODate);
        // Every Monday the store takes in a week's goods and bottles.
        if (day.dayOfWeek() == 1) {
            w.run(store, {QStringLiteral("J%1").arg(day.toString(QStringLiteral("yyyyMMdd"))), date,
                          size.products * 50, 0, QStringLiteral("进货"), "0", "1", 1});
            ++storeID;
            for (int id = 1; id <= size.products; ++id)
                w.run(storeLine, {storeID, id, priceOf[id] * 0.6, 50, priceOf[id] * 30});
        }
        for (int n = 0; n < size.ticketsPerDay && w.ok(); ++n) {
            ++saleID;
            QVector<Line> lines;
            const int count = random.bounded(10) < 6 ? 2 : 1;
            for (int i = 0; i < count; ++i) {
                const int id = goods[random.bounded(int(goods.size()))];
                const double amount = 1 + random.bounded(3);
                lines.push_back({id, priceOf[id], amount, priceOf[id] * amount, false});
                if (containerOf[id])
                    lines.push_back({containerOf[id], 0, amount, 0, true});
            }
            double amount = 0, money = 0, bottles = 0;
            for (const Line &l : lines) {
                (l.container ? bottles : amount) += l.amount;
                money += l.money;
            }
            // Most tickets end settled; a few keep a debt or a missing bottle for good, and
            // the days since the last closing are still being worked through.
            double inMoney = money, outAmount = amount, inContainer = bottles;
            const int fate = random.bounded(1000);
            if (fate < size.stuckPerMille / 2)
                inMoney = money - 5;
            else if (fate < size.stuckPerMille && bottles > 0)
                inContainer = bottles - 1;
            const bool recent = day > closedUpTo;
            if (recent && fate >= 900)
                outAmount = 0; // not yet delivered
            else if (recent && fate >= 800)
                inMoney = 0;
            const bool finished = !recent && inMoney == money && inContainer == bottles;
            w.run(sale, {saleID, 1 + random.bounded(size.customers), 1 + random.bounded(size.workers), amount, money,
                         bottles, inMoney, outAmount, inContainer, date, finished ? "1" : "0"});
            for (const Line &l : lines)
                w.run(saleLine, {saleID, l.product, l.price, l.amount, l.money, l.container ? "1" : "0"});
            if (!finished)
                continue;
            // What the closing wrote for it: an out voucher with its goods, and no station.
            w.run(store, {QString::number(saleID), date, amount, money, QStringLiteral("根据销售单自动生成"), "1", "0",
                          none});
            ++storeID;
            for (const Line &l : lines)
                if (!l.container)
                    w.run(storeLine, {storeID, l.product, l.price, l.amount, l.money});
        }
    }
    if (!w.ok()) {
        db.rollback();
        if (error)
            *error = w.error();
        return false;
    }
    if (!db.commit()) {
        if (error)
            *error = db.lastError().text();
        return false;
    }
    return true;
}
