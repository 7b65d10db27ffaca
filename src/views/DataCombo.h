#pragma once
#include "data/Recordset.h"

#include <QComboBox>

// A drop-down list over a result set: it shows one field and keeps another (the bound
// column) as its value. BoundText is that value, empty while no row is chosen. A value set
// from code that is not in the list is kept as it is, with nothing shown, so a record that
// points at a row missing from the list is saved back unchanged.
class DataCombo : public QComboBox {
    Q_OBJECT
    Q_PROPERTY(QString BoundText READ BoundText WRITE setBoundText)
public:
    explicit DataCombo(QWidget *parent = nullptr);

    void setRowSource(const RecordsetPtr &rows, const QString &listField, const QString &boundColumn);
    QString BoundText() const { return m_bound; }
    void setBoundText(const QString &value);

private:
    QString m_bound;
    bool m_filling = false;
};
