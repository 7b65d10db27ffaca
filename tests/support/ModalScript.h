#pragma once
#include "platform/Modal.h"

#include <QList>
#include <QString>
#include <QStringList>
#include <QWidget>
#include <functional>

// Plays the user in modal windows. Each handler is queued for a window name (objectName);
// when that window is shown modally the handler runs inside its event loop, fills it and
// presses its buttons. A window that is still open after its handler, or a modal window
// with no handler queued, is closed and recorded as a problem. Installed for its lifetime.
class ModalScript {
public:
    using Handler = std::function<void(QWidget *)>;

    ModalScript() { Modal::setInterceptor([this](QWidget *w) { run(w); }); }
    ~ModalScript() { Modal::setInterceptor(nullptr); }

    ModalScript &on(const QString &formName, Handler handler)
    {
        m_steps.append({formName, std::move(handler)});
        return *this;
    }
    // What went wrong so far, and the handlers still waiting for their window.
    QStringList problems() const;
    bool done() const { return problems().isEmpty(); }
    QStringList seen() const { return m_seen; }

    template <class T> static T *child(QWidget *form, const QString &name) { return form->findChild<T *>(name); }
    // Clicks the named button (QAbstractButton) of the form; false when there is none.
    static bool click(QWidget *form, const QString &buttonName);
    // Sets the text of the named line edit or combo box as a user typing it.
    static bool type(QWidget *form, const QString &fieldName, const QString &text);

private:
    void run(QWidget *window);
    struct Step {
        QString form;
        Handler handler;
    };
    QList<Step> m_steps;
    QStringList m_problems, m_seen;
};

#define VERIFY_MODALS(script)                                                                      \
    QVERIFY2((script).done(), qPrintable((script).problems().join(QLatin1Char('\n'))))
