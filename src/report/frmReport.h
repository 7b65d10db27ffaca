#pragma once
#include "frmSetReport.h"
#include "views/ListWindow.h"

#include <QDate>

// One period report: a row per day or per month with the sums of the tickets of that
// period, for the whole shop, one customer or one delivery worker. The report dialog hands
// over the kind, the period and whom it is about; the report runs when the window first
// shows. There is one report at a time: a new one replaces it.
class frmReport : public ListWindow {
    Q_OBJECT
    Q_PROPERTY(qint32 curReportType MEMBER curReportType)
    Q_PROPERTY(QString curReportCaption MEMBER curReportCaption)
    Q_PROPERTY(QDate curReportStart MEMBER curReportStart)
    Q_PROPERTY(QDate curReportEnd MEMBER curReportEnd)
    Q_PROPERTY(qint32 curStationID MEMBER curStationID)
    Q_PROPERTY(qint32 mCurID MEMBER mCurID)
public:
    explicit frmReport(QWidget *parent = nullptr);

    qint32 curReportType = 0;
    QString curReportCaption;
    QDate curReportStart;
    QDate curReportEnd;
    qint32 curStationID = 0; // kept for the station the dialog names; no report reads it
    qint32 mCurID = 0;

    // Builds the statement from what was handed over and runs it, whatever the shop's
    // automatic refresh says: a report is asked for to be seen.
    void Form_Load();
    // Takes over what the report dialog chose; the report runs when the window shows.
    void setChoice(const ReportChoice &choice);

public slots:
    void SetMyDBGrid();
    void SetMyReportCaption();
    void ShowTotal() override;
    double GetColTotalValue(int ColIndex);

    void PrintReport();
    void PrintSale();

    // Tools the main window sends to every list; a report has nothing to add, edit or settle.
    void DeleteData() {}
    void DeleteAll() {}
    void InMoney() {}
    void OutAmount() {}
    void InContainer() {}

protected:
    QString sortFieldFor(const QString &field) const override;
    void showEvent(QShowEvent *event) override;

private:
    bool m_loaded = false;
};
