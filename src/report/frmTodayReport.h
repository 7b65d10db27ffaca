#pragma once
#include "TodayReportGenerator.h"

#include "views/ListWindow.h"

#include <QDate>

// The daily stock-take on screen: three columns over the rows the options dialog works out,
// and the closing that finishes the settled tickets. The report is never stored, so the
// window goes as soon as another child comes to the front and a new visit asks again.
class frmTodayReport : public ListWindow {
    Q_OBJECT
    Q_PROPERTY(QDate ReportDate MEMBER ReportDate)
    Q_PROPERTY(qint32 curStationID MEMBER curStationID)
public:
    explicit frmTodayReport(QWidget *parent = nullptr);

    QDate ReportDate;
    qint32 curStationID = 1;

    // The grid's title: station first, then the date.
    QString reportTitle() const;
    // The printed page header: the date first, then the station.
    QString printHeader() const;
    // Puts the worked-out rows into the grid.
    void showReport(const ReportArray &rows);

public slots:
    void SetMyDBGrid();
    // Retitles only: the figures stay those of the last stock-take.
    void DataRefresh() override;
    void ShowFilter();
    void PrintSale();
    void PrintPreview();
    void PrintReport();
    void FinishToday();

private:
    void askReport();
};
