#include "KillSoak.h"

#include "data/Database.h"

#include <QProcess>
#include <QRandomGenerator>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QThread>

namespace {
QVariant scalar(const QString &sql)
{
    QSqlQuery q(Database::connection());
    return q.exec(sql) && q.next() ? q.value(0) : QVariant();
}

// What is wrong with the file after a kill; empty when nothing.
QString inspect(const QString &file, const QStringList &reported)
{
    QString error;
    if (!Database::open(file, &error))
        return QStringLiteral("cannot open: ") + error;
    QString wrong;
    if (scalar(QStringLiteral("PRAGMA integrity_check")).toString() != QLatin1String("ok"))
        wrong = QStringLiteral("integrity check failed");
    else if (scalar(QStringLiteral("SELECT count(*) FROM Sale WHERE (SELECT count(*) FROM Sale_detail WHERE SaleID=Sale.ID)<>2")).toInt())
        wrong = QStringLiteral("a ticket without its lines");
    else if (scalar(QStringLiteral("SELECT count(*) FROM Sale_detail WHERE SaleID NOT IN (SELECT ID FROM Sale)")).toInt())
        wrong = QStringLiteral("a line without its ticket");
    for (qsizetype i = 0; wrong.isEmpty() && i < reported.size(); ++i) {
        const QStringList parts = reported[i].split(QLatin1Char(' '));
        if (scalar(QStringLiteral("SELECT count(*) FROM Sale WHERE ID=%1 AND Detail='%2'").arg(parts[0], parts[1])).toInt() != 1)
            wrong = QStringLiteral("ticket reported saved is missing: ") + reported[i];
    }
    Database::close();
    return wrong;
}
}

int KillSoak::run(const QString &program, int kills, QTextStream &out)
{
    QTemporaryDir dir;
    const QString file = dir.filePath(QStringLiteral("Tarvik.mdb"));
    QString error;
    if (!dir.isValid() || !Database::open(file, &error)) {
        out << "cannot make the shop: " << error << Qt::endl;
        return 1;
    }
    Database::close();
    QRandomGenerator random = QRandomGenerator::securelySeeded();
    QStringList reported;
    for (int kill = 1; kill <= kills; ++kill) {
        QProcess saver;
        saver.start(program, {QStringLiteral("--save-tickets"), file});
        if (!saver.waitForStarted() || !saver.waitForReadyRead(30000)) {
            out << "the saver did not start saving: " << saver.readAllStandardError() << Qt::endl;
            return 1;
        }
        QThread::msleep(random.bounded(1, 400));
        saver.kill();
        saver.waitForFinished(30000);
        for (const QByteArray &line : saver.readAllStandardOutput().split('\n'))
            if (line.startsWith("saved "))
                reported << QString::fromUtf8(line.mid(6));
        const QString wrong = inspect(file, reported);
        if (!wrong.isEmpty()) {
            out << "kill " << kill << ": " << wrong << Qt::endl;
            return 1;
        }
        if (kill % 10 == 0 || kill == kills)
            out << "kill " << kill << ": sound, " << reported.size() << " tickets reported saved, all there" << Qt::endl;
    }
    return 0;
}
