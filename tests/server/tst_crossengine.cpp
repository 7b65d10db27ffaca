// The same shop on the file and on the server: every statement shape the windows send, and
// the stock-take, the reports and the closing run whole, must give the same rows on both.
#include "ServerDb.h"
#include "support/TestDb.h"

#include "data/SqlText.h"
#include "report/PeriodClosing.h"
#include "report/ReportQuery.h"
#include "report/TodayReportGenerator.h"

#include <QtTest>
#include <functional>

namespace {
QString cell(const QVariant &v)
{
    if (v.isNull())
        return QStringLiteral("null");
    switch (v.typeId()) {
    case QMetaType::Double:
    case QMetaType::Float:
        return QString::number(v.toDouble(), 'g', 12);
    default:
        return v.toString();
    }
}

QStringList rows(const RecordsetPtr &rs)
{
    if (!rs)
        return {QStringLiteral("failed")};
    QStringList out{rs->fieldNames().join(QLatin1Char(',')).toLower()};
    for (rs->moveFirst(); !rs->eof(); rs->moveNext()) {
        QStringList line;
        for (int i = 0; i < rs->fieldNames().size(); ++i)
            line << cell(rs->field(i));
        out << line.join(QLatin1Char('|'));
    }
    return out;
}

QStringList select(const QString &sql) { return rows(OpenRecordset(sql)); }
QStringList exec(const QString &sql) { return {ExecuteSql(sql) ? QStringLiteral("ok") : QStringLiteral("failed")}; }

// Statements in the order given (a select gives its rows, anything else ok or failed).
QStringList seq(const QStringList &statements)
{
    QStringList out;
    for (const QString &sql : statements)
        out += sql.trimmed().startsWith(QLatin1String("select"), Qt::CaseInsensitive) ? select(sql) : exec(sql);
    return out;
}

// What a table holds, in a fixed order, after a procedure wrote to it.
QStringList table(const QString &name, const QString &order)
{
    return select(QStringLiteral("select * from ") + name + QStringLiteral(" order by ") + order);
}

struct Step {
    const char *name;
    std::function<QStringList()> run;
};

QString d(const char *date) { return QLatin1Char('#') + Sql::date(QString::fromUtf8(date)) + QLatin1Char('#'); }

// A shop of two stations, six customers (names in both letter cases, which sort without
// regard to case), bottled goods and their bottles, tickets over two years in every state,
// hand-made vouchers and calls, all written in the windows' words.
const QList<Step> &steps()
{
    static const QList<Step> all = {
        {"station", [] { return exec("insert into Station(Name,Status) values('分站','1')"); }},
        {"products", [] {
             const QString insert = "insert into Product (name,unit,detail,IsDefault,status,IsContainer,ContainerID,price) "
                                    "values ";
             return seq({insert + "('水桶','只','','0','1','1',0,0)", insert + "('气瓶','只','','0','1','1',0,0)",
                         insert + "('纯净水','桶','','1','1','0',1,10)", insert + "('液化气','瓶','','1','1','0',2,95.5)",
                         insert + "('Mineral Water','box','','0','0','0',0,12.25)"});
         }},
        {"workers", [] {
             return seq({"insert into Sender (name,phone,detail,status,price,StationID) values ('老王','139','', '1',2,1)",
                        "insert into Sender (name,phone,detail,status,price,StationID) values ('小李','138','', '1',3,2)"});
         }},
        {"customers", [] {
             QStringList out;
             const char *const people[][5] = {{"张三", "人民路1号", "0571-1", "1", "1"},
                                              {"李四", "人民路22号", "0571-2", "1", "1"},
                                              {"Wang", "Renmin Road 5", "0571-3", "1", "2"},
                                              {"", "解放路8号", "0571-4", "0", "1"},
                                              {"赵六", "解放路9号", "0571-5", "1", "2"},
                                              {"li", "li street 2", "0571-6", "1", "1"}};
             for (const auto &p : people)
                 out += exec(QStringLiteral("insert into Customer(Account,Phone,Address,Name,Detail,CreateDate,CustType,"
                                            "Status,StationID) values (0,'%1','%2','%3','',%4,1,'%5',%6)")
                                 .arg(p[2], p[1], p[0], d("1-15-2025"), p[3], p[4]));
             out += exec("Update Customer set Account=ID where Account=0");
             return out;
         }},
        {"tickets", [] {
             // customer, worker, amount, money, container, in money, out, in container, fee, date, flag, station
             const char *const tickets[][12] = {
                 {"1", "1", "2", "20", "2", "20", "2", "2", "2", "2025-12-30", "0", "1"},
                 {"1", "1", "1", "95.5", "1", "0", "1", "0", "5", "2026-1-5", "0", "1"},
                 {"2", "2", "3", "30", "3", "30", "3", "3", "0", "2026-9-9", "0", "2"},
                 {"3", "1", "4", "40", "4", "40", "0", "4", "3", "2026-11-5", "0", "1"},
                 {"5", "2", "1", "10", "1", "10", "1", "0", "0", "2026-11-22", "0", "2"},
                 {"2", "1", "2", "191", "2", "191", "2", "2", "10", "2026-11-22", "0", "1"},
                 {"1", "1", "5", "50", "5", "0", "5", "5", "0", "2026-11-23 10:15", "0", "1"},
                 {"4", "2", "1", "10", "1", "10", "1", "1", "0", "2025-3-1", "1", "1"}};
             QStringList out;
             for (const auto &t : tickets) {
                 out += exec(QStringLiteral("insert into Sale (CustomerID,SenderID,UserID,TotalAmount,TotalMoney,"
                                            "TotalContainer,InMoney,OutAmount,InContainer,TransferFee,Detail,CreateDate,"
                                            "FinishFlag,StationID) values (%1,%2,1,%3,%4,%5,%6,%7,%8,%9,'电话订货',%10,'%11',%12)")
                                 .arg(t[0], t[1], t[2], t[3], t[4], t[5], t[6], t[7], t[8])
                                 .arg(d(t[9]), t[10], t[11]));
                 const QString sale = select("select max(ID) as MaxID from Sale").value(1);
                 const bool gas = QByteArray(t[3]).toDouble() > 90;
                 out += exec(QStringLiteral("insert into Sale_detail(SaleID,ProductID,Price,MyAmount,MyMoney,IsContainer)  "
                                            "values(%1,%2,%3,%4,%5,'0')")
                                 .arg(sale, gas ? "4" : "3", gas ? "95.5" : "10", t[2], t[3]));
                 out += exec(QStringLiteral("insert into Sale_detail(SaleID,ProductID,Price,MyAmount,MyMoney,IsContainer)  "
                                            "values(%1,%2,0,%3,0,'1')")
                                 .arg(sale, gas ? "2" : "1", t[2]));
             }
             return out;
         }},
        {"vouchers", [] {
             return seq({"insert into Store(PaperID,CreateDate,TotalAmount,TotalMoney,Detail,UserID,Direction,HandInput,"
                         "FinishFlag,StationID) values ('A-1'," + d("11-1-2026") + ",100,800,'进货',1,'0','1','0',1)",
                        "insert into Store_detail(StoreID,ProductID,Price,MyAmount,MyMoney)  values(1,3,8,100,800)",
                        "insert into Store(PaperID,CreateDate,TotalAmount,TotalMoney,Detail,UserID,Direction,HandInput,"
                           "FinishFlag,StationID) values ('a-2'," + d("2026-11-20") + ",3,30,'退货',1,'1','1','0',2)",
                        "insert into Store_detail(StoreID,ProductID,Price,MyAmount,MyMoney)  values(2,3,10,3,30)"});
         }},
        {"calls", [] {
             return seq({"INSERT INTO Call(PhoneNumber,CreateDate) values ('0571-1'," + d("11/23/2026 9:05:00 AM") + ")",
                        "INSERT INTO Call(PhoneNumber,CreateDate) values ('0571-9'," + d("11/23/2026 2:30:00 PM") + ")"});
         }},

        // The ticket window.
        {"address search", [] { return select("Select * from Customer where Status='1' AND  Address Like '%人民%' order by ID"); }},
        {"address search ignores case", [] { return select("Select * from Customer where Status='1' AND  Address Like '%renmin%'"); }},
        {"address exact, other case", [] { return select("select * from Customer WHERE Address='RENMIN ROAD 5'"); }},
        {"by account", [] { return select("Select * from Customer where Status='1' AND Account=" + Sql::number("2")); }},
        {"by phone", [] { return select("Select * from Customer where Status='1' AND Phone='0571-5'"); }},
        {"history sums", [] {
             return select("select sum(TotalAmount) as HistoryAmount,sum(TotalMoney) as HistoryMoney,"
                           "sum(TotalContainer-InContainer) as HistoryContainerBalance,sum(TotalMoney-InMoney) as "
                           "HistoryMoneyBalance,count(*) as TotalNumber from Sale where CustomerID=1");
         }},
        {"history sums over no tickets", [] {
             return select("select sum(TotalAmount) as HistoryAmount,sum(TotalMoney-InMoney) as HistoryMoneyBalance,"
                           "count(*) as TotalNumber from Sale where CustomerID=99");
         }},
        {"history lines", [] {
             return select("select ID,CreateDate,TotalAmount,TotalMoney,(TotalMoney-InMoney) as MoneyBalance,"
                           "(TotalContainer-InContainer) as ContainerBalance,SenderID,UserID from Sale where CustomerID=1 "
                           "order by ID");
         }},
        {"ticket lines", [] {
             return select("select a.ProductID as product_id,a.MyAmount as product_MyAmount,a.price as product_price,"
                           "a.MyMoney as product_MyMoney,b.Name as product_name,b.Unit as product_unit from Sale_detail as a "
                           ",product as b where a.SaleID=2 and a.ProductID=b.ID and a.IsContainer='0'");
         }},
        {"products in use", [] { return select("Select * from product where Status='1' order by ID"); }},
        {"edit a ticket", [] {
             return seq({"update Sale set Detail='改过', TotalAmount=2, TotalMoney=191,TotalContainer=2,OutAmount=2,"
                         "InMoney=100,InContainer=1,UserID=1, StationID=1, SenderID=1, TransferFee=4 where ID=2",
                         "select * from Sale where ID=2"});
         }},
        {"a quote in a remark fails", [] {
             return exec("update Sale set Detail='" + Sql::text("O'Brien") + "' where ID=2");
         }},
        {"a hash in a date fails", [] {
             return exec("update Sale set CreateDate=#" + Sql::date("2026-01-01# or 1=1 or #2026-01-01") + "# where ID=2");
         }},
        {"an impossible date fails", [] { return exec("update Sale set CreateDate=#2026-2-30# where ID=2"); }},

        // The ticket lists and their footers, with the filters' clauses.
        {"sale list", [] {
             return select("SELECT Sale.ID as ID,Sale.CreateDate as CreateDate,Sale.UserID as UserID,Sale.FinishFlag,"
                           "Sale.SenderID as SenderID,Customer.Address as Address,TotalAmount,TotalMoney,TotalContainer,"
                           "TransferFee,InContainer,OutAmount,InMoney FROM Sale,Customer where Sale.CustomerID=Customer.ID "
                           " and (Sale.FinishFlag='0' or Sale.CreateDate=#11-23-2026#) ORDER BY Sale.ID Desc");
         }},
        {"sale list footers", [] {
             return select("SELECT sum(TotalMoney) as TotalValue0,sum(InMoney) as TotalValue1 from Sale,Customer where "
                           "Sale.CustomerID=Customer.ID  and (Sale.FinishFlag='0' or Sale.CreateDate=#11-23-2026#)");
         }},
        {"sale filter", [] {
             return select("SELECT Sale.ID as ID,Customer.Address as Address FROM Sale,Customer where "
                           "Sale.CustomerID=Customer.ID  AND Address Like '%路%'  AND Sale.CreateDate>=#11/1/2026# "
                           "AND Sale.CreateDate<=#2026-11-30# And (TotalMoney-InMoney)>0 AND FinishFlag='0' "
                           "AND Sale.StationID=1 ORDER BY Address Asc, Sale.ID Asc");
         }},
        {"money list", [] {
             return select("select * from Sale where FinishFlag='0' and (TotalMoney-InMoney)>0 order by ID");
         }},
        {"empties footer", [] {
             return select("select sum(Sale_detail.MyAmount) as ProductAmount ,sum(Sale_detail.MyMoney) as ProductMoney "
                           "from Sale,Sale_Detail where Sale.ID=Sale_Detail.SaleID and (Sale.TotalContainer-Sale.InContainer>0)"
                           " and Sale_detail.IsContainer='1'");
         }},
        {"customer list", [] { return select("SELECT * FROM Customer WHERE  Name Like '%WANG%'  AND  Status='1' ORDER BY Name Asc"); }},
        {"customer list by name", [] { return select("SELECT * FROM Customer ORDER BY Name Asc, ID Asc"); }},
        {"customer filter on sums it lacks", [] { return select("SELECT * FROM Customer WHERE  TotalDebt>0"); }},
        {"stock list", [] {
             return select(" SELECT * FROM Store WHERE  PaperID Like '%A%'  AND  CreateDate>=#11-1-2026# ORDER BY ID Asc");
         }},
        {"call history", [] {
             return select("SELECT a.ID as ID,a.CreateDate as CallDate,a.PhoneNumber as CallerID,b.Name as CustName,"
                           "b.Address As CustAddress FROM Call a LEFT OUTER JOIN Customer b ON a.PhoneNumber=b.Phone "
                           "ORDER BY a.ID Asc");
         }},
        {"counts", [] {
             return seq({"SELECT Count(*) as TotalRows from Product where IsContainer<>'0' and Status='1'",
                        "select count(*) as TotalRows from Sale where FinishFlag='0' and (TotalAmount-OutAmount)>0"});
         }},
        {"lowest station", [] { return select("select min(ID) as NewField from Station"); }},
        {"a result set filtered by ID", [] {
             RecordsetPtr rs = OpenRecordset("select * from Sale order by ID");
             if (!rs)
                 return QStringList{"failed"};
             rs->setFilter("ID=3");
             return QStringList{QString::number(rs->recordCount()), rs->text("CreateDate"), rs->text("Detail")};
         }},
        {"a snapshot written back", [] {
             RecordsetPtr rs = OpenRecordset("select * from Customer where ID=5");
             if (!rs || rs->eof())
                 return QStringList{"failed"};
             rs->setField("Phone", "0571-55");
             const QStringList written{rs->update() ? "ok" : rs->lastError()};
             return written + select("select * from Customer where ID=5");
         }},
        // The server gets the values written into the statement: a quote, a date and no value
        // must arrive as they are.
        {"a snapshot written back with a quote, a date and no value", [] {
             RecordsetPtr rs = OpenRecordset("select * from Customer where ID=4");
             if (!rs || rs->eof())
                 return QStringList{"failed"};
             rs->setField("Detail", "O'Neil's 'corner'");
             rs->setField("CreateDate", "2026-03-01");
             rs->setField("Name", QVariant());
             const QStringList written{rs->update() ? "ok" : rs->lastError()};
             return written + select("select * from Customer where ID=4");
         }},
        {"a setting written and read", [] {
             SetSysValue("ReportTitle", "本月");
             SetSysValue("reporttitle", "本年");
             return QStringList{GetSysValue("REPORTTITLE")} + select("select count(*) as n from SysValue where Name='ReportTitle'");
         }},
        {"gateway sums", [] {
             return QStringList{QString::number(GetSumValue("Sale", " where FinishFlag='0'", "TotalMoney-InMoney")),
                                QString::number(GetSumValue("sale", " where ID<0", "TotalMoney")),
                                GetFieldByID(3, "product", "name"),
                                QString::number(GetCustomerIDByAccount("3"))};
         }},

        // The ticket operations, one ticket and all open ones.
        {"operations", [] {
             return seq({"UPDATE sale set InMoney=TotalMoney WHERE ID=7",
                        " UPDATE Sale set InContainer=0 where ID=1",
                        "UPDATE sale set OutAmount=TotalAmount where ID=4",
                        "Update sale set InContainer=0 where FinishFlag='0'",
                        "UPDATE sale set InContainer=TotalContainer where FinishFlag='0'",
                        "select ID,InMoney,OutAmount,InContainer from Sale order by ID"});
         }},

        // The period reports, all six kinds, over the year and in every sort.
        {"reports", [] {
             QStringList out;
             for (int type = 0; type <= 5; ++type) {
                 const ReportQuery q(type, QDate(2025, 12, 1), QDate(2026, 11, 30), type % 3 == 2 ? 1 : 1);
                 out += select(q.fullSql());
                 out += select(q.shortSql() + q.filterSql() + q.groupSql() + q.sortSqlFor("ReportDate", 1));
                 out += select(q.shortSql() + q.filterSql() + q.groupSql() + q.sortSqlFor("SumMoney", 0));
             }
             return out;
         }},

        // The stock-take of a day, for one station and for all of them.
        {"stock-take", [] {
             QStringList out;
             TodayReportGenerator g;
             g.ReportDate = QDate(2026, 11, 22);
             g.curStationID = 1;
             g.GetTodayReport();
             for (const ReportRow &r : g.xayReport)
                 out << QStringList{r[0], r[1], r[2]}.join(QLatin1Char('|'));
             TodayReportGenerator all;
             all.ReportDate = QDate(2026, 11, 23);
             all.GetTodayGrpReport();
             for (const ReportRow &r : all.xayReport)
                 out << QStringList{r[0], r[1], r[2]}.join(QLatin1Char('|'));
             return out;
         }},

        // The closing up to 11-22-2026 and everything it wrote.
        {"closing", [] {
             const std::optional<int> closed = PeriodClosing().FinishToday();
             return QStringList{QString::number(closed.value_or(-1))} + table("Sale", "ID") + table("Sale_detail", "SaleID,IsContainer")
                    + table("Store", "ID") + table("Store_detail", "StoreID,ProductID");
         }},

        // Deleting, as the lists and the reset do.
        {"deletes", [] {
             return seq({"Delete from Sale where ID=6",
                        " Delete from Sale_Detail where SaleID=6",
                        "delete from Call where ID=" + Sql::number("2"),
                        "select count(*) as n from Call",
                        "Delete from Sale where FinishFlag='0'",
                        "select count(*) as n from Sale"});
         }},
    };
    return all;
}

QMap<QString, QStringList> runAll()
{
    YesPrompter prompts;
    QMap<QString, QStringList> results;
    for (const Step &s : steps()) {
        prompts.shown.clear();
        results[QString::fromUtf8(s.name)] = s.run() + prompts.shown;
    }
    return results;
}
}

class tst_CrossEngine : public QObject {
    Q_OBJECT
    QMap<QString, QStringList> m_file;
    QMap<QString, QStringList> m_server;

private slots:
    void initTestCase()
    {
        {
            TestDb db;
            QVERIFY(db.ok());
            m_file = runAll();
        }
        ServerDb server;
        QVERIFY2(server.ok(), qPrintable(server.error()));
        m_server = runAll();
    }

    void sameRows_data()
    {
        QTest::addColumn<QString>("step");
        for (const Step &s : steps())
            QTest::newRow(s.name) << QString::fromUtf8(s.name);
    }
    void sameRows()
    {
        QFETCH(QString, step);
        const QStringList file = m_file.value(step);
        const QStringList server = m_server.value(step);
        QVERIFY(!file.isEmpty());
        if (file != server) {
            for (int i = 0; i < qMax(file.size(), server.size()); ++i)
                if (file.value(i) != server.value(i))
                    qWarning().noquote() << i << "file:  " << file.value(i) << "\n   server:" << server.value(i);
        }
        QCOMPARE(server, file);
    }
};

QTEST_MAIN(tst_CrossEngine)
#include "tst_crossengine.moc"
