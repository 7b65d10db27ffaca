#pragma once
#include <QApplication>
#include <functional>

class VbError;

namespace Shell {
// The fixed title of the program, on the main window and its plain messages.
QString programTitle();

// Ends the program at once. Tests replace the ending to see that it happened.
void endProgram();
void setEndProgram(std::function<void()> ending);

// A run-time error nobody handled: shown, then the program ends.
void runtimeError(const VbError &error);

// Puts the shell's own windows into the forms registry.
void registerShellForms();
// Registers the windows of every folder (the shell is the one that knows them all).
void registerAllForms();

// The entry routine up to the main window: database, company name, splash, login.
// False when the program is to end (failure, or no login).
bool startSession();
// Brings the running program's windows to the front (asked for by a second start).
void bringToFront();
// The whole entry routine: one instance per machine, the session, then the window loop.
int run(QApplication &app);
}

// The application object: an error that escapes an event handler is shown as a run-time
// error and ends the program, as the classic run time does.
class TarvikApplication : public QApplication {
public:
    using QApplication::QApplication;
    bool notify(QObject *receiver, QEvent *event) override;
};
