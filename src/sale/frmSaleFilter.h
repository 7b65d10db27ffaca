#pragma once
#include "views/FilterDialog.h"

// "销售单据过滤器": turns the ticked conditions into a run of clauses, each with its own "AND",
// and hands them to the ticket list in front, which runs them at its next refresh.
class frmSaleFilter : public FilterDialog {
    Q_OBJECT
public:
    frmSaleFilter();

private:
    QList<QRadioButton *> optFinish;
};
