#include "Forms.h"

#include <QDialog>
#include <QHash>
#include <QMdiSubWindow>
#include <QMetaMethod>
#include <QPointer>

namespace {
QHash<QString, Forms::Factory> &factories()
{
    static QHash<QString, Forms::Factory> f;
    return f;
}
QHash<QString, QPointer<QWidget>> &instances()
{
    static QHash<QString, QPointer<QWidget>> i;
    return i;
}
std::function<QWidget *()> g_activeChild;
std::function<void(const QString &)> g_toolState;
}

void Forms::add(const QString &name, Factory factory) { factories().insert(name, std::move(factory)); }

bool Forms::isKnown(const QString &name) { return factories().contains(name); }

QWidget *Forms::loaded(const QString &name)
{
    auto it = instances().find(name);
    if (it == instances().end())
        return nullptr;
    if (!it.value()) {
        instances().erase(it);
        return nullptr;
    }
    return it.value();
}

QWidget *Forms::get(const QString &name)
{
    if (QWidget *w = loaded(name))
        return w;
    auto f = factories().find(name);
    if (f == factories().end())
        return nullptr;
    QWidget *w = f.value()();
    if (!w)
        return nullptr;
    if (w->objectName().isEmpty())
        w->setObjectName(name);
    instances().insert(name, w);
    return w;
}

void Forms::unload(QWidget *form)
{
    if (!form)
        return;
    for (auto it = instances().begin(); it != instances().end();) {
        if (it.value() == form || !it.value())
            it = instances().erase(it);
        else
            ++it;
    }
    form->hide();
    if (auto *dialog = qobject_cast<QDialog *>(form); dialog)
        dialog->done(QDialog::Rejected);
    if (auto *frame = qobject_cast<QMdiSubWindow *>(form->parentWidget())) {
        frame->hide();
        frame->deleteLater();
    } else {
        form->deleteLater();
    }
}

void Forms::unload(const QString &name) { unload(loaded(name)); }

void Forms::unloadAll()
{
    const auto all = instances().values();
    for (const auto &w : all)
        unload(w.data());
    instances().clear();
}

QWidget *Forms::activeChild() { return g_activeChild ? g_activeChild() : nullptr; }

void Forms::setActiveChildProvider(std::function<QWidget *()> provider)
{
    g_activeChild = std::move(provider);
}

bool Forms::call(QObject *form, const char *procedure)
{
    if (!form)
        return false;
    const QMetaObject *meta = form->metaObject();
    const QByteArray signature = QByteArray(procedure) + "()";
    if (meta->indexOfMethod(signature.constData()) < 0)
        return false;
    return QMetaObject::invokeMethod(form, procedure, Qt::DirectConnection);
}

void SetToolState(const QString &formName)
{
    if (g_toolState)
        g_toolState(formName);
}

void setToolStateHandler(std::function<void(const QString &)> handler)
{
    g_toolState = std::move(handler);
}
