#include "Session.h"

namespace Session {
QString CompanyName;
qint16 UserID = 0;
QDate PickedDate;
qint32 SelectedCustomerID = 0;
bool SaleAdminClosable = false;
}
