#include "master/CatalogForms.h"

#include "platform/DbGrid.h"
#include "platform/Forms.h"
#include "platform/Modal.h"
#include "support/ModalScript.h"
#include "support/Rows.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QtTest>

namespace {
const QString BottleMarkOff = QStringLiteral("如果要取消该产品的空瓶属性，则所有以它该产品作为空瓶的产品都将成为无空瓶的产品！");

template <class T = QWidget> T *child(QWidget *card, const char *name) { return ModalScript::child<T>(card, name); }

// Opens a card for a new row (action 1) or to edit row id (action 2); the handler plays the user.
void openCard(const QString &card, int action, int id, ModalScript::Handler handler)
{
    ModalScript script;
    script.on(card, std::move(handler));
    QWidget *w = Forms::get(card);
    w->setProperty("mActionType", action);
    w->setProperty("mCurID", id);
    Modal::exec(w);
    VERIFY_MODALS(script);
}
}

// Products with their bottles, and delivery workers: what the cards store.
class TestCatalog : public QObject {
    Q_OBJECT
    std::unique_ptr<TestDb> m_db;

    int addProduct(const QString &name, bool bottle, int containerID = 0, const QString &status = "1")
    {
        m_db->exec(QString("INSERT INTO Product(Name,Unit,Detail,IsDefault,Status,IsContainer,ContainerID,Price) "
                           "VALUES('%1','桶','','1','%2','%3',%4,10)").arg(name, status, bottle ? "1" : "0").arg(containerID));
        return m_db->scalar("SELECT max(ID) FROM Product").toInt();
    }
    QString productRow(int id) const
    {
        return m_db->scalar(QString("SELECT Name||'|'||Unit||'|'||Detail||'|'||IsDefault||'|'||Status||'|'||IsContainer"
                                    "||'|'||ContainerID||'|'||printf('%g',Price) FROM Product WHERE ID=%1").arg(id)).toString();
    }
    int addSender()
    {
        m_db->exec("INSERT INTO Sender(Name,Phone,Detail,Status,Price,StationID) VALUES('张','1','','1',1,1)");
        return m_db->scalar("SELECT max(ID) FROM Sender").toInt();
    }

private slots:
    void initTestCase() { registerCatalogForms(); }
    void init()
    {
        m_db = std::make_unique<TestDb>();
        QVERIFY(m_db->ok());
    }
    void cleanup()
    {
        Forms::unloadAll();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        m_db.reset();
    }

    void newProducts_data()
    {
        QTest::addColumn<bool>("bottle");
        QTest::addColumn<bool>("chooseFirst"); // pick the bottle in the list before marking
        QTest::addColumn<QString>("stored");
        QTest::newRow("water in a bucket") << false << true << "纯净水|桶| 冰 |1|1|0|1|12.5";
        // The list is off for a bottle but keeps its choice, and the insert stores it.
        QTest::newRow("bottle keeps the listed bottle") << true << true << "纯净水|桶| 冰 |1|1|1|1|12.5";
        QTest::newRow("bottle with nothing chosen") << true << false << "纯净水|桶| 冰 |1|1|1|0|12.5";
    }
    void newProducts()
    {
        QFETCH(bool, bottle);
        QFETCH(bool, chooseFirst);
        addProduct("空桶", true); // ID 1
        ScriptedPrompter prompter;
        ModalScript script;
        script.on("frmProductAdmin", [](QWidget *list) {
            ModalScript::click(list, "btnNew");
            QCOMPARE(child<DbGrid>(list, "lsvMain")->model()->rowCount(), 2);
            ModalScript::click(list, "btnExit");
        });
        script.on("frmProduct", [&](QWidget *card) {
            auto *save = child<QPushButton>(card, "btnSave");
            ModalScript::type(card, "txtName", " 纯净水 ");
            QVERIFY(!save->isEnabled()); // the unit is still missing
            ModalScript::type(card, "txtUnit", "桶");
            QVERIFY(save->isEnabled());
            ModalScript::type(card, "txtPrice", " 12.5 ");
            ModalScript::type(card, "txtDetail", " 冰 ");
            child<QCheckBox>(card, "chkIsDefault")->setChecked(true);
            if (chooseFirst) {
                auto *bottles = child<QComboBox>(card, "cmbContainer");
                bottles->setCurrentIndex(bottles->findText("空桶"));
            }
            if (bottle)
                child<QCheckBox>(card, "chkIsContainer")->click();
            ModalScript::click(card, "btnSave");
            // Ready for the next one; the bottle mark stays for a run of bottles.
            QCOMPARE(child<QLineEdit>(card, "txtName")->text() + "|" + child<QLineEdit>(card, "txtPrice")->text(),
                     QStringLiteral("|0"));
            QVERIFY(!child<QCheckBox>(card, "chkIsDefault")->isChecked());
            QCOMPARE(child<QCheckBox>(card, "chkIsContainer")->isChecked(), bottle);
            ModalScript::click(card, "btnExit");
        });
        Modal::exec(Forms::get("frmProductAdmin"));
        VERIFY_MODALS(script);
        VERIFY_PROMPTS(prompter);
        QTEST(productRow(2), "stored");
    }

    // Editing the bottle 空桶: what becomes of it and of the water that comes in it, while
    // the gas in another bottle keeps its own.
    void editProduct_data()
    {
        QTest::addColumn<QString>("action");
        QTest::addColumn<QString>("bottleRow");
        QTest::addColumn<int>("waterContainer");
        QTest::newRow("rename keeps users") << "rename" << "大空桶|桶||1|1|1|0|10" << 1;
        QTest::newRow("suspend frees users") << "suspend" << "空桶|桶||1|0|1|0|10" << 0;
        QTest::newRow("no longer a bottle frees users") << "unmark" << "空桶|桶||1|1|0|0|10" << 0;
    }
    void editProduct()
    {
        QFETCH(QString, action);
        const int bucket = addProduct("空桶", true), jar = addProduct("气罐", true);
        const int water = addProduct("纯净水", false, bucket), gas = addProduct("液化气", false, jar);
        ScriptedPrompter prompter;
        if (action == "unmark")
            prompter.expect(BottleMarkOff);
        openCard("frmProduct", 2, bucket, [&](QWidget *card) {
            auto *mark = child<QCheckBox>(card, "chkIsContainer");
            QVERIFY(mark->isChecked());
            QVERIFY(!child(card, "cmbContainer")->isEnabled() && !child(card, "chkIsDefault")->isEnabled());
            if (action == "rename")
                ModalScript::type(card, "txtName", "大空桶");
            else if (action == "suspend")
                child<QCheckBox>(card, "chkDisable")->setChecked(true);
            else
                mark->click();
            ModalScript::click(card, "btnSave");
            QVERIFY(!card->isVisible());
        });
        VERIFY_PROMPTS(prompter);
        QTEST(productRow(bucket), "bottleRow");
        QTEST(m_db->scalar(QString("SELECT ContainerID FROM Product WHERE ID=%1").arg(water)).toInt(), "waterContainer");
        QCOMPARE(m_db->scalar(QString("SELECT ContainerID FROM Product WHERE ID=%1").arg(gas)).toInt(), jar);
    }

    // Also on a new card, every time the mark goes off; a suspended bottle is not offered.
    void bottleChoice()
    {
        ScriptedPrompter prompter;
        prompter.expect(BottleMarkOff).expect(BottleMarkOff);
        openCard("frmProduct", 1, 0, [](QWidget *card) {
            auto *mark = child<QCheckBox>(card, "chkIsContainer");
            for (int i = 0; i < 2; ++i) {
                mark->click();
                QVERIFY(!child(card, "cmbContainer")->isEnabled());
                mark->click();
                QVERIFY(child(card, "cmbContainer")->isEnabled());
            }
            ModalScript::click(card, "btnExit");
        });
        VERIFY_PROMPTS(prompter);
        QCOMPARE(prompter.last().title, QStringLiteral("提示"));
        QCOMPARE(prompter.last().icon, QMessageBox::Information);

        const int water = addProduct("纯净水", false, addProduct("旧桶", true, 0, "0"));
        addProduct("新桶", true);
        openCard("frmProduct", 2, water, [](QWidget *card) {
            auto *cmb = child<QComboBox>(card, "cmbContainer");
            QCOMPARE(cmb->count(), 1);
            QCOMPARE(cmb->itemText(0), QStringLiteral("新桶"));
            QCOMPARE(cmb->currentIndex(), -1);
            ModalScript::click(card, "btnExit");
        });
    }

    // A price that is not a number, or a quote in any field, stores nothing and leaves the card
    // open with what was typed.
    void savedOrRefused_data()
    {
        QTest::addColumn<QString>("card");
        QTest::addColumn<int>("action");
        QTest::addColumn<QString>("field");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("message"); // how the message starts; empty when it saves
        QTest::addColumn<QString>("price");   // stored
        const QString notANumber = "数据输入格式不正确， %1 不是有效的数字！";
        QTest::newRow("product price letters") << "frmProduct" << 1 << "txtPrice" << "abc" << notANumber.arg("abc") << "";
        QTest::newRow("product price empty is 0") << "frmProduct" << 1 << "txtPrice" << "" << "" << "0";
        QTest::newRow("sender price letters") << "frmSender" << 1 << "txtPrice" << "5元" << notANumber.arg("5元") << "";
        QTest::newRow("sender price decimal") << "frmSender" << 1 << "txtPrice" << "3.5" << "" << "3.5";
        QTest::newRow("quote in new product name") << "frmProduct" << 1 << "txtName" << "x' or '1'='1" << Failed::Update << "";
        QTest::newRow("quote in edited sender phone") << "frmSender" << 2 << "txtPhone" << "x' or '1'='1" << Failed::Update << "";
    }
    void savedOrRefused()
    {
        QFETCH(QString, card);
        QFETCH(int, action);
        QFETCH(QString, field);
        QFETCH(QString, typed);
        QFETCH(QString, message);
        QFETCH(QString, price);
        const int id = action == 2 ? addSender() : 0;
        const QString rows = "SELECT group_concat(Name||Status||'|'||printf('%g',Price)) FROM "
                             + QString(card == "frmProduct" ? "Product" : "Sender");
        const QString before = m_db->scalar(rows).toString();
        ScriptedPrompter prompter;
        if (!message.isEmpty())
            prompter.expect(message, QMessageBox::Ok, message == Failed::Update);
        openCard(card, action, id, [&](QWidget *w) {
            ModalScript::type(w, "txtName", "王五");
            ModalScript::type(w, "txtUnit", "桶");
            ModalScript::type(w, field, typed);
            ModalScript::click(w, "btnSave");
            if (!message.isEmpty()) {
                QVERIFY(w->isVisible());
                QCOMPARE(child<QLineEdit>(w, qPrintable(field))->text(), typed);
            }
            ModalScript::click(w, "btnExit");
        });
        VERIFY_PROMPTS(prompter);
        QCOMPARE(m_db->scalar(rows).toString(), message.isEmpty() ? "王五1|" + price : before);
    }

    // The worker's name is trimmed, the remark kept as typed; no station to choose here.
    void senders_data()
    {
        QTest::addColumn<int>("action");
        QTest::addColumn<QString>("stored");
        QTest::newRow("new") << 1 << "张师傅|138 0000|老员工 |1|2|1";
        QTest::newRow("edit") << 2 << "张师傅|138 0000|老员工 |0|2|1";
    }
    void senders()
    {
        QFETCH(int, action);
        ScriptedPrompter prompter;
        openCard("frmSender", action, action == 2 ? addSender() : 0, [&](QWidget *card) {
            QVERIFY(!child(card, "cmbStation")->isVisible());
            QCOMPARE(child<QPushButton>(card, "btnSave")->isEnabled(), action == 2);
            ModalScript::type(card, "txtName", " 张师傅 ");
            ModalScript::type(card, "txtPhone", "138 0000");
            ModalScript::type(card, "txtPrice", "2");
            ModalScript::type(card, "txtDetail", "老员工 ");
            child<QCheckBox>(card, "chkDisable")->setChecked(action == 2);
            ModalScript::click(card, "btnSave");
            if (card->isVisible())
                ModalScript::click(card, "btnExit");
        });
        VERIFY_PROMPTS(prompter);
        QCOMPARE(m_db->count("Sender"), 1);
        QTEST(m_db->scalar("SELECT Name||'|'||Phone||'|'||Detail||'|'||Status||'|'||printf('%g',Price)||'|'||StationID "
                           "FROM Sender").toString(), "stored");
    }
};

QTEST_MAIN(TestCatalog)
#include "tst_catalog.moc"
