#include "support/Bench.h"

#include "data/Session.h"
#include "data/SqlText.h"
#include "platform/Clock.h"
#include "sale/PrintForms.h"
#include "views/DataCombo.h"

#include <QCalendarWidget>
#include <QCheckBox>
#include <QRadioButton>

namespace {
// The filter as the list window's statement will read it, without the marks around typed values.
QString plain(QString sql)
{
    for (QChar mark : {Sql::TextOpen, Sql::TextClose, Sql::NumberOpen, Sql::NumberClose, Sql::DateOpen, Sql::DateClose})
        sql.remove(mark);
    return sql;
}

QWidget *openFilter() { return Forms::get("frmSaleFilter"); }

// Plays the user: "chkX" ticks, "txtX=text" types, "cmbOperator_N=i" picks an operator,
// "cmbUserID=1" picks by bound value, "optFinish_1" chooses an option.
void apply(QWidget *form, const QStringList &steps)
{
    for (const QString &step : steps) {
        const QString name = step.section('=', 0, 0);
        const QString value = step.section('=', 1);
        QObject *w = form->findChild<QObject *>(name);
        QVERIFY2(w, qPrintable(name));
        if (auto *check = qobject_cast<QCheckBox *>(w))
            check->click();
        else if (auto *option = qobject_cast<QRadioButton *>(w))
            option->click();
        else if (auto *list = qobject_cast<DataCombo *>(w))
            list->setBoundText(value);
        else if (auto *ops = qobject_cast<QComboBox *>(w))
            ops->setCurrentIndex(value.toInt());
        else if (auto *edit = qobject_cast<QLineEdit *>(w))
            edit->setText(value);
    }
}
}

class TestSaleFilter : public QObject, Bench {
    Q_OBJECT
private slots:
    void initTestCase()
    {
        Clock::set(QDateTime(QDate(2026, 7, 1), QTime(10, 0)));
        registerPrintForms();
        Forms::setActiveChildProvider([this] { return &m_list; });
    }
    void init()
    {
        QVERIFY(start());
        db->exec("INSERT INTO Sender(Name,Status,StationID) VALUES('李送','1',1)");
        m_list.setProperty("curFilterSQL", QString());
    }
    void cleanup() { FINISH_BENCH(); }
    void clauseText_data()
    {
        QTest::addColumn<QStringList>("steps");
        QTest::addColumn<QString>("expected");
        QTest::addColumn<QString>("message"); // refused: the dialog stays open for correction

        QTest::newRow("address, trimmed") << QStringList{"chkAddress", "txtAddress=  和平路 "}
                                          << " AND Address Like '%和平路%' " << QString();
        QTest::newRow("account greater") << QStringList{"chkAccount", "txtAccount= 8001 ", "cmbOperator_0=0"}
                                         << " AND Account>8001" << QString();
        QTest::newRow("all in the dialog's order")
            << QStringList{"optFinish_1", "chkSenderID", "cmbSenderID=1", "chkTotalMoney",
                           "txtTotalMoney=100", "cmbOperator_3=3", "chkID", "chkCreateDate",
                           "txtCreateDate=2026-3-5", "cmbOperator_1=4", "chkUserID", "cmbUserID=1",
                           "chkContainerBalance", "chkMoneyBalance", "txtMoneyBalance=5",
                           "cmbOperator_5=2", "chkTotalAmount", "txtTotalAmount=3", "cmbOperator_4=0"}
            << " AND Sale.UserID=1 AND Sale.CreateDate>=#2026-3-5# AND Sale.ID=0 And TotalMoney<=100"
               " And TotalAmount>3 And (TotalMoney-InMoney)<5 And (TotalContainer-InContainer)=0"
               " AND Sale.SenderID=1 AND Sale.FinishFlag='1'" << QString();
        QTest::newRow("decimal ticket number goes on as read")
            << QStringList{"chkID", "txtID=12.7"} << " AND Sale.ID=12.7" << QString();
        QTest::newRow("open tickets") << QStringList{"optFinish_2"} << " AND FinishFlag='0'" << QString();
        QTest::newRow("ticked and unticked again") << QStringList{"chkID", "chkID"} << "" << QString();
        QTest::newRow("emptied number becomes 0") << QStringList{"chkTotalAmount", "txtTotalAmount="}
                                                  << " And TotalAmount=0" << QString();
        QTest::newRow("letters in a number") << QStringList{"chkTotalMoney", "txtTotalMoney=abc"} << ""
                                             << "数据输入格式不正确， abc 不是有效的数字！";
    }
    void clauseText()
    {
        QFETCH(QStringList, steps);
        QFETCH(QString, expected);
        QFETCH(QString, message);
        if (!message.isEmpty())
            prompts->expect(message);
        QWidget *form = openFilter();
        QVERIFY(form->findChild<QCheckBox *>("chkStation")->isHidden());
        form->findChild<QRadioButton *>("optSearchType_1")->click();
        apply(form, steps);
        form->findChild<QPushButton *>("btnOk")->click();
        QCOMPARE(plain(m_list.property("curFilterSQL").toString()), expected);
        QCOMPARE(Forms::loaded("frmSaleFilter") != nullptr, !message.isEmpty());
    }
    void searchType_data()
    {
        QTest::addColumn<QString>("present");
        QTest::addColumn<QStringList>("steps");
        QTest::addColumn<int>("openings"); // the same choice made this many times
        QTest::addColumn<QString>("expected");

        const QString open = " AND FinishFlag='0'";
        QTest::newRow("refine appends") << open << QStringList{"chkID"} << 1 << open + " AND Sale.ID=0";
        QTest::newRow("refine twice repeats") << "" << QStringList{"chkID"} << 2
                                              << " AND Sale.ID=0 AND Sale.ID=0";
        QTest::newRow("all tickets keeps an old flag clause") << open << QStringList{"optFinish_0"} << 1 << open;
        QTest::newRow("new search replaces") << open << QStringList{"optSearchType_1", "chkID"} << 1
                                             << " AND Sale.ID=0";
    }
    void searchType()
    {
        QFETCH(QString, present);
        QFETCH(QStringList, steps);
        QFETCH(int, openings);
        QFETCH(QString, expected);
        m_list.setProperty("curFilterSQL", present);
        for (int i = 0; i < openings; ++i) {
            QWidget *form = openFilter();
            // Each opening starts over: nothing is ticked from the last time.
            QVERIFY(!form->findChild<QCheckBox *>("chkID")->isChecked());
            QVERIFY(form->findChild<QRadioButton *>("optSearchType_0")->isChecked());
            apply(form, steps);
            form->findChild<QPushButton *>("btnOk")->click();
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        }
        QCOMPARE(plain(m_list.property("curFilterSQL").toString()), expected);
    }
    void tickingFillsFields()
    {
        QWidget *form = openFilter();
        auto *txtID = form->findChild<QLineEdit *>("txtID");
        auto *op = form->findChild<QComboBox *>("cmbOperator_2");
        auto *txtCreateDate = form->findChild<QLineEdit *>("txtCreateDate");
        auto *btnPickDate = form->findChild<QPushButton *>("btnPickDate");
        QVERIFY(!txtID->isEnabled() && !op->isEnabled() && txtID->text().isEmpty());
        QCOMPARE(op->currentIndex(), -1);

        apply(form, {"chkID", "chkCreateDate", "chkAddress"});
        QVERIFY(txtID->isEnabled() && op->isEnabled());
        QCOMPARE(txtID->text(), QStringLiteral("0"));
        QCOMPARE(op->currentText(), QStringLiteral("="));
        QCOMPARE(txtCreateDate->text(), QStringLiteral("2026-07-01"));
        QVERIFY(btnPickDate->isEnabled());
        QVERIFY(form->findChild<QLineEdit *>("txtAddress")->text().isEmpty());

        apply(form, {"chkID", "chkCreateDate"});
        QVERIFY(!txtID->isEnabled() && !op->isEnabled() && !btnPickDate->isEnabled());
    }
    void leavingAField_data()
    {
        QTest::addColumn<QString>("field");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("message"); // empty: no message, the focus moves on
        QTest::addColumn<QString>("left");    // the field's text afterwards

        QTest::newRow("emptied number") << "txtID" << "" << "" << "0";
        QTest::newRow("number") << "txtID" << " 42 " << "" << " 42 ";
        QTest::newRow("letters") << "txtID" << "4x" << "数据输入格式不正确， 4x 不是有效的数字！" << "4x";
        QTest::newRow("emptied date") << "txtCreateDate" << "" << "" << "";
        QTest::newRow("bad date") << "txtCreateDate" << "2026-2-30"
                                  << "数据输入格式不正确， 2026-2-30 不是有效的日期！" << "2026-2-30";
    }
    void leavingAField()
    {
        QFETCH(QString, field);
        QFETCH(QString, typed);
        QFETCH(QString, message);
        QFETCH(QString, left);
        if (!message.isEmpty())
            prompts->expect(message);
        QWidget *form = openFilter();
        apply(form, {"chkID", "chkCreateDate", "chkAccount"});
        form->show();
        QApplication::setActiveWindow(form);
        QVERIFY(QTest::qWaitForWindowActive(form));
        auto *edit = form->findChild<QLineEdit *>(field);
        auto *other = form->findChild<QLineEdit *>("txtAccount");
        edit->setFocus();
        edit->setText(typed);
        other->setFocus();
        QCOMPARE(edit->text(), left);
        // A refused value keeps the user in the field.
        QCOMPARE(edit->hasFocus(), !message.isEmpty());
    }
    void calendarButton()
    {
        QWidget *form = openFilter();
        apply(form, {"chkCreateDate"});
        auto *txtCreateDate = form->findChild<QLineEdit *>("txtCreateDate");
        auto *btnPickDate = form->findChild<QPushButton *>("btnPickDate");
        ModalScript script;
        Session::PickedDate = QDate();
        script.on("frmPickDate", [](QWidget *w) { w->close(); });
        script.on("frmPickDate", [](QWidget *w) {
            ModalScript::child<QCalendarWidget>(w, "mvwMain")->setSelectedDate(QDate(2026, 5, 20));
            ModalScript::click(w, "btnOk");
        });

        btnPickDate->click(); // cancelled before any pick: the zero date
        QCOMPARE(txtCreateDate->text(), QStringLiteral("1899-12-30"));
        btnPickDate->click();
        QCOMPARE(txtCreateDate->text(), QStringLiteral("2026-05-20"));
        VERIFY_MODALS(script);
    }

private:
    QWidget m_list; // the ticket list in front
};

QTEST_MAIN(TestSaleFilter)
#include "tst_salefilter.moc"
