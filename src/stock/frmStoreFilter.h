#pragma once
#include "views/FilterDialog.h"

// "库存资料过滤器": narrows the stock list. The clauses carry no joining word of their own;
// the list in front gets them behind " WHERE ", joined by " AND ".
class frmStoreFilter : public FilterDialog {
    Q_OBJECT
public:
    frmStoreFilter();

private:
    QList<QRadioButton *> optDirection;
    QList<QRadioButton *> optFinish;
};
