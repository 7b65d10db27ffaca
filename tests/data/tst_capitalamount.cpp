#include "data/CapitalAmount.h"
#include "data/JetDialect.h"
#include "data/ValidateField.h"
#include "support/ScriptedPrompter.h"

#include <QtTest>

class TestCapitalAmount : public QObject {
    Q_OBJECT
private slots:
    void capitalAmount_data()
    {
        QTest::addColumn<double>("value");
        QTest::addColumn<QString>("expected");
        // The printed ticket's established wording, quirks included.
        QTest::newRow("zero") << 0.0 << " ";
        QTest::newRow("half") << 0.5 << "元伍角";
        QTest::newRow("1234.56") << 1234.56 << "壹仟贰佰叁拾肆元伍角陆分";
        QTest::newRow("lost zero 1010000") << 1010000.0 << "壹佰壹万元";
        QTest::newRow("moved zero 1012345") << 1012345.0 << "壹佰壹万零贰仟叁佰肆拾伍元";
        QTest::newRow("nine digits") << 100000000.0 << "万元";
        QTest::newRow("negative") << -12.0 << "负壹拾贰元";
        QTest::newRow("eight digits and jiao") << 12345678.9 << "壹仟贰佰叁拾肆万伍仟陆佰柒拾捌元玖角";
        QTest::newRow("decimals cut, not rounded") << 1.999 << "壹元玖角玖分";
        QTest::newRow("sum noise") << 0.1 + 0.2 << "元叁角";
    }
    void capitalAmount()
    {
        QFETCH(double, value);
        QTEST(CapitalAmount(value), "expected");
    }

    // A field's date that ValidateField passes is spliced as a marked date, so the two must
    // agree on what a date is or a checked field would still fail its save.
    void validateField_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("kind");
        QTest::addColumn<QString>("ending"); // empty: accepted with no message
        const QString number = QStringLiteral(" 不是有效的数字！");
        const QString date = QStringLiteral(" 不是有效的日期！");
        const QString whole = QStringLiteral(" 不是有效的整数！");
        QTest::newRow("decimal rounds and passes") << "12.5" << 1 << "";
        QTest::newRow("32-bit overflow") << "3000000000" << 1 << number;
        QTest::newRow("empty number") << "" << 1 << number;
        QTest::newRow("February 30") << "2026-02-30" << 2 << date;
        QTest::newRow("16-bit top") << "32767" << 3 << "";
        QTest::newRow("16-bit overflow") << "40000" << 3 << whole;
        for (const char *text : {"2026-3-5", "2026/03/05", "3-5-2026", "3/5/2026", " 2026-3-5 ",
                                 "2026-3-5 14:30", "2026-3-5 2:30:15 PM", "2024-2-29", "2026-2-29",
                                 "2026-13-01", "26-3-5", "2026-3/5", "2026-3-5 25:00", "3/5/2026 1:00 xm"})
            QTest::newRow(text) << QString(text) << 2 << (JetDialect::isDate(QString(text)) ? QString() : date);
    }
    void validateField()
    {
        QFETCH(QString, text);
        QFETCH(int, kind);
        QFETCH(QString, ending);
        ScriptedPrompter prompter;
        if (!ending.isEmpty())
            prompter.expect(QStringLiteral("数据输入格式不正确， ") + text + ending);
        QCOMPARE(ValidateField(text, kind), ending.isEmpty());
        VERIFY_PROMPTS(prompter);
    }
};

QTEST_MAIN(TestCapitalAmount)
#include "tst_capitalamount.moc"
