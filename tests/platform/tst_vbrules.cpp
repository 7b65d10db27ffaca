#include "platform/VbError.h"
#include "platform/VbRules.h"

#include <QtTest>

#include <cfloat>
#include <limits>

namespace {
enum Conversion { ToInt, ToLong, ToCur };

// The number of the run-time error that f raised, or 0.
int raised(const std::function<void()> &f)
{
    try {
        f();
        return 0;
    } catch (const VbError &e) {
        return e.number();
    }
}
}

class TestVbRules : public QObject {
    Q_OBJECT
private slots:
    void val_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<double>("expected");
        QTest::newRow("trailing letters") << "12abc" << 12.0;
        QTest::newRow("exponent") << "1e3" << 1000.0;
        QTest::newRow("blanks inside") << " 1 2\t3\n4" << 1234.0;
        QTest::newRow("sign and unit") << " -12.5kg" << -12.5;
        QTest::newRow("second point stops") << "1.2.3" << 1.2;
        QTest::newRow("comma stops") << "1,234" << 1.0;
        QTest::newRow("hex is 16-bit") << "&HFFFF" << -1.0;
        QTest::newRow("octal") << "&O17" << 15.0;
        QTest::newRow("underflow") << "1e-400" << 0.0;
        QTest::newRow("overflow clamps") << "1e400" << DBL_MAX;
        QTest::newRow("negative overflow clamps") << "-1e400" << -DBL_MAX;
    }
    void val()
    {
        QFETCH(QString, text);
        QFETCH(double, expected);
        QCOMPARE(Val(text), expected);
    }

    // Only the blank is cut: a tab or a full-width space the operator typed stays part of
    // the address or name it is in.
    void trim_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("left");
        QTest::addColumn<QString>("right");
        QTest::addColumn<QString>("both");
        QTest::newRow("blanks") << "  a b  " << "a b  " << "  a b" << "a b";
        QTest::newRow("only blanks") << "   " << "" << "" << "";
        QTest::newRow("tab and line feed stay") << "\t a \n" << "\t a \n" << "\t a \n" << "\t a \n";
        const QString wide = QString(QChar(0x3000)) + " a " + QChar(0x00A0);
        QTest::newRow("wide and no-break spaces stay") << " " + wide + " " << wide + " " << " " + wide << wide;
    }
    void trim()
    {
        QFETCH(QString, text);
        QFETCH(QString, left);
        QFETCH(QString, right);
        QFETCH(QString, both);
        QCOMPARE(LTrim(text), left);
        QCOMPARE(RTrim(text), right);
        QCOMPARE(Trim(text), both);
    }

    void conversions_data()
    {
        QTest::addColumn<int>("kind");
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<double>("expected");
        QTest::addColumn<int>("error"); // 6 overflow, 13 type mismatch, 94 null

        // Banker's rounding, before the range test.
        QTest::newRow("2.5 to even") << int(ToInt) << QVariant(2.5) << 2.0 << 0;
        QTest::newRow("3.5 to even") << int(ToInt) << QVariant(3.5) << 4.0 << 0;
        QTest::newRow("text 12.5") << int(ToLong) << QVariant("12.5") << 12.0 << 0;
        QTest::newRow("CInt 32767.5 rounds out") << int(ToInt) << QVariant(32767.5) << 0.0 << 6;
        QTest::newRow("CInt -32768.5 rounds in") << int(ToInt) << QVariant(-32768.5) << -32768.0 << 0;
        QTest::newRow("CInt 40000") << int(ToInt) << QVariant("40000") << 0.0 << 6;
        QTest::newRow("CLng 40000") << int(ToLong) << QVariant("40000") << 40000.0 << 0;
        QTest::newRow("CLng 3e9") << int(ToLong) << QVariant(3e9) << 0.0 << 6;
        QTest::newRow("CLng text 1e400") << int(ToLong) << QVariant("1e400") << 0.0 << 6;
        // What text may look like.
        QTest::newRow("blanks and grouping") << int(ToLong) << QVariant(" 1,234 ") << 1234.0 << 0;
        QTest::newRow("Format's own currency text") << int(ToLong) << QVariant("-￥1,234.50") << -1234.0 << 0;
        QTest::newRow("hex with tail") << int(ToInt) << QVariant("&H1G") << 0.0 << 13;
        QTest::newRow("empty text") << int(ToInt) << QVariant("") << 0.0 << 13;
        QTest::newRow("trailing letters") << int(ToLong) << QVariant("12abc") << 0.0 << 13;
        // Other kinds of value.
        QTest::newRow("true") << int(ToInt) << QVariant(true) << -1.0 << 0;
        QTest::newRow("empty variant") << int(ToLong) << QVariant() << 0.0 << 0;
        QTest::newRow("null field") << int(ToLong) << QVariant(QMetaType::fromType<int>()) << 0.0 << 94;
        // Currency: banker's rounding at the fourth decimal, on the decimal digits.
        QTest::newRow("cur half to even up") << int(ToCur) << QVariant(1.23455) << 1.2346 << 0;
        QTest::newRow("cur half to even stays") << int(ToCur) << QVariant(1.23445) << 1.2344 << 0;
        QTest::newRow("cur negative") << int(ToCur) << QVariant(-1.23455) << -1.2346 << 0;
        QTest::newRow("cur carry") << int(ToCur) << QVariant("9.99995") << 10.0 << 0;
        QTest::newRow("cur overflow") << int(ToCur) << QVariant(1e15) << 0.0 << 6;
    }
    void conversions()
    {
        QFETCH(int, kind);
        QFETCH(QVariant, value);
        QFETCH(double, expected);
        QFETCH(int, error);
        double result = 0;
        QCOMPARE(raised([&] { result = kind == ToInt ? CInt(value) : kind == ToLong ? CLng(value) : CCur(value); }),
                 error);
        if (error == 0)
            QCOMPARE(result, expected);
        // The checks used for validation agree with the conversions.
        if (value.typeId() == QMetaType::QString && kind == ToInt)
            QCOMPARE(isCInt(value.toString()), error == 0);
        if (value.typeId() == QMetaType::QString && kind == ToLong)
            QCOMPARE(isCLng(value.toString()), error == 0);
    }

    // An empty pattern gives the plain number text.
    void format_data()
    {
        QTest::addColumn<double>("value");
        QTest::addColumn<QString>("pattern");
        QTest::addColumn<QString>("expected");
        const QString line = QStringLiteral("##,###,###.00");
        QTest::newRow("line half") << 0.5 << line << ".50";
        QTest::newRow("line grouping") << 1234.5 << line << "1,234.50";
        QTest::newRow("line negative") << -1234.5 << line << "-1,234.50";
        QTest::newRow("line tiny negative") << -1e-17 << line << ".00";
        QTest::newRow("total negative") << -1234.5 << "￥##,###,###.00" << "-￥1,234.50";
        QTest::newRow("ticket carry through grouping") << 999.995 << "##,##0.00" << "1,000.00";
        QTest::newRow("rounds the decimal form") << 2.675 << "0.00" << "2.68";
        QTest::newRow("half away from zero") << -2.5 << "0" << "-3";
        QTest::newRow("hash of zero") << 0.0 << "#" << "";
        QTest::newRow("optional decimals of whole") << 1.0 << "#.##" << "1.";
        QTest::newRow("percent") << 0.125 << "0.0%" << "12.5%";
        QTest::newRow("thousands scale") << 1234567.0 << "#,##0," << "1,235";
        QTest::newRow("literals between digits") << 5551234567.0 << "(###) ###-####" << "(555) 123-4567";
        QTest::newRow("negative section") << -5.0 << "0;(0)" << "(5)";
        QTest::newRow("zero section") << 0.0 << "0;(0);\"零\"" << "零";
        QTest::newRow("Currency") << -1234.5 << "Currency" << "-￥1,234.50";
        QTest::newRow("Fixed") << 1234.567 << "Fixed" << "1234.57";
        QTest::newRow("NaN") << std::numeric_limits<double>::quiet_NaN() << line << "";
        QTest::newRow("text half") << 0.5 << "" << ".5";
        QTest::newRow("text negative") << -3.0 << "" << "-3";
        QTest::newRow("text sum noise") << 0.1 + 0.2 << "" << ".3";
        QTest::newRow("text rounds to exponent form") << 999999999999999.9 << "" << "1E+15";
        QTest::newRow("text small") << 0.00001 << "" << "1E-05";
    }
    void format()
    {
        QFETCH(double, value);
        QFETCH(QString, pattern);
        QFETCH(QString, expected);
        QCOMPARE(Format(value, pattern), expected);
        if (pattern.isEmpty())
            QCOMPARE(NumText(value), expected);
    }

    void dates_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QDateTime>("expected"); // invalid: unreadable
        const QDateTime march5(QDate(2026, 3, 5), QTime(0, 0));
        QTest::newRow("y-m-d") << "2026-3-5" << march5;
        QTest::newRow("m/d/y, blanks around") << "  3/5/2026 " << march5;
        QTest::newRow("time") << "2026-3-5 14:30" << QDateTime(QDate(2026, 3, 5), QTime(14, 30));
        QTest::newRow("time pm") << "3-5-2026 2:30:15 PM" << QDateTime(QDate(2026, 3, 5), QTime(14, 30, 15));
        QTest::newRow("February 30") << "2026-02-30" << QDateTime();
        QTest::newRow("mixed separators") << "2026-3/5" << QDateTime();
        QTest::newRow("two-digit year") << "26-3-5" << QDateTime();
        QTest::newRow("hour 25") << "2026-3-5 25:00" << QDateTime();
        QTest::newRow("13 pm") << "2026-3-5 13:00 PM" << QDateTime();
        QTest::newRow("Chinese form") << QStringLiteral("2026年3月5日") << QDateTime();
    }
    void dates()
    {
        QFETCH(QString, text);
        QFETCH(QDateTime, expected);
        QDateTime moment;
        QCOMPARE(readDateTime(text, &moment), expected.isValid());
        QCOMPARE(isDate(text), expected.isValid());
        if (expected.isValid()) {
            QCOMPARE(moment, expected);
            QCOMPARE(CDate(text), expected.date());
            // The program's own date text reads back.
            QDateTime back;
            QVERIFY(readDateTime(DateTimeText(moment), &back));
            QCOMPARE(back, moment);
        } else {
            QCOMPARE(raised([&] { CDate(text); }), 13);
        }
    }
};

QTEST_GUILESS_MAIN(TestVbRules)
#include "tst_vbrules.moc"
