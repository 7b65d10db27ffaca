// A ticket saved onto a full disk: the save says why, nothing of it is stored, and the
// window keeps what the operator typed for another try.
#include "support/ScriptedPrompter.h"
#include "support/Rows.h"

#include "data/Gateway.h"
#include "data/Session.h"
#include "master/CustomerForms.h"
#include "platform/Clock.h"
#include "platform/Forms.h"
#include "sale/TicketForms.h"
#include "sale/frmSale.h"

#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTableView>
#include <QtTest>

class TicketFullDiskTest : public QObject {
    Q_OBJECT
private slots:
    void initTestCase()
    {
        registerTicketForms();
        registerCustomerForms();
        Session::UserID = 1;
        Clock::set(QDateTime(QDate(2026, 11, 23), QTime(9, 0)));
    }

    void fullDiskKeepsTheTicket()
    {
        TestDb db;
        QVERIFY(db.ok());
        QVERIFY(db.exec("INSERT INTO Product(ID,Name,Unit,Status,IsContainer,ContainerID,Price) VALUES "
                        "(1,'纯净水','桶','1','0',0,10)"));
        QVERIFY(db.exec("INSERT INTO Sender(ID,Name,Status,Price,StationID) VALUES (1,'张三','1',5,1)"));
        ScriptedPrompter prompts;
        auto *form = Forms::get<frmSale>(QStringLiteral("frmSale"));
        form->setProperty("mActionType", 1);
        form->show();
        QVERIFY(QTest::qWaitForWindowExposed(form));
        auto *address = form->findChild<QLineEdit *>(QStringLiteral("txtCustAddress"));
        address->setFocus();
        for (const QChar ch : QStringLiteral("新村3号")) {
            QTest::sendKeyEvent(QTest::Press, address, Qt::Key_unknown, QString(ch), Qt::NoModifier);
            QTest::sendKeyEvent(QTest::Release, address, Qt::Key_unknown, QString(ch), Qt::NoModifier);
        }
        QTest::keyClick(address, Qt::Key_Return);
        auto *grid = form->findChild<QTableView *>(QStringLiteral("dbgDetail"));
        const QModelIndex cell = grid->model()->index(0, 0);
        grid->setFocus();
        grid->setCurrentIndex(cell);
        grid->edit(cell);
        QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("1"));
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
        QCoreApplication::processEvents();
        QVERIFY(form->findChild<QPushButton *>(QStringLiteral("btnSave"))->isEnabled());
        // A long remark needs pages the disk no longer has.
        const QString remark(6000, QLatin1Char('x'));
        form->findChild<QPlainTextEdit *>(QStringLiteral("txtDetail"))->setPlainText(remark);
        const int pages = db.scalar("PRAGMA page_count").toInt();
        QVERIFY(db.exec(QStringLiteral("PRAGMA max_page_count=%1").arg(pages)));

        prompts.expect(Failed::Update + QStringLiteral("database or disk is full"), QMessageBox::Ok, true);
        form->findChild<QPushButton *>(QStringLiteral("btnSave"))->click();
        QVERIFY2(prompts.done(), qPrintable(prompts.problems().join(u'\n')));
        QCOMPARE(db.count("Sale"), 0);
        QCOMPARE(db.count("Sale_detail"), 0);
        QCOMPARE(db.count("Customer"), 0);
        QVERIFY(!Conn.inTransaction());
        QVERIFY(Forms::loaded(QStringLiteral("frmSale")));
        QCOMPARE(address->text(), QStringLiteral("新村3号"));
        QCOMPARE(form->xayDetail()->lineCount(), 1);
        QCOMPARE(form->findChild<QPlainTextEdit *>(QStringLiteral("txtDetail"))->toPlainText(), remark);
        Forms::unloadAll();
    }
};

QTEST_MAIN(TicketFullDiskTest)
#include "tst_ticket_fulldisk.moc"
