#include "data/Database.h"
#include "data/JetDialect.h"
#include "support/TestDb.h"

#include <QRandomGenerator>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QtTest>

// The classic dialect translated for the engine: what the engine makes of fixed shapes, and
// random statements and dates that must keep the translator's promises.
using JetDialect::Target;

namespace {
// Runs the statement on the engine and gives its rows as "a|b;c|d", or "failed" when the
// engine refuses it.
QString rows(const QString &jet)
{
    QSqlQuery q(Database::connection());
    if (!q.exec(JetDialect::translate(jet, Target::SQLite)))
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
// no & or comment mark and no # other than a refused date is left outside them, and brackets
// balance as before.
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
        QVERIFY(m_db->exec("INSERT INTO Sale(ID,CustomerID,Detail,CreateDate,FinishFlag) VALUES"
                           " (1,1,NULL,'2026-09-30','0'), (2,1,'x','2026-11-05','0')"));
    }
    void cleanupTestCase() { delete m_db; }

    // What the engine makes of translated statements: values joined, false dates refused.
    void onEngine_data()
    {
        QTest::addColumn<QString>("jet");
        QTest::addColumn<QString>("expected");
        QTest::newRow("& after a sum") << "select ID+CustomerID & '件' from Sale where ID=2" << "3件";
        QTest::newRow("& in brackets, before a product") << "select ID, ((ID & 1) & 'x') & -ID*2 from Sale where ID=2" << "2|21x-4";
        QTest::newRow("quotes untouched") << "select 'x''#1# & Year(d) -- /*' & Detail from Sale where ID=2" << "x'#1# & Year(d) -- /*x";
        QTest::newRow("a keyword before a bracket is no call") << "select (ID & 1) & 'x' from Sale where (ID & '')='2'" << "21x";
        QTest::newRow("names any case") << "select yEAR (CreateDate)*100 + MONTH(CreateDate) from Sale where ID=1" << "202609";
        QTest::newRow("date with blanks, month first") << "select ID from Sale where CreateDate=# 9/30/2026 #" << "1";
        QTest::newRow("& over a missing value") << "select Detail & '-' & ID from Sale where ID=1" << "-1";
        QTest::newRow("minus minus") << "select ID from Sale where ID=1--1" << "2";
        QTest::newRow("mixed marks") << "select * from Sale where CreateDate=#2026-9/30#" << "failed";
        QTest::newRow("date beside a text") << "select count(*) from Sale where CreateDate=#2026-11-05#'x'" << "failed";
        QTest::newRow("unclosed date") << "select * from Sale where CreateDate=#2026-11-05" << "failed";
    }
    void onEngine()
    {
        QFETCH(QString, jet);
        QTEST(rows(jet), "expected");
    }

    void randomStatements()
    {
        // A fixed count from a fixed seed: the same statements on every run.
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
            const int m = fuzz.bounded(15), d = fuzz.bounded(33), h = fuzz.bounded(26), mi = fuzz.bounded(62),
                      s = fuzz.bounded(62), form = fuzz.bounded(4), timeForm = fuzz.bounded(4), half = fuzz.bounded(3);
            const QString ys = QString::number(y), sep = form % 2 ? "/" : "-",
                          md = QString::number(m) + sep + QString::number(d);
            QString text = form < 2 ? ys + sep + md : md + sep + ys;
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
};

QTEST_GUILESS_MAIN(TestJetDialect)
#include "tst_jetdialect.moc"
