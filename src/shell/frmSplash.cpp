#include "frmSplash.h"

#include "Shell.h"

#include "data/Session.h"
#include "platform/Forms.h"

#include <QEvent>
#include <QLabel>
#include <QLinearGradient>
#include <QPainter>
#include <QTimer>
#include <QVBoxLayout>

namespace {
// The picture: the program's name over a blue band with the package icon.
QPixmap splashPicture()
{
    QPixmap pixmap(480, 240);
    QPainter p(&pixmap);
    QLinearGradient band(0, 0, 0, 240);
    band.setColorAt(0, QColor(0x1f, 0x5f, 0xa8));
    band.setColorAt(1, QColor(0x0b, 0x2e, 0x5c));
    p.fillRect(pixmap.rect(), band);
    p.drawPixmap(32, 40, QPixmap(QStringLiteral(":/tarvik/icons/48/emblem-package.png")).scaled(72, 72));
    p.setPen(Qt::white);
    QFont title = p.font();
    title.setPointSize(26);
    title.setBold(true);
    p.setFont(title);
    p.drawText(QRect(120, 36, 340, 50), Qt::AlignLeft | Qt::AlignVCenter, QStringLiteral("Tarvik"));
    QFont sub = p.font();
    sub.setPointSize(14);
    sub.setBold(false);
    p.setFont(sub);
    p.drawText(QRect(120, 84, 340, 36), Qt::AlignLeft | Qt::AlignVCenter,
               QStringLiteral("水气销售配送管理系统"));
    QFont small = p.font();
    small.setPointSize(9);
    p.setFont(small);
    p.drawText(QRect(32, 200, 420, 24), Qt::AlignLeft | Qt::AlignVCenter,
               QStringLiteral("版本 " TARVIK_VERSION "  正在启动……"));
    return pixmap;
}
}

frmSplash::frmSplash()
{
    setObjectName("frmSplash");
    setWindowFlags(Qt::Dialog | Qt::FramelessWindowHint);

    Picture1 = new QLabel(this);
    Picture1->setObjectName("Picture1");
    Picture1->setPixmap(splashPicture());
    Picture1->installEventFilter(this);
    lblCompany = new QLabel(this);
    lblCompany->setObjectName("lblCompany");
    lblCompany->setAlignment(Qt::AlignCenter);
    QFont f = lblCompany->font();
    f.setPointSize(13);
    f.setBold(true);
    lblCompany->setFont(f);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 8);
    layout->addWidget(Picture1);
    layout->addWidget(lblCompany);

    lblCompany->setText(Session::CompanyName);
    Timer1 = new QTimer(this);
    Timer1->setObjectName("Timer1");
    Timer1->setInterval(100);
    connect(Timer1, &QTimer::timeout, this, &frmSplash::Timer1_Timer);
    Timer1->start();
}

void frmSplash::Timer1_Timer()
{
    if (++m_ticks >= 20)
        Forms::unload(this);
}

bool frmSplash::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == Picture1 && event->type() == QEvent::MouseButtonRelease) {
        Forms::unload(this);
        return true;
    }
    return QDialog::eventFilter(watched, event);
}
