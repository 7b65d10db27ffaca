#include "frmPickDate.h"

#include "Clock.h"
#include "FieldMessages.h"
#include "Forms.h"
#include "VbRules.h"

#include <QCalendarWidget>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

frmPickDate::frmPickDate(QWidget *parent) : QDialog(parent)
{
    setObjectName(QStringLiteral("frmPickDate"));
    setWindowTitle(QStringLiteral("请选择日期"));

    mvwMain = new QCalendarWidget(this);
    mvwMain->setObjectName(QStringLiteral("mvwMain"));
    mvwMain->setSelectedDate(Clock::today());
    txtValue = new QLineEdit(this);
    txtValue->setObjectName(QStringLiteral("txtValue"));
    btnOk = new QPushButton(QStringLiteral("确认"), this);
    btnOk->setObjectName(QStringLiteral("btnOk"));
    btnOk->setDefault(true);

    auto *row = new QHBoxLayout;
    row->addWidget(txtValue, 1);
    row->addWidget(btnOk);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(mvwMain);
    layout->addLayout(row);

    // Connected after today is set: the field stays empty until the user chooses.
    connect(mvwMain, &QCalendarWidget::selectionChanged, this,
            [this] { txtValue->setText(DateText(mvwMain->selectedDate())); });
    connect(btnOk, &QPushButton::clicked, this, &frmPickDate::btnOk_Click);
}

void frmPickDate::btnOk_Click()
{
    QDate picked = mvwMain->selectedDate();
    const QString text = txtValue->text();
    if (!text.isEmpty() && !readDate(text, &picked)) {
        // Unreadable text: say so and let the user correct it.
        ShowFieldError(text, 2);
        txtValue->setFocus();
        return;
    }
    m_chosen = picked;
    emit dateChosen(picked);
    accept();
}

void frmPickDate::done(int result)
{
    // Unloading closes the dialog again; the first result is the one that counts.
    if (!m_unloading) {
        m_unloading = true;
        Forms::unload(this);
    }
    QDialog::done(result);
}
