#pragma once
#include "data/Database.h"

#include <QString>
#include <QStringList>
#include <functional>

// Moves a shop from its file up to a server: every row of the eleven tables with its key,
// in one transaction, then compares what both sides hold table by table.
class ShopMover {
public:
    // Told after every batch: the table, rows copied of it, and its rows in all.
    std::function<void(const QString &table, qint64 done, qint64 total)> progress;

    // Copies the file into the server's database, which must hold no shop yet (the creation
    // step's own default rows are replaced by the file's). False with the reason in error().
    bool copy(const QString &file, const Database::Server &server);
    // After copy(): each line "table: what, file value, server value" and whether they agree.
    const QStringList &checks() const { return m_checks; }
    bool allAgree() const { return m_agree; }
    QString error() const { return m_error; }

private:
    bool fail(const QString &why);
    bool copyTable(const QString &table);
    bool check(const QString &table);

    QString m_error;
    QStringList m_checks;
    bool m_agree = false;
};
