#pragma once
#include "SaleListWindow.h"

// The clerks' lists (money, delivery, empties): narrower views of the sale list that open
// tickets for reading only and exist only while they are in front, so each visit starts
// with the base filter and the default order.
class ClerkListWindow : public SaleListWindow {
    Q_OBJECT
protected:
    ClerkListWindow(const QString &name, const QString &caption, int outstandingPairs, QWidget *parent);

    // The delivery and the empties lists show the same columns and footers.
    void setDeliveryColumns(const QString &title);
    void showDeliveryTotal();
};
