#pragma once
#include <QMessageBox>
#include <QString>
#include <optional>

// Every message box, question and input box of the program goes through the current
// Prompter. The Qt one shows real dialogs; tests install a scripted one.
class Prompter {
public:
    virtual ~Prompter() = default;
    virtual QMessageBox::StandardButton message(const QString &title, const QString &text,
                                                QMessageBox::Icon icon,
                                                QMessageBox::StandardButtons buttons,
                                                QMessageBox::StandardButton defaultButton) = 0;
    // The input box: the typed text, or nothing when the user cancelled.
    virtual std::optional<QString> input(const QString &title, const QString &prompt,
                                         const QString &defaultText) = 0;

    static Prompter &current();
    // Installs p (not owned); nullptr restores the Qt prompter.
    static void install(Prompter *p);
};

class QtPrompter : public Prompter {
public:
    QMessageBox::StandardButton message(const QString &title, const QString &text,
                                        QMessageBox::Icon icon, QMessageBox::StandardButtons buttons,
                                        QMessageBox::StandardButton defaultButton) override;
    std::optional<QString> input(const QString &title, const QString &prompt,
                                 const QString &defaultText) override;
};

// The shapes the program uses: errors and stops with OK, notices with OK, questions with
// Yes and No. Each returns what was pressed where that matters.
namespace Msg {
void error(const QString &text, const QString &title);        // stop icon, OK
void info(const QString &text, const QString &title);         // information icon, OK
void warning(const QString &text, const QString &title);      // exclamation icon, OK
// Question icon, Yes and No; true when Yes was pressed.
bool ask(const QString &text, const QString &title,
         QMessageBox::StandardButton defaultButton = QMessageBox::Yes);
// Stop icon, Yes and No, as before something is destroyed; true when Yes was pressed.
bool askStop(const QString &text, const QString &title,
             QMessageBox::StandardButton defaultButton = QMessageBox::Yes);
QMessageBox::StandardButton box(const QString &title, const QString &text, QMessageBox::Icon icon,
                                QMessageBox::StandardButtons buttons,
                                QMessageBox::StandardButton defaultButton = QMessageBox::NoButton);
std::optional<QString> input(const QString &prompt, const QString &title,
                             const QString &defaultText = QString());
}
