#include "data/Database.h"
#include "data/JetDialect.h"
#include "support/TestDb.h"

#include <QSqlQuery>
#include <QSqlRecord>
#include <QtTest>

using JetDialect::Target;

namespace {
// Runs the statements (one a line) on the engine and gives the rows of the last as "a|b;c|d",
// or "failed" when the engine refuses one.
QString rows(const QString &jet)
{
    QSqlQuery q(Database::connection());
    for (const QString &line : jet.split(u'\n'))
        if (!q.exec(JetDialect::translate(line, Target::SQLite)))
            return QStringLiteral("failed");
    QStringList out;
    while (q.next()) {
        QStringList row;
        for (int i = 0; i < q.record().count(); ++i)
            row << q.value(i).toString();
        out << row.join(u'|');
    }
    return out.join(u';');
}

const QString MonthKey = QStringLiteral("Year(CreateDate) & '年' & Month(CreateDate) &'月'");
const QString MonthReport = QStringLiteral(
    "select Sum(TotalAmount) as SumAmount,Sum(TotalMoney) as SumMoney,sum(TotalContainer-InContainer) as LackContainer"
    ",sum(TotalMoney-InMoney) as LackMoney,Sum(TransferFee) as TotalFee,%1 as ReportDate from Sale"
    " WHERE CreateDate>=#2026-1-1# and CreateDate<=#12/31/2026# Group by %1 ORDER BY %1 Desc ");
}

class TestJetDialect : public QObject {
    Q_OBJECT
    TestDb *m_db = nullptr;

private slots:
    void initTestCase()
    {
        m_db = new TestDb;
        QVERIFY(m_db->ok());
        QVERIFY(m_db->exec("INSERT INTO Customer(ID,Name,Address,Phone,Status) VALUES"
                           " (1,'张三','幸福路1号','13800000001','1'), (2,'Li','Station Rd 2','5550002','1')"));
        QVERIFY(m_db->exec(
            "INSERT INTO Sale(ID,CustomerID,SenderID,TotalAmount,TotalMoney,InMoney,OutAmount,TotalContainer,"
            "InContainer,TransferFee,Detail,CreateDate,FinishFlag,StationID) VALUES"
            " (1,1,1,2,30,30,2,2,0,1,NULL,'2026-09-30','0',1), (2,1,2,3,45,20,3,3,3,2,'x','2026-11-05','0',1),"
            " (3,2,1,1,15,15,0,1,1,0,'','2026-11-05','0',1), (4,2,1,4,70,70,4,0,0,3,'','2026-12-01','1',1),"
            " (5,1,2,5,75,0,5,5,0,0,'','2025-12-31','1',1)"));
        QVERIFY(m_db->exec("INSERT INTO Sale_detail(SaleID,ProductID,Price,MyAmount,MyMoney,IsContainer) VALUES"
                           " (2,1,15,3,45,'0'), (2,9,0,3,0,'1'), (3,1,15,1,15,'0')"));
    }
    void cleanupTestCase() { delete m_db; }

    void translate_data()
    {
        QTest::addColumn<Target>("target");
        QTest::addColumn<QString>("jet");
        QTest::addColumn<QString>("expected");
        const auto row = [](const char *name, const char *jet, const char *expected, Target t = Target::SQLite) {
            QTest::newRow(name) << t << QString::fromUtf8(jet) << QString::fromUtf8(expected);
        };
        row("M/d/y blanks", "d=# 12/31/2025 #", "d='2025-12-31'");
        row("time PM", "d=#2026/11/5 3:04:05 PM#", "d='2026-11-05 15:04:05'");
        row("month 13", "d=#2026-13-01#", "d=#'2026-13-01'");
        row("mixed marks", "d=#2026-1/5#", "d=#'2026-1/5'");
        row("unclosed", "d=#2026-1-5 and x='#'", "d=#''2026-1-5 and x='#'");
        row("beside a text", "d='x'#2026-1-5#'y'", "d='x' '2026-01-05' 'y'");
        row("& before product", "'x'&-a*2 = y", "'x'||IFNULL(-a*2,'') = y");
        row("& in brackets", "((a & 1) & 'x') Desc", "(IFNULL((IFNULL(a,'') || 1),'') || 'x') Desc");
        row("& keeps keywords out", "select a & b as k from t", "select IFNULL(a,'') || IFNULL(b,'') as k from t");
        row("names any case", "yEAR (d), MONTH(d)",
            "NULLIF(CAST(substr(d,1,4) AS INTEGER),0), NULLIF(CAST(substr(d,6,2) AS INTEGER),0)");
        row("not a call", "t.Year(d), Year, Year()", "t.Year(d), Year, Year()");
        row("quotes untouched", "x='#2026-1-1# & Year(d) -- /*''' & \"a&b\" & [c&d]",
            "x='#2026-1-1# & Year(d) -- /*''' || IFNULL(\"a&b\",'') || IFNULL([c&d],'')");
        row("no comments", "a--b/*c", "a- -b/ *c");
        row("unclosed bracket", "(a & b", "(IFNULL(a,'') || IFNULL(b,'')");
        row("pg dates", "a=#11/5/2026# or b<#2026-11-5 3:04 pm#",
            "a=DATE '2026-11-05' or b<TIMESTAMP '2026-11-05 15:04:00'", Target::PostgreSQL);
        row("pg bad date", "a=#2026-2-30#", "a=DATE 'unreadable #2026-2-30#'", Target::PostgreSQL);
        row("pg month key", "Year(d) & '年' & Month(d) &'月'",
            "concat(CAST(EXTRACT(YEAR FROM d) AS INTEGER), '年', CAST(EXTRACT(MONTH FROM d) AS INTEGER), '月')",
            Target::PostgreSQL);
        row("pg like", "a Like '%like%'", "a ILIKE '%like%'", Target::PostgreSQL);
    }
    void translate()
    {
        QFETCH(Target, target);
        QFETCH(QString, jet);
        QFETCH(QString, expected);
        QCOMPARE(JetDialect::translate(jet, target), expected);
    }

    // The program's own statement shapes, run on the engine.
    void onEngine_data()
    {
        QTest::addColumn<QString>("jet");
        QTest::addColumn<QString>("expected");
        const auto row = [](const char *name, const QString &jet, const char *expected) {
            QTest::newRow(name) << jet << QString::fromUtf8(expected);
        };
        row("month report, months sort as text", MonthReport.arg(MonthKey),
            "2|30|2|0|1|2026年9月;4|70|0|0|3|2026年12月;4|60|0|25|2|2026年11月");
        row("day totals",
            "SELECT sum(TotalMoney) as TodayMoney,sum(TotalMoney-InMoney) as TodayLackMoney from Sale"
            " where TotalAmount-OutAmount=0 AND CreateDate=#11/5/2026#  AND StationID=1", "45|25");
        row("ticket list filter",
            "SELECT Sale.ID as ID FROM Sale,Customer where Sale.CustomerID=Customer.ID "
            " and (Sale.FinishFlag='0' or Sale.CreateDate=#2026-12-1#) AND Address Like '%幸福%' ", "1;2");
        row("names ignore case", "select count(*) from SALE_DETAIL where saleid=2", "2");
        row("& after a sum", "select ID+CustomerID & '件' from Sale where ID=2", "3件");
        row("& over a missing value", "select Detail & '-' & ID from Sale where ID=1", "-1");
        row("day", "select Day(CreateDate) from Sale where ID=1", "30");
        row("minus minus", "select ID from Sale where ID=1--1", "2");
        const QString call = QStringLiteral("INSERT INTO Call(PhoneNumber,CreateDate) values ('1#2&3''x',%1)\n"
                                            "select PhoneNumber, CreateDate from Call where ID=(select max(ID) from Call)");
        row("stores clock text", call.arg("#11/5/2026 3:04:05 PM#"), "1#2&3'x|2026-11-05 15:04:05");
        row("stores midnight as the day", call.arg("#2/29/2024 12:00 AM#"), "1#2&3'x|2024-02-29");
        row("bad time", call.arg("#2026-11-05 25:00#"), "failed");
        row("bad date", "select * from Sale where CreateDate=#2026-13-01#", "failed");
        row("bad date, dead branch", "select * from Sale where 0 and CreateDate=#2/30/2026#", "failed");
        row("date beside a text", "select count(*) from Sale where CreateDate=#2026-11-05#'x'", "failed");
        row("unclosed date", "select * from Sale where CreateDate=#2026-11-05", "failed");
        row("Year of two", "select Year(CreateDate, 1) from Sale", "failed");
    }
    void onEngine()
    {
        QFETCH(QString, jet);
        QFETCH(QString, expected);
        QCOMPARE(rows(jet), expected);
    }
};

QTEST_GUILESS_MAIN(TestJetDialect)
#include "tst_jetdialect.moc"
