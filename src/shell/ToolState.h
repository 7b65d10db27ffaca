#pragma once
#include <QString>

class CommandBar;

// Which commands of the main window are available. SetRights applies an operator's rights
// at start and after the operators window closes; the tool state follows the list window in
// front. Both write the same per-band on/off flags, and the later call wins.
namespace ToolState {
// Switches off what rolestring refuses (a "0" at a position); nothing is switched back on.
// Returns true when the sale list is refused, which the caller acts on.
bool applyRights(CommandBar &bar, const QString &roleString);
// Turns the toolbar and the business menus back on and switches off what formName lacks.
void apply(CommandBar &bar, const QString &formName);
}

// The operator's rights on the main window's command bar.
void SetRights(qint16 userID);
