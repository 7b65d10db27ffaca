#include "ScriptedPrompter.h"

ScriptedPrompter &ScriptedPrompter::expect(const QString &text, QMessageBox::StandardButton answer,
                                           bool prefix)
{
    m_script.append({false, prefix, text, answer, std::nullopt});
    return *this;
}

ScriptedPrompter &ScriptedPrompter::expectInput(std::optional<QString> answer)
{
    m_script.append({true, false, QString(), QMessageBox::Ok, std::move(answer)});
    return *this;
}

QMessageBox::StandardButton ScriptedPrompter::message(const QString &title, const QString &text, QMessageBox::Icon icon,
                                                      QMessageBox::StandardButtons buttons,
                                                      QMessageBox::StandardButton defaultButton)
{
    m_shown.append({title, text, icon, buttons});
    if (m_script.isEmpty() || m_script.first().isInput) {
        m_problems << QStringLiteral("unexpected message [%1] %2").arg(title, text);
        return defaultButton != QMessageBox::NoButton ? defaultButton : QMessageBox::Ok;
    }
    const Expectation e = m_script.takeFirst();
    const bool matches = e.prefix ? text.startsWith(e.text) : text == e.text;
    if (!matches)
        m_problems << QStringLiteral("expected message \"%1\" but was [%2] \"%3\"").arg(e.text, title, text);
    return e.answer;
}

std::optional<QString> ScriptedPrompter::input(const QString &title, const QString &prompt, const QString &)
{
    m_shown.append({title, prompt, QMessageBox::NoIcon, QMessageBox::Ok | QMessageBox::Cancel});
    if (m_script.isEmpty() || !m_script.first().isInput) {
        m_problems << QStringLiteral("unexpected input box [%1] %2").arg(title, prompt);
        return std::nullopt;
    }
    return m_script.takeFirst().inputAnswer;
}

QStringList ScriptedPrompter::problems() const
{
    QStringList all = m_problems;
    for (const Expectation &e : m_script)
        all << (e.isInput ? QStringLiteral("input box never shown")
                          : QStringLiteral("message never shown: \"%1\"").arg(e.text));
    return all;
}
