#include "ScriptedPrompter.h"

ScriptedPrompter::ScriptedPrompter() { Prompter::install(this); }

ScriptedPrompter::~ScriptedPrompter() { Prompter::install(nullptr); }

ScriptedPrompter &ScriptedPrompter::expect(const QString &text, QMessageBox::StandardButton answer,
                                           bool prefix)
{
    Expectation e;
    e.text = text;
    e.prefix = prefix;
    e.answer = answer;
    m_script.append(e);
    return *this;
}

ScriptedPrompter &ScriptedPrompter::expectInput(std::optional<QString> answer)
{
    Expectation e;
    e.isInput = true;
    e.inputAnswer = std::move(answer);
    m_script.append(e);
    return *this;
}

QMessageBox::StandardButton ScriptedPrompter::message(const QString &title, const QString &text,
                                                      QMessageBox::Icon icon,
                                                      QMessageBox::StandardButtons buttons,
                                                      QMessageBox::StandardButton defaultButton)
{
    m_shown.append({title, text, icon, buttons, defaultButton});
    const QMessageBox::StandardButton fallback =
        defaultButton != QMessageBox::NoButton ? defaultButton : QMessageBox::Ok;
    if (m_script.isEmpty() || m_script.first().isInput) {
        m_problems << QStringLiteral("unexpected message [%1] %2").arg(title, text);
        return fallback;
    }
    const Expectation e = m_script.takeFirst();
    const bool matches = e.prefix ? text.startsWith(e.text) : text == e.text;
    if (!matches)
        m_problems << QStringLiteral("expected message \"%1\" but was [%2] \"%3\"").arg(e.text, title, text);
    return e.answer;
}

std::optional<QString> ScriptedPrompter::input(const QString &title, const QString &prompt,
                                               const QString &)
{
    m_shown.append({title, prompt, QMessageBox::NoIcon, QMessageBox::Ok | QMessageBox::Cancel,
                    QMessageBox::Ok});
    if (m_script.isEmpty() || !m_script.first().isInput) {
        m_problems << QStringLiteral("unexpected input box [%1] %2").arg(title, prompt);
        return std::nullopt;
    }
    return m_script.takeFirst().inputAnswer;
}

QStringList ScriptedPrompter::problems(bool includeUnmet) const
{
    QStringList all = m_problems;
    if (includeUnmet)
        for (const Expectation &e : m_script)
            all << (e.isInput ? QStringLiteral("input box never shown")
                              : QStringLiteral("message never shown: \"%1\"").arg(e.text));
    return all;
}

void ScriptedPrompter::clear()
{
    m_script.clear();
    m_shown.clear();
    m_problems.clear();
}
