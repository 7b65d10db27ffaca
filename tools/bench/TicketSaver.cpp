#include "TicketSaver.h"

#include "data/Database.h"
#include "data/Gateway.h"
#include "platform/Prompter.h"

#include <cstdio>

namespace {
class FailingPrompter : public Prompter {
public:
    QMessageBox::StandardButton message(const QString &title, const QString &text, QMessageBox::Icon,
                                        QMessageBox::StandardButtons, QMessageBox::StandardButton) override
    {
        std::fprintf(stderr, "message [%s] %s\n", qPrintable(title), qPrintable(text));
        std::fflush(stderr);
        ::exit(1);
    }
    std::optional<QString> input(const QString &, const QString &, const QString &) override { return std::nullopt; }
};

bool saveTicket(const QString &remark, qint64 *id)
{
    Transaction tx(Conn);
    if (!tx.begun()
        || !ExecuteSql(QStringLiteral("insert into Sale (CustomerID,SenderID,UserID,TotalAmount,TotalMoney,TotalContainer,"
                                      "InMoney,OutAmount,InContainer,TransferFee,Detail,CreateDate,FinishFlag,StationID) "
                                      "values (1,1,1,2,20,2,0,0,0,5,'")
                       + remark + QStringLiteral("',#2026-11-23#,'0',1)")))
        return false;
    RecordsetPtr max = OpenRecordset(QStringLiteral("select max(ID) as MaxID from Sale"));
    if (!max || max->recordCount() < 1)
        return false;
    max->moveFirst();
    *id = max->field(QStringLiteral("MaxID")).toLongLong();
    const QString sale = QString::number(*id);
    if (!ExecuteSql(QStringLiteral("insert into Sale_detail(SaleID,ProductID,Price,MyAmount,MyMoney,IsContainer)  values(")
                    + sale + QStringLiteral(",1,10,2,20,'0')"))
        || !ExecuteSql(QStringLiteral("insert into Sale_detail(SaleID,ProductID,Price,MyAmount,MyMoney,IsContainer)  values(")
                       + sale + QStringLiteral(",2,0,2,0,'1')")))
        return false;
    return tx.commit();
}
}

int TicketSaver::run(const QString &file, int tickets, const QString &remarkPrefix)
{
    FailingPrompter prompter;
    Prompter::install(&prompter);
    QString error;
    if (!Database::openPath(file, &error)) {
        std::fprintf(stderr, "%s\n", qPrintable(error));
        return 2;
    }
    for (int i = 1; tickets == 0 || i <= tickets; ++i) {
        const QString remark = remarkPrefix + QLatin1Char('-') + QString::number(i);
        qint64 id = 0;
        if (!saveTicket(remark, &id))
            return 1;
        std::printf("saved %lld %s\n", id, qPrintable(remark));
        std::fflush(stdout);
    }
    return 0;
}
