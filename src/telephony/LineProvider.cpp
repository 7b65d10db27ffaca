#include "LineProvider.h"

#include "DeviceLineProvider.h"

#include <QPointer>

namespace {
QPointer<LineProvider> g_system;
}

LineProvider *LineProvider::system()
{
    if (!g_system)
        g_system = new DeviceLineProvider([] { return DiscoverModems() + DiscoverNcidServer(); });
    return g_system;
}

void LineProvider::setSystem(LineProvider *provider) { g_system = provider; }

void LineProvider::post(Tapi::LINECALLBACK callback, quint32 hDevice, quint32 msg, quintptr instance, quint32 p1,
                        quint32 p2, quint32 p3)
{
    QMetaObject::invokeMethod(
        this, [=] { callback(hDevice, msg, instance, p1, p2, p3); }, Qt::QueuedConnection);
}
