// The call log: which calls it lists with which customer, its order, and deleting calls.
#include "support/Rows.h"
#include "support/ScriptedPrompter.h"
#include "support/TestDb.h"

#include "data/Gateway.h"
#include "platform/DbGrid.h"
#include "platform/Forms.h"
#include "telephony/TelephonyForms.h"
#include "telephony/frmHistoryCall.h"

#include <QPrinterInfo>
#include <QtTest>

class CallLogTest : public QObject {
    Q_OBJECT
    std::unique_ptr<TestDb> db;

    // Every row of the list as "ID|number|name|address".
    static QStringList shown(frmHistoryCall *w)
    {
        QStringList rows;
        for (int r = 0; r < w->dbgMain->model()->rowCount(); ++r) {
            QStringList cells;
            for (int c : {0, 1, 3, 4})
                cells << w->dbgMain->model()->index(r, c).data().toString();
            rows << cells.join(u'|');
        }
        return rows;
    }
    frmHistoryCall *openLog() { return Forms::get<frmHistoryCall>(QStringLiteral("frmHistoryCall")); }

private slots:
    void initTestCase() { registerTelephonyForms(); }
    void init()
    {
        db = std::make_unique<TestDb>();
        QVERIFY(db->ok());
        SetSysValue(QStringLiteral("AutoDataRefresh"), QStringLiteral("1"));
        // Two customers share one telephone; the second call's number belongs to nobody.
        Rows::customer(*db, 7, QStringLiteral("西街7号"), QStringLiteral("5557777"), "1", QStringLiteral("王五"));
        Rows::customer(*db, 8, QStringLiteral("东街8号"), QStringLiteral("5557777"), "1", QStringLiteral("李四"));
        db->exec("INSERT INTO Call(ID,PhoneNumber,CreateDate) VALUES(1,'5557777','2026-11-23 09:40:00'),"
                 "(2,'5550000','2026-11-23 09:30:00')");
    }
    void cleanup()
    {
        Forms::unloadAll();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        db.reset();
    }

    // One row per call and matching customer: a shared number shows its call twice, a
    // number nobody has shows with an empty name and address.
    void joinListsEveryCall()
    {
        ScriptedPrompter prompter;
        QStringList rows = shown(openLog());
        rows.sort();
        QCOMPARE(rows, QStringList({"1|5557777|李四|东街8号", "1|5557777|王五|西街7号", "2|5550000||"}));
        VERIFY_PROMPTS(prompter);
    }

    // A head click sorts by the table column behind it, ascending first, then descending.
    void headClickSorts_data()
    {
        QTest::addColumn<int>("column");
        QTest::addColumn<QStringList>("ascending"); // that column's values, top to bottom
        QTest::newRow("序号") << 0 << QStringList{"1", "1", "2"};
        QTest::newRow("电话号码") << 1 << QStringList{"5550000", "5557777", "5557777"};
        QTest::newRow("来电时间") << 2 << QStringList{"2026-11-23 09:30:00", "2026-11-23 09:40:00", "2026-11-23 09:40:00"};
        QTest::newRow("客户姓名") << 3 << QStringList{"", "李四", "王五"};
        QTest::newRow("客户地址") << 4 << QStringList{"", "东街8号", "西街7号"};
    }
    void headClickSorts()
    {
        QFETCH(int, column);
        QFETCH(QStringList, ascending);
        ScriptedPrompter prompter;
        frmHistoryCall *w = openLog();
        const auto values = [w, column] {
            QStringList v;
            for (int r = 0; r < w->dbgMain->model()->rowCount(); ++r)
                v << w->dbgMain->model()->index(r, column).data().toString();
            return v;
        };
        emit w->dbgMain->HeadClick(column);
        QCOMPARE(values(), ascending);
        emit w->dbgMain->HeadClick(column);
        std::reverse(ascending.begin(), ascending.end());
        QCOMPARE(values(), ascending);
        VERIFY_PROMPTS(prompter);
    }

    void deleteData_data()
    {
        QTest::addColumn<bool>("emptyList");
        QTest::addColumn<QMessageBox::StandardButton>("answer");
        QTest::addColumn<QString>("callsLeft");
        QTest::newRow("nothing listed") << true << QMessageBox::NoButton << "1,2";
        QTest::newRow("No") << false << QMessageBox::No << "1,2";
        QTest::newRow("Yes takes the call off with both its rows") << false << QMessageBox::Yes << "2";
    }
    void deleteData()
    {
        QFETCH(bool, emptyList);
        QFETCH(QMessageBox::StandardButton, answer);
        QFETCH(QString, callsLeft);
        if (emptyList)
            SetSysValue(QStringLiteral("AutoDataRefresh"), QStringLiteral("0"));
        frmHistoryCall *w = openLog();
        ScriptedPrompter prompter;
        if (emptyList)
            prompter.expect(QStringLiteral("请先选定您要删除的数据！"));
        else
            prompter.expect(QStringLiteral("你确认要删除当前来电记录吗？"), answer);
        w->DeleteData();
        VERIFY_PROMPTS(prompter);
        QCOMPARE(prompter.last().title, emptyList ? QStringLiteral("提示") : QStringLiteral("删除"));
        QCOMPARE(prompter.last().icon, emptyList ? QMessageBox::Information : QMessageBox::Critical);
        QCOMPARE(db->scalar("SELECT group_concat(ID, ',') FROM (SELECT ID FROM Call ORDER BY ID)").toString(), callsLeft);
        if (!emptyList)
            QCOMPARE(shown(w).size(), callsLeft == "2" ? 1 : 3);
    }

    void deleteAll_data()
    {
        QTest::addColumn<QMessageBox::StandardButton>("answer");
        QTest::addColumn<int>("callsLeft");
        QTest::newRow("No") << QMessageBox::No << 2;
        QTest::newRow("Yes") << QMessageBox::Yes << 0;
    }
    void deleteAll()
    {
        QFETCH(QMessageBox::StandardButton, answer);
        QFETCH(int, callsLeft);
        frmHistoryCall *w = openLog();
        ScriptedPrompter prompter;
        prompter.expect(QStringLiteral("你确认要删除所有历史来电记录吗？"), answer);
        w->DeleteAll();
        VERIFY_PROMPTS(prompter);
        QCOMPARE(prompter.last().title, QStringLiteral("删除"));
        QCOMPARE(prompter.last().icon, QMessageBox::Critical);
        QCOMPARE(prompter.last().buttons, QMessageBox::Yes | QMessageBox::No);
        QCOMPARE(db->count("Call"), callsLeft);
        QCOMPARE(shown(w).isEmpty(), callsLeft == 0);
    }

    // Printed under its own heading; without a printer the message carries the preview's title.
    void printing_data()
    {
        QTest::addColumn<bool>("toFile");
        QTest::newRow("to a file") << true;
        QTest::newRow("no printer") << false;
    }
    void printing()
    {
        QFETCH(bool, toFile);
        QTemporaryDir out;
        if (toFile)
            DbGridPrintInfo::setOutputFile(out.filePath("calls.pdf"));
        else if (!QPrinterInfo::availablePrinters().isEmpty())
            QSKIP("this machine has a printer");
        frmHistoryCall *w = openLog();
        ScriptedPrompter prompter;
        if (!toFile)
            prompter.expect(QStringLiteral("打印失败，请检查您的系统中是否正确安装了打印机！"));
        w->PrintReport();
        DbGridPrintInfo::setOutputFile(QString());
        VERIFY_PROMPTS(prompter);
        QCOMPARE(w->dbgMain->PrintInfo()->PageHeader, QStringLiteral("\\t来电资料一览表"));
        if (toFile)
            QVERIFY(QFileInfo(out.filePath("calls.pdf")).size() > 0);
        else
            QCOMPARE(prompter.last().title, QStringLiteral("预览"));
    }
};

QTEST_MAIN(CallLogTest)
#include "tst_calllog.moc"
