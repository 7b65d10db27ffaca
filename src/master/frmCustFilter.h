#pragma once
#include "views/FilterDialog.h"

// "客户资料过滤器": narrows the customer list. The customer list's query has no condition of its
// own, so the dialog opens the filter with " WHERE " and joins its clauses with " AND ".
class frmCustFilter : public FilterDialog {
    Q_OBJECT
public:
    frmCustFilter();

private:
    QList<QRadioButton *> optStatus;
};
