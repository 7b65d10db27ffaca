#include "ModalScript.h"

#include "platform/Modal.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QDialog>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPointer>
#include <QTextEdit>

ModalScript::ModalScript()
{
    Modal::setInterceptor([this](QWidget *w) { run(w); });
}

ModalScript::~ModalScript() { Modal::setInterceptor(nullptr); }

ModalScript &ModalScript::on(const QString &formName, Handler handler)
{
    m_steps.append({formName, std::move(handler)});
    return *this;
}

void ModalScript::run(QWidget *window)
{
    QPointer<QWidget> guard(window);
    m_seen << window->objectName();
    if (m_steps.isEmpty() || m_steps.first().form != window->objectName()) {
        m_problems << QStringLiteral("unexpected modal window %1").arg(window->objectName());
    } else {
        Step step = m_steps.takeFirst();
        step.handler(window);
    }
    if (guard && guard->isVisible()) {
        if (m_problems.isEmpty() || !m_problems.last().startsWith(QLatin1String("unexpected")))
            m_problems << QStringLiteral("modal window %1 was left open").arg(guard->objectName());
        if (auto *dialog = qobject_cast<QDialog *>(guard.data()))
            dialog->reject();
        else
            guard->hide();
    }
}

QStringList ModalScript::problems(bool includeUnmet) const
{
    QStringList all = m_problems;
    if (includeUnmet)
        for (const Step &s : m_steps)
            all << QStringLiteral("modal window %1 never shown").arg(s.form);
    return all;
}

bool ModalScript::click(QWidget *form, const QString &buttonName)
{
    auto *button = form->findChild<QAbstractButton *>(buttonName);
    if (!button)
        return false;
    button->click();
    return true;
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
        if (combo->isEditable()) {
            combo->setEditText(text);
        } else {
            const int i = combo->findText(text);
            if (i < 0)
                return false;
            combo->setCurrentIndex(i);
        }
        return true;
    }
    if (auto *plain = qobject_cast<QPlainTextEdit *>(field)) {
        plain->setPlainText(text);
        return true;
    }
    if (auto *rich = qobject_cast<QTextEdit *>(field)) {
        rich->setPlainText(text);
        return true;
    }
    return false;
}
