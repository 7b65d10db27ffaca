#pragma once
#include <QDate>
#include <QString>
#include <QVector>
#include <array>
#include <functional>

// One row of the stock-take: item, amount, money. A cell nobody wrote is the empty text and
// shows blank; rows nobody wrote are the spacing between sections.
using ReportRow = std::array<QString, 3>;
using ReportArray = QVector<ReportRow>;

// The daily stock-take behind the today report: the day's sales by product, debts and
// missing empties by delivery worker, the cash taken, and the stock balance by product as of
// the day. The options dialog sets the day and the station, runs it with its progress bar,
// and hands xayReport to the report window's grid.
class TodayReportGenerator {
public:
    QDate ReportDate;
    qint32 curStationID = 1;
    ReportArray xayReport;
    // Called as generation moves on, with the bar's value and maximum.
    std::function<void(int value, int maximum)> progress;

    // The date as the dialog's txtDate gives it (mm-dd-yyyy; the other readable forms pass
    // too). An empty text keeps ReportDate; a text that is no date gives false.
    bool setDateText(const QString &text);

    // Fills xayReport for ReportDate and curStationID. A statement that fails shows the
    // gateway's message and throws VbError; the array is then incomplete.
    void GetTodayReport();
    // The same report with every station under each head. Each failure is passed over.
    void GetTodayGrpReport();

private:
    int m_row = 0;
    int m_bar = 0;
    int m_barMax = 0;

    void start(int rows);
    void step(int by);
    void put(int row, int column, const QString &text);
};
