#include "data/PickDate.h"
#include "data/Session.h"
#include "platform/Clock.h"
#include "platform/Forms.h"
#include "platform/Modal.h"
#include "support/ModalScript.h"
#include "support/ScriptedPrompter.h"

#include <QCalendarWidget>
#include <QLineEdit>
#include <QtTest>

namespace {
const QDate kToday(2026, 7, 1);

QCalendarWidget *calendar(QWidget *form) { return form->findChild<QCalendarWidget *>("mvwMain"); }
QLineEdit *field(QWidget *form) { return form->findChild<QLineEdit *>("txtValue"); }
}

class TestPickDate : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() { Clock::set(QDateTime(kToday, QTime(9, 30))); }
    void cleanupTestCase() { Clock::reset(); }
    void cleanup() { QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete); }

    void pick_data()
    {
        QTest::addColumn<QDate>("chosen");    // clicked in the calendar; null: left alone
        QTest::addColumn<QString>("typed");   // typed into txtValue; null: nothing typed
        QTest::addColumn<QString>("retyped"); // typed after the error message; null: no message
        QTest::addColumn<bool>("closeByFrame");
        QTest::addColumn<QDate>("expected");
        const QDate march10(2026, 3, 10);
        QTest::newRow("calendar as loaded") << QDate() << QString() << QString() << false << kToday;
        QTest::newRow("calendar choice") << march10 << QString() << QString() << false << march10;
        QTest::newRow("typed text wins") << march10 << "3/5/2026" << QString() << false << QDate(2026, 3, 5);
        QTest::newRow("impossible date, then corrected")
            << QDate() << "2026-02-30" << "2026-2-28" << false << QDate(2026, 2, 28);
        QTest::newRow("blank is not empty, then cleared") << march10 << " " << "" << false << march10;
        QTest::newRow("closed by the frame") << march10 << QString() << QString() << true << QDate();
        QTest::newRow("closed by the frame with bad text") << QDate() << "abc" << QString() << true << QDate();
    }
    void pick()
    {
        QFETCH(QDate, chosen);
        QFETCH(QString, typed);
        QFETCH(QString, retyped);
        QFETCH(bool, closeByFrame);
        QFETCH(QDate, expected);
        ScriptedPrompter prompter;
        if (!retyped.isNull())
            prompter.expect(QStringLiteral("数据输入格式不正确， ") + typed + QStringLiteral(" 不是有效的日期！"));
        ModalScript script;
        QDate shownOnLoad;
        QString fieldAfterChoice;
        bool stayedAfterError = false;
        script.on("frmPickDate", [&](QWidget *form) {
            shownOnLoad = calendar(form)->selectedDate();
            if (chosen.isValid()) {
                calendar(form)->setSelectedDate(chosen);
                fieldAfterChoice = field(form)->text();
            }
            if (!typed.isNull())
                ModalScript::type(form, "txtValue", typed);
            if (closeByFrame) {
                form->close();
                return;
            }
            ModalScript::click(form, "btnOk");
            if (!retyped.isNull()) {
                stayedAfterError = form->isVisible();
                ModalScript::type(form, "txtValue", retyped);
                ModalScript::click(form, "btnOk");
            }
        });
        Session::PickedDate = QDate(1999, 9, 9);
        QCOMPARE(PickDate(), expected);
        QCOMPARE(Session::PickedDate, expected);
        QCOMPARE(shownOnLoad, kToday);
        if (chosen.isValid())
            QCOMPARE(fieldAfterChoice, chosen.toString("yyyy-MM-dd"));
        QCOMPARE(stayedAfterError, !retyped.isNull());
        VERIFY_MODALS(script);
        VERIFY_PROMPTS(prompter);
    }

    // Each showing starts afresh. Some windows show the dialog themselves and then read
    // PickedDate without PickDate: a cancel there keeps the date picked before.
    void laterShowings()
    {
        ModalScript script;
        QString fieldShown;
        QDate calendarShown;
        script.on("frmPickDate", [](QWidget *form) {
            calendar(form)->setSelectedDate(QDate(2026, 1, 2));
            ModalScript::click(form, "btnOk");
        });
        script.on("frmPickDate", [&](QWidget *form) {
            fieldShown = field(form)->text();
            calendarShown = calendar(form)->selectedDate();
            form->close();
        });
        script.on("frmPickDate", [](QWidget *form) {
            ModalScript::type(form, "txtValue", "2026-5-6");
            ModalScript::click(form, "btnOk");
        });
        QCOMPARE(PickDate(), QDate(2026, 1, 2));
        Modal::exec(Forms::get("frmPickDate"));
        QCOMPARE(Session::PickedDate, QDate(2026, 1, 2));
        QVERIFY(!Forms::loaded("frmPickDate"));
        QCOMPARE(fieldShown, QString());
        QCOMPARE(calendarShown, kToday);
        Modal::exec(Forms::get("frmPickDate"));
        QCOMPARE(Session::PickedDate, QDate(2026, 5, 6));
        VERIFY_MODALS(script);
    }
};

QTEST_MAIN(TestPickDate)
#include "tst_pickdate.moc"
