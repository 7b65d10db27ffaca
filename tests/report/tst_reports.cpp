#include "data/Gateway.h"
#include "report/ReportQuery.h"
#include "report/TodayReportGenerator.h"
#include "support/Rows.h"

#include <QtTest>

// The day's stock-take and the period reports, over rows written straight into a fresh
// database. The catalogue: 水 (1) comes in 空瓶 (3), 气 (2) has no bottle; workers 张三 (1)
// and 李四 (2). Its stock-take lays out as
//   0 sales head, 1-3 products | 5 debt head, 6-7 workers | 9 empties head, 10-11 workers,
//   12 bottles | 14 cash head | 16 stock head, 17-19 products.
class TestReports : public QObject {
    Q_OBJECT
    std::unique_ptr<TestDb> m_db;
    std::unique_ptr<ScriptedPrompter> m_prompts;

    void exec(const QStringList &statements)
    {
        for (const QString &sql : statements)
            QVERIFY2(m_db->exec(sql), qPrintable(sql));
    }

    // A ticket of station 1 with one line of 水 and, when bottles is above 0, its bottle line.
    static QStringList ticket(int id, const QString &date, int sender, double amount, double out, double money,
                              double in, double bottles, double bottlesIn, int station = 1)
    {
        QStringList sql{QStringLiteral("INSERT INTO Sale(ID,CustomerID,SenderID,UserID,TotalAmount,OutAmount,TotalMoney,"
                                       "InMoney,TotalContainer,InContainer,TransferFee,CreateDate,FinishFlag,StationID) "
                                       "VALUES(%1,1,%2,1,%3,%4,%5,%6,%7,%8,1,'%9','0',%10)")
                            .arg(id).arg(sender).arg(amount).arg(out).arg(money).arg(in).arg(bottles).arg(bottlesIn)
                            .arg(date).arg(station),
                        QStringLiteral("INSERT INTO Sale_detail VALUES(%1,1,%2,%3,%4,'0')")
                            .arg(id).arg(amount > 0 ? money / amount : 0).arg(amount).arg(money)};
        if (bottles > 0)
            sql << QStringLiteral("INSERT INTO Sale_detail VALUES(%1,3,0,%2,0,'1')").arg(id).arg(bottles);
        return sql;
    }

    // Each "row:column=text" against the report's cells.
    static void checkCells(const ReportArray &r, const QStringList &cells)
    {
        for (const QString &cell : cells) {
            const int colon = cell.indexOf(':'), eq = cell.indexOf('=');
            const QString shown = r[cell.left(colon).toInt()][cell.mid(colon + 1, eq - colon - 1).toInt()];
            QVERIFY2(shown == cell.mid(eq + 1), qPrintable(cell + " but was " + shown));
        }
    }

    static QString voucher(int id, const QString &date, const QString &direction, const QString &station, int product,
                           double amount, double money)
    {
        return QStringLiteral("INSERT INTO Store(ID,PaperID,CreateDate,TotalAmount,TotalMoney,UserID,Direction,HandInput,"
                              "FinishFlag,StationID) VALUES(%1,'',"
                              "'%2',%5,%6,1,'%3','1','0',%4); INSERT INTO Store_detail VALUES(%1,%7,0,%5,%6)")
            .arg(id).arg(date, direction, station).arg(amount).arg(money).arg(product);
    }

private slots:
    void init()
    {
        m_db = std::make_unique<TestDb>();
        QVERIFY(m_db->ok());
        m_prompts = std::make_unique<ScriptedPrompter>();
        exec({"INSERT INTO Product(ID,Name,Status,IsContainer,ContainerID,Price) VALUES(1,'水','1','0',3,10),"
              "(2,'气','1','0',0,80),(3,'空瓶','1','1',0,0),(4,'旧桶','0','0',0,5)",
              "INSERT INTO Sender(ID,Name,Status,StationID) VALUES(1,'张三','1',1),(2,'李四','1',1),(3,'王五','0',1)"});
    }
    void cleanup()
    {
        VERIFY_PROMPTS(*m_prompts);
        m_prompts.reset();
        m_db.reset();
    }

    void layout_data()
    {
        QTest::addColumn<int>("moreGoods");
        QTest::addColumn<int>("moreWorkers");
        QTest::addColumn<int>("rows");
        QTest::addColumn<QList<int>>("heads"); // sales, debt, empties, cash, stock
        QTest::newRow("small catalogue") << 0 << 0 << 26 << QList<int>{0, 5, 9, 14, 16};
        // 13 products, 1 bottle, 4 workers: 2*13 + 1 + 2*4 + 10 rows below the first.
        QTest::newRow("larger catalogue") << 10 << 2 << 46 << QList<int>{0, 15, 21, 28, 30};
    }
    void layout()
    {
        QFETCH(int, moreGoods);
        QFETCH(int, moreWorkers);
        QFETCH(int, rows);
        QFETCH(QList<int>, heads);
        for (int i = 0; i < moreGoods; ++i)
            exec({QStringLiteral("INSERT INTO Product(Name,Status,IsContainer,ContainerID) VALUES('货%1','1','0',0)").arg(i)});
        for (int i = 0; i < moreWorkers; ++i)
            exec({QStringLiteral("INSERT INTO Sender(Name,Status,StationID) VALUES('工%1','1',1)").arg(i)});
        const int products = 3 + moreGoods;

        TodayReportGenerator generator;
        QVERIFY(generator.setDateText("11-23-2026"));
        QCOMPARE(generator.ReportDate, QDate(2026, 11, 23));
        generator.GetTodayReport();
        const ReportArray &r = generator.xayReport;
        QCOMPARE(r.size(), rows);

        const QStringList titles{"今日销售总额：", "今日欠款总额：", "今日欠瓶总额：", "今日现金收入总额：", "今日库存余额："};
        for (int i = 0; i < 5; ++i)
            QCOMPARE(r[heads[i]][0], titles[i]);
        // A day with no sales: the heads' sums are blank, the details' are 0.
        QCOMPARE(r[heads[0]][1] + r[heads[0]][2] + r[heads[1]][2] + r[heads[2]][1] + r[heads[3]][2], QString());
        QCOMPARE(r[heads[0] + 1][1], QStringLiteral("0"));
        QCOMPARE(r[heads[1] + 1][2], QStringLiteral("0"));
        // A product with no movement has a balance of 0, and so has the head.
        QCOMPARE(r[heads[4] + 1][1] + "|" + r[heads[4] + 1][2], QStringLiteral("0|0"));
        QCOMPARE(r[heads[4]][1] + "|" + r[heads[4]][2], QStringLiteral("0|0"));

        QVERIFY(!r[heads[4] + products][0].isEmpty()); // the last product ends the stock, blanks follow
        for (int row = heads[4] + products + 1; row < rows; ++row)
            QCOMPARE(r[row], ReportRow());
    }

    void figures_data()
    {
        QTest::addColumn<QStringList>("rows");
        QTest::addColumn<QStringList>("cells"); // "row:column=text"
        const QString day = "2026-11-23";
        QTest::newRow("delivered ticket, part paid, one bottle back")
            << ticket(1, day, 1, 2, 2, 20, 15, 2, 1)
            << QStringList{"0:1=2", "0:2=20", "1:1=2", "1:2=20", "3:1=2", "3:2=0", "5:2=5", "6:1=2", "6:2=20",
                           "7:2=0", "9:1=1", "10:1=2", "11:1=0", "12:1=2", "14:2=15", "17:1=-2", "17:2=-20",
                           "19:1=-2", "16:1=-4", "16:2=-20"};
        QTest::newRow("partly delivered counts nowhere")
            << ticket(1, day, 1, 2, 1, 20, 20, 2, 0)
            << QStringList{"0:1=", "0:2=", "1:1=0", "9:1=", "10:1=0", "14:2=", "17:1=0", "19:1=0", "16:1=0"};
        QTest::newRow("overpayment lowers the debt, not in the details")
            << ticket(1, day, 1, 2, 2, 20, 10, 0, 0) + ticket(2, day, 2, 1, 1, 10, 15, 0, 0)
            << QStringList{"5:2=5", "6:2=20", "7:2=0", "14:2=25"};
        QTest::newRow("bottles back take nothing off the stock")
            << ticket(1, day, 1, 2, 2, 20, 20, 2, 2) << QStringList{"9:1=0", "10:1=0", "12:1=0", "19:1=0", "17:1=-2"};
        QTest::newRow("other days and stations")
            << ticket(1, "2026-11-22", 1, 2, 2, 20, 20, 0, 0) + ticket(2, "2026-11-24", 1, 4, 4, 40, 40, 0, 0)
                   + ticket(3, day, 1, 8, 8, 80, 80, 0, 0, 2)
            << QStringList{"0:1=", "1:1=0", "17:1=-2", "17:2=-20"};
        QTest::newRow("vouchers of the station up to the day")
            << QStringList{voucher(1, "2026-11-01", "0", "1", 1, 100, 600), voucher(2, day, "1", "1", 1, 10, 60),
                           voucher(3, day, "1", "NULL", 1, 5, 30), voucher(4, "2026-11-24", "0", "1", 1, 7, 42),
                           voucher(5, day, "0", "2", 1, 9, 54), voucher(6, day, "0", "1", 2, 3, 240)}
            << QStringList{"17:1=90", "17:2=540", "18:1=3", "18:2=240", "16:1=93", "16:2=780"};
        // The head's money is made whole at every product, halves to even.
        QTest::newRow("halves round to even at each product")
            << QStringList{voucher(1, day, "0", "1", 1, 1, 0.5), voucher(2, day, "0", "1", 2, 1, 0.5)}
            << QStringList{"17:2=0.5", "18:2=0.5", "16:1=2", "16:2=0"};
        QTest::newRow("and up at an odd whole")
            << QStringList{voucher(1, day, "0", "1", 1, 1, 1.5), voucher(2, day, "0", "1", 2, 1, 1.5)}
            << QStringList{"16:2=4"};
    }
    void figures()
    {
        QFETCH(QStringList, rows);
        QFETCH(QStringList, cells);
        for (const QString &row : rows)
            exec(row.split("; "));
        TodayReportGenerator generator;
        generator.ReportDate = QDate(2026, 11, 23);
        generator.GetTodayReport();
        checkCells(generator.xayReport, cells);
    }

    // The statement by station groups without selecting StationID: its filter is refused and
    // every station reads the first group, where an empty filter result would read nothing.
    void stationsReadTheFirstGroup()
    {
        exec({"INSERT INTO Station(ID,Name,Status) VALUES(2,'东站','1')"});
        exec(ticket(1, "2026-11-23", 1, 2, 2, 20, 20, 0, 0, 1));
        exec(ticket(2, "2026-11-23", 1, 5, 5, 50, 50, 0, 0, 2));
        TodayReportGenerator generator;
        generator.ReportDate = QDate(2026, 11, 23);
        generator.GetTodayGrpReport();
        checkCells(generator.xayReport, {"0:1=7", "0:2=70", "1:0=    其  中：总站", "1:1=2", "1:2=20",
                                         "2:0=                 其  中：水", "2:1=2", "5:0=" + QString(12, ' ') + "东站",
                                         "5:1=2", "5:2=20", "6:1=5"});
    }

    void periodReports_data()
    {
        QTest::addColumn<int>("kind");
        QTest::addColumn<QDate>("start");
        QTest::addColumn<QDate>("end");
        QTest::addColumn<QStringList>("rows"); // ReportDate=SumMoney, in the report's order
        const QDate from(2005, 1, 1), to(2026, 12, 31);
        // The month key is text: 9月 sorts after 12月, downwards 9月 comes first.
        QTest::newRow("months") << 3 << from << to << QStringList{"2026年11月=7", "2005年9月=3", "2005年12月=16"};
        QTest::newRow("days") << 0 << QDate(2005, 12, 1) << QDate(2005, 12, 31) << QStringList{"2005-12-02=5", "2005-12-01=11"};
        QTest::newRow("one customer by day") << 1 << from << to << QStringList{"2005-12-01=10", "2005-09-10=1"};
        QTest::newRow("one customer by month") << 4 << from << to << QStringList{"2005年9月=1", "2005年12月=10"};
        QTest::newRow("one worker by day") << 2 << from << to << QStringList{"2026-11-05=7", "2005-12-02=5"};
        QTest::newRow("one worker by month") << 5 << from << to << QStringList{"2026年11月=7", "2005年12月=5"};
        QTest::newRow("start after end") << 3 << to << from << QStringList{};
    }
    void periodReports()
    {
        QFETCH(int, kind);
        QFETCH(QDate, start);
        QFETCH(QDate, end);
        // Customers 1 and 3 with worker 1, customer 2 with worker 2.
        exec({"INSERT INTO Sale(CustomerID,SenderID,TotalMoney,CreateDate,FinishFlag) VALUES"
              "(1,1,1,'2005-09-10','1'),(3,1,2,'2005-09-10','1'),(1,1,4,'2005-12-01','1'),(1,1,6,'2005-12-01','0'),"
              "(3,1,1,'2005-12-01','0'),(2,2,5,'2005-12-02','0'),(2,2,7,'2026-11-05','0')"});
        const ReportQuery query(kind, start, end, kind == 2 || kind == 5 ? 2 : 1);
        RecordsetPtr rs = OpenRecordset(query.fullSql());
        QVERIFY(rs);
        QStringList got;
        for (; !rs->eof(); rs->moveNext())
            got << rs->text("ReportDate") + "=" + rs->text("SumMoney");
        QTEST(got, "rows");
    }
};

QTEST_MAIN(TestReports)
#include "tst_reports.moc"
