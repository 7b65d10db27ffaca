#include "CardWindow.h"

#include "Forms.h"

#include <QTimer>

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
