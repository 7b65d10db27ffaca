#include "TicketOperations.h"

#include "SaleListWindow.h"

#include "data/Gateway.h"
#include "platform/Prompter.h"

namespace {
const QString Select = QStringLiteral("请先选定要处理的单据！");
const QString SelectReset = QStringLiteral("请先选定您要重置的单据！");
const QString Tip = QStringLiteral("提示");
const QString ResetRefused = QStringLiteral("此单据已被审核入帐，不能再重置！");
const QString Booked = QStringLiteral("单据已入帐！");
const QString DeleteTitle = QStringLiteral("删除单据");
}

bool TicketOperations::runSingle(const Single &op)
{
    const QString id = m_list->currentTicket();
    if (id.isEmpty()) {
        Msg::info(op.selectText, op.selectTitle);
        return false;
    }
    if (!m_list->moveCloneToCurrent())
        return false;
    const RecordsetPtr &rs = m_list->rsClone;
    const QString finish = rs->text(QStringLiteral("FinishFlag"));
    bool allowed = false;
    switch (op.check) {
    case Check::Collectable:
        allowed = rs->field(QStringLiteral("TotalMoney")).toDouble() - rs->field(QStringLiteral("InMoney")).toDouble() > 0
                  && finish != QLatin1String("1");
        break;
    case Check::NotFinished:
        allowed = finish != QLatin1String("1");
        break;
    case Check::Open:
        allowed = finish == QLatin1String("0");
        break;
    }
    if (!allowed) {
        Msg::info(op.refuseText, op.refuseTitle);
        return false;
    }
    const QString ticketID = rs->text(QStringLiteral("ID"));
    if (!op.askTitle.isEmpty() && !Msg::ask(op.askBefore + ticketID + op.askAfter, op.askTitle))
        return false;
    const bool done = ExecuteSql(op.statement + id);
    if (done && op.done)
        op.done(*rs);
    if (done || op.refreshAlways)
        m_list->DataRefresh();
    return done;
}

// The receipt names the whole amount of the ticket as of the last refresh, also when part
// of it had been paid before.
void TicketOperations::InMoney()
{
    const QString failed = QStringLiteral("收款失败");
    Single op{failed, Select, Check::Collectable, failed,
              QStringLiteral("该单据已经入帐或已经收款成功，不能再收款！"), {}, {}, {},
              QStringLiteral("UPDATE sale set InMoney=TotalMoney WHERE ID="), false};
    op.done = [](const Recordset &ticket) {
        Msg::info(QStringLiteral("成功收到") + ticket.text(QStringLiteral("ID")) + QStringLiteral("号单据销售款：人民币")
                      + ListWindow::numberText(ticket.field(QStringLiteral("TotalMoney")).toDouble())
                      + QStringLiteral("元！"),
                  QStringLiteral("收款"));
    };
    runSingle(op);
}

void TicketOperations::OutMoney()
{
    const QString failed = QStringLiteral("退款失败");
    runSingle({failed, Select, Check::NotFinished, failed, QStringLiteral("该单据已经入帐不能再退款！"),
               QStringLiteral("退款"), QStringLiteral("你确认要为单据："), QStringLiteral("办理退款?"),
               QStringLiteral("UPDATE sale set InMoney=0 WHERE ID="), false});
}

void TicketOperations::OutAmount()
{
    runSingle({Tip, Select, Check::Open, Tip, Booked, {}, {}, {},
               QStringLiteral("UPDATE sale set OutAmount=TotalAmount where ID="), false});
}

void TicketOperations::InAmount()
{
    runSingle({Tip, SelectReset, Check::Open, Tip, ResetRefused, DeleteTitle,
               QStringLiteral("你确认要撤销原始单据号为"), QStringLiteral("的单据出库吗？"),
               QStringLiteral(" UPDATE Sale set OutAmount=0 where ID="), true});
}

void TicketOperations::InContainer()
{
    runSingle({Tip, Select, Check::Open, Tip, Booked, {}, {}, {},
               QStringLiteral(" UPDATE Sale set InContainer=TotalContainer where ID="), true});
}

void TicketOperations::OutContainer()
{
    runSingle({Tip, SelectReset, Check::Open, Tip, ResetRefused, DeleteTitle,
               QStringLiteral("你确认要撤销对原始单据号为"), QStringLiteral("的单据回收空瓶吗？"),
               QStringLiteral(" UPDATE Sale set InContainer=0 where ID="), true});
}

// The bulk operations reach every open ticket in the table, whatever the list shows.
void TicketOperations::runBulk(const Bulk &op)
{
    if (!Msg::ask(op.askText, op.askTitle))
        return;
    const bool done = ExecuteSql(op.statement);
    if (done && !op.doneText.isEmpty())
        Msg::info(op.doneText, op.askTitle);
    if (done || op.refreshAlways)
        m_list->DataRefresh();
}

void TicketOperations::InAllMoney()
{
    runBulk({QStringLiteral("收款"), QStringLiteral("你确认要为所有未入帐单据办理收款吗？"),
             QStringLiteral("Update Sale set InMoney=TotalMoney where FinishFlag='0'"), true,
             QStringLiteral("所有未入帐单据收款成功！")});
}

void TicketOperations::OutAllMoney()
{
    runBulk({QStringLiteral("退款"), QStringLiteral("你确认要为所有未入帐单据办理退款吗？"),
             QStringLiteral("Update Sale set InMoney=0 where FinishFlag='0'"), true, {}});
}

void TicketOperations::OutAllAmount()
{
    runBulk({QStringLiteral("出库"), QStringLiteral("你要对所有未入库单据进行出库操作？"),
             QStringLiteral("UPDATE sale set OutAmount=TotalAmount where FinishFlag='0'"), false, {}});
}

void TicketOperations::InAllAmount()
{
    runBulk({QStringLiteral("撤销"), QStringLiteral("你确认要搞撤销对所有未入帐单据的出库吗？"),
             QStringLiteral("Update sale set OutAmount=0 where FinishFlag='0'"), true, {}});
}

void TicketOperations::InAllContainer()
{
    runBulk({QStringLiteral("回收空瓶"), QStringLiteral("你要对所有未入库单据进行回收空瓶操作？"),
             QStringLiteral("UPDATE sale set InContainer=TotalContainer where FinishFlag='0'"), false, {}});
}

void TicketOperations::OutAllContainer()
{
    runBulk({QStringLiteral("撤销"), QStringLiteral("你确认要搞撤销对所有未入帐单据的空瓶回收吗？"),
             QStringLiteral("Update sale set InContainer=0 where FinishFlag='0'"), true, {}});
}

// The header goes first and the lines after it, with no transaction: lines left behind by a
// failed second statement are the accepted risk of deleting one ticket.
void TicketOperations::DeleteData()
{
    const QString id = m_list->currentTicket();
    if (id.isEmpty()) {
        Msg::info(QStringLiteral("请先选定您要删除或作废的单据！"), Tip);
        return;
    }
    if (!m_list->moveCloneToCurrent())
        return;
    if (m_list->rsClone->text(QStringLiteral("FinishFlag")) != QLatin1String("0")) {
        Msg::info(QStringLiteral("此单据已被审核入帐，不能再删除！"), Tip);
        return;
    }
    const QString ticketID = m_list->rsClone->text(QStringLiteral("ID"));
    if (!Msg::ask(QStringLiteral("你确认要删除原始单据号为") + ticketID + QStringLiteral("的单据吗？"), DeleteTitle))
        return;
    ExecuteSql(QStringLiteral("Delete from Sale where ID=") + id);
    ExecuteSql(QStringLiteral(" Delete from Sale_Detail where SaleID=") + id);
    m_list->DataRefresh();
}

// The transaction opens before the first question, so a No commits an empty one.
void TicketOperations::DeleteAll()
{
    Transaction tx(Conn);
    if (Msg::ask(QStringLiteral("你确认要删除所有未入帐单据吗？？"), DeleteTitle)) {
        RecordsetPtr count = OpenRecordset(QStringLiteral("SELECT count(*) as TotalRow from Sale where FinishFlag='0'"));
        if (!count) {
            Msg::error(QStringLiteral("删除记录时出现系统错误！"), QStringLiteral("错误"));
            Conn.RollbackTrans();
            return;
        }
        count->moveFirst();
        const QString total = count->text(QStringLiteral("TotalRow"));
        if (Msg::askStop(QStringLiteral("共找到 ") + total + QStringLiteral("条未入帐单据，你确认要删除吗？"),
                         QStringLiteral("再次确认"))) {
            RecordsetPtr open = OpenRecordset(QStringLiteral("SELECT * from Sale where FinishFlag='0'"));
            if (!open) {
                Msg::error(QStringLiteral("删除记录时出现系统错误！"), QStringLiteral("错误"));
                Conn.RollbackTrans();
                return;
            }
            for (open->moveFirst(); !open->eof(); open->moveNext()) {
                if (!ExecuteSql(QStringLiteral("delete from sale_detail where SaleID=") + open->text(QStringLiteral("ID")))) {
                    Conn.RollbackTrans();
                    return;
                }
            }
            if (!ExecuteSql(QStringLiteral("Delete from Sale where FinishFlag='0'"))) {
                Conn.RollbackTrans();
                return;
            }
        }
    }
    tx.commit();
    m_list->DataRefresh();
}
