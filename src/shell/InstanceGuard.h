#pragma once
#include <QLockFile>
#include <QObject>
#include <QString>

class QLocalServer;

// One running program per machine. The first start holds the key and listens under it; a
// later start asks that one to bring its window forward and then ends, saying nothing.
class InstanceGuard : public QObject {
    Q_OBJECT
public:
    explicit InstanceGuard(const QString &key = QStringLiteral("Tarvik.instance"),
                           QObject *parent = nullptr);
    ~InstanceGuard() override;

    // True for the first start, which from now on answers later ones with raiseRequested.
    // False when another start runs; it has been asked to come to the front.
    bool claim();

signals:
    void raiseRequested();

private:
    QString m_key;
    QLockFile m_lock;
    QLocalServer *m_server = nullptr;
};
