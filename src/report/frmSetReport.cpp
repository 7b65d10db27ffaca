#include "frmSetReport.h"

#include "data/Gateway.h"
#include "data/PickDate.h"
#include "data/Session.h"
#include "data/ValidateField.h"
#include "platform/Clock.h"
#include "platform/Forms.h"
#include "platform/Modal.h"
#include "platform/VbRules.h"
#include "views/DataCombo.h"

#include <QApplication>
#include <QFocusEvent>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace {
template <class T> T *named(T *widget, const char *name)
{
    widget->setObjectName(QLatin1String(name));
    return widget;
}
}

frmSetReport::frmSetReport(QWidget *parent) : QDialog(parent)
{
    setObjectName(QStringLiteral("frmSetReport"));
    setWindowTitle(QStringLiteral("报表参数设置"));

    txtStartDate = named(new QLineEdit, "txtStartDate");
    btnPickStart = named(new QPushButton(QStringLiteral("...")), "btnPickStart");
    txtEndDate = named(new QLineEdit, "txtEndDate");
    btnPickEnd = named(new QPushButton(QStringLiteral("...")), "btnPickEnd");
    txtAccount = named(new QLineEdit, "txtAccount");
    cmbSender = named(new DataCombo, "cmbSender");
    lblStation = named(new QLabel(QStringLiteral("所辖供水站：")), "lblStation");
    cmbStation = named(new DataCombo, "cmbStation");
    btnOk = named(new QPushButton(QStringLiteral("确定")), "btnOk");
    btnCancel = named(new QPushButton(QStringLiteral("取消")), "btnCancel");
    for (QPushButton *pick : {btnPickStart, btnPickEnd}) {
        pick->setFixedWidth(pick->sizeHint().height() + 8);
        pick->setAutoDefault(false);
    }
    btnOk->setDefault(true);
    btnCancel->setAutoDefault(false);

    auto *frame = new QGroupBox(QStringLiteral("&C、参数设置"));
    auto *grid = new QGridLayout(frame);
    int row = 0;
    auto addRow = [&](const QString &caption, QWidget *field, QWidget *button = nullptr) {
        auto *label = new QLabel(caption);
        label->setBuddy(field);
        grid->addWidget(label, row, 0, Qt::AlignRight);
        grid->addWidget(field, row, 1);
        if (button)
            grid->addWidget(button, row, 2);
        ++row;
    };
    addRow(QStringLiteral("起始日期："), txtStartDate, btnPickStart);
    addRow(QStringLiteral("结速日期："), txtEndDate, btnPickEnd);
    addRow(QStringLiteral("客户帐号："), txtAccount);
    addRow(QStringLiteral("送水工编号："), cmbSender);
    grid->addWidget(lblStation, row, 0, Qt::AlignRight);
    grid->addWidget(cmbStation, row, 1);
    grid->setColumnMinimumWidth(1, 180);

    auto *buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(btnOk);
    buttons->addWidget(btnCancel);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(frame);
    layout->addLayout(buttons);

    connect(txtStartDate, &QLineEdit::textChanged, this, &frmSetReport::RefreshControl);
    connect(txtEndDate, &QLineEdit::textChanged, this, &frmSetReport::RefreshControl);
    connect(txtAccount, &QLineEdit::textChanged, this, &frmSetReport::RefreshControl);
    connect(cmbSender, &QComboBox::currentIndexChanged, this, &frmSetReport::RefreshControl);
    connect(btnPickStart, &QPushButton::clicked, this, [this] { pickDate(txtStartDate); });
    connect(btnPickEnd, &QPushButton::clicked, this, [this] { pickDate(txtEndDate); });
    connect(btnOk, &QPushButton::clicked, this, &frmSetReport::btnOk_Click);
    connect(btnCancel, &QPushButton::clicked, this, &frmSetReport::reject);
    for (QLineEdit *field : {txtStartDate, txtEndDate, txtAccount})
        field->installEventFilter(this);
}

void frmSetReport::showEvent(QShowEvent *event)
{
    // The caller sets the kind between loading and showing.
    if (!m_loaded)
        Form_Load();
    QDialog::showEvent(event);
}

void frmSetReport::Form_Load()
{
    m_loaded = true;
    cmbStation->setRowSource(OpenRecordset(QStringLiteral("select * from Station WHERE Status='1'")),
                             QStringLiteral("Name"), QStringLiteral("ID"));
    cmbStation->setBoundText(QStringLiteral("1"));
    // The shop has one station in daily use: it is chosen for the user.
    cmbStation->hide();
    lblStation->hide();

    // A field that does not apply looks like the dialog behind it.
    auto shutOut = [this](QLineEdit *field) {
        field->setEnabled(false);
        QPalette pal = field->palette();
        pal.setColor(QPalette::Disabled, QPalette::Base, palette().color(QPalette::Window));
        field->setPalette(pal);
    };
    const bool customer = curReportType == 1 || curReportType == 4;
    const bool worker = curReportType == 2 || curReportType == 5;
    if (customer || worker) {
        btnOk->setEnabled(false);
        cmbStation->setEnabled(false);
        if (customer)
            cmbSender->setEnabled(false);
        else
            shutOut(txtAccount);
    } else if (curReportType == 0 || curReportType == 3) {
        cmbSender->setEnabled(false);
        shutOut(txtAccount);
    }
    txtStartDate->setText(DateText(Clock::today()));
    txtEndDate->setText(DateText(Clock::today()));
    cmbSender->setRowSource(OpenRecordset(QStringLiteral("Select * from Sender where Status='1'")),
                            QStringLiteral("Name"), QStringLiteral("ID"));
    mResult = false;
}

void frmSetReport::RefreshControl()
{
    const bool missing = txtStartDate->text().isEmpty() || txtEndDate->text().isEmpty()
                         || (txtAccount->isEnabled() && txtAccount->text().isEmpty())
                         || (cmbSender->isEnabled() && cmbSender->BoundText().isEmpty());
    btnOk->setEnabled(!missing);
}

// An empty date means today and an empty account means none; anything else must read as a
// date, or as an account number the ticket tables can hold.
bool frmSetReport::validateField(QLineEdit *field)
{
    const QString text = Trim(field->text());
    const bool isAccount = field == txtAccount;
    if (text.isEmpty()) {
        field->setText(isAccount ? QStringLiteral("0") : DateText(Clock::today()));
        return true;
    }
    return ValidateField(text, isAccount ? 3 : 2);
}

bool frmSetReport::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::FocusOut && !m_checking && isVisible()) {
        auto *field = qobject_cast<QLineEdit *>(watched);
        const auto reason = static_cast<QFocusEvent *>(event)->reason();
        // Leaving for Cancel, a popup or another window is no leaving of the field; OK checks
        // for itself.
        if (field && field->isEnabled() && QApplication::focusWidget() != btnCancel
            && QApplication::focusWidget() != btnOk && reason != Qt::PopupFocusReason
            && reason != Qt::ActiveWindowFocusReason) {
            m_checking = true;
            if (!validateField(field))
                field->setFocus();
            m_checking = false;
        }
    }
    return QDialog::eventFilter(watched, event);
}

// The calendar writes the last date picked in this session, also when it was cancelled.
void frmSetReport::pickDate(QLineEdit *field)
{
    if (!Forms::isKnown(QStringLiteral("frmPickDate")))
        registerPickDateForm();
    Modal::exec(Forms::get(QStringLiteral("frmPickDate")));
    // Before any date was picked that is the zero date.
    field->setText(DateText(Session::PickedDate.isValid() ? Session::PickedDate : QDate(1899, 12, 30)));
}

ReportChoice frmSetReport::choice() const
{
    ReportChoice c;
    c.type = curReportType;
    if (curReportType == 1 || curReportType == 4)
        c.id = GetCustomerIDByAccount(txtAccount->text());
    else if (curReportType == 2 || curReportType == 5)
        c.id = qint32(Val(cmbSender->BoundText()));
    c.start = CDate(txtStartDate->text());
    c.end = CDate(txtEndDate->text());
    c.station = qint32(Val(cmbStation->BoundText()));
    return c;
}

void frmSetReport::btnOk_Click()
{
    // The field that had the focus is checked before the report is taken.
    for (QLineEdit *field : {txtStartDate, txtEndDate, txtAccount}) {
        if (field->isEnabled() && !validateField(field)) {
            field->setFocus();
            return;
        }
    }
    mResult = true;
    Forms::unload(QStringLiteral("frmReport"));
    hide();
    QDialog::accept();
}

void frmSetReport::reject() { Forms::unload(this); }
