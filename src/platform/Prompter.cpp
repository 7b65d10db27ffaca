#include "Prompter.h"

#include <QApplication>
#include <QInputDialog>

namespace {
QtPrompter g_qtPrompter;
Prompter *g_current = nullptr;
}

Prompter &Prompter::current() { return g_current ? *g_current : g_qtPrompter; }
void Prompter::install(Prompter *p) { g_current = p; }

QMessageBox::StandardButton QtPrompter::message(const QString &title, const QString &text,
                                                QMessageBox::Icon icon,
                                                QMessageBox::StandardButtons buttons,
                                                QMessageBox::StandardButton defaultButton)
{
    QMessageBox box(icon, title, text, buttons, QApplication::activeWindow());
    if (defaultButton != QMessageBox::NoButton)
        box.setDefaultButton(defaultButton);
    return static_cast<QMessageBox::StandardButton>(box.exec());
}

std::optional<QString> QtPrompter::input(const QString &title, const QString &prompt,
                                         const QString &defaultText)
{
    bool ok = false;
    const QString text = QInputDialog::getText(QApplication::activeWindow(), title, prompt,
                                               QLineEdit::Normal, defaultText, &ok);
    if (!ok)
        return std::nullopt;
    return text;
}

namespace Msg {
void error(const QString &text, const QString &title)
{
    box(title, text, QMessageBox::Critical, QMessageBox::Ok);
}
void info(const QString &text, const QString &title)
{
    box(title, text, QMessageBox::Information, QMessageBox::Ok);
}
void warning(const QString &text, const QString &title)
{
    box(title, text, QMessageBox::Warning, QMessageBox::Ok);
}
bool ask(const QString &text, const QString &title, QMessageBox::StandardButton defaultButton)
{
    return box(title, text, QMessageBox::Question, QMessageBox::Yes | QMessageBox::No,
               defaultButton) == QMessageBox::Yes;
}
bool askStop(const QString &text, const QString &title, QMessageBox::StandardButton defaultButton)
{
    return box(title, text, QMessageBox::Critical, QMessageBox::Yes | QMessageBox::No,
               defaultButton) == QMessageBox::Yes;
}
QMessageBox::StandardButton box(const QString &title, const QString &text, QMessageBox::Icon icon,
                                QMessageBox::StandardButtons buttons,
                                QMessageBox::StandardButton defaultButton)
{
    return Prompter::current().message(title, text, icon, buttons, defaultButton);
}
std::optional<QString> input(const QString &prompt, const QString &title, const QString &defaultText)
{
    return Prompter::current().input(title, prompt, defaultText);
}
}
