#include "support/Bench.h"

#include "data/Gateway.h"
#include "views/FilterDialog.h"
#include "views/ListWindow.h"

#include <QCheckBox>
#include <QRadioButton>

namespace {
// A product list with a note column that does not sort and products grouped by unit when asked.
class ProductList : public ListWindow {
public:
    ProductList()
    {
        setObjectName(QStringLiteral("frmTestList"));
        setColumns({numberColumn(QStringLiteral("编号"), QStringLiteral("ID"), 500, Qt::AlignRight),
                    numberColumn(QStringLiteral("单价"), QStringLiteral("Price"), 800, Qt::AlignRight),
                    textColumn(QStringLiteral("备注"), QStringLiteral("Name"), 2000, Qt::AlignLeft)});
        setUnsortedColumn(2);
        curShortSQL = QStringLiteral("SELECT min(ID) as ID,sum(Price) as Price,min(Name) as Name FROM Product");
        curGroupSQL = QStringLiteral(" GROUP BY Unit");
        curSortSQL = QStringLiteral(" ORDER BY 1 Asc");
        Form_Load();
    }
    using ListWindow::showRows;
    RowStyle FetchRowStyle(int bookmark) override
    {
        return rsClone && rsClone->setBookmark(bookmark) && rsClone->text(QStringLiteral("Name")) == QStringLiteral("停用")
                   ? suspendedRow()
                   : RowStyle{};
    }
    void ShowTotal() override { dbgMain->setFooterText(1, numberText(gridTotal(1))); }
};

// A filter whose list query has no condition: " WHERE " first, " AND " between.
class WhereFilter : public FilterDialog {
public:
    WhereFilter() : FilterDialog(QStringLiteral("frmWhereFilter"), QStringLiteral("过滤"), Joining::WhereAnd)
    {
        addCondition("chkAccount", QStringLiteral("顾客帐户"), "txtAccount", ConditionRow::Kind::Number, 0,
                     [](const ConditionRow &r) { return " Account" + r.opText() + r.text(); });
        addCondition("chkName", QStringLiteral("姓名"), "txtName", ConditionRow::Kind::Text, -1,
                     [](const ConditionRow &r) { return " Name Like '%" + r.text().trimmed() + "%' "; });
        finishLayout();
    }
};
}

class TestListWindow : public QObject, Bench {
    Q_OBJECT
private slots:
    void init()
    {
        QVERIFY(start());
        SetSysValue(QStringLiteral("AutoDataRefresh"), "1");
        for (const char *row : {"1,'甲','瓶',10", "2,'停用','瓶',5", "3,'丙','桶',7"})
            QVERIFY(db->exec(QStringLiteral("INSERT INTO Product(ID,Name,Unit,Price,Status) VALUES(%1,'1')").arg(row)));
    }
    void cleanup()
    {
        Forms::setActiveChildProvider(nullptr);
        FINISH_BENCH();
    }

    // The group clause stands between filter and order; a click on an unsorted head changes
    // nothing, and a sorting head still flips the one direction.
    void groupAndUnsortedHead()
    {
        ProductList w;
        QCOMPARE(w.dbgMain->model()->rowCount(), 2);
        QCOMPARE(w.dbgMain->model()->index(0, 1).data().toString(), QStringLiteral("15"));
        emit w.dbgMain->HeadClick(2);
        QCOMPARE(w.curSortSQL, QStringLiteral(" ORDER BY 1 Asc"));
        QCOMPARE(w.curSortDirection, 0);
        emit w.dbgMain->HeadClick(1);
        QCOMPARE(w.curFullSQL, QStringLiteral("SELECT min(ID) as ID,sum(Price) as Price,min(Name) as Name FROM Product"
                                              " GROUP BY Unit ORDER BY Price Asc"));
        QCOMPARE(w.dbgMain->model()->index(0, 1).data().toString(), QStringLiteral("7"));
    }

    // Rows from memory: shown, totalled by walking the grid, styled and kept over a refresh.
    void rowsFromMemory()
    {
        ProductList w;
        w.showRows({QStringLiteral("ID"), QStringLiteral("Price"), QStringLiteral("Name")},
                   {{1, 2.5, QStringLiteral("甲")}, {2, 4, QStringLiteral("停用")}, {3, QVariant(), QString()}});
        w.DataRefresh();
        QCOMPARE(w.dbgMain->model()->rowCount(), 3);
        QCOMPARE(w.dbgMain->footerText(1), QStringLiteral("6.5"));
        const RowStyle struck = w.dbgMain->rowStyle(1);
        QVERIFY(struck.strikeOut);
        QCOMPARE(struck.background, QApplication::palette().color(QPalette::ToolTipBase));
        QVERIFY(!w.dbgMain->rowStyle(0).strikeOut);
    }

    // " WHERE " opens a filter of its own, " AND " joins clauses and refinements.
    void whereAndWriting_data()
    {
        QTest::addColumn<QString>("present");
        QTest::addColumn<bool>("fresh");
        QTest::addColumn<QStringList>("ticks");
        QTest::addColumn<QString>("expected");
        QTest::newRow("new, nothing ticked clears") << " WHERE Status='1'" << true << QStringList{} << "";
        QTest::newRow("new replaces") << " WHERE Status='1'" << true << QStringList{"chkName"}
                                      << " WHERE  Name Like '%李%' ";
        QTest::newRow("refine an empty filter") << "  " << false << QStringList{"chkAccount"} << " WHERE  Account=0";
        QTest::newRow("refine adds with AND") << " WHERE Status='1'" << false << QStringList{"chkAccount", "chkName"}
                                              << " WHERE Status='1' AND  Account=0 AND  Name Like '%李%' ";
        QTest::newRow("refine with nothing keeps") << " WHERE Status='1'" << false << QStringList{}
                                                   << " WHERE Status='1'";
    }
    void whereAndWriting()
    {
        QFETCH(QString, present);
        QFETCH(bool, fresh);
        QFETCH(QStringList, ticks);
        QFETCH(QString, expected);
        QWidget list;
        list.setProperty("curFilterSQL", present);
        Forms::setActiveChildProvider([&list] { return &list; });
        WhereFilter dlg;
        dlg.findChild<QLineEdit *>("txtName")->setText(QStringLiteral(" 李 "));
        for (const QString &name : ticks)
            dlg.findChild<QCheckBox *>(name)->click();
        dlg.findChild<QRadioButton *>(fresh ? "optSearchType_1" : "optSearchType_0")->click();
        dlg.btnOk_Click();
        QCOMPARE(list.property("curFilterSQL").toString(), expected);
    }

    // A 16-bit number field refuses what a plain number field takes.
    void sixteenBitValueCheck()
    {
        ConditionRow row;
        QLineEdit edit(QStringLiteral("40000"));
        row.field = &edit;
        row.kind = ConditionRow::Kind::Number;
        QVERIFY(row.checkValue());
        row.valueKind = 3;
        prompts->expect(QString(), QMessageBox::Ok, true);
        QVERIFY(!row.checkValue());
    }
};

QTEST_MAIN(TestListWindow)
#include "tst_listwindow.moc"
