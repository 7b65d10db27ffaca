#include "shell/Shell.h"

#include "platform/VbError.h"
#include "support/ScriptedPrompter.h"

#include <QTimer>
#include <QtTest>

// A run-time error that no handler catches must reach the user and end the program, not
// take the process down with it.
class TestGuard : public QObject {
    Q_OBJECT
private slots:
    void errorInEventHandler_data();
    void errorInEventHandler();
};

void TestGuard::errorInEventHandler_data()
{
    QTest::addColumn<int>("number");
    QTest::addColumn<QString>("text");
    QTest::newRow("overflow") << 6 << "实时错误 '6':\n\n溢出";
    QTest::newRow("object not set") << 91 << "实时错误 '91':\n\n对象变量或 With 块变量未设置";
}

void TestGuard::errorInEventHandler()
{
    QFETCH(int, number);
    QFETCH(QString, text);
    int ended = 0;
    Shell::setEndProgram([&ended] { ++ended; });
    ScriptedPrompter prompter;
    prompter.expect(text);
    QTimer::singleShot(0, [number] {
        throw number == 6 ? VbError::overflow() : VbError::objectNotSet();
    });
    QTRY_COMPARE(ended, 1);
    VERIFY_PROMPTS(prompter);
    QCOMPARE(prompter.last().title, Shell::programTitle());
    QCOMPARE(prompter.last().icon, QMessageBox::Critical);
    Shell::setEndProgram(nullptr);
}

int main(int argc, char *argv[])
{
    TarvikApplication app(argc, argv);
    TestGuard test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_guard.moc"
