// The call log: which calls it lists with which customer, its order, and deleting calls.
#include "support/Rows.h"
#include "support/ScriptedPrompter.h"
#include "support/TestDb.h"

#include "data/Gateway.h"
#include "platform/Forms.h"
#include "telephony/TelephonyForms.h"
#include "telephony/frmHistoryCall.h"

#include <QPrinterInfo>
#include <QtTest>

class CallLogTest : public QObject {
    Q_OBJECT
    std::unique_ptr<TestDb> db;

    // Every row of the list as its columns' texts joined by '|'; by default "ID|number|name|address".
    static QStringList shown(frmHistoryCall *w, const QList<int> &columns = {0, 1, 3, 4})
    {
        QStringList rows;
        for (int r = 0; r < w->dbgMain->model()->rowCount(); ++r) {
            QStringList cells;
            for (int c : columns)
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
        emit w->dbgMain->HeadClick(column);
        QCOMPARE(shown(w, {column}), ascending);
        emit w->dbgMain->HeadClick(column);
        std::reverse(ascending.begin(), ascending.end());
        QCOMPARE(shown(w, {column}), ascending);
        VERIFY_PROMPTS(prompter);
    }

    // What each command asks or says, and what is left of the log afterwards.
    void commands_data()
    {
        QTest::addColumn<QString>("command");
        QTest::addColumn<bool>("listed");   // the list was run when the window opened
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("title");
        QTest::addColumn<QMessageBox::Icon>("icon");
        QTest::addColumn<QMessageBox::StandardButton>("answer");
        QTest::addColumn<QString>("callsLeft");
        const auto stop = QMessageBox::Critical;
        const QString one = "你确认要删除当前来电记录吗？", all = "你确认要删除所有历史来电记录吗？";
        QTest::newRow("DeleteData, nothing listed") << "DeleteData" << false << "请先选定您要删除的数据！" << "提示"
                                                    << QMessageBox::Information << QMessageBox::Ok << "1,2";
        QTest::newRow("DeleteData, No") << "DeleteData" << true << one << "删除" << stop << QMessageBox::No << "1,2";
        // The call goes with both its rows.
        QTest::newRow("DeleteData, Yes") << "DeleteData" << true << one << "删除" << stop << QMessageBox::Yes << "2";
        QTest::newRow("DeleteAll, No") << "DeleteAll" << true << all << "删除" << stop << QMessageBox::No << "1,2";
        QTest::newRow("DeleteAll, Yes") << "DeleteAll" << true << all << "删除" << stop << QMessageBox::Yes << "";
        if (QPrinterInfo::availablePrinters().isEmpty())
            QTest::newRow("PrintReport, no printer")
                << "PrintReport" << true << "打印失败，请检查您的系统中是否正确安装了打印机！" << "预览" << stop
                << QMessageBox::Ok << "1,2";
    }
    void commands()
    {
        QFETCH(QString, command);
        QFETCH(bool, listed);
        QFETCH(QString, text);
        QFETCH(QMessageBox::StandardButton, answer);
        SetSysValue(QStringLiteral("AutoDataRefresh"), listed ? QStringLiteral("1") : QStringLiteral("0"));
        frmHistoryCall *w = openLog();
        ScriptedPrompter prompter;
        prompter.expect(text, answer);
        QVERIFY(Forms::call(w, command.toLatin1().constData()));
        VERIFY_PROMPTS(prompter);
        QTEST(prompter.last().title, "title");
        QTEST(prompter.last().icon, "icon");
        const QString callsLeft = db->scalar("SELECT group_concat(ID, ',') FROM (SELECT ID FROM Call ORDER BY ID)").toString();
        QTEST(callsLeft, "callsLeft");
        // The list follows what is left.
        if (listed)
            QCOMPARE(shown(w).size(), callsLeft.isEmpty() ? 0 : callsLeft == "2" ? 1 : 3);
    }
};

QTEST_MAIN(CallLogTest)
#include "tst_calllog.moc"
