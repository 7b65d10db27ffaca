// The list grid with its title above the heads and its footer under the rows, in a window
// about as tall as the list: the scroll bar settles, and the last row can be brought into view.
#include "platform/DbGrid.h"

#include <QHeaderView>
#include <QScrollBar>
#include <QStandardItemModel>
#include <QtTest>

namespace {
class CountingGrid : public DbGrid {
public:
    using DbGrid::DbGrid;
    int layouts = 0;

protected:
    void updateGeometries() override
    {
        ++layouts;
        DbGrid::updateGeometries();
    }
};
}

class TestDbGrid : public QObject {
    Q_OBJECT
private slots:
    void scrollBarSettlesAtTheEdge_data()
    {
        QTest::addColumn<QString>("caption");
        QTest::addColumn<bool>("footer");
        QTest::newRow("title and footer") << QStringLiteral("五月日报") << true;
        QTest::newRow("footer only") << QString() << true;
        QTest::newRow("title only") << QStringLiteral("五月日报") << false;
    }
    void scrollBarSettlesAtTheEdge()
    {
        QFETCH(QString, caption);
        QFETCH(bool, footer);
        QStandardItemModel days(31, 6); // a month of days, as the day report shows
        for (int r = 0; r < days.rowCount(); ++r)
            for (int c = 0; c < days.columnCount(); ++c)
                days.setItem(r, c, new QStandardItem(QString::number(r * 100 + c)));
        CountingGrid grid;
        grid.setModel(&days);
        grid.setCaption(caption);
        grid.setFooterVisible(footer);
        grid.setFooterText(0, QStringLiteral("合     计:"));
        grid.show();
        QVERIFY(QTest::qWaitForWindowExposed(&grid));
        const int rows = grid.verticalHeader()->length();
        const int width = grid.horizontalHeader()->length() + 60;

        // From a window the rows nearly fill to one with room to spare, a pixel at a time.
        for (int height = rows - 10; height < rows + 90; ++height) {
            grid.resize(width, height);
            // A grid that never settles keeps this busy until the bound.
            QCoreApplication::processEvents(QEventLoop::AllEvents, 1000);
            grid.layouts = 0;
            QCoreApplication::processEvents(QEventLoop::AllEvents, 100);
            QVERIFY2(grid.layouts == 0, qPrintable(QStringLiteral("%1 px: %2 more layouts").arg(height).arg(grid.layouts)));

            const int shown = grid.viewport()->height();
            QCOMPARE(grid.verticalScrollBar()->isVisible(), rows > shown);
            grid.verticalScrollBar()->setValue(grid.verticalScrollBar()->maximum());
            const QRect last = grid.visualRect(days.index(days.rowCount() - 1, 0));
            QVERIFY2(last.bottom() < shown, qPrintable(QStringLiteral("%1 px: last row cut").arg(height)));
        }
    }
};

QTEST_MAIN(TestDbGrid)
#include "tst_dbgrid.moc"
