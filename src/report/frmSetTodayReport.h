#pragma once
#include "TodayReportGenerator.h"

#include <QDate>
#include <QDialog>
#include <QPointer>

class DataCombo;
class QLabel;
class QLineEdit;
class QProgressBar;
class QPushButton;
class frmTodayReport;

// The options of the daily stock-take: the day (and the station, always the first one, so
// its choice stays hidden). Starting works the report out with the bar moving and hands it
// to the report window, then closes.
class frmSetTodayReport : public QDialog {
    Q_OBJECT
    Q_PROPERTY(QDate ReportDate READ reportDate)
    Q_PROPERTY(qint32 curStationID READ stationID)
public:
    explicit frmSetTodayReport(QWidget *parent = nullptr);

    // The report window the figures go to.
    void setReportWindow(frmTodayReport *report) { m_report = report; }
    QDate reportDate() const { return m_generator.ReportDate; }
    qint32 stationID() const { return m_generator.curStationID; }
    const ReportArray &xayReport() const { return m_generator.xayReport; }

public slots:
    void GetTodayReport();

private:
    void start();

    TodayReportGenerator m_generator;
    QPointer<frmTodayReport> m_report;
    QLineEdit *txtDate;
    DataCombo *cmbStation;
    QLabel *lblStation;
    QProgressBar *pgbMain;
    QPushButton *btnOk;
    QPushButton *btnCancel;
};
