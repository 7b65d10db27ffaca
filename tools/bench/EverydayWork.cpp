#include "EverydayWork.h"

#include "data/Database.h"
#include "data/Gateway.h"
#include "data/Session.h"
#include "platform/Forms.h"
#include "report/ReportQuery.h"
#include "report/TodayReportGenerator.h"
#include "sale/frmSale.h"

#include <QApplication>
#include <QLineEdit>
#include <QPushButton>
#include <QTableView>
#include <QTest>

void EverydayWork::run(const Measure &measure, const QDate &last)
{
    QWidget *list = Forms::get(QStringLiteral("frmSaleAdmin"));
    list->resize(1200, 700);
    list->show();
    measure(QStringLiteral("sale list refresh with its footers"), 20, [] {},
            [&] {
                QMetaObject::invokeMethod(list, "DataRefresh");
                QCoreApplication::processEvents();
            });
    Forms::unload(list);

    auto *sale = Forms::get<frmSale>(QStringLiteral("frmSale"));
    auto field = [&](const char *name) { return sale->findChild<QLineEdit *>(QLatin1String(name)); };
    auto openTicket = [&] {
        sale = Forms::get<frmSale>(QStringLiteral("frmSale"));
        sale->setProperty("mActionType", 1);
        sale->setProperty("mCurID", 0);
        sale->show();
        QCoreApplication::processEvents();
    };
    openTicket();
    const QString street = QStringLiteral("人民路");
    for (int chars = 1; chars <= 3; ++chars) {
        measure(QStringLiteral("address search, keystroke %1 (\"%2\")").arg(chars).arg(street.left(chars)), 20,
                [&] {
                    sale->setProperty("InputReady", 1);
                    field("txtCustAddress")->setText(street.left(chars - 1));
                },
                [&] {
                    field("txtCustAddress")->setText(street.left(chars));
                    QCoreApplication::processEvents();
                });
    }
    measure(QStringLiteral("customer lookup by account, with history"), 20,
            [&] { field("txtCustAccount")->setText(QStringLiteral("12345")); },
            [&] { sale->GetCustomerInfo(0); });
    measure(QStringLiteral("customer lookup by phone, with history"), 20,
            [&] { field("txtCustPhone")->setText(QStringLiteral("55012346")); },
            [&] { sale->GetCustomerInfo(1); });
    Forms::unload(sale);

    // A ticket of two goods for a known customer; the raw run stores the same ticket again.
    measure(QStringLiteral("ticket save (new ticket, 2 goods)"), 20,
            [&] {
                openTicket();
                QLineEdit *address = field("txtCustAddress");
                address->setFocus();
                address->setText(QStringLiteral("人民路3号"));
                QTest::keyClick(address, Qt::Key_Return);
                auto *grid = sale->findChild<QTableView *>(QStringLiteral("dbgDetail"));
                for (int row = 0; row < 2; ++row) {
                    for (const auto &[column, value] : {std::pair{0, QString::number(row + 1)}, std::pair{4, QStringLiteral("2")}}) {
                        const QModelIndex cell = grid->model()->index(row, column);
                        grid->setFocus();
                        grid->setCurrentIndex(cell);
                        grid->edit(cell);
                        QWidget *editor = QApplication::focusWidget();
                        if (auto *line = qobject_cast<QLineEdit *>(editor))
                            line->selectAll();
                        QTest::keyClicks(editor, value);
                        QTest::keyClick(editor, Qt::Key_Return);
                        QCoreApplication::processEvents();
                    }
                }
            },
            [&] {
                sale->findChild<QPushButton *>(QStringLiteral("btnSave"))->click();
                QCoreApplication::processEvents();
            });
    if (QWidget *w = Forms::loaded(QStringLiteral("frmSale")))
        Forms::unload(w);

    measure(QStringLiteral("stock-take of a day"), 150, [] {},
            [&] {
                TodayReportGenerator generator;
                generator.ReportDate = last;
                generator.GetTodayReport();
            });
    struct Kind {
        qint32 type;
        QDate start;
        QString what;
    };
    const QList<Kind> kinds = {
        {3, last.addYears(-1), QStringLiteral("month report over a year")},
        {0, last.addMonths(-1), QStringLiteral("day report over a month")},
        {4, last.addYears(-1), QStringLiteral("customer month report over a year")},
        {5, last.addYears(-1), QStringLiteral("worker month report over a year")},
    };
    for (const Kind &k : kinds) {
        const ReportQuery query(k.type, k.start, last, 1);
        measure(k.what, 100, [] {}, [&] { OpenRecordset(query.fullSql()); });
    }
}

void EverydayWork::startUp(const Measure &measure, const std::function<void()> &open)
{
    measure(QStringLiteral("start up to the login window"), 400, [] { Forms::unload(QStringLiteral("frmLogin")); },
            [&] {
                Database::close();
                open();
                Session::CompanyName = GetSysValue(QStringLiteral("CompanyName"));
                Forms::get(QStringLiteral("frmLogin"))->show();
                QCoreApplication::processEvents();
            });
    Forms::unload(QStringLiteral("frmLogin"));
}
