#pragma once
#include <QString>
#include <QTemporaryDir>
#include <QVariant>

// A fresh Tarvik.mdb in a temporary folder, made by the program's own creation step and
// opened as the session's connection. Closed and removed when the object goes.
class TestDb {
public:
    TestDb();
    ~TestDb();
    bool ok() const { return m_ok; }
    QString path() const;
    QString folder() const;

    // Direct access for arranging and checking rows, bypassing the gateway's messages.
    bool exec(const QString &engineSql) const;
    QVariant scalar(const QString &engineSql) const;
    int count(const QString &table, const QString &where = QString()) const;

private:
    QTemporaryDir m_dir;
    bool m_ok = false;
};
