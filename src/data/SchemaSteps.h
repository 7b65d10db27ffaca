#pragma once
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QString>
#include <cstddef>

// The creation step's pieces that both engines share.

// One statement; false with the engine's text in *error.
inline bool runStatement(QSqlDatabase &db, const QString &sql, QString *error)
{
    QSqlQuery q(db);
    if (q.exec(sql))
        return true;
    if (error)
        *error = q.lastError().text();
    return false;
}

// Each statement in order, up to the first that fails.
template <std::size_t N>
bool runEach(QSqlDatabase &db, const char *const (&statements)[N], QString *error)
{
    for (const char *statement : statements)
        if (!runStatement(db, QString::fromUtf8(statement), error))
            return false;
    return true;
}

// What the ticket window, the lists and the caller-ID lookups search by, on either engine.
inline constexpr const char *SearchIndexes[] = {
    "CREATE INDEX idx_sale_customer ON Sale(CustomerID)",
    "CREATE INDEX idx_sale_finish ON Sale(FinishFlag)",
    "CREATE INDEX idx_saledetail_sale ON Sale_detail(SaleID)",
    "CREATE INDEX idx_store_date ON Store(CreateDate)",
    "CREATE INDEX idx_storedetail_store ON Store_detail(StoreID)",
    "CREATE INDEX idx_storedetail_product ON Store_detail(ProductID)",
    "CREATE INDEX idx_customer_address ON Customer(Address)",
    "CREATE INDEX idx_customer_phone ON Customer(Phone)",
    "CREATE INDEX idx_customer_account ON Customer(Account)",
    "CREATE INDEX idx_call_phone ON Call(PhoneNumber)",
    "CREATE INDEX idx_sysvalue_name ON SysValue(Name)",
};
