#pragma once
#include <QObject>

class QLineEdit;

// Puts the windows of this group (frmProductAdmin,frmProduct,frmSenderAdmin,frmSender) into the forms registry.
void registerCatalogForms();

// A price field of the catalogue cards: an empty text becomes "0", anything else must read
// as a number, or the user is told and the focus stays in the field.
class PriceField : public QObject {
    Q_OBJECT
public:
    explicit PriceField(QLineEdit *field);
    // The check of the field, also run by the card before it saves.
    static bool accepted(QLineEdit *field);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QLineEdit *m_field;
    bool m_checking = false;
};
