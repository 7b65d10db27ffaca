#include "master/CatalogForms.h"

#include "platform/DbGrid.h"
#include "support/Bench.h"

#include <QCheckBox>

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
class TestCatalog : public QObject, Bench {
    Q_OBJECT

    int addProduct(const QString &name, bool bottle, int containerID = 0, const QString &status = "1")
    {
        db->exec(QString("INSERT INTO Product(Name,Unit,Detail,IsDefault,Status,IsContainer,ContainerID,Price) "
                         "VALUES('%1','桶','','1','%2','%3',%4,10)").arg(name, status, bottle ? "1" : "0").arg(containerID));
        return db->scalar("SELECT max(ID) FROM Product").toInt();
    }
    QString productRow(int id) const
    {
        return db->scalar(QString("SELECT Name||'|'||Unit||'|'||Detail||'|'||IsDefault||'|'||Status||'|'||IsContainer"
                                  "||'|'||ContainerID||'|'||printf('%g',Price) FROM Product WHERE ID=%1").arg(id)).toString();
    }
    int addSender()
    {
        db->exec("INSERT INTO Sender(Name,Phone,Detail,Status,Price,StationID) VALUES('张','1','','1',1,1)");
        return db->scalar("SELECT max(ID) FROM Sender").toInt();
    }

private slots:
    void initTestCase() { registerCatalogForms(); }
    void init() { QVERIFY(start()); }
    void cleanup() { FINISH_BENCH(); }

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
        ModalScript script;
        script.on("frmProductAdmin", [](QWidget *list) {
            ModalScript::click(list, "btnNew");
            QCOMPARE(child<DbGrid>(list, "lsvMain")->model()->rowCount(), 2);
            ModalScript::click(list, "btnExit");
        });
        script.on("frmProduct", [&](QWidget *card) {
            ModalScript::type(card, "txtName", " 纯净水 ");
            ModalScript::type(card, "txtUnit", "桶");
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
            // Ready for the next one.
            QCOMPARE(child<QLineEdit>(card, "txtName")->text() + "|" + child<QLineEdit>(card, "txtPrice")->text(),
                     QStringLiteral("|0"));
            ModalScript::click(card, "btnExit");
        });
        Modal::exec(Forms::get("frmProductAdmin"));
        VERIFY_MODALS(script);
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
        if (action == "unmark")
            prompts->expect(BottleMarkOff);
        openCard("frmProduct", 2, bucket, [&](QWidget *card) {
            auto *mark = child<QCheckBox>(card, "chkIsContainer");
            QVERIFY(mark->isChecked());
            if (action == "rename")
                ModalScript::type(card, "txtName", "大空桶");
            else if (action == "suspend")
                child<QCheckBox>(card, "chkDisable")->setChecked(true);
            else
                mark->click();
            ModalScript::click(card, "btnSave");
            QVERIFY(!card->isVisible());
        });
        QTEST(productRow(bucket), "bottleRow");
        QTEST(db->scalar(QString("SELECT ContainerID FROM Product WHERE ID=%1").arg(water)).toInt(), "waterContainer");
        QCOMPARE(db->scalar(QString("SELECT ContainerID FROM Product WHERE ID=%1").arg(gas)).toInt(), jar);
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
        const QString before = db->scalar(rows).toString();
        if (!message.isEmpty())
            prompts->expect(message, QMessageBox::Ok, message == Failed::Update);
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
        QCOMPARE(db->scalar(rows).toString(), message.isEmpty() ? "王五1|" + price : before);
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
        openCard("frmSender", action, action == 2 ? addSender() : 0, [&](QWidget *card) {
            ModalScript::type(card, "txtName", " 张师傅 ");
            ModalScript::type(card, "txtPhone", "138 0000");
            ModalScript::type(card, "txtPrice", "2");
            ModalScript::type(card, "txtDetail", "老员工 ");
            child<QCheckBox>(card, "chkDisable")->setChecked(action == 2);
            ModalScript::click(card, "btnSave");
            if (card->isVisible())
                ModalScript::click(card, "btnExit");
        });
        QCOMPARE(db->count("Sender"), 1);
        QTEST(db->scalar("SELECT Name||'|'||Phone||'|'||Detail||'|'||Status||'|'||printf('%g',Price)||'|'||StationID "
                         "FROM Sender").toString(), "stored");
    }
};

QTEST_MAIN(TestCatalog)
#include "tst_catalog.moc"
