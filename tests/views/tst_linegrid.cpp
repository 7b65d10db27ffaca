// The lines of a stock voucher, keyed through the line model alone: ten rows from the start,
// two totals, the product lookup and the operator's messages.
#include "support/Bench.h"

#include "views/LineTable.h"

#include <QSignalSpy>

class LineGridTest : public QObject, Bench {
    Q_OBJECT

    static bool key(LineTable &lines, int row, int column, const QString &typed)
    {
        return lines.setData(lines.index(row, column), typed);
    }
    static QString totals(const LineTable &lines)
    {
        const LineTable::Totals t = lines.totals();
        return QStringLiteral("%1|%2|%3").arg(t.amount).arg(t.money).arg(t.containers);
    }

private slots:
    void init()
    {
        QVERIFY(start());
        // Water in a returnable bottle (3), and a water no longer sold.
        db->exec("INSERT INTO Product(ID,Name,Unit,Status,IsContainer,ContainerID,Price) VALUES "
                 "(1,'纯净水','桶','1','0',3,10),(3,'空桶','个','1','1',0,0),(4,'矿泉水','桶','0','0',3,12)");
    }
    void cleanup() { FINISH_BENCH(); }

    void voucherShowsTenRows()
    {
        LineTable lines(LineTable::voucher());
        QCOMPARE(lines.rowCount(), 10);
        QVERIFY(key(lines, 4, 0, QStringLiteral("1")));
        QCOMPARE(lines.rowCount(), 10);
        QCOMPARE(lines.headerData(9, Qt::Vertical).toInt(), 10);
        // A line in the last row brings an empty row below it for the next one.
        QVERIFY(key(lines, 9, 0, QStringLiteral("1")));
        QCOMPARE(lines.rowCount(), 11);
        QCOMPARE(totals(lines), QStringLiteral("2|20|0"));
        // Nothing typed in an empty row makes no line.
        QVERIFY(!key(lines, 10, 0, QStringLiteral(" ")));
        QCOMPARE(lines.lineCount(), 10);
    }

    // A line of water: code 1 fills it, then one cell is keyed.
    void keyedCell_data()
    {
        QTest::addColumn<int>("column");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("message"); // title|text; empty: accepted
        QTest::addColumn<QString>("line");    // code|name|price|quantity|money as shown
        QTest::addColumn<QString>("totals");
        const QString water = QStringLiteral("1|纯净水|10|1|￥10.00");
        QTest::newRow("unknown code") << 0 << "9" << "商品编号|产品编号不存在或已被禁用，请重新输入!" << water << "1|10|0";
        QTest::newRow("disabled product") << 0 << "4" << "商品编号|产品编号不存在或已被禁用，请重新输入!" << water << "1|10|0";
        QTest::newRow("blank code takes the line off") << 0 << "  " << "" << "||||" << "0|0|0";
        QTest::newRow("price letters") << 3 << "abc" << "价格|商品价格必须为数字，且不能为0！" << water << "1|10|0";
        QTest::newRow("price with a leading number") << 3 << "2.5元" << "" << "1|纯净水|2.5元|1|￥2.50" << "1|2.5|0";
        QTest::newRow("quantity zero") << 4 << "0" << "数量|商品数量必须为数字，且不能为0！" << water << "1|10|0";
        QTest::newRow("negative quantity") << 4 << "-2" << "" << "1|纯净水|10|-2|0" << "-2|-20|0";
        QTest::newRow("large quantity") << 4 << "40000" << "" << "1|纯净水|10|40000|￥400,000.00" << "40000|400000|0";
    }
    void keyedCell()
    {
        QFETCH(int, column);
        QFETCH(QString, typed);
        QFETCH(QString, message);
        QFETCH(QString, line);
        QFETCH(QString, totals);
        LineTable lines(LineTable::voucher());
        QVERIFY(key(lines, 0, 0, QStringLiteral("1")));
        QSignalSpy committed(&lines, &LineTable::cellCommitted);
        QSignalSpy refused(&lines, &LineTable::cellRefused);
        const QString text = message.section(u'|', 1);
        if (!message.isEmpty())
            prompts->expect(text);
        QCOMPARE(key(lines, 0, column, typed), message.isEmpty());
        QCOMPARE(committed.size(), message.isEmpty() ? 1 : 0);
        QCOMPARE(refused.size(), message.isEmpty() ? 0 : 1);
        QStringList shown;
        for (int c : {0, 1, 3, 4, 5})
            shown << lines.index(0, c).data().toString();
        QCOMPARE(shown.join(u'|'), line);
        QCOMPARE(this->totals(lines), totals);
        if (!message.isEmpty()) {
            QCOMPARE(prompts->last().title, message.section(u'|', 0, 0));
            QCOMPARE(prompts->last().icon, QMessageBox::Critical);
        }
    }

    // Only a ticket counts the empties; a voucher's quantity may pass the 16-bit limit that
    // the empties count stops at.
    void emptiesCountOnTicketsOnly()
    {
        LineTable ticket(LineTable::ticket()), voucher(LineTable::voucher());
        for (LineTable *lines : {&ticket, &voucher}) {
            QVERIFY(key(*lines, 0, 0, QStringLiteral("1")));
            QVERIFY(key(*lines, 0, 4, QStringLiteral("3")));
            QVERIFY(key(*lines, 1, 0, QStringLiteral("3")));
        }
        QCOMPARE(totals(ticket), QStringLiteral("4|30|3"));
        QCOMPARE(totals(voucher), QStringLiteral("4|30|0"));
        QVERIFY(key(ticket, 0, 4, QStringLiteral("40000")));
        QVERIFY_THROWS_EXCEPTION(std::exception, ticket.totals());
    }

    // Price and money show through the cells above; the quantity's format stands ready unused.
    void quantityFormat() { QCOMPARE(LineTable::FormatText(4, QStringLiteral("3")), QStringLiteral("3.00")); }
};

QTEST_MAIN(LineGridTest)
#include "tst_linegrid.moc"
