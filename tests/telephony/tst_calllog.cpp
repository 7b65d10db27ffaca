// The call log: which calls it lists with which customer, and deleting calls.
#include "support/Rows.h"
#include "support/ScriptedPrompter.h"
#include "support/TestDb.h"

#include "data/Gateway.h"
#include "platform/Forms.h"
#include "telephony/TelephonyForms.h"
#include "telephony/frmHistoryCall.h"

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

    // What each command asks or says, and what is left of the log afterwards.
    void commands_data()
    {
        QTest::addColumn<QString>("command");
        QTest::addColumn<bool>("listed"); // the list was run when the window opened
        QTest::addColumn<QString>("text");
        QTest::addColumn<QMessageBox::StandardButton>("answer");
        QTest::addColumn<QString>("callsLeft");
        const QString one = "你确认要删除当前来电记录吗？", all = "你确认要删除所有历史来电记录吗？";
        QTest::newRow("DeleteData, nothing listed") << "DeleteData" << false << "请先选定您要删除的数据！" << QMessageBox::Ok << "1,2";
        QTest::newRow("DeleteData, No") << "DeleteData" << true << one << QMessageBox::No << "1,2";
        // The call goes with both its rows.
        QTest::newRow("DeleteData, Yes") << "DeleteData" << true << one << QMessageBox::Yes << "2";
        QTest::newRow("DeleteAll, No") << "DeleteAll" << true << all << QMessageBox::No << "1,2";
        QTest::newRow("DeleteAll, Yes") << "DeleteAll" << true << all << QMessageBox::Yes << "";
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
        const QString callsLeft = db->scalar("SELECT group_concat(ID, ',') FROM (SELECT ID FROM Call ORDER BY ID)").toString();
        QTEST(callsLeft, "callsLeft");
        // The list follows what is left.
        if (listed)
            QCOMPARE(shown(w).size(), callsLeft.isEmpty() ? 0 : callsLeft == "2" ? 1 : 3);
    }
};

QTEST_MAIN(CallLogTest)
#include "tst_calllog.moc"
