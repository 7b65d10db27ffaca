// A program killed while it saves tickets leaves a sound file: every ticket it reported
// saved is there with its lines, and no ticket or line is there by half.
#include "support/TestDb.h"

#include "data/Database.h"

#include <QProcess>
#include <QRandomGenerator>
#include <QtTest>

class KillTest : public QObject {
    Q_OBJECT
private slots:
    void killedWhileSaving()
    {
        TestDb db;
        QVERIFY(db.ok());
        const QString file = db.path();
        Database::close();
        QRandomGenerator random(7);
        QStringList reported;
        for (int kill = 0; kill < 6; ++kill) {
            QProcess saver;
            saver.start(QStringLiteral(TICKET_SAVER), {file, QStringLiteral("0"), QStringLiteral("K%1").arg(kill)});
            QVERIFY(saver.waitForStarted());
            // Let it save a few, then kill it wherever it is.
            QVERIFY(saver.waitForReadyRead(20000));
            QTest::qWait(int(random.bounded(5, 120)));
            saver.kill();
            QVERIFY(saver.waitForFinished(20000));
            for (const QByteArray &line : saver.readAllStandardOutput().split('\n'))
                if (line.startsWith("saved "))
                    reported << QString::fromUtf8(line.mid(6));

            QString error;
            QVERIFY2(Database::open(file, &error), qPrintable(error));
            QCOMPARE(db.scalar("PRAGMA integrity_check").toString(), QStringLiteral("ok"));
            QCOMPARE(db.count("Sale", "(SELECT count(*) FROM Sale_detail WHERE SaleID=Sale.ID) <> 2"), 0);
            QCOMPARE(db.count("Sale_detail", "SaleID NOT IN (SELECT ID FROM Sale)"), 0);
            for (const QString &ticket : std::as_const(reported)) {
                const QStringList parts = ticket.split(u' ');
                QCOMPARE(db.count("Sale", "ID=" + parts[0] + " AND Detail='" + parts[1] + "'"), 1);
            }
            Database::close();
        }
        QVERIFY(reported.size() > 6);
    }
};

QTEST_MAIN(KillTest)
#include "tst_kill.moc"
