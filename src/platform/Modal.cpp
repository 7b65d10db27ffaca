#include "Modal.h"

#include <QDialog>
#include <QEventLoop>
#include <QPointer>
#include <QTimer>

namespace {
Modal::Interceptor g_interceptor;
}

void Modal::setInterceptor(Interceptor interceptor) { g_interceptor = std::move(interceptor); }

int Modal::exec(QWidget *window)
{
    if (!window)
        return 0;
    QPointer<QWidget> guard(window);
    if (g_interceptor) {
        Interceptor interceptor = g_interceptor;
        QTimer::singleShot(0, window, [guard, interceptor] {
            if (guard)
                interceptor(guard);
        });
    }
    if (auto *dialog = qobject_cast<QDialog *>(window))
        return dialog->exec();

    // A plain widget: run a local loop until it hides or goes away.
    window->setWindowModality(Qt::ApplicationModal);
    window->setAttribute(Qt::WA_ShowModal, true);
    window->show();
    QEventLoop loop;
    QTimer poll;
    poll.setInterval(20);
    QObject::connect(&poll, &QTimer::timeout, &loop, [&] {
        if (!guard || !guard->isVisible())
            loop.quit();
    });
    QObject::connect(window, &QObject::destroyed, &loop, &QEventLoop::quit);
    poll.start();
    loop.exec();
    return 0;
}
