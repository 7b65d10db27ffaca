#include "TicketFixture.h"

#include "support/Bench.h"

#include "data/Session.h"
#include "platform/GridPrinter.h"
#include "workflow/WorkflowForms.h"
#include "workflow/frmSaleAdmin.h"

#include <QHeaderView>
#include <QPrintPreviewWidget>
#include <QScreen>
#include <QPrinterInfo>
#include <QRegularExpression>

using namespace Fixture;

class TestListPrint : public QObject, Bench {
    Q_OBJECT
    QTemporaryDir out;

    frmSaleAdmin *withTickets(int count)
    {
        for (int id = 1; id <= count; ++id)
            ticket(*db, {id, "2026-11-23", 2, 1, 37, 10, 2, 0});
        auto *w = Forms::get<frmSaleAdmin>("frmSaleAdmin");
        w->resize(900, 600);
        return w;
    }

private slots:
    void initTestCase()
    {
        registerWorkflowForms();
        Clock::set(QDateTime(Today, QTime(10, 0)));
        Session::CompanyName = QStringLiteral("宏达燃气");
    }
    void init() { QVERIFY(start() && arrange(*db)); }
    void cleanup()
    {
        DbGridPrintInfo::setOutputFile(QString());
        FINISH_BENCH();
    }

    void headerAndFooterSections_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QStringList>("sections");
        QTest::newRow("centred header") << "\\t销售单据一览表" << QStringList{"", "销售单据一览表"};
        QTest::newRow("page footer") << "\\t 第\\p页 共\\P页(2026-11-23 10:00:00打印) 宏达燃气"
                                     << QStringList{"", " 第2页 共7页(2026-11-23 10:00:00打印) 宏达燃气"};
        QTest::newRow("three sections") << "左\\t中\\t右" << QStringList{"左", "中", "右"};
        QTest::newRow("a real tab is text") << "甲\t乙" << QStringList{"甲\t乙"};
    }
    void headerAndFooterSections()
    {
        QFETCH(QString, text);
        QFETCH(QStringList, sections);
        QCOMPARE(GridPrinter::sections(text, 2, 7), sections);
    }

    // Every row printed once, in order, heads on every page, footers after the last row; a
    // list wider than the page shrinks while readable and otherwise splits into column bands.
    void pagesOfAList_data()
    {
        QTest::addColumn<int>("rows");
        // Printable width. With whole captions in the heads the sale list is about 10 in wide: it
        // fits a landscape page and shrinks to about three quarters on a portrait one.
        QTest::addColumn<double>("pageInches");
        QTest::addColumn<bool>("scaled");
        QTest::addColumn<bool>("banded");
        QTest::newRow("empty list") << 0 << 10.5 << false << false;
        QTest::newRow("many pages") << 150 << 10.5 << false << false;
        QTest::newRow("portrait page") << 30 << 7.5 << true << false;
        QTest::newRow("far too wide") << 30 << 4.0 << false << true;
    }
    void pagesOfAList()
    {
        QFETCH(int, rows);
        QFETCH(double, pageInches);
        QFETCH(bool, scaled);
        QFETCH(bool, banded);
        frmSaleAdmin *w = withTickets(rows);
        ListWindow::preparePrintInfo(w->dbgMain);
        w->dbgMain->PrintInfo()->PageHeader = "\\t销售单据一览表";
        const int dpi = 300;
        const GridPrinter::Plan plan =
            GridPrinter::plan(*w->dbgMain, *w->dbgMain->PrintInfo(), QSizeF(pageInches * dpi, 10.5 * dpi), dpi);

        QCOMPARE(plan.scale < 1.0, scaled);
        QVERIFY(plan.scale >= 0.6);
        QCOMPARE(plan.bands.size() > 1, banded);
        QVector<int> columns;
        for (const QVector<int> &band : plan.bands)
            columns += band;
        QCOMPARE(columns, (QVector<int>{0, 1, 2, 3, 4, 5, 6, 7, 8, 9}));

        QVector<int> printed(plan.bands.size(), 0);
        int footerPages = 0;
        for (const GridPrinter::Page &page : plan.pages) {
            QVERIFY(page.heads);
            QCOMPARE(page.firstRow, printed[page.band]);
            printed[page.band] += page.rowCount;
            footerPages += page.footers ? 1 : 0;
        }
        QCOMPARE(printed, QVector<int>(plan.bands.size(), rows));
        QCOMPARE(footerPages, int(plan.bands.size()));
        QVERIFY(plan.pages.last().footers);
        if (rows == 150)
            QVERIFY(plan.pages.size() >= 3);
    }

    void printedFileHasThePlannedPages()
    {
        frmSaleAdmin *w = withTickets(120);
        const QString file = out.filePath("list.pdf");
        DbGridPrintInfo::setOutputFile(file);
        w->PrintReport();
        QCOMPARE(w->dbgMain->PrintInfo()->PageFooter,
                 QStringLiteral("\\t 第\\p页 共\\P页(2026-11-23 10:00:00打印) 宏达燃气"));
        QCOMPARE(w->dbgMain->PrintInfo()->PageHeader, QStringLiteral("\\t销售单据一览表"));

        QFile pdf(file);
        QVERIFY(pdf.open(QIODevice::ReadOnly));
        const int pages = int(QString::fromLatin1(pdf.readAll()).count(QRegularExpression("/Type\\s*/Page[^s]")));
        QPrinter *printer = w->dbgMain->PrintInfo()->printer();
        const GridPrinter::Plan plan = GridPrinter::plan(*w->dbgMain, *w->dbgMain->PrintInfo(),
                                                         printer->pageRect(QPrinter::DevicePixel).size(),
                                                         printer->resolution());
        QVERIFY(plan.pages.size() > 1);
        QCOMPARE(pages, int(plan.pages.size()));
    }

    // Checked once the dialog has been shown and laid out: what the user sees, not what was asked.
    void previewOpensMaximisedAtFullSize()
    {
        frmSaleAdmin *w = withTickets(60);
        ModalScript modals;
        modals.on("dlgPrintPreview", [](QWidget *dlg) {
            QCOMPARE(dlg->windowTitle(), QStringLiteral("打印预览"));
            auto *view = dlg->findChild<QPrintPreviewWidget *>();
            QVERIFY(view);
            QTRY_COMPARE(view->zoomFactor(), 1.0);
            const QSize screen = dlg->screen()->availableGeometry().size();
            QVERIFY2(dlg->width() >= screen.width() * 9 / 10 && dlg->height() >= screen.height() * 9 / 10,
                     qPrintable(QStringLiteral("%1x%2").arg(dlg->width()).arg(dlg->height())));
            QVERIFY(view->pageCount() >= 2);
            static_cast<QDialog *>(dlg)->reject();
        });
        w->PrintPreview();
        VERIFY_MODALS(modals);
    }

    // Heads that differ in one word (应收现金, 实收现金) must not be cut to look alike.
    void headsShowWholeCaptions_data()
    {
        QTest::addColumn<QString>("form");
        for (const char *form : {"frmSaleAdmin", "frmMoneyAdmin", "frmAmountAdmin", "frmContainerAdmin"})
            QTest::newRow(form) << form;
    }
    void headsShowWholeCaptions()
    {
        QFETCH(QString, form);
        auto *w = qobject_cast<ListWindow *>(Forms::get(form));
        QVERIFY(w);
        w->show();
        const QHeaderView *head = w->dbgMain->horizontalHeader();
        for (int c = 0; c < head->count(); ++c) {
            const QString caption = w->dbgMain->model()->headerData(c, Qt::Horizontal).toString();
            QVERIFY2(head->fontMetrics().horizontalAdvance(caption) < head->sectionSize(c), qPrintable(caption));
        }
    }

    void printWithoutPrinterSaysSo()
    {
        if (!QPrinterInfo::availablePrinters().isEmpty())
            QSKIP("this machine has a printer");
        frmSaleAdmin *w = withTickets(3);
        prompts->expect("打印失败，请检查您的系统中是否正确安装了打印机！");
        w->PrintReport();
    }
};

QTEST_MAIN(TestListPrint)
#include "tst_listprint.moc"
