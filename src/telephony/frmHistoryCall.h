#pragma once
#include "views/ListWindow.h"

// The call log: every logged call with the customer whose phone number it matches, if any.
// Calls are only read and deleted here; the list goes when another window comes to the front.
class frmHistoryCall : public ListWindow {
    Q_OBJECT
public:
    explicit frmHistoryCall(QWidget *parent = nullptr);

    void BuildMyDBGrid();

public slots:
    void DeleteData();
    void DeleteAll();

protected:
    QString sortFieldFor(const QString &field) const override;
};
