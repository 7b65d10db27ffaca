#include "CallerIdHandler.h"

#include "cTAPILine.h"
#include "data/Gateway.h"
#include "data/SqlText.h"
#include "platform/Clock.h"
#include "platform/Forms.h"
#include "platform/VbRules.h"

#include <QApplication>
#include <QLineEdit>
#include <exception>

namespace {
// Runs one step; a failure ends the step, not the reaction.
template <class F> void step(F &&f)
{
    try {
        f();
    } catch (const std::exception &) {
    }
}
}

CallerIdHandler::CallerIdHandler(bool handlingOff, QObject *parent)
    : QObject(parent), m_handlingOff(handlingOff), m_beep([] { QApplication::beep(); })
{
}

void CallerIdHandler::attach(cTAPILine *line)
{
    connect(line, &cTAPILine::InfoCallerID, this, &CallerIdHandler::Tapiline_InfoCallerID);
}

void CallerIdHandler::Tapiline_InfoCallerID(const QString &number)
{
    if (m_handlingOff)
        return;
    if (Trim(number).isEmpty())
        return;
    // Only an empty or new ticket takes a call: not an edit, a view or a closed window.
    QWidget *sale = Forms::loaded(QStringLiteral("frmSale"));
    if (!sale || !sale->isVisible() || sale->property("mActionType").toInt() != 1)
        return;

    step([&] { m_beep(); });
    // The number goes in as the line gave it: a quote in it fails the insert, and the
    // ticket is still filled.
    step([&] {
        ExecuteSql(QStringLiteral("INSERT INTO Call(PhoneNumber,CreateDate) values ('") + Sql::text(number)
                   + QStringLiteral("',") + JetDateTime(Clock::now()) + QStringLiteral(")"));
    });
    step([&] { QMetaObject::invokeMethod(sale, "ResetInput", Qt::DirectConnection); });
    step([&] {
        if (auto *phone = sale->findChild<QLineEdit *>(QStringLiteral("txtCustPhone")))
            phone->setText(number);
    });
    bool found = false;
    step([&] {
        QMetaObject::invokeMethod(sale, "GetCustomerInfo", Qt::DirectConnection, Q_RETURN_ARG(bool, found),
                                  Q_ARG(int, 1));
    });
    if (found) {
        step([&] {
            if (auto *lines = sale->findChild<QWidget *>(QStringLiteral("dbgDetail")))
                lines->setFocus();
        });
    }
}
