#pragma once
#include <QWidget>
#include <functional>

// Every modal showing goes through here. Tests install an interceptor that is called with
// the window once it is shown inside its own event loop; it fills the window, presses its
// buttons and so lets it close.
namespace Modal {
// Shows the window modally and returns the dialog's result code (0 when it is not a dialog
// or was closed without accepting). A window that is not a QDialog is shown in a modal frame.
int exec(QWidget *window);

using Interceptor = std::function<void(QWidget *)>;
void setInterceptor(Interceptor interceptor);
}
