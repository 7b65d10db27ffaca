#include "frmChart.h"

#include "frmReport.h"

#include "platform/Forms.h"

#include <QAction>
#include <QApplication>
#include <QAreaSeries>
#include <QCategoryAxis>
#include <QChart>
#include <QChartView>
#include <QClipboard>
#include <QLineSeries>
#include <QMenu>
#include <QMouseEvent>
#include <QPainter>
#include <QPrinter>
#include <QPrinterInfo>
#include <QToolBar>
#include <QToolButton>
#include <QToolTip>
#include <QValueAxis>
#include <QVBoxLayout>

#include <cmath>

namespace {
const QColor MoneyColour(0x1f, 0x6f, 0xb4);
const QColor AmountColour(0xe0, 0x7b, 0x1a);
// Beyond this ratio between the largest money and the largest quantity, the quantity gets an
// axis of its own, or its line would lie flat along the bottom.
constexpr double OwnAxisRatio = 4.0;

QLineSeries *lineOf(const ReportChartData &data, const QList<double> &values)
{
    auto *line = new QLineSeries;
    for (int i = 0; i < values.size(); ++i)
        line->append(data.pointX(i), values[i]);
    return line;
}

double largest(const QList<double> &values)
{
    double top = 0;
    for (double v : values)
        top = std::max(top, v);
    return top;
}
}

frmChart::frmChart(QWidget *parent) : QDialog(parent), m_chart(new QChart)
{
    setObjectName(QStringLiteral("frmChart"));
    setWindowTitle(QStringLiteral("图形分析"));
    resize(900, 600);

    auto *acbMain = new QWidget(this);
    acbMain->setObjectName(QStringLiteral("acbMain"));
    barTool = new QToolBar(acbMain);
    barTool->setObjectName(QStringLiteral("barTool"));
    barTool->setToolButtonStyle(Qt::ToolButtonTextOnly);
    auto *barLayout = new QVBoxLayout(acbMain);
    barLayout->setContentsMargins(0, 0, 0, 0);
    barLayout->addWidget(barTool);

    auto *popChartType = new QMenu(this);
    popChartType->setObjectName(QStringLiteral("popChartType"));
    addTool(popChartType, "tlShowPlot", QStringLiteral("折线图"), &frmChart::tlShowPlot);
    addTool(popChartType, "tlShowArea", QStringLiteral("面积图"), &frmChart::tlShowArea);
    auto *popPrint = new QMenu(this);
    popPrint->setObjectName(QStringLiteral("popPrint"));
    addTool(popPrint, "tlToPrinter", QStringLiteral("打印图表"), &frmChart::tlToPrinter);
    addTool(popPrint, "tlToClipboard", QStringLiteral("复制到剪贴板"), &frmChart::tlToClipboard);
    for (auto [name, caption, menu] : {std::tuple{"tlCharType", QStringLiteral("图表类型"), popChartType},
                                       std::tuple{"tlOutput", QStringLiteral("输出"), popPrint}}) {
        QAction *tool = barTool->addAction(caption);
        tool->setObjectName(QLatin1String(name));
        tool->setMenu(menu);
        if (auto *button = qobject_cast<QToolButton *>(barTool->widgetForAction(tool)))
            button->setPopupMode(QToolButton::InstantPopup);
    }
    barTool->addSeparator();
    addTool(barTool, "tlRotate", QStringLiteral("旋转"), &frmChart::tlRotate)->setCheckable(true);
    addTool(barTool, "tlScale", QStringLiteral("缩放"), &frmChart::tlScale)->setCheckable(true);
    addTool(barTool, "tlDrag", QStringLiteral("平移"), &frmChart::tlDrag)->setCheckable(true);
    addTool(barTool, "tlReset", QStringLiteral("复位"), &frmChart::tlReset);

    chtMain = new QChartView(m_chart, this);
    chtMain->setObjectName(QStringLiteral("chtMain"));
    chtMain->setRenderHint(QPainter::Antialiasing);
    chtMain->viewport()->installEventFilter(this);
    m_chart->legend()->setAlignment(Qt::AlignBottom);
    QFont title = m_chart->titleFont();
    title.setPointSize(title.pointSize() + 4);
    title.setBold(true);
    m_chart->setTitleFont(title);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(acbMain);
    layout->addWidget(chtMain, 1);
}

QAction *frmChart::addTool(QWidget *where, const char *name, const QString &caption, void (frmChart::*slot)())
{
    auto *tool = new QAction(caption, where);
    tool->setObjectName(QLatin1String(name));
    connect(tool, &QAction::triggered, this, slot);
    where->addAction(tool);
    return tool;
}

void frmChart::showEvent(QShowEvent *event)
{
    // The caption is handed over between loading and showing.
    if (!m_loaded)
        Form_Load();
    QDialog::showEvent(event);
}

void frmChart::Form_Load()
{
    m_loaded = true;
    m_data = {};
    // The open report's rows; with none open the chart stays empty.
    auto *report = qobject_cast<frmReport *>(Forms::loaded(QStringLiteral("frmReport")));
    if (report && report->curRecordSet)
        m_data = ReportChartData::fromRows(*report->curRecordSet);
    m_chart->setTitle(curChartCaption);
    buildSeries();
}

void frmChart::buildSeries()
{
    m_chart->removeAllSeries();
    for (QAbstractAxis *axis : m_chart->axes()) {
        m_chart->removeAxis(axis); // hands the axis back to us
        delete axis;
    }

    auto *axisX = new QCategoryAxis;
    axisX->setTitleText(QStringLiteral("日期"));
    axisX->setLabelsPosition(QCategoryAxis::AxisLabelsPositionOnValue);

    // Dates are read whole, turned when there are many of them.
    axisX->setTruncateLabels(false);
    if (m_data.labels.size() > 12)
        axisX->setLabelsAngle(-60);
    const int n = int(m_data.money.size());
    const double half = (m_data.step > 0 ? m_data.step : 1) / 2.0;
    axisX->setRange(n > 0 ? m_data.pointX(0) - half : 0, n > 0 ? m_data.pointX(n - 1) + half : 1);
    placeLabels(axisX);
    // The axis would pile the labels of dates scrolled or zoomed out of view at its ends.
    connect(axisX, &QValueAxis::rangeChanged, this, [this, axisX] { placeLabels(axisX); });
    m_chart->addAxis(axisX, Qt::AlignBottom);

    auto *axisY = new QValueAxis;
    axisY->setTitleText(QStringLiteral("数据"));
    m_chart->addAxis(axisY, Qt::AlignLeft);
    const double topMoney = largest(m_data.money);
    const double topAmount = largest(m_data.amount);
    QValueAxis *amountAxis = axisY;
    if (topMoney > 0 && topAmount > 0 && (topMoney / topAmount > OwnAxisRatio || topAmount / topMoney > OwnAxisRatio)) {
        amountAxis = new QValueAxis;
        amountAxis->setTitleText(QStringLiteral("销售数量"));
        amountAxis->setLinePenColor(AmountColour);
        amountAxis->setLabelsColor(AmountColour);
        m_chart->addAxis(amountAxis, Qt::AlignRight);
        axisY->setLinePenColor(MoneyColour);
        axisY->setLabelsColor(MoneyColour);
    }
    axisY->setRange(0, amountAxis == axisY ? std::max({topMoney, topAmount, 1.0}) : std::max(topMoney, 1.0));
    axisY->applyNiceNumbers();
    if (amountAxis != axisY) {
        amountAxis->setRange(0, std::max(topAmount, 1.0));
        amountAxis->applyNiceNumbers();
    }
    // Whole numbers on the scales, unless the scale is too small for them.
    for (QValueAxis *axis : {axisY, amountAxis})
        axis->setLabelFormat(axis->max() >= 10 ? QStringLiteral("%.0f") : QStringLiteral("%.1f"));

    const struct {
        QString name;
        const QList<double> &values;
        QColor colour;
        QValueAxis *axis;
    } series[] = {{QStringLiteral("销售金额"), m_data.money, MoneyColour, axisY},
                  {QStringLiteral("销售数量"), m_data.amount, AmountColour, amountAxis}};
    for (const auto &s : series) {
        QLineSeries *line = lineOf(m_data, s.values);
        QAbstractSeries *shown = line;
        if (m_chartType == Area) {
            auto *area = new QAreaSeries(line);
            // The money lies beneath, full; the quantity over it is a light veil, so both
            // stay readable where they overlap.
            QColor fill = s.colour;
            fill.setAlpha(&s == &series[0] ? 170 : 60);
            area->setBrush(fill);
            area->setPen(QPen(s.colour, 2));
            shown = area;
        } else {
            line->setPen(QPen(s.colour, 2.5));
            line->setPointsVisible(true);
            line->setMarkerSize(m_data.money.size() > 20 ? 5 : 7);
            const QString name = s.name;
            connect(line, &QLineSeries::hovered, this, [this, name](const QPointF &point, bool state) {
                if (!state)
                    return;
                const int row = int(m_data.step > 0 ? std::lround(point.x() / m_data.step) : std::lround(point.x()));
                if (row >= 0 && row < m_data.labels.size())
                    QToolTip::showText(QCursor::pos(), m_data.labels[row].text + QStringLiteral("  ") + name
                                                           + QStringLiteral("：") + QString::number(point.y(), 'g', 15));
            });
        }
        shown->setName(s.name);
        m_chart->addSeries(shown);
        shown->attachAxis(axisX);
        shown->attachAxis(s.axis);
    }
    keepHomeView();
    // The markers of the form just left would otherwise stay on screen in bits.
    chtMain->scene()->update();
    chtMain->viewport()->update();
}

void frmChart::placeLabels(QCategoryAxis *axis)
{
    for (const QString &label : axis->categoriesLabels())
        axis->remove(label);
    // Labels that share one position would print over each other: the first one shows.
    double lastPosition = -1;
    for (const auto &label : std::as_const(m_data.labels)) {
        const bool shown = label.position >= axis->min() && label.position <= axis->max();
        if (shown && (label.position > lastPosition || lastPosition < 0)) {
            axis->append(label.text, label.position);
            lastPosition = label.position;
        }
    }
}

void frmChart::keepHomeView()
{
    m_home.clear();
    for (QAbstractAxis *axis : m_chart->axes())
        if (auto *values = qobject_cast<QValueAxis *>(axis))
            m_home.append({values, values->min(), values->max()});
}

void frmChart::setChartType(ChartType type)
{
    m_chartType = type;
    buildSeries();
}

void frmChart::setMouseAction(MouseAction action, const char *tool)
{
    curAction = action;
    m_modifying = false;
    for (QAction *each : barTool->actions())
        each->setChecked(each->objectName() == QLatin1String(tool));
    chtMain->viewport()->setCursor(action == Drag    ? Qt::OpenHandCursor
                                   : action == Scale ? Qt::SizeVerCursor
                                                     : Qt::CrossCursor);
}

void frmChart::tlReset()
{
    for (const Range &range : std::as_const(m_home))
        range.axis->setRange(range.min, range.max);
    m_modifying = false;
    curAction = NoAction;
    for (QAction *each : barTool->actions())
        each->setChecked(false);
    chtMain->viewport()->unsetCursor();
}

bool frmChart::eventFilter(QObject *watched, QEvent *event)
{
    if (watched != chtMain->viewport() || curAction == NoAction)
        return QDialog::eventFilter(watched, event);
    auto *mouse = dynamic_cast<QMouseEvent *>(event);
    if (!mouse)
        return QDialog::eventFilter(watched, event);
    switch (event->type()) {
    case QEvent::MouseButtonPress:
        if (mouse->button() != Qt::LeftButton)
            break;
        m_modifying = true;
        m_lastPos = mouse->position();
        m_anchor = m_chart->mapFromScene(chtMain->mapToScene(mouse->position().toPoint()));
        return true;
    case QEvent::MouseMove: {
        if (!m_modifying || !(mouse->buttons() & Qt::LeftButton))
            break;
        const QPointF delta = mouse->position() - m_lastPos;
        m_lastPos = mouse->position();
        if (curAction == Scale) {
            // Up enlarges, down shrinks, about the point first pressed, which stays put.
            const double factor = std::pow(1.01, -delta.y());
            const QRectF area = m_chart->plotArea();
            const QPointF a = m_anchor;
            m_chart->zoomIn(QRectF(QPointF(a.x() - (a.x() - area.left()) / factor, a.y() - (a.y() - area.top()) / factor),
                                   area.size() / factor));
        }
        else if (curAction == Drag)
            m_chart->scroll(-delta.x(), delta.y());
        return true;
    }
    case QEvent::MouseButtonRelease:
        if (mouse->button() != Qt::LeftButton)
            break;
        m_modifying = false;
        return true;
    default:
        break;
    }
    return QDialog::eventFilter(watched, event);
}

// Straight to the shop's printer, the chart filling a landscape page.
void frmChart::tlToPrinter()
{
    if (QPrinterInfo::availablePrinters().isEmpty())
        return;
    QPrinter printer(QPrinterInfo::defaultPrinter(), QPrinter::HighResolution);
    printer.setPageOrientation(QPageLayout::Landscape);
    QPainter painter;
    if (!painter.begin(&printer))
        return;
    chtMain->render(&painter, printer.pageRect(QPrinter::DevicePixel), chtMain->viewport()->rect(),
                    Qt::KeepAspectRatio);
}

void frmChart::tlToClipboard() { QApplication::clipboard()->setPixmap(chtMain->grab()); }

// However the chart closes, it goes, so the next one reads the report afresh.
void frmChart::done(int result)
{
    chtMain->viewport()->unsetCursor();
    if (!m_unloading) {
        m_unloading = true;
        Forms::unload(this);
    }
    QDialog::done(result);
}
