#include "support/Bench.h"

#include "platform/PageDesigner.h"
#include "platform/PageLayout.h"
#include "sale/PrintForms.h"
#include "sale/frmSalePrintSetup.h"
#include "sale/rptSale.h"

#include <QAction>
#include <QFile>
#include <QMouseEvent>
#include <QPrinter>
#include <QProcess>
#include <QRegularExpression>

namespace {
struct Line {
    QString product;
    double money;
    QString isContainer = QStringLiteral("0");
};

// A ticket of 2026-03-05 for customer 张三 (account 8001) by the default operator.
int addTicket(const TestDb &db, int custType, int senderID, const QList<Line> &lines, double total)
{
    db.exec(QStringLiteral("INSERT INTO Customer(Account,Name,Address,Phone,CustType,Status,StationID) "
                           "VALUES(8001,'张三','和平路12号','5551234',%1,'1',1)")
                .arg(custType));
    db.exec("INSERT INTO Sender(Name,Status,StationID) VALUES('李送','1',1)");
    const int customer = db.scalar("SELECT max(ID) FROM Customer").toInt();
    db.exec(QStringLiteral("INSERT INTO Sale(CustomerID,SenderID,UserID,TotalMoney,Detail,CreateDate,"
                           "FinishFlag,StationID) VALUES(%1,%2,1,%3,'放门口','2026-03-05','0',1)")
                .arg(customer).arg(senderID).arg(total));
    const int sale = db.scalar("SELECT max(ID) FROM Sale").toInt();
    for (const auto &l : lines) {
        db.exec(QStringLiteral("INSERT INTO Product(Name,Unit,Status,IsContainer,ContainerID,Price) "
                               "VALUES('%1','瓶','1','%2',0,%3)").arg(l.product, l.isContainer).arg(l.money));
        const int product = db.scalar("SELECT max(ID) FROM Product").toInt();
        db.exec(QStringLiteral("INSERT INTO Sale_detail(SaleID,ProductID,Price,MyAmount,MyMoney,IsContainer) "
                               "VALUES(%1,%2,%3,1,%3,'%4')").arg(sale).arg(product).arg(l.money).arg(l.isContainer));
    }
    return sale;
}

QString pdfPath(const TestDb &db) { return db.folder() + "/ticket.pdf"; }

bool printToPdf(const TestDb &db, int saleID)
{
    QFile::remove(pdfPath(db));
    QPrinter printer(QPrinter::HighResolution);
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setOutputFileName(pdfPath(db));
    return renderTicket(saleID, &printer);
}

// The printed text, with each word's place when asked for "-bbox".
QString pdfText(const TestDb &db, const QStringList &options = {})
{
    QProcess p;
    p.start("pdftotext", options + QStringList{"-enc", "UTF-8", pdfPath(db), "-"});
    p.waitForFinished(30000);
    return QString::fromUtf8(p.readAllStandardOutput());
}

// Empty when the first word holding text starts within a few points of where (left, top);
// otherwise where it printed.
QString misplaced(const TestDb &db, const QString &text, const QPointF &where)
{
    const QString html = pdfText(db, {"-bbox"});
    const QRegularExpression word(
        QStringLiteral(R"re(<word xMin="([\d.]+)" yMin="([\d.]+)"[^>]*>([^<]*)</word>)re"));
    for (auto it = word.globalMatch(html); it.hasNext();) {
        const auto m = it.next();
        if (!m.captured(3).contains(text))
            continue;
        const QPointF at(m.captured(1).toDouble(), m.captured(2).toDouble());
        return qAbs(at.x() - where.x()) < 3 && qAbs(at.y() - where.y()) < 6
                   ? QString()
                   : QStringLiteral("printed at %1,%2").arg(at.x()).arg(at.y());
    }
    return text + QStringLiteral(" not printed");
}

void sendMouse(QWidget *w, QEvent::Type type, Qt::MouseButton button, const QPoint &pos,
               Qt::MouseButtons held)
{
    QMouseEvent e(type, pos, w->mapToGlobal(pos), button, held, Qt::NoModifier);
    QApplication::sendEvent(w, &e);
}

void drag(QWidget *w, const QPoint &from, const QPoint &to)
{
    sendMouse(w, QEvent::MouseButtonPress, Qt::LeftButton, from, Qt::LeftButton);
    sendMouse(w, QEvent::MouseMove, Qt::NoButton, (from + to) / 2, Qt::LeftButton);
    sendMouse(w, QEvent::MouseMove, Qt::NoButton, to, Qt::LeftButton);
    sendMouse(w, QEvent::MouseButtonRelease, Qt::LeftButton, to, Qt::NoButton);
}
}

class TestRptSale : public QObject, Bench {
    Q_OBJECT
private slots:
    void initTestCase() { registerPrintForms(); }
    void init() { QVERIFY(start()); }
    void cleanup() { FINISH_BENCH(); }
    void ticketText_data()
    {
        QTest::addColumn<int>("custType");
        QTest::addColumn<int>("senderID");
        QTest::addColumn<QList<Line>>("lines");
        QTest::addColumn<double>("total");
        QTest::addColumn<QStringList>("shown");
        QTest::addColumn<QStringList>("absent");

        const QStringList header = {"张三", "8001", "5551234", "和平路12号", "2026年3月5日", "放门口",
                                    "管理员", "总站"};
        QTest::newRow("four lines: three printed, total of four")
            << 1 << 1
            << QList<Line>{{"甲气", 100}, {"乙气", 200}, {"丙水", 300}, {"丁水", 634.5}} << 1234.5
            << header + QStringList{"已开户", "李送", "甲气", "乙气", "丙水", "300",
                                    "￥1,234.50", "壹仟贰佰叁拾肆元伍角"}
            << QStringList{"丁水", "634.5", "序号", "品名", "单据编号"};
        QTest::newRow("unknown type, no sender, empties left out")
            << 5 << 0 << QList<Line>{{"桶装水", 12.5}, {"空桶", 0, "1"}} << 12.5
            << header + QStringList{"桶装水", "12.5", "￥12.50", "壹拾贰元伍角"}
            << QStringList{"空桶", "李送", "未开户", "已开户", "大客户", "托管户", "其它", "客户种类"};
    }
    void ticketText()
    {
        QFETCH(int, custType);
        QFETCH(int, senderID);
        QFETCH(QList<Line>, lines);
        QFETCH(double, total);
        QFETCH(QStringList, shown);
        QFETCH(QStringList, absent);

        const int sale = addTicket(*db, custType, senderID, lines, total);
        QVERIFY(printToPdf(*db, sale));
        const QString text = pdfText(*db);
        QVERIFY2(!text.trimmed().isEmpty(), "the PDF holds no text");
        for (const auto &s : shown)
            QVERIFY2(text.contains(s), qPrintable(s + " missing in:\n" + text));
        for (const auto &s : absent)
            QVERIFY2(!text.contains(s), qPrintable(s + " printed in:\n" + text));
        QVERIFY(text.contains(QString::number(sale)));
    }
    void layoutFile_data()
    {
        QTest::addColumn<QByteArray>("file");  // empty: no sale.rpx
        QTest::addColumn<QPointF>("nameAt");   // where 张三 prints, in points

        const QPointF builtIn((1440 + 850) / 20.0, (1440 + 425) / 20.0);
        QTest::newRow("no file") << QByteArray() << builtIn;
        QTest::newRow("broken XML")
            << QByteArray("<page width=\"11906\"><field name=\"txtCustName\" left=\"3000\"") << builtIn;
        QTest::newRow("moved field, narrow margins")
            << QByteArray("<page width=\"11906\" height=\"8000\" left=\"200\" top=\"400\">"
                          "<field name=\"txtCustName\" left=\"4000\" top=\"3000\" width=\"1500\" height=\"280\"/>"
                          "<field name=\"txtNoSuchField\" left=\"1\" top=\"1\"/></page>")
            << QPointF((200 + 4000) / 20.0, (400 + 3000) / 20.0);
    }
    void layoutFile()
    {
        QFETCH(QByteArray, file);
        QFETCH(QPointF, nameAt);

        if (!file.isEmpty()) {
            QFile out(rptSale::layoutPath());
            QVERIFY(out.open(QIODevice::WriteOnly));
            out.write(file);
        }
        const int sale = addTicket(*db, 1, 1, {}, 0);
        QVERIFY(printToPdf(*db, sale));
        const QString wrong = misplaced(*db, "张三", nameAt);
        QVERIFY2(wrong.isEmpty(), qPrintable(wrong));
    }
    // A field dragged and one taken off the print are saved, and the next ticket prints so.
    void designerMovesHidesAndSaves()
    {
        const int sale = addTicket(*db, 1, 1, {{"甲气", 100}}, 100);
        auto *form = Forms::get<frmSalePrintSetup>("frmSalePrintSetup");
        form->show();
        auto *designer = form->findChild<PageDesigner *>("ardMain");

        // Drag the customer's name 100 pixels right and 20 down: 1500 and 300 twips.
        const QRect name = designer->fieldArea("txtCustName");
        drag(designer, name.center(), name.center() + QPoint(100, 20));
        QCOMPARE(form->report()->layout().field("txtCustName")->rect.topLeft(), QPoint(2350, 725));
        // Drop the remark from the print through its menu; the menu shows it ticked first.
        auto *popIfPrint = form->findChild<QAction *>("popIfPrint");
        sendMouse(designer, QEvent::MouseButtonPress, Qt::RightButton,
                  designer->fieldArea("txtDetail").center(), Qt::RightButton);
        QVERIFY(popIfPrint->isChecked());
        popIfPrint->trigger();

        form->findChild<QAction *>("tlSave")->trigger();
        form->findChild<QAction *>("tlExit")->trigger(); // saved: no question
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(!Forms::loaded("frmSalePrintSetup"));

        QVERIFY(printToPdf(*db, sale));
        const QString text = pdfText(*db);
        QVERIFY2(!text.contains("放门口"), qPrintable(text)); // the hidden remark
        QVERIFY(text.contains("管理员"));
        const QString wrong = misplaced(*db, "张三", QPointF((1440 + 2350) / 20.0, (1440 + 725) / 20.0));
        QVERIFY2(wrong.isEmpty(), qPrintable(wrong));
    }
};

QTEST_MAIN(TestRptSale)
#include "tst_rptsale.moc"
