// Two workstations on one server: their saves, the ticket operations and a closing run at
// the same time, and every ticket arrives once, with its lines, under the number it was
// given back; a save that waits too long says that another workstation is writing.
#include "ServerDb.h"
#include "support/ScriptedPrompter.h"
#include "support/TicketSavers.h"

#include "report/PeriodClosing.h"

#include <QSet>
#include <QTemporaryDir>
#include <QtTest>

class tst_Workstations : public QObject {
    Q_OBJECT
private slots:
    void savesOperationsAndClosingAtOnce()
    {
        ServerDb db;
        QVERIFY2(db.ok(), qPrintable(db.error()));
        // Yesterday's finished tickets for the closing, each with one line.
        const int finished = 40;
        for (int i = 0; i < finished; ++i) {
            QVERIFY(ExecuteSql("insert into Sale (CustomerID,SenderID,UserID,TotalAmount,TotalMoney,TotalContainer,InMoney,"
                               "OutAmount,InContainer,TransferFee,Detail,CreateDate,FinishFlag,StationID) values "
                               "(1,1,1,1,10,0,10,1,0,0,'昨天',#11-22-2026#,'0',1)"));
            QVERIFY(ExecuteSql("insert into Sale_detail(SaleID,ProductID,Price,MyAmount,MyMoney,IsContainer)  values("
                               + scalar("select max(ID) as MaxID from Sale").toString() + ",1,10,1,10,'0')"));
        }
        QTemporaryDir dir;
        const QString file = dir.filePath(QLatin1String(Database::ServerFileName));
        QVERIFY(db.writeConnectionFile(file));

        const int each = 150;
        TicketSavers savers(QStringLiteral(TICKET_SAVER), file, each);
        QVERIFY(savers.started());
        // Meanwhile this workstation collects the money of every open ticket, then closes
        // yesterday.
        int operations = 0;
        std::optional<int> closed;
        {
            YesPrompter prompts;
            while (savers.running() && operations < 50) {
                QVERIFY(ExecuteSql("Update Sale set InMoney=TotalMoney where FinishFlag='0'"));
                ++operations;
            }
            closed = PeriodClosing().FinishToday();
        }
        QCOMPARE(closed.value_or(-1), finished);

        QString why;
        QVERIFY2(savers.finished(180000, &why), qPrintable(why));
        const QSet<QString> reported = savers.reported();
        QCOMPARE(reported.size(), 2 * each); // distinct numbers: no save read back another's number

        RecordsetPtr rs = OpenRecordset("select ID,Detail from Sale where FinishFlag='0' order by ID");
        QVERIFY(rs);
        QSet<QString> stored;
        for (rs->moveFirst(); !rs->eof(); rs->moveNext())
            stored << rs->text("ID") + QLatin1Char(' ') + rs->text("Detail");
        QCOMPARE(stored, reported);
        QCOMPARE(scalar("select count(*) from Sale_detail").toInt(), 4 * each + finished);
        QCOMPARE(scalar("select count(*) from Sale where (select count(*) from Sale_detail where SaleID=Sale.ID)<>2 "
                        "and FinishFlag='0'").toInt(), 0);
        QCOMPARE(scalar("select count(*) from Store where Detail='根据销售单自动生成'").toInt(), finished);
        qInfo("%d tickets saved by two workstations while this one ran %d operations and closed %d tickets",
              2 * each, operations, finished);
    }

    // Another workstation holds the write longer than the wait: the save's transaction fails
    // with the reason, and goes through once the other is done.
    void anotherWorkstationWriting()
    {
        Database::setBusyTimeout(300);
        ServerDb db;
        Database::setBusyTimeout(10000);
        QVERIFY2(db.ok(), qPrintable(db.error()));
        const QString name = QStringLiteral("other-workstation");
        {
            QSqlDatabase other = ServerDb::connection(name, db.server());
            QVERIFY(other.open());
            QSqlQuery hold(other);
            QVERIFY(hold.exec("BEGIN"));
            QVERIFY(hold.exec("SELECT pg_advisory_xact_lock(20261123)"));
            {
                ScriptedPrompter prompts;
                prompts.expect(QStringLiteral("更新数据库时出现系统错误，错误信息："), QMessageBox::Ok, true);
                Transaction tx(Conn);
                QVERIFY(!tx.begun());
                QVERIFY(!Conn.inTransaction());
                VERIFY_PROMPTS(prompts);
                QVERIFY2(prompts.last().text.contains(QStringLiteral("另一个工作站正在写入数据库服务器 ")
                                                      + db.server().name()),
                         qPrintable(prompts.last().text));
            }
            QVERIFY(hold.exec("ROLLBACK"));
            Transaction tx(Conn);
            QVERIFY(tx.begun());
            QVERIFY(ExecuteSql("insert into Call(PhoneNumber,CreateDate) values('5551234',#2026-11-23#)"));
            QVERIFY(tx.commit());
        }
        QSqlDatabase::removeDatabase(name);
    }
};

QTEST_MAIN(tst_Workstations)
#include "tst_workstations.moc"
