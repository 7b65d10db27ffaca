// The address search of the ticket window on a street where thousands of customers live:
// the list stays cheap to fill on every keystroke and behaves as before under the keys.
#include "support/Rows.h"
#include "support/ScriptedPrompter.h"
#include "support/TestDb.h"

#include "data/Session.h"
#include "platform/Clock.h"
#include "platform/Forms.h"
#include "sale/TicketForms.h"
#include "sale/frmSale.h"

#include <QLineEdit>
#include <QListView>
#include <QPointer>
#include <QStyledItemDelegate>
#include <QTableView>
#include <QtTest>

namespace {
constexpr int Street = 3000; // customers at 人民路1号 … 人民路3000号, IDs and accounts 1 … 3000

// Counts how often the list asks for the size of an item.
class CountingDelegate : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;
    mutable int sizeHints = 0;
    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override
    {
        ++sizeHints;
        return QStyledItemDelegate::sizeHint(option, index);
    }
};

void typeText(QWidget *w, const QString &text)
{
    for (const QChar ch : text) {
        QTest::sendKeyEvent(QTest::Press, w, Qt::Key_unknown, QString(ch), Qt::NoModifier);
        QTest::sendKeyEvent(QTest::Release, w, Qt::Key_unknown, QString(ch), Qt::NoModifier);
    }
    QCoreApplication::processEvents();
}

QLineEdit *edit(QWidget *w, const char *name) { return w->findChild<QLineEdit *>(QLatin1String(name)); }
}

class AddressSearchTest : public QObject {
    Q_OBJECT
    std::unique_ptr<TestDb> db;
    std::unique_ptr<ScriptedPrompter> prompts;
    QPointer<frmSale> form;
    QListView *list = nullptr;
    QLineEdit *address = nullptr;

private slots:
    void initTestCase()
    {
        registerTicketForms();
        Session::UserID = 1;
        Clock::set(QDateTime(QDate(2026, 11, 23), QTime(9, 0)));
    }
    void init()
    {
        db = std::make_unique<TestDb>();
        QVERIFY(db->ok());
        QVERIFY(db->exec(QStringLiteral(
            "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM n WHERE i<%1) "
            "INSERT INTO Customer(ID,Account,Name,Address,Phone,CustType,Status,CreateDate,StationID) "
            "SELECT i,i,'住户'||i,'人民路'||i||'号','555'||i,1,'1','2026-01-05',1 FROM n").arg(Street)));
        QVERIFY(Rows::customer(*db, Street + 1, QStringLiteral("西街1号")));
        prompts = std::make_unique<ScriptedPrompter>();
        form = Forms::get<frmSale>(QStringLiteral("frmSale"));
        form->setProperty("mActionType", 1);
        form->show();
        form->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(form));
        list = form->findChild<QListView *>(QStringLiteral("dtlCustomer"));
        address = edit(form, "txtCustAddress");
        QVERIFY(list && address);
    }
    void cleanup()
    {
        const QStringList problems = prompts->problems();
        Forms::unloadAll();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        prompts.reset();
        db.reset();
        QVERIFY2(problems.isEmpty(), qPrintable(problems.join(u'\n')));
    }

    // Measuring every address of a busy street took most of a keystroke's time.
    void aKeystrokeDoesNotMeasureEveryHit()
    {
        auto *counting = new CountingDelegate(list);
        list->setItemDelegate(counting);
        address->setFocus();
        typeText(address, QStringLiteral("人"));
        list->doItemsLayout();
        QVERIFY(list->isVisible());
        QCOMPARE(list->model()->rowCount(), Street);
        QVERIFY2(counting->sizeHints < 50, qPrintable(QString::number(counting->sizeHints)));
    }

    void keysInTheList_data()
    {
        QTest::addColumn<QList<int>>("keys"); // pressed in the list after Down from the address
        QTest::addColumn<QString>("address"); // in the field afterwards
        QTest::addColumn<QString>("account");
        const QList<int> nineteenDown(19, Qt::Key_Down);
        QTest::newRow("first hit") << QList<int>{Qt::Key_Return} << "人民路1号" << "1";
        QTest::newRow("down and up") << QList<int>{Qt::Key_Down, Qt::Key_Down, Qt::Key_Up, Qt::Key_Return}
                                     << "人民路2号" << "2";
        QTest::newRow("below the first screen") << (nineteenDown + QList<int>{Qt::Key_Return}) << "人民路20号"
                                                << "20";
        QTest::newRow("escape keeps the typing") << QList<int>{Qt::Key_Down, Qt::Key_Escape} << "人民" << "";
    }
    void keysInTheList()
    {
        QFETCH(QList<int>, keys);
        QFETCH(QString, address);
        QFETCH(QString, account);
        this->address->setFocus();
        typeText(this->address, QStringLiteral("人民"));
        QVERIFY(list->isVisible());
        QTest::keyClick(this->address, Qt::Key_Down);
        QTRY_VERIFY(list->hasFocus());
        for (int key : keys)
            QTest::keyClick(list, Qt::Key(key));
        QCoreApplication::processEvents();
        QCOMPARE(this->address->text(), address);
        QCOMPARE(edit(form, "txtCustAccount")->text(), account);
        QVERIFY(!list->isVisible());
        if (!account.isEmpty()) {
            QCOMPARE(edit(form, "txtCustName")->text(), QStringLiteral("住户") + account);
            QCOMPARE(edit(form, "txtCustPhone")->text(), QStringLiteral("555") + account);
            QTRY_VERIFY(form->findChild<QTableView *>(QStringLiteral("dbgDetail"))->hasFocus());
        } else {
            QVERIFY(this->address->hasFocus());
        }
    }
};

QTEST_MAIN(AddressSearchTest)
#include "tst_addresssearch.moc"
