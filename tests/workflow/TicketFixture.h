#pragma once
#include "support/Rows.h"
#include "support/TestDb.h"

#include "data/Gateway.h"
#include "platform/Clock.h"
#include "platform/Forms.h"

#include <QDialog>
#include <QTest>

// Tickets written straight into a test database.
namespace Fixture {
inline const QDate Today(2026, 11, 23);

struct Ticket {
    int id;
    QString date; // yyyy-MM-dd
    double totalAmount, outAmount, totalMoney, inMoney, totalContainer, inContainer;
    QString finish = QStringLiteral("0");
    int customer = 1;
};

// Each ticket gets one line, so that deleting it has lines to take along.
inline void ticket(TestDb &db, const Ticket &t)
{
    QVERIFY(db.exec(QStringLiteral(
        "INSERT INTO Sale(ID,CustomerID,SenderID,UserID,TotalAmount,OutAmount,TotalMoney,InMoney,"
        "TotalContainer,InContainer,TransferFee,Detail,CreateDate,FinishFlag,StationID) "
        "VALUES(%1,%2,1,1,%3,%4,%5,%6,%7,%8,0,'','%9','%10',1)")
                        .arg(t.id).arg(t.customer).arg(t.totalAmount).arg(t.outAmount).arg(t.totalMoney)
                        .arg(t.inMoney).arg(t.totalContainer).arg(t.inContainer).arg(t.date, t.finish)));
    QVERIFY(db.exec(QStringLiteral("INSERT INTO Sale_detail(SaleID,ProductID,Price,MyAmount,MyMoney,IsContainer) "
                                   "VALUES(%1,1,10,%2,%3,'0')").arg(t.id).arg(t.totalAmount).arg(t.totalMoney)));
}

inline void autoRefresh(bool on) { SetSysValue(QStringLiteral("AutoDataRefresh"), on ? "1" : "0"); }

// Each case starts on the list's day with a fresh database, customer 1 and automatic refresh.
inline void begin(std::unique_ptr<TestDb> &db)
{
    Clock::set(QDateTime(Today, QTime(10, 0)));
    db = std::make_unique<TestDb>();
    QVERIFY(db->ok());
    QVERIFY(Rows::customer(*db, 1, QStringLiteral("东大街1号")));
    autoRefresh(true);
}

// and lets every window go before its database closes.
inline void end(std::unique_ptr<TestDb> &db)
{
    Forms::unloadAll();
    Forms::setActiveChildProvider(nullptr);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    db.reset();
}

// The ticket window and the filter are stood in for by plain dialogs: the list writes
// mActionType and mCurID as dynamic properties, which the test reads back.
inline QWidget *standIn() { return new QDialog; }
}

Q_DECLARE_METATYPE(Fixture::Ticket)
