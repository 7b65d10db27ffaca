#include "ShopGenerator.h"

#include "data/Database.h"

#include <QRandomGenerator>
#include <QSqlDriver>
#include <QVariant>
#include <sqlite3.h>
#include <variant>

namespace {
struct Line {
    int product;
    double price, amount, money;
    bool container;
};

struct Null {};
using Value = std::variant<Null, qint64, double, QByteArray>;

// Millions of rows: prepared statements on the engine itself, bound by position.
class Writer {
public:
    explicit Writer(sqlite3 *db) : m_db(db) {}
    ~Writer()
    {
        for (sqlite3_stmt *s : m_statements)
            sqlite3_finalize(s);
    }
    bool ok() const { return m_error.isEmpty(); }
    QString error() const { return m_error; }

    sqlite3_stmt *prepare(const char *sql)
    {
        sqlite3_stmt *s = nullptr;
        if (sqlite3_prepare_v2(m_db, sql, -1, &s, nullptr) != SQLITE_OK)
            fail();
        m_statements.push_back(s);
        return s;
    }
    bool exec(const char *sql)
    {
        if (ok() && sqlite3_exec(m_db, sql, nullptr, nullptr, nullptr) != SQLITE_OK)
            fail();
        return ok();
    }
    void run(sqlite3_stmt *s, std::initializer_list<Value> values)
    {
        if (!ok())
            return;
        int i = 1;
        for (const Value &v : values) {
            if (const auto *n = std::get_if<qint64>(&v))
                sqlite3_bind_int64(s, i, *n);
            else if (const auto *d = std::get_if<double>(&v))
                sqlite3_bind_double(s, i, *d);
            else if (const auto *t = std::get_if<QByteArray>(&v))
                sqlite3_bind_text(s, i, t->constData(), int(t->size()), SQLITE_TRANSIENT);
            else
                sqlite3_bind_null(s, i);
            ++i;
        }
        if (sqlite3_step(s) != SQLITE_DONE)
            fail();
        sqlite3_reset(s);
    }

private:
    void fail()
    {
        if (ok())
            m_error = QString::fromUtf8(sqlite3_errmsg(m_db));
    }
    sqlite3 *m_db;
    QString m_error;
    std::vector<sqlite3_stmt *> m_statements;
};

QByteArray u8(const QString &s) { return s.toUtf8(); }
}

bool ShopGenerator::fill(const Size &size, QString *error, const std::function<void(double)> &progress)
{
    const QVariant handle = Database::connection().driver()->handle();
    sqlite3 *engine = handle.isValid() && qstrcmp(handle.typeName(), "sqlite3*") == 0
                          ? *static_cast<sqlite3 *const *>(handle.constData())
                          : nullptr;
    if (!engine) {
        if (error)
            *error = QStringLiteral("no database open");
        return false;
    }
    QRandomGenerator random(size.seed);
    Writer w(engine);
    if (!w.exec("BEGIN IMMEDIATE")) {
        if (error)
            *error = w.error();
        return false;
    }

    // Products: every fourth is a bottle; the goods before it come in it.
    sqlite3_stmt *product = w.prepare(
        "INSERT INTO Product(ID,Name,Unit,Detail,IsDefault,Status,IsContainer,ContainerID,Price) VALUES(?,?,?,'',?,'1',?,?,?)");
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
        w.run(product, {qint64(id), u8(bottle ? QStringLiteral("空瓶%1").arg(id) : QStringLiteral("商品%1").arg(id)),
                        u8(bottle ? QStringLiteral("个") : QStringLiteral("桶")), QByteArray(id <= 4 ? "1" : "0"),
                        QByteArray(bottle ? "1" : "0"), qint64(containerOf[id]), priceOf[id]});
    }
    sqlite3_stmt *sender =
        w.prepare("INSERT INTO Sender(ID,Name,Phone,Detail,Status,Price,StationID) VALUES(?,?,'','','1',2,1)");
    for (int id = 1; id <= size.workers; ++id)
        w.run(sender, {qint64(id), u8(QStringLiteral("送水工%1").arg(id))});
    // Addresses on a handful of streets, so that a few typed characters narrow the search.
    static const char *const streets[] = {"幸福路", "人民路", "解放街", "建设路", "朝阳街", "和平路", "新华街", "长江路"};
    sqlite3_stmt *customer = w.prepare(
        "INSERT INTO Customer(ID,Account,Name,Address,Phone,Detail,CustType,Status,UserID,CreateDate,StationID) "
        "VALUES(?,?,?,?,?,'',1,'1',1,?,1)");
    const QDate first = size.lastDay.addDays(1 - size.days);
    const QByteArray firstDay = u8(first.toString(Qt::ISODate));
    for (int id = 1; id <= size.customers; ++id)
        w.run(customer, {qint64(id), qint64(id), u8(QStringLiteral("客户%1").arg(id)),
                         u8(QString::fromUtf8(streets[id % 8]) + QStringLiteral("%1号").arg(id / 8 + 1)),
                         u8(QStringLiteral("55%1").arg(id, 6, 10, QLatin1Char('0'))), firstDay});

    sqlite3_stmt *sale = w.prepare(
        "INSERT INTO Sale(ID,CustomerID,SenderID,UserID,TotalAmount,TotalMoney,TotalContainer,InMoney,OutAmount,"
        "InContainer,TransferFee,Detail,CreateDate,FinishFlag,StationID) VALUES(?,?,?,1,?,?,?,?,?,?,2,'',?,?,1)");
    sqlite3_stmt *saleLine =
        w.prepare("INSERT INTO Sale_detail(SaleID,ProductID,Price,MyAmount,MyMoney,IsContainer) VALUES(?,?,?,?,?,?)");
    sqlite3_stmt *store = w.prepare(
        "INSERT INTO Store(PaperID,CreateDate,TotalAmount,TotalMoney,Detail,UserID,Direction,HandInput,FinishFlag,"
        "StationID) VALUES(?,?,?,?,?,1,?,?,'1',?)");
    sqlite3_stmt *storeLine = w.prepare("INSERT INTO Store_detail(StoreID,ProductID,Price,MyAmount,MyMoney) VALUES(?,?,?,?,?)");
    qint64 storeID = 0;
    qint64 saleID = 0;
    const QDate closedUpTo = size.lastDay.addDays(-size.openDays);
    const qint64 tickets = qint64(size.days) * size.ticketsPerDay;
    const qint64 stuckEvery = size.stuckTickets > 0 ? qMax<qint64>(1, tickets / size.stuckTickets) : 0;
    const QByteArray generated = u8(QStringLiteral("根据销售单自动生成"));
    const QByteArray goodsIn = u8(QStringLiteral("进货"));

    int dayIndex = 0;
    for (QDate day = first; day <= size.lastDay && w.ok(); day = day.addDays(1), ++dayIndex) {
        if (progress && dayIndex % 30 == 0)
            progress(double(dayIndex) / size.days);
        const QByteArray date = u8(day.toString(Qt::ISODate));
        // Every Monday the store takes in a week's goods and bottles.
        if (day.dayOfWeek() == 1) {
            w.run(store, {u8(QStringLiteral("J%1").arg(day.toString(QStringLiteral("yyyyMMdd")))), date,
                          double(size.products * 50), 0.0, goodsIn, QByteArray("0"), QByteArray("1"), qint64(1)});
            ++storeID;
            for (int id = 1; id <= size.products; ++id)
                w.run(storeLine, {storeID, qint64(id), priceOf[id] * 0.6, 50.0, priceOf[id] * 30});
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
            if (stuckEvery && saleID % stuckEvery == 0) {
                if (fate % 2 == 0 || bottles == 0)
                    inMoney = money - 5;
                else
                    inContainer = bottles - 1;
            }
            const bool recent = day > closedUpTo;
            if (recent && fate >= 900)
                outAmount = 0; // not yet delivered
            else if (recent && fate >= 800)
                inMoney = 0;
            const bool finished = !recent && inMoney == money && inContainer == bottles;
            w.run(sale, {saleID, qint64(1 + random.bounded(size.customers)), qint64(1 + random.bounded(size.workers)),
                         amount, money, bottles, inMoney, outAmount, inContainer, date,
                         QByteArray(finished ? "1" : "0")});
            for (const Line &l : lines)
                w.run(saleLine, {saleID, qint64(l.product), l.price, l.amount, l.money,
                                 QByteArray(l.container ? "1" : "0")});
            if (!finished)
                continue;
            // What the closing wrote for it: an out voucher with its goods, and no station.
            w.run(store, {u8(QString::number(saleID)), date, amount, money, generated, QByteArray("1"), QByteArray("0"),
                          Null{}});
            ++storeID;
            for (const Line &l : lines)
                if (!l.container)
                    w.run(storeLine, {storeID, qint64(l.product), l.price, l.amount, l.money});
        }
    }
    if (!w.ok() || !w.exec("COMMIT")) {
        const QString failure = w.error();
        sqlite3_exec(engine, "ROLLBACK", nullptr, nullptr, nullptr);
        if (error)
            *error = failure;
        return false;
    }
    if (progress)
        progress(1.0);
    return true;
}
