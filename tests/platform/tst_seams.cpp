#include "platform/Forms.h"
#include "platform/Modal.h"
#include "platform/Prompter.h"
#include "support/ModalScript.h"
#include "support/ScriptedPrompter.h"

#include <QDialog>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>
#include <QtTest>

namespace {
int g_loads = 0;

// A small card: its load counts, OK asks a question and accepts only on Yes.
class frmProbe : public QDialog {
    Q_OBJECT
public:
    frmProbe()
    {
        ++g_loads;
        auto *layout = new QVBoxLayout(this);
        auto *txt = new QLineEdit(this);
        txt->setObjectName("txtValue");
        auto *ok = new QPushButton("确认", this);
        ok->setObjectName("btnOk");
        layout->addWidget(txt);
        layout->addWidget(ok);
        connect(ok, &QPushButton::clicked, this, [this, txt] {
            if (Msg::ask("保存 " + txt->text() + "？", "提示"))
                accept();
        });
    }
    Q_INVOKABLE void DataRefresh() { ++refreshed; }
    int refreshed = 0;
};
}

class TestSeams : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() { Forms::add("frmProbe", [] { return new frmProbe; }); }

    void registryLoadsOnceAndAfresh()
    {
        g_loads = 0;
        QVERIFY(!Forms::get("frmNotBuiltYet"));
        auto *probe = Forms::get<frmProbe>("frmProbe");
        QVERIFY(probe);
        QCOMPARE(probe->objectName(), QStringLiteral("frmProbe"));
        QCOMPARE(Forms::get("frmProbe"), probe);
        QCOMPARE(g_loads, 1);
        // Procedures are called by name.
        QVERIFY(Forms::call(probe, "DataRefresh"));
        QVERIFY(!Forms::call(probe, "NoSuchProcedure"));
        QVERIFY(!Forms::call(nullptr, "DataRefresh"));
        QCOMPARE(probe->refreshed, 1);
        QPointer<QWidget> old(probe);
        Forms::unload("frmProbe");
        QVERIFY(!Forms::loaded("frmProbe"));
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(old.isNull());
        QVERIFY(Forms::get("frmProbe"));
        QCOMPARE(g_loads, 2);
        Forms::unload("frmProbe");
    }

    void modalWindowDrivenByScript_data()
    {
        QTest::addColumn<int>("answer");
        QTest::addColumn<int>("result");
        QTest::newRow("yes accepts") << int(QMessageBox::Yes) << int(QDialog::Accepted);
        QTest::newRow("no stays, then closed") << int(QMessageBox::No) << int(QDialog::Rejected);
    }
    void modalWindowDrivenByScript()
    {
        QFETCH(int, answer);
        QFETCH(int, result);
        ScriptedPrompter prompts;
        prompts.expect("保存 水？", QMessageBox::StandardButton(answer));
        ModalScript modals;
        modals.on("frmProbe", [&](QWidget *w) {
            QVERIFY(w->isVisible());
            QVERIFY(ModalScript::type(w, "txtValue", "水"));
            QVERIFY(ModalScript::click(w, "btnOk"));
            if (answer == QMessageBox::No)
                static_cast<QDialog *>(w)->reject();
        });
        QCOMPARE(Modal::exec(Forms::get("frmProbe")), result);
        VERIFY_PROMPTS(prompts);
        VERIFY_MODALS(modals);
        QCOMPARE(prompts.last().icon, QMessageBox::Question);
        Forms::unload("frmProbe");
    }

    void scriptCatchesSurprises()
    {
        {
            ScriptedPrompter prompts;
            prompts.expect("one");
            Msg::error("two", "错误");
            QCOMPARE(prompts.problems().size(), 1);
            Msg::info("three", "提示");
            QCOMPARE(prompts.problems().size(), 2);
            QVERIFY(!prompts.done());
        }
        ModalScript modals;
        QCOMPARE(Modal::exec(Forms::get("frmProbe")), int(QDialog::Rejected)); // closed, not hung
        QCOMPARE(modals.problems().size(), 1);
        Forms::unload("frmProbe");
    }
};

QTEST_MAIN(TestSeams)
#include "tst_seams.moc"
