#pragma once
#include <QString>
#include <QWidget>
#include <functional>

// The forms registry: one shared instance per window name, made on first use. Constructing
// the window is its load step; unloading destroys it so the next get() loads it afresh.
namespace Forms {
using Factory = std::function<QWidget *()>;

// Each folder registers the windows it builds under their names.
void add(const QString &name, Factory factory);
bool isKnown(const QString &name);

// The shared instance, loading it when needed; nullptr for a window nobody has registered.
QWidget *get(const QString &name);
template <class T> T *get(const QString &name) { return qobject_cast<T *>(get(name)); }

// The instance when it is loaded, without loading it.
QWidget *loaded(const QString &name);

// Destroys the instance (closing its dialog or its MDI frame first). Refusals of a window
// to close are bypassed: unloading is the program's decision, not the user's.
void unload(const QString &name);
void unload(QWidget *form);
void unloadAll();

// The main window's active child, and where it comes from (the shell, or a test).
QWidget *activeChild();
void setActiveChildProvider(std::function<QWidget *()> provider);

// Calls a public procedure by name, with no arguments. False when the window has none of
// that name: a missing procedure is a quiet no-op.
bool call(QObject *form, const char *procedure);
}

// Switches the main window's tools for the list window now in front. The shell installs the
// real routine; without a shell (tests of a single window) it does nothing.
void SetToolState(const QString &formName);
void setToolStateHandler(std::function<void(const QString &)> handler);
