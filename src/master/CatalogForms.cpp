#include "CatalogForms.h"

#include "frmProduct.h"
#include "frmProductAdmin.h"
#include "frmSender.h"
#include "frmSenderAdmin.h"

#include "data/ValidateField.h"
#include "platform/Forms.h"
#include "platform/VbRules.h"

#include <QEvent>
#include <QLineEdit>

void registerCatalogForms()
{
    Forms::add("frmProductAdmin", [] { return new frmProductAdmin; });
    Forms::add("frmProduct", [] { return new frmProduct; });
    Forms::add("frmSenderAdmin", [] { return new frmSenderAdmin; });
    Forms::add("frmSender", [] { return new frmSender; });
}

bool PriceField::accepted(QLineEdit *field)
{
    if (field->text().isEmpty()) {
        field->setText("0");
        return true;
    }
    return ValidateField(Trim(field->text()), 1);
}

PriceField::PriceField(QLineEdit *field) : QObject(field), m_field(field)
{
    field->installEventFilter(this);
}

bool PriceField::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_field && event->type() == QEvent::FocusOut && !m_checking) {
        m_checking = true;
        if (!accepted(m_field))
            m_field->setFocus();
        m_checking = false;
    }
    return QObject::eventFilter(watched, event);
}
