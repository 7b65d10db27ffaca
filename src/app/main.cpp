#include "data/Gateway.h"
#include "data/Session.h"
#include "platform/Prompter.h"
#include "platform/VbError.h"

#include <QApplication>
#include <QMainWindow>

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Tarvik"));
    try {
        OpenDatabase();
        Session::CompanyName = GetSysValue(QStringLiteral("CompanyName"));
    } catch (const VbError &e) {
        Msg::error(QStringLiteral("\\r\\n系统出现如下错误： # ") + QString::number(e.number())
                       + e.description(),
                   QStringLiteral("失败"));
        return 0;
    }
    QMainWindow main;
    main.setWindowTitle(Session::CompanyName);
    main.resize(1024, 700);
    main.show();
    return app.exec();
}
