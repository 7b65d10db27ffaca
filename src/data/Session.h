#pragma once
#include <QDate>
#include <QString>

// The values that live for the whole session, readable from every window.
namespace Session {
extern QString CompanyName;
extern qint16 UserID;
extern QDate PickedDate;
extern qint32 SelectedCustomerID;
extern bool SaleAdminClosable;
}
