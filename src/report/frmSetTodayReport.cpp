#include "frmSetTodayReport.h"

#include "frmTodayReport.h"

#include "data/Gateway.h"
#include "platform/Clock.h"
#include "platform/Prompter.h"
#include "platform/VbError.h"
#include "views/DataCombo.h"

#include <QApplication>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

frmSetTodayReport::frmSetTodayReport(QWidget *parent)
    : QDialog(parent), txtDate(new QLineEdit), cmbStation(new DataCombo), lblStation(new QLabel),
      pgbMain(new QProgressBar), btnOk(new QPushButton(QStringLiteral("开始盘点"))),
      btnCancel(new QPushButton(QStringLiteral("取消")))
{
    setObjectName(QStringLiteral("frmSetTodayReport"));
    setWindowTitle(QStringLiteral("帐目盘点"));
    txtDate->setObjectName(QStringLiteral("txtDate"));
    cmbStation->setObjectName(QStringLiteral("cmbStation"));
    lblStation->setObjectName(QStringLiteral("lblStation"));
    lblStation->setText(QStringLiteral("所辖供水站："));
    pgbMain->setObjectName(QStringLiteral("pgbMain"));
    pgbMain->setTextVisible(false);
    btnOk->setObjectName(QStringLiteral("btnOk"));
    btnCancel->setObjectName(QStringLiteral("btnCancel"));
    btnOk->setDefault(true);

    auto *label1 = new QLabel(QStringLiteral("盘点日期："));
    label1->setObjectName(QStringLiteral("Label1"));
    label1->setBuddy(txtDate);
    auto *label2 = new QLabel(QStringLiteral("请设置有关盘点选项后开始盘点"));
    label2->setObjectName(QStringLiteral("Label2"));
    auto *frame1 = new QGroupBox(QStringLiteral("&X.选项："));
    frame1->setObjectName(QStringLiteral("Frame1"));

    auto *options = new QGridLayout(frame1);
    options->addWidget(label1, 0, 0);
    options->addWidget(txtDate, 0, 1);
    options->addWidget(lblStation, 1, 0);
    options->addWidget(cmbStation, 1, 1);
    options->addWidget(pgbMain, 2, 0, 1, 2);
    auto *buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(btnOk);
    buttons->addWidget(btnCancel);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(label2);
    layout->addWidget(frame1);
    layout->addLayout(buttons);
    setMinimumWidth(360);

    // Form_Load: today's date, and the first station, whose choice the shop never sees.
    m_generator.ReportDate = Clock::today();
    txtDate->setText(Clock::today().toString(QStringLiteral("MM-dd-yyyy")));
    cmbStation->setRowSource(OpenRecordset(QStringLiteral("select * from Station WHERE Status='1'")),
                             QStringLiteral("Name"), QStringLiteral("ID"));
    cmbStation->setBoundText(QStringLiteral("1"));
    cmbStation->hide();
    lblStation->hide();

    connect(txtDate, &QLineEdit::textChanged, this,
            [this](const QString &text) { btnOk->setEnabled(!text.trimmed().isEmpty()); });
    connect(btnOk, &QPushButton::clicked, this, &frmSetTodayReport::start);
    connect(btnCancel, &QPushButton::clicked, this, &QDialog::reject);
    m_generator.progress = [this](int value, int maximum) {
        pgbMain->setRange(0, maximum);
        pgbMain->setValue(qMin(value, maximum));
        // The bar is the only sign of life while the statements run.
        QApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
    };
}

void frmSetTodayReport::start()
{
    if (!m_generator.setDateText(txtDate->text())) {
        // An unreadable day generates nothing; the dialog stays for a corrected one.
        const VbError e = VbError::typeMismatch();
        Msg::error(QStringLiteral("实时错误 '%1':\n\n%2").arg(e.number()).arg(e.description()), windowTitle());
        return;
    }
    m_generator.curStationID = qint32(cmbStation->BoundText().toInt());
    if (m_report) {
        m_report->ReportDate = m_generator.ReportDate;
        m_report->curStationID = m_generator.curStationID;
    }
    txtDate->setEnabled(false);
    cmbStation->setEnabled(false);
    btnOk->setEnabled(false);
    GetTodayReport();
    accept();
}

void frmSetTodayReport::GetTodayReport()
{
    try {
        m_generator.GetTodayReport();
    } catch (const VbError &) {
        // The gateway has said which statement failed; the rows worked out so far are shown.
    }
    if (m_report)
        m_report->showReport(m_generator.xayReport);
}
