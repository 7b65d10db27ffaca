// Runs a closing on the database file given, answering every question with Yes, so that a
// test can kill it part way. Prints "begin" once the closing's transaction is open and
// "done <n>" when it has committed.
#include "data/Database.h"
#include "data/Session.h"
#include "platform/Prompter.h"
#include "report/PeriodClosing.h"

#include <QCoreApplication>
#include <cstdio>

namespace {
class YesPrompter : public Prompter {
public:
    explicit YesPrompter(QString cutOff) : m_cutOff(std::move(cutOff)) {}
    QMessageBox::StandardButton message(const QString &title, const QString &, QMessageBox::Icon,
                                        QMessageBox::StandardButtons buttons, QMessageBox::StandardButton) override
    {
        if (title == QStringLiteral("确认")) {
            std::puts("begin");
            std::fflush(stdout);
        }
        return buttons & QMessageBox::Yes ? QMessageBox::Yes : QMessageBox::Ok;
    }
    std::optional<QString> input(const QString &, const QString &, const QString &) override { return m_cutOff; }

private:
    QString m_cutOff;
};
}

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    if (argc != 3) {
        std::fprintf(stderr, "usage: closing_kill_helper <file> <cut-off mm-dd-yyyy>\n");
        return 2;
    }
    QString error;
    if (!Database::open(QString::fromLocal8Bit(argv[1]), &error)) {
        std::fprintf(stderr, "%s\n", qPrintable(error));
        return 1;
    }
    YesPrompter prompter(QString::fromLocal8Bit(argv[2]));
    Prompter::install(&prompter);
    Session::UserID = 1;
    const std::optional<int> closed = PeriodClosing().FinishToday();
    std::printf("done %d\n", closed ? *closed : -1);
    std::fflush(stdout);
    return closed ? 0 : 1;
}
