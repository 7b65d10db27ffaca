#include "DataCombo.h"

DataCombo::DataCombo(QWidget *parent) : QComboBox(parent)
{
    connect(this, &QComboBox::currentIndexChanged, this, [this](int index) {
        if (!m_filling && index >= 0)
            m_bound = itemData(index).toString();
    });
}

void DataCombo::setRowSource(const RecordsetPtr &rows, const QString &listField,
                             const QString &boundColumn)
{
    m_filling = true;
    clear();
    if (rows && rows->recordCount() > 0) {
        for (rows->moveFirst(); !rows->eof(); rows->moveNext())
            addItem(rows->text(listField), rows->text(boundColumn));
    }
    setCurrentIndex(findData(m_bound));
    m_filling = false;
}

void DataCombo::setBoundText(const QString &value)
{
    m_filling = true;
    m_bound = value;
    setCurrentIndex(value.isEmpty() ? -1 : findData(value));
    m_filling = false;
}
