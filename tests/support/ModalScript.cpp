#include "ModalScript.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QDialog>
#include <QLineEdit>
#include <QPointer>

void ModalScript::run(QWidget *window)
{
    QPointer<QWidget> guard(window);
    m_seen << window->objectName();
    if (m_steps.isEmpty() || m_steps.first().form != window->objectName())
        m_problems << QStringLiteral("unexpected modal window %1").arg(window->objectName());
    else
        m_steps.takeFirst().handler(window);
    if (guard && guard->isVisible()) {
        if (m_problems.isEmpty() || !m_problems.last().startsWith(QLatin1String("unexpected")))
            m_problems << QStringLiteral("modal window %1 was left open").arg(guard->objectName());
        if (auto *dialog = qobject_cast<QDialog *>(guard.data()))
            dialog->reject();
        else
            guard->hide();
    }
}

QStringList ModalScript::problems() const
{
    QStringList all = m_problems;
    for (const Step &s : m_steps)
        all << QStringLiteral("modal window %1 never shown").arg(s.form);
    return all;
}

bool ModalScript::click(QWidget *form, const QString &buttonName)
{
    auto *button = form->findChild<QAbstractButton *>(buttonName);
    if (button)
        button->click();
    return button != nullptr;
}

bool ModalScript::type(QWidget *form, const QString &fieldName, const QString &text)
{
    QWidget *field = form->findChild<QWidget *>(fieldName);
    if (auto *line = qobject_cast<QLineEdit *>(field)) {
        line->setFocus();
        line->selectAll();
        line->del();
        line->insert(text); // as typed: textEdited and textChanged both fire
        return true;
    }
    if (auto *combo = qobject_cast<QComboBox *>(field)) {
        const int i = combo->findText(text);
        if (combo->isEditable())
            combo->setEditText(text);
        else if (i >= 0)
            combo->setCurrentIndex(i);
        return combo->isEditable() || i >= 0;
    }
    return false;
}
