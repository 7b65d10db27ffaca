#include "TodayReportGenerator.h"

#include "data/Gateway.h"
#include "platform/VbError.h"
#include "platform/VbRules.h"

namespace {
const QString DetailSums =
    QStringLiteral("select Sum(MyAmount) as ProductAmount,sum(MyMoney) as ProductMoney  from Sale,sale_detail ");
const QString StoreSums = QStringLiteral(
    "Select Sum(Store_Detail.MyAmount) as ProductAmount, Sum(Store_Detail.MyMoney) as ProductMoney from Store,Store_Detail ");

// The statements without the station condition at their end; the single report and the
// report by station each close them in their own way.
QString dayTotals(const QString &date)
{
    return QStringLiteral("SELECT sum(TotalMoney) as TodayMoney,sum(TotalAmount) as TodayAmount,sum(InMoney) as "
                          "TodayInMoney,sum(TotalContainer-InContainer) as TodayLackContainer,sum(TotalMoney-InMoney) "
                          "as TodayLackMoney from Sale where TotalAmount-OutAmount=0 AND CreateDate=#")
           + date + QStringLiteral("#");
}

QString soldByProduct(const QString &date, const QString &id) // A
{
    return DetailSums
           + QStringLiteral("where Sale.ID=Sale_Detail.SaleID and Sale.TotalAmount-Sale.OutAmount=0 and "
                            "Sale.CreateDate=#")
           + date + QStringLiteral("# and Sale_Detail.ProductID=") + id;
}

QString owedByWorker(const QString &date, const QString &id) // B
{
    return DetailSums
           + QStringLiteral("where Sale_Detail.IsContainer='0' and Sale.ID=Sale_Detail.SaleID and "
                            "(Sale.TotalAmount-Sale.OutAmount=0) and (Sale.TotalMoney-Sale.InMoney)>0 and "
                            "Sale.CreateDate=#")
           + date + QStringLiteral("# and Sale.SenderID=") + id;
}

QString emptiesByWorker(const QString &date, const QString &id) // C
{
    return DetailSums
           + QStringLiteral(" where Sale.ID=Sale_Detail.SaleID and (Sale.TotalContainer-Sale.InContainer>0) and "
                            "(Sale.TotalAmount-Sale.OutAmount=0) and Sale.CreateDate=#")
           + date + QStringLiteral("# and Sale_Detail.IsContainer='1' and Sale.SenderID=") + id;
}

QString emptiesByContainer(const QString &date, const QString &id) // D
{
    return DetailSums
           + QStringLiteral("where Sale.ID=Sale_Detail.SaleID and (Sale.TotalContainer-Sale.InContainer>0) and "
                            "(Sale.TotalAmount-Sale.OutAmount=0) and Sale.CreateDate=#")
           + date + QStringLiteral("# and  Sale_Detail.IsContainer='1' and Sale_Detail.ProductID=") + id;
}

// Up to the date, without its closing mark: the station condition follows it.
QString stockIn(const QString &date, const QString &id)
{
    return StoreSums
           + QStringLiteral("where Store.ID=Store_Detail.StoreID and Store.Direction='0' and Store_Detail.ProductID=")
           + id + QStringLiteral(" and Store.CreateDate<=#") + date;
}

QString stockOut(const QString &date, const QString &id)
{
    return StoreSums
           + QStringLiteral("where Store.ID=Store_Detail.StoreID  and Store.Direction='1' and Store_Detail.ProductID=")
           + id + QStringLiteral("  and Store.CreateDate<=#") + date;
}

QString soldOpen(const QString &date, const QString &id)
{
    return QStringLiteral("select sum(Sale_detail.MyAmount) as ProductAmount ,sum(Sale_detail.MyMoney) as "
                          "ProductMoney from Sale,Sale_Detail where Sale_detail.SaleID=sale.id and "
                          "(Sale.TotalAmount-Sale.OutAmount=0) and Sale.FinishFlag='0' and Sale_Detail.ProductID=")
           + id
           + QStringLiteral(" and ((Sale_Detail.IsContainer='0') or (Sale_Detail.IsContainer='1' and "
                            "(Sale.TotalContainer-Sale.InContainer>0))) and Sale.CreateDate <=#")
           + date;
}

// The gateway has shown why; what follows cannot read a set that is not there.
RecordsetPtr open(const QString &sql)
{
    RecordsetPtr rs = OpenRecordset(sql);
    if (!rs)
        throw VbError::objectNotSet();
    return rs;
}

int count(const QString &sql) { return open(sql)->field(QStringLiteral("TotalRows")).toInt(); }

// Sums are money of four decimals at most; fifteen digits keep the engine's binary noise out.
QString numberText(double value)
{
    if (value == 0)
        return QStringLiteral("0");
    return QString::number(value, 'g', 15);
}

// A head's sum as it comes: no row for the day gives a null, shown blank.
QString asItComes(const QVariant &value)
{
    if (value.isNull())
        return QString();
    bool ok = false;
    const double d = value.toDouble(&ok);
    return ok ? numberText(d) : value.toString();
}

double orZero(const QVariant &value) { return value.isNull() ? 0.0 : Val(value.toString()); }

struct Sums {
    double amount = 0;
    double money = 0;
};

Sums sums(const QString &sql)
{
    RecordsetPtr rs = open(sql);
    return {orZero(rs->field(QStringLiteral("ProductAmount"))), orZero(rs->field(QStringLiteral("ProductMoney")))};
}

// The first detail row of a loop names the breakdown; the stock section stands one blank deeper.
QString detailPrefix(bool first, bool stock)
{
    const QString blanks(stock ? 10 : 9, QLatin1Char(' '));
    return first ? blanks + QStringLiteral("其  中：") : QString(stock ? 18 : 17, QLatin1Char(' '));
}

// Runs one step of the report by station; a failure leaves its cells as they were.
template <typename Step> void passOver(Step step)
{
    try {
        step();
    } catch (const VbError &) {
    }
}
}

bool TodayReportGenerator::setDateText(const QString &text)
{
    if (text.isEmpty())
        return true;
    QDate date;
    if (!readDate(text.trimmed(), &date))
        return false;
    ReportDate = date;
    return true;
}

void TodayReportGenerator::start(int rows)
{
    xayReport = ReportArray(rows + 1);
    m_row = 0;
    m_bar = 0;
    m_barMax = rows;
    if (progress)
        progress(0, m_barMax);
}

void TodayReportGenerator::step(int by)
{
    m_row += by;
    m_bar += by;
    if (progress)
        progress(m_bar, m_barMax);
}

void TodayReportGenerator::put(int row, int column, const QString &text)
{
    // The array was sized from the counts; a row beyond it (the catalogue grew meanwhile) is lost.
    if (row >= 0 && row < xayReport.size())
        xayReport[row][column] = text;
}

void TodayReportGenerator::GetTodayReport()
{
    const QString date = DateText(ReportDate);
    const QString station = QStringLiteral("  AND Sale.StationID=") + QString::number(curStationID);

    const int products = count(QStringLiteral("SELECT Count(*) as TotalRows from Product WHERE Status='1' "));
    const int containers =
        count(QStringLiteral("SELECT Count(*) as TotalRows from Product where IsContainer<>'0' and Status='1'"));
    const int workers = count(QStringLiteral("SELECT Count(*) as TotalRows from Sender WHERE Status='1'"));
    RecordsetPtr today = open(dayTotals(date) + QStringLiteral("  AND StationID=") + QString::number(curStationID));

    start(qMax(2 * products + containers + 2 * workers + 10, 25));

    // One detail row per row of list: the item's name and the two sums of its statement.
    auto details = [&](const QString &list, auto statement) {
        RecordsetPtr rs = open(list);
        for (bool first = true; !rs->eof(); rs->moveNext(), first = false) {
            step(1);
            put(m_row, 0, detailPrefix(first, false) + rs->text(QStringLiteral("Name")));
            const Sums s = sums(statement(rs->text(QStringLiteral("ID"))));
            put(m_row, 1, numberText(s.amount));
            put(m_row, 2, numberText(s.money));
        }
    };
    const QString productList = QStringLiteral("select * from Product where Status='1'");
    const QString workerList = QStringLiteral("select * from Sender where Status='1'");

    put(m_row, 0, QStringLiteral("今日销售总额："));
    put(m_row, 1, asItComes(today->field(QStringLiteral("TodayAmount"))));
    put(m_row, 2, asItComes(today->field(QStringLiteral("TodayMoney"))));
    details(productList, [&](const QString &id) { return soldByProduct(date, id) + station; });
    step(2);

    put(m_row, 0, QStringLiteral("今日欠款总额："));
    put(m_row, 2, asItComes(today->field(QStringLiteral("TodayLackMoney"))));
    details(workerList, [&](const QString &id) { return owedByWorker(date, id) + station; });
    step(2);

    put(m_row, 0, QStringLiteral("今日欠瓶总额："));
    put(m_row, 1, asItComes(today->field(QStringLiteral("TodayLackContainer"))));
    details(workerList, [&](const QString &id) { return emptiesByWorker(date, id) + station; });
    details(QStringLiteral("select * from Product where IsContainer='1' and Status='1'"),
            [&](const QString &id) { return emptiesByContainer(date, id) + station; });
    step(2);

    put(m_row, 0, QStringLiteral("今日现金收入总额："));
    put(m_row, 2, asItComes(today->field(QStringLiteral("TodayInMoney"))));
    step(2);

    put(m_row, 0, QStringLiteral("今日库存余额："));
    const QString storeStation = QStringLiteral("#  AND Store.StationID=") + QString::number(curStationID);
    const QString saleStation = QStringLiteral("#  AND Sale.StationID=") + QString::number(curStationID);
    double amountTotal = 0;
    qint32 moneyTotal = 0; // whole money, rounded at every product
    RecordsetPtr rs = open(productList);
    for (bool first = true; !rs->eof(); rs->moveNext(), first = false) {
        step(1);
        const QString id = rs->text(QStringLiteral("ID"));
        put(m_row, 0, detailPrefix(first, true) + rs->text(QStringLiteral("Name")));
        const Sums in = sums(stockIn(date, id) + storeStation);
        const Sums out = sums(stockOut(date, id) + storeStation);
        const Sums sold = sums(soldOpen(date, id) + saleStation);
        put(m_row, 1, numberText(in.amount - out.amount - sold.amount));
        put(m_row, 2, numberText(in.money - out.money - sold.money));
        amountTotal = amountTotal + (in.amount - out.amount) - sold.amount;
        moneyTotal = CLng(double(moneyTotal) + (in.money - out.money) - sold.money);
    }
    const int head = m_row - rs->recordCount();
    put(head, 1, numberText(amountTotal));
    put(head, 2, numberText(moneyTotal));
}

void TodayReportGenerator::GetTodayGrpReport()
{
    const QString date = DateText(ReportDate);
    int products = 0, containers = 0, workers = 0, stationCount = 0;
    passOver([&] { products = count(QStringLiteral("SELECT Count(*) as TotalRows from Product WHERE Status='1' ")); });
    passOver([&] {
        containers = count(QStringLiteral("SELECT Count(*) as TotalRows from Product where IsContainer<>'0' and Status='1'"));
    });
    passOver([&] { workers = count(QStringLiteral("SELECT Count(*) as TotalRows from Sender WHERE Status='1'")); });
    RecordsetPtr stations = OpenRecordset(QStringLiteral("select * from Station Where Status='1'"));
    if (stations)
        stationCount = stations->recordCount();
    RecordsetPtr plain = OpenRecordset(dayTotals(date));
    RecordsetPtr grouped = OpenRecordset(dayTotals(date) + QStringLiteral(" Group by StationID"));

    start(qMax(4 * stationCount + 10 + 2 * products * stationCount + containers * stationCount + 2 * workers, 25));

    auto head = [&](const QString &text, const QString &amountField, const QString &moneyField) {
        put(m_row, 0, text);
        passOver([&] {
            if (!plain || plain->eof())
                throw VbError::objectNotSet();
            if (!amountField.isEmpty())
                put(m_row, 1, asItComes(plain->field(amountField)));
            if (!moneyField.isEmpty())
                put(m_row, 2, asItComes(plain->field(moneyField)));
        });
    };
    // A station's own figures. The grouped statement does not select StationID, so the filter
    // is refused, the failure passed over, and every station reads the set's first group.
    auto stationRow = [&](bool first, bool wide, const QString &name, const QString &id,
                          const QString &amountField, const QString &moneyField) {
        step(1);
        const QString lead = wide ? (first ? QStringLiteral("    其  中：") : QString(12, QLatin1Char(' ')))
                                  : (first ? QStringLiteral("   其  中：") : QString(11, QLatin1Char(' ')));
        put(m_row, 0, lead + name);
        passOver([&] {
            if (!grouped)
                throw VbError::objectNotSet();
            passOver([&] { grouped->setFilter(QStringLiteral("StationID=") + id); });
            if (grouped->eof())
                throw VbError(3021, QStringLiteral("BOF 或 EOF 中有一个是“真”，或者当前记录已被删除"));
            auto figure = [&](const QString &field) {
                const QVariant v = grouped->field(field);
                return v.isNull() ? QStringLiteral("0") : numberText(Val(v.toString()));
            };
            if (!amountField.isEmpty())
                put(m_row, 1, figure(amountField));
            if (!moneyField.isEmpty())
                put(m_row, 2, figure(moneyField));
            grouped->setFilter(QString());
        });
    };
    auto details = [&](const QString &list, auto statement) {
        passOver([&] {
            RecordsetPtr rs = open(list);
            for (bool first = true; !rs->eof(); rs->moveNext(), first = false) {
                step(1);
                put(m_row, 0, (first ? QString(17, QLatin1Char(' ')) + QStringLiteral("其  中：")
                                     : QString(25, QLatin1Char(' ')))
                                  + rs->text(QStringLiteral("Name")));
                passOver([&] {
                    const Sums s = sums(statement(rs->text(QStringLiteral("ID"))));
                    put(m_row, 1, numberText(s.amount));
                    put(m_row, 2, numberText(s.money));
                });
            }
        });
    };
    // Each station of the list in turn, with what the section shows under it.
    auto eachStation = [&](auto under) {
        if (!stations)
            return;
        stations->moveFirst();
        for (bool first = true; !stations->eof(); stations->moveNext(), first = false)
            under(first, stations->text(QStringLiteral("Name")), stations->text(QStringLiteral("ID")));
    };
    const QString productList = QStringLiteral("select * from Product where Status='1'");
    auto workersOf = [](const QString &station) {
        return QStringLiteral("select * from Sender where Status='1'and StationID=") + station;
    };

    head(QStringLiteral("今日销售总额："), QStringLiteral("TodayAmount"), QStringLiteral("TodayMoney"));
    eachStation([&](bool first, const QString &name, const QString &st) {
        stationRow(first, true, name, st, QStringLiteral("TodayAmount"), QStringLiteral("TodayMoney"));
        details(productList,
                [&](const QString &id) { return soldByProduct(date, id) + QStringLiteral(" AND Sale.StationID=") + st; });
    });
    step(2);

    head(QStringLiteral("今日欠款总额："), QString(), QStringLiteral("TodayLackMoney"));
    eachStation([&](bool first, const QString &name, const QString &st) {
        stationRow(first, true, name, st, QString(), QStringLiteral("TodayLackMoney"));
        details(workersOf(st), [&](const QString &id) { return owedByWorker(date, id); });
    });
    step(2);

    head(QStringLiteral("今日欠瓶总额："), QStringLiteral("TodayLackContainer"), QString());
    eachStation([&](bool first, const QString &name, const QString &st) {
        stationRow(first, false, name, st, QStringLiteral("TodayLackContainer"), QString());
        details(workersOf(st), [&](const QString &id) { return emptiesByWorker(date, id); });
        details(QStringLiteral("select * from Product where IsContainer='1' and Status='1'"), [&](const QString &id) {
            return emptiesByContainer(date, id) + QStringLiteral(" And Sale.StationID=") + st;
        });
    });
    step(2);

    head(QStringLiteral("今日现金收入总额："), QString(), QStringLiteral("TodayInMoney"));
    eachStation([&](bool first, const QString &name, const QString &st) {
        stationRow(first, false, name, st, QString(), QStringLiteral("TodayInMoney"));
    });
    step(2);

    // Each station's balance stands on its own row; the head shows its text alone.
    put(m_row, 0, QStringLiteral("今日库存余额："));
    eachStation([&](bool first, const QString &name, const QString &st) {
        step(1);
        const int stationLine = m_row;
        put(m_row, 0, (first ? QStringLiteral("   其  中：") : QString(11, QLatin1Char(' '))) + name);
        double amount = 0, money = 0;
        passOver([&] {
            RecordsetPtr rs = open(productList);
            for (bool firstProduct = true; !rs->eof(); rs->moveNext(), firstProduct = false) {
                step(1);
                const QString id = rs->text(QStringLiteral("ID"));
                put(m_row, 0, (firstProduct ? QString(17, QLatin1Char(' ')) + QStringLiteral("其  中：")
                                            : QString(25, QLatin1Char(' ')))
                                  + rs->text(QStringLiteral("Name")));
                passOver([&] {
                    const Sums in = sums(stockIn(date, id) + QStringLiteral("# and Store.StationID=") + st);
                    const Sums out = sums(stockOut(date, id) + QStringLiteral("# and Store.StationID=") + st);
                    const Sums sold = sums(soldOpen(date, id) + QStringLiteral("# and Sale.StationID=") + st);
                    put(m_row, 1, numberText(in.amount - out.amount - sold.amount));
                    put(m_row, 2, numberText(in.money - out.money - sold.money));
                    amount += in.amount - out.amount - sold.amount;
                    money += in.money - out.money - sold.money;
                });
            }
        });
        put(stationLine, 1, numberText(amount));
        put(stationLine, 2, numberText(money));
    });
}
