#pragma once
#include "support/Bench.h"

#include "data/Gateway.h"
#include "platform/Clock.h"

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

// A list case finds customer 1 and refreshes after the ticket window.
inline bool arrange(const TestDb &db)
{
    autoRefresh(true);
    return Rows::customer(db, 1, QStringLiteral("东大街1号"));
}

// Lets every window go before the database closes.
inline void end(std::unique_ptr<TestDb> &db)
{
    Forms::setActiveChildProvider(nullptr);
    unloadForms();
    db.reset();
}
}

Q_DECLARE_METATYPE(Fixture::Ticket)
