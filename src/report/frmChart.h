#pragma once
#include "ReportChartData.h"

#include <QDialog>
#include <QPointF>

class QAction;
class QCategoryAxis;
class QChart;
class QChartView;
class QToolBar;
class QValueAxis;

// The open period report as a chart: its sales money and its quantity over its dates, drawn
// as lines or as areas, printed or copied. The mouse tools zoom (scale) and pan (drag) the
// view; turning (rotate) has nothing to turn on a flat chart and leaves the view as it is.
class frmChart : public QDialog {
    Q_OBJECT
    Q_PROPERTY(QString curChartCaption MEMBER curChartCaption)
    Q_PROPERTY(qint32 curAction MEMBER curAction)
public:
    enum ChartType { Plot = 1, Area = 5 };
    enum MouseAction { NoAction = 0, Rotate = 3, Scale = 4, Drag = 5 };

    explicit frmChart(QWidget *parent = nullptr);

    QString curChartCaption;
    qint32 curAction = NoAction;

    void Form_Load();
    int chartType() const { return m_chartType; }
    QChart *chart() const { return m_chart; }

    void done(int result) override;

public slots:
    void tlReset();
    void tlRotate() { setMouseAction(Rotate, "tlRotate"); }
    void tlDrag() { setMouseAction(Drag, "tlDrag"); }
    void tlScale() { setMouseAction(Scale, "tlScale"); }
    void tlToPrinter();
    void tlToClipboard();
    void tlShowPlot() { setChartType(Plot); }
    void tlShowArea() { setChartType(Area); }

protected:
    void showEvent(QShowEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QAction *addTool(QWidget *where, const char *name, const QString &caption, void (frmChart::*slot)());
    void setMouseAction(MouseAction action, const char *tool);
    void setChartType(ChartType type);
    void buildSeries();
    void keepHomeView();
    void placeLabels(QCategoryAxis *axis);

    QToolBar *barTool;
    QChartView *chtMain;
    QChart *m_chart;
    ReportChartData m_data;
    int m_chartType = Plot;
    bool m_loaded = false;
    bool m_unloading = false;
    bool m_modifying = false;
    QPointF m_lastPos;
    QPointF m_anchor; // where a scaling began, in the chart's coordinates
    struct Range {
        QValueAxis *axis;
        double min, max;
    };
    QList<Range> m_home; // the view before any zooming or panning
};
