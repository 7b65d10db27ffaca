#include "CardWindow.h"

#include "Forms.h"

#include <QFormLayout>
#include <QHBoxLayout>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

void CardWindow::showEvent(QShowEvent *event)
{
    QDialog::showEvent(event);
    if (m_loaded)
        return;
    m_loaded = true;
    Form_Load();
}

void CardWindow::unloadLater()
{
    QTimer::singleShot(0, this, [this] { Forms::unload(this); });
}

void CardWindow::reject() { Forms::unload(this); }

void CardWindow::layOut(QFormLayout *form, int minimumWidth)
{
    btnSave = new QPushButton(QStringLiteral("保存"), this);
    btnSave->setObjectName("btnSave");
    btnExit = new QPushButton(QStringLiteral("退出"), this);
    btnExit->setObjectName("btnExit");
    btnExit->setAutoDefault(false);
    auto *buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(btnSave);
    buttons->addWidget(btnExit);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addLayout(buttons);
    setMinimumWidth(minimumWidth);
    connect(btnExit, &QPushButton::clicked, this, [this] { Forms::unload(this); });
}
