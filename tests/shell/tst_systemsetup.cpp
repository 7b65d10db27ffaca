#include "shell/Shell.h"
#include "shell/frmSystemSetup.h"

#include "platform/Forms.h"
#include "platform/Modal.h"
#include "support/ModalScript.h"
#include "support/ScriptedPrompter.h"
#include "support/TestDb.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QtTest>

// The settings window and the reset of the business tables.
class TestSystemSetup : public QObject {
    Q_OBJECT
private slots:
    void initTestCase();
    void init();
    void cleanup();
    void loadShowsStoredValues_data();
    void loadShowsStoredValues();
    void okStoresUnderCrossedKeys();
    void reset_data();
    void reset();

private:
    std::unique_ptr<TestDb> m_db;
    QList<int> m_opened;
    int m_ended = 0;
};

void TestSystemSetup::initTestCase()
{
    Shell::registerShellForms();
    Shell::setEndProgram([this] { ++m_ended; });
    frmSystemSetup::setLineDevices([] {
        return QList<frmSystemSetup::LineDevice>{{3, "调制解调器 A"}, {7, "调制解调器 B"}};
    });
    frmSystemSetup::setLineOpener([this](int device) { m_opened << device; });
}

void TestSystemSetup::init()
{
    m_db = std::make_unique<TestDb>();
    QVERIFY(m_db->ok());
    m_opened.clear();
    m_ended = 0;
}

void TestSystemSetup::cleanup()
{
    Forms::unloadAll();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    m_db.reset();
}

void TestSystemSetup::loadShowsStoredValues_data()
{
    QTest::addColumn<QStringList>("values"); // Name=myValue rows
    QTest::addColumn<QString>("boxes");      // the five boxes, 1 for checked
    QTest::addColumn<int>("modem");
    QTest::addColumn<QList<int>>("opened");
    QTest::addColumn<QString>("areaCode");
    QTest::addColumn<QString>("numberLen");
    // A new database has the address search and the list refresh on.
    QTest::newRow("nothing stored") << QStringList{} << "00011" << 0 << QList<int>{3} << "0" << "0";
    QTest::newRow("stored") << QStringList{"AutoOutAmount=1", "AutoInContainer=1", "AutoDataRefresh=1",
                                           "ModemIndex=1", "AreaCode=0427", "NumberLen=7"}
                            << "10111" << 1 << QList<int>{7} << "427" << "7";
    QTest::newRow("no device chosen") << QStringList{"ModemIndex=-1", "SearchAddress=0"} << "00001" << -1
                                      << QList<int>{} << "0" << "0";
    // Neither stops the load: the position stays at the first device.
    QTest::newRow("beyond a whole number") << QStringList{"ModemIndex=40000"} << "00011" << 0
                                           << QList<int>{3} << "0" << "0";
    QTest::newRow("not a number") << QStringList{"ModemIndex=abc", "NumberLen=8"} << "00011" << 0
                                  << QList<int>{3} << "0" << "8";
}

void TestSystemSetup::loadShowsStoredValues()
{
    QFETCH(QStringList, values);
    QFETCH(QString, boxes);
    QFETCH(int, modem);
    QFETCH(QList<int>, opened);
    QFETCH(QString, areaCode);
    QFETCH(QString, numberLen);
    for (const QString &v : values) {
        m_db->exec(QString("DELETE FROM SysValue WHERE Name='%1'").arg(v.section('=', 0, 0)));
        m_db->exec(QString("INSERT INTO SysValue(Name,myValue) VALUES('%1','%2')")
                       .arg(v.section('=', 0, 0), v.section('=', 1)));
    }
    QWidget *w = Forms::get("frmSystemSetup");
    QVERIFY(!w->isVisible());
    QString shown;
    for (const char *name : {"chkAutoDo_0", "chkAutoDo_1", "chkAutoDo_2", "chkSearchAddress", "chkAutoDataRefresh"})
        shown += w->findChild<QCheckBox *>(name)->isChecked() ? '1' : '0';
    QCOMPARE(shown, boxes);
    QCOMPARE(w->findChild<QComboBox *>("cboModem")->currentIndex(), modem);
    QCOMPARE(m_opened, opened);
    QCOMPARE(w->findChild<QLineEdit *>("txtAreaCode")->text(), areaCode);
    QCOMPARE(w->findChild<QLineEdit *>("txtNumberLen")->text(), numberLen);
}

void TestSystemSetup::okStoresUnderCrossedKeys()
{
    frmSystemSetup::setLineDevices([] { return QList<frmSystemSetup::LineDevice>{}; });
    ModalScript script;
    script.on("frmSystemSetup", [](QWidget *w) {
        w->findChild<QCheckBox *>("chkAutoDo_0")->setChecked(true); // labelled full payment
        w->findChild<QCheckBox *>("chkAutoDataRefresh")->setChecked(true);
        w->findChild<QCheckBox *>("chkSearchAddress")->setChecked(false);
        ModalScript::type(w, "txtAreaCode", "0427");
        ModalScript::type(w, "txtNumberLen", "8");
        ModalScript::click(w, "btnOk");
    });
    Modal::exec(Forms::get("frmSystemSetup"));
    VERIFY_MODALS(script);
    QCOMPARE(m_db->scalar("SELECT group_concat(Name||'='||myValue, ',') FROM SysValue WHERE Name<>'CompanyName'")
                 .toString(),
             QStringLiteral("AutoDataRefresh=1,SearchAddress=0,AutoOutAmount=1,AutoInMoney=0,AutoInContainer=0,"
                            "ModemIndex=-1,AreaCode=0427,NumberLen=8"));
    frmSystemSetup::setLineDevices([] {
        return QList<frmSystemSetup::LineDevice>{{3, "调制解调器 A"}, {7, "调制解调器 B"}};
    });
}

void TestSystemSetup::reset_data()
{
    QTest::addColumn<QList<QMessageBox::StandardButton>>("answers");
    QTest::addColumn<bool>("emptied");
    using B = QMessageBox::StandardButton;
    QTest::newRow("first No") << QList<B>{QMessageBox::No} << false;
    QTest::newRow("second No") << QList<B>{QMessageBox::Yes, QMessageBox::No} << false;
    QTest::newRow("Yes twice") << QList<B>{QMessageBox::Yes, QMessageBox::Yes} << true;
}

void TestSystemSetup::reset()
{
    QFETCH(QList<QMessageBox::StandardButton>, answers);
    QFETCH(bool, emptied);
    m_db->exec("INSERT INTO Sender(Name,Status) VALUES('王','1')");
    m_db->exec("INSERT INTO Product(Name,Status) VALUES('水','1')");
    m_db->exec("INSERT INTO Customer(Name,Status) VALUES('李','1')");
    m_db->exec("INSERT INTO Sale(CustomerID) VALUES(1)");
    m_db->exec("INSERT INTO Sale_detail(SaleID) VALUES(1)");
    m_db->exec("INSERT INTO Store(Detail) VALUES('x')");
    m_db->exec("INSERT INTO Store_detail(StoreID) VALUES(1)");
    m_db->exec("INSERT INTO Call(PhoneNumber) VALUES('123')");
    ScriptedPrompter prompter;
    prompter.expect("你确认要重新启用系统吗？", answers[0], true);
    if (answers.size() > 1)
        prompter.expect("请再次确认是否要重新启用系统！！！", answers[1], true);
    if (emptied)
        prompter.expect("系统重新启用成功，现在系统需要退出再进入，请按确认键退出系统重新登录！");
    ResetSystem();
    VERIFY_PROMPTS(prompter);
    QCOMPARE(prompter.shown().first().title, QStringLiteral("初始化"));
    QCOMPARE(prompter.shown().first().icon, QMessageBox::Critical);
    for (const char *table : {"Sender", "Product", "Customer", "Sale", "Sale_detail", "Store", "Store_detail"})
        QCOMPARE(m_db->count(table), emptied ? 0 : 1);
    QCOMPARE(m_db->count("Call"), 1);
    QCOMPARE(m_db->count("SysUser"), 1);
    QCOMPARE(m_db->count("Station"), 1);
    QCOMPARE(m_ended, emptied ? 1 : 0);
}

QTEST_MAIN(TestSystemSetup)
#include "tst_systemsetup.moc"
