#include "data/Database.h"
#include "data/JetDialect.h"
#include "support/TestDb.h"

#include <QRandomGenerator>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QtTest>

// The classic dialect translated for the engine: fixed shapes, the program's own statements
// run on the engine, and random statements and dates that must keep the translator's promises.
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

bool opensQuote(QChar c) { return c == u'\'' || c == u'"' || c == u'`' || c == u'['; }

// A statement as the engine's lexer sees it: the quoted pieces, and the rest with each quoted
// piece (and with dates, each #date#) standing as one ' mark.
struct Lexed {
    QStringList quoted;
    QString outside;
    bool open = false;
};

Lexed lex(const QString &s, bool dates)
{
    Lexed r;
    for (qsizetype i = 0; i < s.size();) {
        const QChar c = s[i];
        if (dates && c == u'#') {
            qsizetype k = i + 1;
            while (k < s.size() && s[k] != u'#' && !opensQuote(s[k]))
                ++k;
            if (k < s.size() && s[k] == u'#') {
                r.outside += u'\'';
                i = k + 1;
                continue;
            }
        }
        if (!opensQuote(c)) {
            r.outside += c;
            ++i;
            continue;
        }
        const QChar close = c == u'[' ? QChar(u']') : c;
        qsizetype j = s.indexOf(close, i + 1);
        while (j >= 0 && c != u'[' && j + 1 < s.size() && s[j + 1] == close)
            j = s.indexOf(close, j + 2);
        if (j < 0) {
            r.open = true;
            return r;
        }
        r.quoted << s.mid(i, j + 1 - i);
        r.outside += u'\'';
        i = j + 1;
    }
    return r;
}

const char *const Pieces[] = {
    "#", "#", "&", "&", "'", "''", "\"", "[", "]", "`", "(", ")", "-", "/", "*", "+", ",", " ",
    " ", "=", "<=", ">", ":", "0", "1", "2", "5", "11", "2026", "a", "Sale", ".", "Year", "month",
    "DAY", "AM", "pm", "年", "\n", "Like", "%", "--", "/*", " and ", " Desc", "#2026-1-5#"};

// Random statements made of the pieces above.
struct Fuzzer {
    QRandomGenerator rng{20261105u};
    int bounded(int n) { return int(rng.bounded(n)); }
    QString piece() { return QString::fromUtf8(Pieces[bounded(int(std::size(Pieces)))]); }
    QString random()
    {
        QString s;
        for (int n = bounded(60); n > 0; --n)
            s += piece();
        return s;
    }
};

// What must hold for any statement, whatever its shape: quoted pieces pass through in order,
// no & or comment mark and no # other than a refused date is left outside them, brackets
// balance as before, and a statement with nothing to translate comes out as it went in.
void checkInvariants(const QString &in, Target target)
{
    const QString out = JetDialect::translate(in, target);
    const Lexed li = lex(in, true), lo = lex(out, false);
    QVERIFY2(li.open == lo.open, qPrintable(in));
    qsizetype kept = 0;
    for (const QString &q : lo.quoted)
        kept += kept < li.quoted.size() && li.quoted[kept] == q;
    QVERIFY2(kept == li.quoted.size(), qPrintable(in));
    QVERIFY2(!lo.outside.contains(u'&'), qPrintable(in));
    QVERIFY2(!lo.outside.contains(u"--") && !lo.outside.contains(u"/*"), qPrintable(in));
    for (qsizetype i = lo.outside.indexOf(u'#'); i >= 0; i = lo.outside.indexOf(u'#', i + 1))
        QVERIFY2(target == Target::SQLite && lo.outside.mid(i + 1, 1) == u"'", qPrintable(in));
    if (!li.open)
        QVERIFY2(li.outside.count(u'(') - li.outside.count(u')')
                     == lo.outside.count(u'(') - lo.outside.count(u')'), qPrintable(in));
    const QString plain = lex(in, false).outside.toLower();
    if (target == Target::SQLite && !plain.contains(u'#') && !plain.contains(u'&')
        && !plain.contains(u"--") && !plain.contains(u"/*") && !plain.contains(u"year")
        && !plain.contains(u"month") && !plain.contains(u"day"))
        QCOMPARE(out, in);
}
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
            "concat(CAST(EXTRACT(YEAR FROM d) AS INTEGER), '年', CAST(EXTRACT(MONTH FROM d) AS INTEGER), '月') COLLATE ucs_basic",
            Target::PostgreSQL);
        row("pg like", "a Like '%like%'", "a ILIKE '%like%'", Target::PostgreSQL);
    }
    void translate()
    {
        QFETCH(Target, target);
        QFETCH(QString, jet);
        QTEST(JetDialect::translate(jet, target), "expected");
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
        QTEST(rows(jet), "expected");
    }

    void randomStatements()
    {
        // A fixed number from the fixed seed: the same statements on every run, however busy
        // the machine is.
        Fuzzer fuzz;
        for (int n = 0; n < 5000; ++n) {
            const QString in = fuzz.random();
            checkInvariants(in, Target::SQLite);
            checkInvariants(in, Target::PostgreSQL);
            if (QTest::currentTestFailed())
                return;
        }
    }

    // Dates of every form, possible or not, against the calendar; a sample goes to the engine,
    // which must refuse exactly those that are not dates.
    void datesAgainstCalendar()
    {
        Fuzzer fuzz;
        int refused = 0;
        for (int n = 0; n < 5000; ++n) {
            const int y = fuzz.bounded(4) ? 1995 + fuzz.bounded(40) : fuzz.bounded(10001);
            const int m = fuzz.bounded(15), d = fuzz.bounded(33);
            const int h = fuzz.bounded(26), mi = fuzz.bounded(62), s = fuzz.bounded(62);
            const int form = fuzz.bounded(4), timeForm = fuzz.bounded(4), half = fuzz.bounded(3);
            const QString ys = QString::number(y), sep = form % 2 ? "/" : "-";
            QString text = form < 2 ? ys + sep + QString::number(m) + sep + QString::number(d)
                                    : QString::number(m) + sep + QString::number(d) + sep + ys;
            int hour = h;
            bool valid = ys.size() == 4 && QDate(y, m, d).isValid();
            if (timeForm > 0) {
                text += QStringLiteral(" %1:%2").arg(h).arg(mi, 2, 10, QLatin1Char('0'))
                        + (timeForm > 1 ? ":" + QString::number(s) : QString());
                if (half > 0) {
                    text += half == 1 ? " AM" : " pm";
                    valid = valid && h <= 12;
                    hour = h % 12 + (half == 2 ? 12 : 0);
                }
            }
            const QTime time(hour, timeForm > 0 ? mi : 0, timeForm > 1 ? s : 0);
            valid = valid && (timeForm == 0 || time.isValid());
            const QString expected = !valid ? "#'" + text + "'"
                : "'" + QDate(y, m, d).toString(u"yyyy-MM-dd")
                      + (timeForm > 0 && time != QTime(0, 0) ? time.toString(u" HH:mm:ss") : QString()) + "'";
            const QString out = JetDialect::translate("CreateDate=#" + text + "#", Target::SQLite);
            QCOMPARE(out, "CreateDate=" + expected);
            if (n % 5 == 0) {
                QCOMPARE(QSqlQuery(Database::connection()).exec("select count(*) from Sale where 0 and " + out), valid);
                refused += valid ? 0 : 1;
            }
        }
        QVERIFY(refused > 25);
    }

    // Long hostile statements are translated whole, without blowing up. How long they take is
    // the benchmark's business; a run that went quadratic would end at the test's time limit.
    void longStatements_data()
    {
        QTest::addColumn<QString>("unit");
        for (const char *unit : {"((", "))", "#'#'", "##", "a&", "Year(", "'", "--"})
            QTest::newRow(unit) << QString::fromLatin1(unit);
    }
    void longStatements()
    {
        QFETCH(QString, unit);
        const QString in = unit.repeated(200000 / unit.size());
        const QString out = JetDialect::translate(in, Target::SQLite);
        QVERIFY(out.size() <= 20 * in.size());
        checkInvariants(in.left(5000), Target::SQLite);
    }
};

QTEST_GUILESS_MAIN(TestJetDialect)
#include "tst_jetdialect.moc"
