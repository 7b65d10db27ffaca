#include "support/Bench.h"

#include "data/SqlText.h"
#include "platform/Clock.h"
#include "sale/PrintForms.h"
#include "views/DataCombo.h"

#include <QAbstractButton>

namespace {
// The filter as the list window's statement will read it, without the marks around typed values.
QString plain(QString sql)
{
    for (QChar mark : {Sql::TextOpen, Sql::TextClose, Sql::NumberOpen, Sql::NumberClose, Sql::DateOpen, Sql::DateClose})
        sql.remove(mark);
    return sql;
}

QWidget *openFilter() { return Forms::get("frmSaleFilter"); }

// Plays the user: "chkX" ticks, "optX_n" chooses, "txtX=text" types, "cmbOperator_N=i" picks
// an operator, "cmbUserID=1" picks by bound value.
void apply(QWidget *form, const QStringList &steps)
{
    for (const QString &step : steps) {
        const QString name = step.section('=', 0, 0);
        const QString value = step.section('=', 1);
        QObject *w = form->findChild<QObject *>(name);
        QVERIFY2(w, qPrintable(name));
        if (auto *button = qobject_cast<QAbstractButton *>(w))
            button->click();
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
    }
    void cleanup() { FINISH_BENCH(); }
    // A new search, or a refinement of what the list in front holds. A refused value keeps the
    // dialog open for correction and the list's filter as it was.
    void clauseText_data()
    {
        QTest::addColumn<QString>("present");
        QTest::addColumn<QStringList>("steps");
        QTest::addColumn<QString>("expected");
        QTest::addColumn<QString>("message");

        const QString open = " AND FinishFlag='0'", fresh = "optSearchType_1";
        QTest::newRow("address, trimmed") << "" << QStringList{"chkAddress", "txtAddress=  和平路 "}
                                          << " AND Address Like '%和平路%' " << QString();
        QTest::newRow("account greater") << "" << QStringList{"chkAccount", "txtAccount= 8001 ", "cmbOperator_0=0"}
                                         << " AND Account>8001" << QString();
        QTest::newRow("all in the dialog's order")
            << "" << QStringList{"optFinish_1", "chkSenderID", "cmbSenderID=1", "chkTotalMoney",
                                 "txtTotalMoney=100", "cmbOperator_3=3", "chkID", "chkCreateDate",
                                 "txtCreateDate=2026-3-5", "cmbOperator_1=4", "chkUserID", "cmbUserID=1",
                                 "chkContainerBalance", "chkMoneyBalance", "txtMoneyBalance=5",
                                 "cmbOperator_5=2", "chkTotalAmount", "txtTotalAmount=3", "cmbOperator_4=0"}
            << " AND Sale.UserID=1 AND Sale.CreateDate>=#2026-3-5# AND Sale.ID=0 And TotalMoney<=100"
               " And TotalAmount>3 And (TotalMoney-InMoney)<5 And (TotalContainer-InContainer)=0"
               " AND Sale.SenderID=1 AND Sale.FinishFlag='1'" << QString();
        QTest::newRow("ticked and unticked again") << "" << QStringList{"chkID", "chkID"} << "" << QString();
        QTest::newRow("letters in a number") << open << QStringList{"chkTotalMoney", "txtTotalMoney=abc"} << open
                                             << "数据输入格式不正确， abc 不是有效的数字！";
        QTest::newRow("refine appends") << open << QStringList{"chkID"} << open + " AND Sale.ID=0" << QString();
        QTest::newRow("all tickets keeps an old flag clause") << open << QStringList{"optFinish_0"} << open << QString();
        QTest::newRow("new search replaces") << open << QStringList{fresh, "chkID"} << " AND Sale.ID=0" << QString();
        QTest::newRow("new search of open tickets") << open << QStringList{fresh, "optFinish_2"} << open << QString();
    }
    void clauseText()
    {
        QFETCH(QString, present);
        QFETCH(QStringList, steps);
        QFETCH(QString, expected);
        QFETCH(QString, message);
        if (!message.isEmpty())
            prompts->expect(message);
        m_list.setProperty("curFilterSQL", present);
        QWidget *form = openFilter();
        apply(form, steps);
        form->findChild<QPushButton *>("btnOk")->click();
        QCOMPARE(plain(m_list.property("curFilterSQL").toString()), expected);
        QCOMPARE(Forms::loaded("frmSaleFilter") != nullptr, !message.isEmpty());
    }

private:
    QWidget m_list; // the ticket list in front
};

QTEST_MAIN(TestSaleFilter)
#include "tst_salefilter.moc"
