#pragma once
#include "data/Recordset.h"

#include <QList>
#include <QString>

// What the chart of a period report draws: one label per report row on the X axis, and the
// sales money and the quantity of each row, in the report's own order. The labels stand
// 40 / n apart, rounded; beyond 80 rows that is 0 and they all stand at the start.
class ReportChartData {
public:
    struct Label {
        double position;
        QString text;
    };

    static int labelStep(int rows);
    // Walks the report's rows from the first to the end, leaving them at the end.
    static ReportChartData fromRows(Recordset &rows);

    // Where a row's points stand: under its label, or one apart when the labels have no step.
    double pointX(int row) const { return step > 0 ? double(row) * step : double(row); }
    bool isEmpty() const { return money.isEmpty(); }

    int step = 0;
    QList<Label> labels;
    QList<double> money;
    QList<double> amount;
};
