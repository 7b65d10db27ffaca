#include "PeriodClosing.h"

#include "data/Database.h"
#include "data/Gateway.h"
#include "data/Session.h"
#include "data/SqlText.h"
#include "platform/Clock.h"
#include "platform/Prompter.h"
#include "platform/VbError.h"

#include <QSqlError>

namespace {
// What the closing reads from a stored number: the engine's value as statement text.
QString numberText(const QVariant &value)
{
    if (value.isNull())
        return QString();
    bool ok = false;
    const double d = value.toDouble(&ok);
    return ok ? QString::number(d, 'g', 15) : value.toString();
}

RecordsetPtr open(const QString &sql)
{
    RecordsetPtr rs = OpenRecordset(sql);
    if (!rs)
        throw VbError::objectNotSet();
    return rs;
}

// The tickets up to the cut-off that the count finds; nothing when the count failed (the
// gateway has said why).
std::optional<int> countUpTo(const QString &condition, const QString &cutOff)
{
    RecordsetPtr rs = OpenRecordset(QStringLiteral("select count(*) as TotalRows from Sale where FinishFlag='0' and ")
                                    + condition + QStringLiteral(" And CreateDate<=#") + Sql::date(cutOff)
                                    + QStringLiteral("#"));
    if (!rs)
        return std::nullopt;
    return rs->field(QStringLiteral("TotalRows")).toInt();
}

// A count above 0 is put to the operator; false when the closing is to stop.
bool goOnDespite(const std::optional<int> &count, const QString &before, const QString &after)
{
    if (!count)
        return false;
    if (*count <= 0)
        return true;
    return Msg::askStop(before + QString::number(*count) + after, QStringLiteral("继续"));
}

// Runs one statement of the closing whose failure the gateway reports and the closing
// passes over.
void carryOn(const QString &sql) { ExecuteSql(sql); }
}

std::optional<int> PeriodClosing::FinishToday()
{
    const std::optional<QString> typed =
        Msg::input(QStringLiteral("请输入入帐单据的最后截止日期："), QStringLiteral("日期"),
                   Clock::today().toString(QStringLiteral("MM-dd-yyyy")));
    if (!typed || typed->isEmpty())
        return std::nullopt;
    const QString cutOff = *typed;
    if (!Msg::ask(QStringLiteral("你确认要将") + cutOff + QStringLiteral("之前的所有单据吗，结转后的单据将不能修改？"),
                  QStringLiteral("结帐")))
        return std::nullopt;
    if (!goOnDespite(countUpTo(QStringLiteral("(TotalAmount-OutAmount>0)"), cutOff), QStringLiteral("系统发现有"),
                     QStringLiteral("张未出库或未完全出库的单据，如果确认要结帐，这些单据将被删除。继续吗？")))
        return std::nullopt;
    if (!goOnDespite(countUpTo(QStringLiteral("(TotalMoney-InMoney>0)"), cutOff), QStringLiteral("系统发现有"),
                     QStringLiteral("张欠费的单据，这些单据将不会被结转入库，继续吗？")))
        return std::nullopt;
    if (!goOnDespite(countUpTo(QStringLiteral("(TotalContainer-InContainer>0)"), cutOff),
                     QStringLiteral("系统发现有"), QStringLiteral("张欠瓶的单据，这些单据将不会被结转入库，继续吗？")))
        return std::nullopt;

    const QString upTo = QStringLiteral(" And CreateDate<=#") + Sql::date(cutOff) + QStringLiteral("#");
    try {
        if (!Conn.BeginTrans())
            throw VbError(-2147467259, Database::connection().lastError().text());
        if (!Msg::ask(QStringLiteral("系统准备结转本期单据，请再次确认是否要结帐？"), QStringLiteral("确认"))) {
            Conn.CommitTrans();
            return std::nullopt;
        }

        const QString undelivered = QStringLiteral("where FinishFlag='0' and (TotalAmount-OutAmount)>0") + upTo;
        RecordsetPtr gone = open(QStringLiteral("select * from Sale ") + undelivered);
        for (; !gone->eof(); gone->moveNext()) {
            if (!ExecuteSql(QStringLiteral("delete from Sale_detail where SaleID=") + gone->text(QStringLiteral("ID")))) {
                Conn.RollbackTrans();
                return std::nullopt;
            }
        }
        carryOn(QStringLiteral("delete from Sale ") + undelivered);

        RecordsetPtr closing = open(QStringLiteral("select * from Sale where FinishFlag='0' and (TotalMoney-InMoney)=0 "
                                                   "and (TotalContainer-InContainer)=0 ")
                                    + upTo);
        for (; !closing->eof(); closing->moveNext()) {
            const QString id = closing->text(QStringLiteral("ID"));
            carryOn(QStringLiteral("INSERT INTO Store(PaperID,CreateDate,TotalAmount,TotalMoney,Detail,UserID,HandInput,"
                                   "Direction,FinishFlag) Values ('")
                    + id + QStringLiteral("',#") + closing->text(QStringLiteral("CreateDate")) + QStringLiteral("#,")
                    + numberText(closing->field(QStringLiteral("TotalAmount"))) + QStringLiteral(",")
                    + numberText(closing->field(QStringLiteral("TotalMoney")))
                    + QStringLiteral(",'根据销售单自动生成',") + QString::number(Session::UserID)
                    + QStringLiteral(",'0','1','1')"));
            const QString lastID =
                numberText(open(QStringLiteral("select max(id) as LastID from Store"))->field(QStringLiteral("LastID")));
            RecordsetPtr lines = open(QStringLiteral("Select * from Sale_Detail where SaleID=") + id);
            for (; !lines->eof(); lines->moveNext()) {
                // Empties are not stock leaving the store.
                if (lines->text(QStringLiteral("IsContainer")) == QLatin1String("1"))
                    continue;
                carryOn(QStringLiteral("Insert into Store_Detail(StoreID,ProductID,Price,MyAmount,MyMoney) values(")
                        + lastID + QLatin1Char(',') + numberText(lines->field(QStringLiteral("ProductID")))
                        + QLatin1Char(',') + numberText(lines->field(QStringLiteral("Price"))) + QLatin1Char(',')
                        + numberText(lines->field(QStringLiteral("MyAmount"))) + QLatin1Char(',')
                        + numberText(lines->field(QStringLiteral("MyMoney"))) + QLatin1Char(')'));
            }
            closing->setField(QStringLiteral("FinishFlag"), QStringLiteral("1"));
            if (!closing->update())
                throw VbError(-2147467259, closing->lastError());
        }
        carryOn(QStringLiteral("update Store set FinishFlag='1'"));

        const int closed = closing->recordCount();
        Msg::info(QStringLiteral("成功进行") + QString::number(closed) + QStringLiteral(" 张有效单据入帐！"),
                  QStringLiteral("提示"));
        if (!Conn.CommitTrans())
            throw VbError(-2147467259, Database::connection().lastError().text());
        return closed;
    } catch (const VbError &failure) {
        Conn.RollbackTrans();
        Msg::error(QStringLiteral("结帐时出现系统错误，结帐失败:") + failure.description(), QStringLiteral("错误"));
        return std::nullopt;
    }
}
