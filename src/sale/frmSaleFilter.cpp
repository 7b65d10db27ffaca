#include "frmSaleFilter.h"

#include "views/DataCombo.h"
#include "data/Gateway.h"
#include "data/PickDate.h"
#include "data/Session.h"
#include "data/SqlText.h"
#include "data/ValidateField.h"
#include "platform/Clock.h"
#include "platform/Forms.h"
#include "platform/Modal.h"
#include "platform/VbRules.h"

#include <QApplication>
#include <QButtonGroup>
#include <QCheckBox>
#include <QFocusEvent>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>

frmSaleFilter::frmSaleFilter()
{
    setObjectName(QStringLiteral("frmSaleFilter"));
    setWindowTitle(QStringLiteral("销售单据过滤器"));

    const auto check = [this](const char *name, const QString &caption) {
        auto *c = new QCheckBox(caption, this);
        c->setObjectName(QLatin1String(name));
        connect(c, &QCheckBox::clicked, this, &frmSaleFilter::RefreshControl);
        return c;
    };
    const auto list = [this](const char *name) {
        auto *c = new DataCombo(this);
        c->setObjectName(QLatin1String(name));
        return c;
    };
    chkAddress = check("chkAddress", QStringLiteral("客户地址包括字符串："));
    txtAddress = edit("txtAddress");
    chkAccount = check("chkAccount", QStringLiteral("客户帐号："));
    txtAccount = edit("txtAccount");
    chkUserID = check("chkUserID", QStringLiteral("操作员为："));
    cmbUserID = list("cmbUserID");
    chkCreateDate = check("chkCreateDate", QStringLiteral("单据日期"));
    txtCreateDate = edit("txtCreateDate");
    btnPickDate = new QPushButton(QStringLiteral("..."), this);
    btnPickDate->setObjectName(QStringLiteral("btnPickDate"));
    btnPickDate->setFixedWidth(32);
    btnPickDate->setAutoDefault(false);
    chkID = check("chkID", QStringLiteral("单据编号"));
    txtID = edit("txtID");
    chkTotalMoney = check("chkTotalMoney", QStringLiteral("单据金额"));
    txtTotalMoney = edit("txtTotalMoney");
    chkTotalAmount = check("chkTotalAmount", QStringLiteral("单据数量"));
    txtTotalAmount = edit("txtTotalAmount");
    chkMoneyBalance = check("chkMoneyBalance", QStringLiteral("欠钱金额"));
    txtMoneyBalance = edit("txtMoneyBalance");
    chkContainerBalance = check("chkContainerBalance", QStringLiteral("欠瓶金度"));
    txtContainerBalance = edit("txtContainerBalance");
    chkSenderID = check("chkSenderID", QStringLiteral("送水员为："));
    cmbSenderID = list("cmbSenderID");
    chkStation = check("chkStation", QStringLiteral("所辖供水站："));
    cmbStation = list("cmbStation");
    for (int i = 0; i < 7; ++i)
        cmbOperator << operatorList(i);

    m_conditions = {
        {chkAddress, txtAddress, nullptr, Kind::Text},
        {chkAccount, txtAccount, cmbOperator[0], Kind::Number},
        {chkUserID, cmbUserID, nullptr, Kind::List},
        {chkCreateDate, txtCreateDate, cmbOperator[1], Kind::Date},
        {chkID, txtID, cmbOperator[2], Kind::Number},
        {chkTotalMoney, txtTotalMoney, cmbOperator[3], Kind::Number},
        {chkTotalAmount, txtTotalAmount, cmbOperator[4], Kind::Number},
        {chkMoneyBalance, txtMoneyBalance, cmbOperator[5], Kind::Number},
        {chkContainerBalance, txtContainerBalance, cmbOperator[6], Kind::Number},
        {chkSenderID, cmbSenderID, nullptr, Kind::List},
        {chkStation, cmbStation, nullptr, Kind::List},
    };

    auto *grid = new QGridLayout;
    grid->setColumnMinimumWidth(1, 60);
    grid->setColumnStretch(2, 1);
    int row = 0;
    for (const auto &c : m_conditions) {
        grid->addWidget(c.check, row, 0);
        if (c.op) {
            grid->addWidget(c.op, row, 1);
            grid->addWidget(c.field, row, 2);
        } else {
            grid->addWidget(c.field, row, 1, 1, 2);
        }
        if (c.field == txtCreateDate)
            grid->addWidget(btnPickDate, row, 3);
        ++row;
    }

    const auto options = [this](const QString &title, const QStringList &captions, const char *name,
                                QList<QRadioButton *> *buttons) {
        auto *box = new QGroupBox(title, this);
        auto *line = new QHBoxLayout(box);
        auto *group = new QButtonGroup(box);
        for (int i = 0; i < captions.size(); ++i) {
            auto *b = new QRadioButton(captions[i], box);
            b->setObjectName(QLatin1String(name) + QLatin1Char('_') + QString::number(i));
            group->addButton(b, i);
            line->addWidget(b);
            *buttons << b;
        }
        buttons->first()->setChecked(true);
        return box;
    };
    QGroupBox *finish = options(QStringLiteral("单据状态"),
                                {QStringLiteral("所有单据"), QStringLiteral("已结转单据"),
                                 QStringLiteral("未结转单据")},
                                "optFinish", &optFinish);
    QGroupBox *searchType = options(QStringLiteral("查询方式"),
                                    {QStringLiteral("查询现有结果"), QStringLiteral("全新查询")},
                                    "optSearchType", &optSearchType);

    btnOk = new QPushButton(QStringLiteral("确认"), this);
    btnOk->setObjectName(QStringLiteral("btnOk"));
    btnOk->setDefault(true);
    btnCancel = new QPushButton(QStringLiteral("取消"), this);
    btnCancel->setObjectName(QStringLiteral("btnCancel"));
    btnCancel->setAutoDefault(false);
    auto *buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(btnOk);
    buttons->addWidget(btnCancel);

    auto *layout = new QVBoxLayout(this);
    layout->addLayout(grid);
    layout->addWidget(finish);
    layout->addWidget(searchType);
    layout->addLayout(buttons);
    setMinimumWidth(440);

    connect(btnPickDate, &QPushButton::clicked, this, &frmSaleFilter::btnPickDate_Click);
    connect(btnOk, &QPushButton::clicked, this, &frmSaleFilter::btnOk_Click);
    connect(btnCancel, &QPushButton::clicked, this, [this] { Forms::unload(this); });

    // Load.
    RefreshControl();
    cmbStation->setRowSource(OpenRecordset("select * from Station WHERE Status='1'"), "Name", "ID");
    cmbStation->setBoundText(QStringLiteral("1"));
    // One station is in daily use: its condition stays out of sight.
    cmbStation->hide();
    chkStation->hide();
    cmbUserID->setRowSource(OpenRecordset("select * from SysUser where Status='1'"), "Name", "ID");
    cmbSenderID->setRowSource(OpenRecordset("Select * from Sender where Status='1'"), "Name", "ID");
}

QLineEdit *frmSaleFilter::edit(const char *name)
{
    auto *e = new QLineEdit(this);
    e->setObjectName(QLatin1String(name));
    e->installEventFilter(this);
    return e;
}

QComboBox *frmSaleFilter::operatorList(int index)
{
    auto *c = new QComboBox(this);
    c->setObjectName(QStringLiteral("cmbOperator_") + QString::number(index));
    c->addItems({QStringLiteral(">"), QStringLiteral("="), QStringLiteral("<"), QStringLiteral("<="),
                 QStringLiteral(">=")});
    c->setCurrentIndex(-1);
    return c;
}

void frmSaleFilter::RefreshControl()
{
    for (const auto &c : m_conditions) {
        const bool on = c.check->isChecked();
        c.field->setEnabled(on);
        QPalette pal = c.field->palette();
        pal.setColor(QPalette::Base, on ? QColor(Qt::white) : palette().color(QPalette::Window));
        c.field->setPalette(pal);
        if (c.op) {
            c.op->setEnabled(on);
            if (on && c.op->currentIndex() < 0)
                c.op->setCurrentIndex(1);
        }
        if (c.field == txtCreateDate)
            btnPickDate->setEnabled(on);
        auto *text = qobject_cast<QLineEdit *>(c.field);
        if (!on || !text || !text->text().isEmpty())
            continue;
        if (c.kind == Kind::Number)
            text->setText(QStringLiteral("0"));
        else if (c.kind == Kind::Date)
            text->setText(DateText(Clock::today()));
    }
}

bool frmSaleFilter::checkValue(QLineEdit *field)
{
    const QString text = Trim(field->text());
    if (field == txtCreateDate)
        return text.isEmpty() || ValidateField(text, 2);
    if (field == txtAddress)
        return true;
    if (field->text().isEmpty()) {
        field->setText(QStringLiteral("0"));
        return true;
    }
    return ValidateField(text, 1);
}

bool frmSaleFilter::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::FocusOut) {
        auto *field = qobject_cast<QLineEdit *>(watched);
        // The buttons check for themselves (OK) or do not care (Cancel); a popup or another
        // window taking the focus is not the user leaving the field.
        QWidget *next = QApplication::focusWidget();
        const auto reason = static_cast<QFocusEvent *>(event)->reason();
        // While one field is being sent back, the field the user went to is not checked:
        // two bad fields would otherwise send the focus to and fro.
        if (field && !m_checking && next != btnOk && next != btnCancel
            && reason != Qt::PopupFocusReason && reason != Qt::ActiveWindowFocusReason) {
            m_checking = true;
            if (!checkValue(field))
                field->setFocus();
            m_checking = false;
        }
    }
    return QDialog::eventFilter(watched, event);
}

void frmSaleFilter::btnPickDate_Click()
{
    if (!Forms::isKnown(QStringLiteral("frmPickDate")))
        registerPickDateForm();
    Modal::exec(Forms::get(QStringLiteral("frmPickDate")));
    // Cancelled, the field still takes the last date picked, or the zero date before any.
    const QDate picked = Session::PickedDate.isValid() ? Session::PickedDate : QDate(1899, 12, 30);
    txtCreateDate->setText(DateText(picked));
}

QString frmSaleFilter::op(const QLineEdit *field) const
{
    for (const auto &c : m_conditions)
        if (c.field == field && c.op)
            return c.op->currentText();
    return QString();
}

QString frmSaleFilter::filterText() const
{
    QString sql;
    if (chkAddress->isChecked())
        sql += " AND Address Like '%" + Sql::text(Trim(txtAddress->text())) + "%' ";
    if (chkAccount->isChecked())
        sql += " AND Account" + op(txtAccount) + Sql::number(Trim(txtAccount->text()));
    if (chkUserID->isChecked())
        sql += " AND Sale.UserID=" + NumText(Val(cmbUserID->BoundText()));
    if (chkCreateDate->isChecked())
        sql += " AND Sale.CreateDate" + op(txtCreateDate) + "#" + Sql::date(txtCreateDate->text()) + "#";
    if (chkID->isChecked())
        sql += " AND Sale.ID" + op(txtID) + NumText(Val(txtID->text()));
    if (chkTotalMoney->isChecked())
        sql += " And TotalMoney" + op(txtTotalMoney) + Sql::number(txtTotalMoney->text());
    if (chkTotalAmount->isChecked())
        sql += " And TotalAmount" + op(txtTotalAmount) + Sql::number(txtTotalAmount->text());
    if (chkMoneyBalance->isChecked())
        sql += " And (TotalMoney-InMoney)" + op(txtMoneyBalance) + Sql::number(txtMoneyBalance->text());
    if (chkContainerBalance->isChecked())
        sql += " And (TotalContainer-InContainer)" + op(txtContainerBalance)
               + Sql::number(txtContainerBalance->text());
    if (chkSenderID->isChecked())
        sql += " AND Sale.SenderID=" + NumText(Val(cmbSenderID->BoundText()));
    if (optFinish[1]->isChecked())
        sql += " AND Sale.FinishFlag='1'";
    else if (optFinish[2]->isChecked())
        sql += " AND FinishFlag='0'";
    // The lowest station stands for all of them.
    if (chkStation->isChecked()
        && cmbStation->BoundText() != QString::number(GetMinValue("Station", "ID")))
        sql += " AND Sale.StationID=" + cmbStation->BoundText();
    return sql;
}

void frmSaleFilter::btnOk_Click()
{
    // A field typed into and left for OK directly has not had its check yet.
    for (const auto &c : m_conditions) {
        auto *field = qobject_cast<QLineEdit *>(c.field);
        if (field && c.check->isChecked() && !checkValue(field)) {
            field->setFocus();
            return;
        }
    }
    const QString sql = filterText();
    if (QWidget *list = Forms::activeChild()) {
        if (optSearchType[1]->isChecked()) {
            list->setProperty("curFilterSQL", QString());
            list->setProperty("curFilterSQL", sql);
        } else if (!sql.isEmpty()) {
            list->setProperty("curFilterSQL", list->property("curFilterSQL").toString() + sql);
        }
    }
    Forms::unload(this);
}

void frmSaleFilter::reject() { Forms::unload(this); }
