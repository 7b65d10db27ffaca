#include "PickDate.h"

#include "Session.h"
#include "platform/Forms.h"
#include "platform/Modal.h"
#include "platform/frmPickDate.h"

void registerPickDateForm()
{
    Forms::add(QStringLiteral("frmPickDate"), [] {
        auto *form = new frmPickDate;
        QObject::connect(form, &frmPickDate::dateChosen,
                         [](const QDate &date) { Session::PickedDate = date; });
        return form;
    });
}

QDate PickDate()
{
    if (!Forms::isKnown(QStringLiteral("frmPickDate")))
        registerPickDateForm();
    Session::PickedDate = QDate();
    Modal::exec(Forms::get(QStringLiteral("frmPickDate")));
    return Session::PickedDate;
}
