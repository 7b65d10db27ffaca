#pragma once
#include <QProcess>
#include <QSet>
#include <QString>

// Two workstations saving tickets at once: two runs of the ticket saver program ("A" and "B")
// on one database file or connection file.
class TicketSavers {
public:
    TicketSavers(const QString &program, const QString &where, int each)
    {
        m_a.start(program, {where, QString::number(each), QStringLiteral("A")});
        m_b.start(program, {where, QString::number(each), QStringLiteral("B")});
    }
    bool started() { return m_a.waitForStarted() && m_b.waitForStarted(); }
    bool running() const { return m_a.state() == QProcess::Running || m_b.state() == QProcess::Running; }

    // Waits for both; false with the failing saver's own words in *why.
    bool finished(int ms, QString *why)
    {
        for (QProcess *p : {&m_a, &m_b}) {
            if (!p->waitForFinished(ms) || p->exitStatus() != QProcess::NormalExit || p->exitCode() != 0) {
                *why = QString::fromLocal8Bit(p->readAllStandardError());
                return false;
            }
        }
        return true;
    }

    // "number remark" of every ticket the savers were told was saved.
    QSet<QString> reported()
    {
        QSet<QString> saved;
        for (QProcess *p : {&m_a, &m_b})
            for (const QByteArray &line : p->readAllStandardOutput().split('\n'))
                if (line.startsWith("saved "))
                    saved << QString::fromUtf8(line.mid(6));
        return saved;
    }

private:
    QProcess m_a, m_b;
};
