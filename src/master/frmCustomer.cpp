#include "frmCustomer.h"

#include "views/DataCombo.h"
#include "data/Gateway.h"
#include "data/PickDate.h"
#include "data/Session.h"
#include "data/SqlText.h"
#include "data/ValidateField.h"
#include "platform/Clock.h"
#include "platform/Forms.h"
#include "platform/Modal.h"
#include "platform/Prompter.h"
#include "platform/VbRules.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFocusEvent>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

namespace {
const QString ErrorTitle = QStringLiteral("错误");

void setBase(QLineEdit *field, const QColor &colour)
{
    QPalette p = field->palette();
    p.setColor(QPalette::Base, colour);
    field->setPalette(p);
}

}

frmCustomer::frmCustomer(QWidget *parent) : QDialog(parent)
{
    setObjectName(QStringLiteral("frmCustomer"));
    setWindowTitle(QStringLiteral("客户资料"));

    auto edit = [this](const QString &name) {
        auto *e = new QLineEdit(this);
        e->setObjectName(name);
        return e;
    };
    txtName = edit(QStringLiteral("txtName"));
    txtAccount = edit(QStringLiteral("txtAccount"));
    txtAddress = edit(QStringLiteral("txtAddress"));
    txtPhone = edit(QStringLiteral("txtPhone"));
    txtCreateDate = edit(QStringLiteral("txtCreateDate"));
    txtDetail = edit(QStringLiteral("txtDetail"));
    chkAutoID = new QCheckBox(QStringLiteral("系统自动编号"), this);
    chkAutoID->setObjectName(QStringLiteral("chkAutoID"));
    chkDisable = new QCheckBox(QStringLiteral("该帐户暂停使用"), this);
    chkDisable->setObjectName(QStringLiteral("chkDisable"));
    cmbCustType = new QComboBox(this);
    cmbCustType->setObjectName(QStringLiteral("cmbCustType"));
    cmbCustType->addItems({QStringLiteral("未开户客户"), QStringLiteral("已开户客户"), QStringLiteral("开户大客户"),
                           QStringLiteral("托管户"), QStringLiteral("其它")});
    cmbStation = new DataCombo(this);
    cmbStation->setObjectName(QStringLiteral("cmbStation"));
    lblStation = new QLabel(QStringLiteral("所辖供水站："), this);
    lblStation->setObjectName(QStringLiteral("lblStation"));
    btnDate = new QPushButton(QStringLiteral("..."), this);
    btnDate->setObjectName(QStringLiteral("btnDate"));
    btnDate->setFixedWidth(30);
    btnSave = new QPushButton(QStringLiteral("保存"), this);
    btnSave->setObjectName(QStringLiteral("btnSave"));
    btnExit = new QPushButton(QStringLiteral("退出"), this);
    btnExit->setObjectName(QStringLiteral("btnExit"));
    for (QPushButton *b : {btnDate, btnSave, btnExit})
        b->setAutoDefault(false);

    auto *form = new QFormLayout;
    auto *account = new QHBoxLayout;
    account->addWidget(txtAccount, 1);
    account->addWidget(chkAutoID);
    auto *date = new QHBoxLayout;
    date->addWidget(txtCreateDate, 1);
    date->addWidget(btnDate);
    form->addRow(QStringLiteral("顾客姓名："), txtName);
    form->addRow(QStringLiteral("帐户编号："), account);
    form->addRow(QStringLiteral("联系地址："), txtAddress);
    form->addRow(QStringLiteral("联系电话："), txtPhone);
    form->addRow(QStringLiteral("顾客类型："), cmbCustType);
    form->addRow(QStringLiteral("开户日期："), date);
    form->addRow(lblStation, cmbStation);
    form->addRow(QStringLiteral("备注："), txtDetail);
    form->addRow(QString(), chkDisable);
    auto *buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(btnSave);
    buttons->addWidget(btnExit);
    auto *main = new QVBoxLayout(this);
    main->addLayout(form);
    main->addLayout(buttons);
    resize(420, 330);

    setTabOrder(txtName, txtAccount);
    setTabOrder(txtAccount, txtAddress);
    setTabOrder(txtAddress, txtPhone);
    setTabOrder(txtPhone, cmbCustType);
    setTabOrder(cmbCustType, txtCreateDate);
    setTabOrder(txtCreateDate, txtDetail);
    setTabOrder(txtDetail, chkDisable);
    setTabOrder(chkDisable, btnSave);
    setTabOrder(btnSave, btnExit);

    txtAccount->installEventFilter(this);
    txtCreateDate->installEventFilter(this);
    connect(txtAccount, &QLineEdit::textChanged, this, [this] { updateSaveButton(); });
    connect(txtAddress, &QLineEdit::textChanged, this, [this] { updateSaveButton(); });
    connect(chkAutoID, &QCheckBox::clicked, this, &frmCustomer::chkAutoID_Click);
    connect(btnDate, &QPushButton::clicked, this, &frmCustomer::btnDate_Click);
    connect(btnSave, &QPushButton::clicked, this, &frmCustomer::btnSave_Click);
    connect(btnExit, &QPushButton::clicked, this, &frmCustomer::btnExit_Click);
}

// ---------------------------------------------------------------------------------------------
// Load

int frmCustomer::exec()
{
    if (!m_loaded && !Form_Load()) {
        closeCard();
        return QDialog::Rejected;
    }
    return QDialog::exec();
}

void frmCustomer::showEvent(QShowEvent *event)
{
    QDialog::showEvent(event);
    if (!m_loaded && !Form_Load())
        QTimer::singleShot(0, this, [this] { closeCard(); });
}

bool frmCustomer::Form_Load()
{
    m_loaded = true;
    cmbStation->setRowSource(OpenRecordset(QStringLiteral("select * from Station WHERE Status='1'")),
                             QStringLiteral("Name"), QStringLiteral("ID"));
    cmbStation->hide();
    lblStation->hide();
    if (mActionType != 2) {
        chkAutoID->setChecked(true);
        txtAccount->setEnabled(false);
        setBase(txtAccount, palette().color(QPalette::Window));
        txtCreateDate->setText(DateText(Clock::today()));
        cmbCustType->setCurrentIndex(1);
        cmbStation->setBoundText(QStringLiteral("1"));
        // An opener may have filled the address already; the usual rule then decides.
        updateSaveButton();
        return true;
    }
    RecordsetPtr rs = OpenRecordset(QStringLiteral("Select * from Customer where ID=") + QString::number(mCurID));
    if (!rs || rs->recordCount() < 1)
        return false;
    rs->moveFirst();
    for (QWidget *w : {static_cast<QWidget *>(txtAccount), static_cast<QWidget *>(chkAutoID),
                       static_cast<QWidget *>(txtCreateDate), static_cast<QWidget *>(btnDate)})
        w->setEnabled(false);
    txtName->setText(rs->text(QStringLiteral("Name")));
    txtAccount->setText(rs->text(QStringLiteral("Account")));
    txtAddress->setText(rs->text(QStringLiteral("Address")));
    txtPhone->setText(rs->text(QStringLiteral("Phone")));
    txtDetail->setText(rs->text(QStringLiteral("Detail")));
    txtCreateDate->setText(rs->text(QStringLiteral("CreateDate")));
    cmbCustType->setCurrentIndex(rs->field(QStringLiteral("CustType")).toInt());
    cmbStation->setBoundText(rs->text(QStringLiteral("StationID")));
    chkDisable->setChecked(Trim(rs->text(QStringLiteral("Status"))) == QLatin1String("0"));
    btnSave->setEnabled(true);
    return true;
}

int frmCustomer::openFor(int action, int id)
{
    auto *card = Forms::get<frmCustomer>(QStringLiteral("frmCustomer"));
    if (!card)
        return 0;
    Session::SelectedCustomerID = 0;
    card->mActionType = action;
    card->mCurID = id;
    Modal::exec(card);
    return Session::SelectedCustomerID;
}

int frmCustomer::openForTicket(const QString &phone, const QString &address)
{
    Session::SelectedCustomerID = 0;
    txtPhone->setText(phone);
    txtAddress->setText(address);
    chkAutoID->setEnabled(false);
    txtAccount->setEnabled(false);
    setBase(txtAccount, palette().color(QPalette::Window));
    mActionType = 1;
    Modal::exec(this);
    return Session::SelectedCustomerID;
}

// ---------------------------------------------------------------------------------------------
// The fields

void frmCustomer::updateSaveButton()
{
    btnSave->setEnabled(!txtAddress->text().isEmpty()
                        && (chkAutoID->isChecked() || !Trim(txtAccount->text()).isEmpty()));
}

void frmCustomer::chkAutoID_Click()
{
    if (chkAutoID->isChecked()) {
        txtAccount->setEnabled(false);
        txtAccount->clear();
        setBase(txtAccount, palette().color(QPalette::Window));
    } else {
        txtAccount->setEnabled(true);
        setBase(txtAccount, txtAddress->palette().color(QPalette::Base));
    }
    updateSaveButton();
}

bool frmCustomer::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::FocusOut && isVisible()) {
        const Qt::FocusReason reason = static_cast<QFocusEvent *>(event)->reason();
        if (reason != Qt::ActiveWindowFocusReason && reason != Qt::PopupFocusReason) {
            auto *field = static_cast<QLineEdit *>(watched);
            if (field->isEnabled() && !ValidateField(field->text(), field == txtCreateDate ? 2 : 3))
                QTimer::singleShot(0, field, [field] { field->setFocus(); });
        }
    }
    return QDialog::eventFilter(watched, event);
}

void frmCustomer::btnDate_Click()
{
    // A calendar closed without a choice empties the field; leaving it then asks for a date.
    txtCreateDate->setText(DateText(PickDate()));
}

void frmCustomer::btnExit_Click() { closeCard(); }

void frmCustomer::reject() { closeCard(); }

void frmCustomer::closeCard() { Forms::unload(this); }

// ---------------------------------------------------------------------------------------------
// The save

void frmCustomer::btnSave_Click()
{
    if (mActionType == 2) {
        if (saveEdit())
            closeCard();
    } else if (mActionType == 1) {
        saveNew();
    }
}

bool frmCustomer::saveNew()
{
    if (!CheckUnique(QStringLiteral("Customer"), QStringLiteral("Address"), txtAddress->text(), 0, 0)) {
        Msg::error(QStringLiteral("该地址已经开户了，请检查后再继续！"), ErrorTitle);
        return false;
    }
    if (!chkAutoID->isChecked()
        && !CheckUnique(QStringLiteral("Customer"), QStringLiteral("Account"), txtAccount->text(), 1, 0)) {
        Msg::error(QStringLiteral("您所指定的帐户名称已被占用!,请重新指定"), ErrorTitle);
        return false;
    }
    QString sql = QStringLiteral("insert into Customer(Account,Phone,Address,Name,Detail,CreateDate,CustType,Status,StationID)");
    if (chkAutoID->isChecked())
        sql += QStringLiteral(" values (0,'");
    else
        sql += QStringLiteral(" values (") + Sql::number(Trim(txtAccount->text())) + QStringLiteral(",'");
    sql += Sql::text(txtPhone->text()) + QStringLiteral("','") + Sql::text(txtAddress->text()) + QStringLiteral("','")
           + Sql::text(Trim(txtName->text())) + QStringLiteral("','") + Sql::text(txtDetail->text())
           + QStringLiteral("',#") + Sql::date(txtCreateDate->text()) + QStringLiteral("#,")
           + QString::number(cmbCustType->currentIndex()) + QStringLiteral(",");
    // The suspended flag brings its own comma: a card ticked as suspended cannot be saved
    // new, so a customer is only ever suspended after he exists.
    sql += chkDisable->isChecked() ? QStringLiteral("'0',") : QStringLiteral("'1'");
    sql += QStringLiteral(",") + Sql::number(cmbStation->BoundText()) + QStringLiteral(")");

    Transaction tx(Conn);
    if (!ExecuteSql(sql))
        return false;
    ExecuteSql(QStringLiteral("update Customer set Account=ID where Account=0"));
    if (!tx.commit()) {
        // The card keeps what was typed so that the operator can simply save again.
        Msg::error(QStringLiteral("客户资料没有保存：数据库没有接受这位客户，请检查输入后重新保存。"),
                   QStringLiteral("系统错误"));
        return false;
    }
    RecordsetPtr rs = OpenRecordset(QStringLiteral("select * from Customer where Address='")
                                    + Sql::text(Trim(txtAddress->text())) + QStringLiteral("'"));
    if (rs && rs->recordCount() > 0) {
        rs->moveFirst();
        Session::SelectedCustomerID = rs->field(QStringLiteral("ID")).toInt();
    }
    // Ready for the next customer.
    for (QLineEdit *e : {txtName, txtPhone, txtAddress, txtDetail})
        e->clear();
    if (chkAutoID->isChecked()) {
        txtPhone->setFocus();
    } else {
        txtAccount->setText(QString::number(qint64(Val(txtAccount->text())) + 1));
        txtAccount->setFocus();
    }
    return true;
}

bool frmCustomer::saveEdit()
{
    const QString sql = QStringLiteral("update Customer set ") + QStringLiteral("Address='")
                        + Sql::text(txtAddress->text()) + QStringLiteral("', ") + QStringLiteral("Phone='")
                        + Sql::text(txtPhone->text()) + QStringLiteral("', ") + QStringLiteral("Name='")
                        + Sql::text(Trim(txtName->text())) + QStringLiteral("', ") + QStringLiteral("detail='")
                        + Sql::text(txtDetail->text()) + QStringLiteral("', ") + QStringLiteral("CustType=")
                        + QString::number(cmbCustType->currentIndex()) + QStringLiteral(", ")
                        + QStringLiteral("StationID=") + Sql::number(cmbStation->BoundText()) + QStringLiteral(", ")
                        + (chkDisable->isChecked() ? QStringLiteral("Status='0'") : QStringLiteral("Status='1'"))
                        + QStringLiteral(" where ID=") + QString::number(mCurID);
    return ExecuteSql(sql);
}
