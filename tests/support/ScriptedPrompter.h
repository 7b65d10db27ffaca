#pragma once
#include "platform/Prompter.h"

#include <QList>
#include <QStringList>

// Answers messages from a script and records every one. A message nobody expected is
// answered with its default button and recorded as a failure; installed for its lifetime.
class ScriptedPrompter : public Prompter {
public:
    struct Shown {
        QString title, text;
        QMessageBox::Icon icon;
        QMessageBox::StandardButtons buttons;
    };

    ScriptedPrompter() { Prompter::install(this); }
    ~ScriptedPrompter() override { Prompter::install(nullptr); }

    // The next message must have this text (exactly, or starting with it when prefix is
    // true) and is answered with answer.
    ScriptedPrompter &expect(const QString &text, QMessageBox::StandardButton answer = QMessageBox::Ok,
                             bool prefix = false);
    // The next input box is answered with text, or cancelled with std::nullopt.
    ScriptedPrompter &expectInput(std::optional<QString> answer);

    QMessageBox::StandardButton message(const QString &title, const QString &text, QMessageBox::Icon icon,
                                        QMessageBox::StandardButtons buttons,
                                        QMessageBox::StandardButton defaultButton) override;
    std::optional<QString> input(const QString &title, const QString &prompt, const QString &defaultText) override;

    const QList<Shown> &shown() const { return m_shown; }
    const Shown &last() const { return m_shown.last(); }
    // Failures so far: unexpected messages, texts that differ from the script, and
    // expectations nobody met.
    QStringList problems() const;
    // True when every expectation was met and nothing else was shown.
    bool done() const { return problems().isEmpty(); }

private:
    struct Expectation {
        bool isInput = false, prefix = false;
        QString text;
        QMessageBox::StandardButton answer = QMessageBox::Ok;
        std::optional<QString> inputAnswer;
    };
    QList<Expectation> m_script;
    QList<Shown> m_shown;
    QStringList m_problems;
};

// Shorthand for the end of a test: every scripted message was shown, and no other.
#define VERIFY_PROMPTS(prompter)                                                                   \
    QVERIFY2((prompter).done(), qPrintable((prompter).problems().join(QLatin1Char('\n'))))
