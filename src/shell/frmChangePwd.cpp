#include "frmChangePwd.h"

#include "data/Gateway.h"
#include "data/Session.h"
#include "data/SqlText.h"
#include "platform/Forms.h"
#include "platform/Prompter.h"

#include <QFormLayout>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>

frmChangePwd::frmChangePwd()
{
    setObjectName("frmChangePwd");
    setWindowTitle(QStringLiteral("修改用户密码"));
    txtPassword1 = new QLineEdit(this);
    txtPassword1->setObjectName("txtPassword1");
    txtPassword1->setEchoMode(QLineEdit::Password);
    txtPassword2 = new QLineEdit(this);
    txtPassword2->setObjectName("txtPassword2");
    txtPassword2->setEchoMode(QLineEdit::Password);
    btnOk = new QPushButton(QStringLiteral("确认"), this);
    btnOk->setObjectName("btnOk");
    btnOk->setDefault(true);
    btnCancel = new QPushButton(QStringLiteral("取消"), this);
    btnCancel->setObjectName("btnCancel");
    btnCancel->setAutoDefault(false);

    auto *form = new QFormLayout;
    form->addRow(QStringLiteral("请输入新密码："), txtPassword1);
    form->addRow(QStringLiteral("重输入新密码："), txtPassword2);
    auto *buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(btnOk);
    buttons->addWidget(btnCancel);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addLayout(buttons);
    setMinimumWidth(320);

    connect(txtPassword1, &QLineEdit::textChanged, this, &frmChangePwd::RefreshControl);
    connect(txtPassword2, &QLineEdit::textChanged, this, &frmChangePwd::RefreshControl);
    connect(btnOk, &QPushButton::clicked, this, &frmChangePwd::btnOk_Click);
    connect(btnCancel, &QPushButton::clicked, this, [this] { Forms::unload(this); });
    RefreshControl();
}

void frmChangePwd::RefreshControl()
{
    btnOk->setEnabled(txtPassword1->text() == txtPassword2->text());
}

void frmChangePwd::btnOk_Click()
{
    if (txtPassword1->text() != txtPassword2->text()) {
        Msg::error(QStringLiteral("两次输入密码不相同，更改密码失败！"), QStringLiteral("更改密码"));
        return;
    }
    ExecuteSql("update sysuser set pwd='" + Sql::text(txtPassword1->text())
               + "' where ID=" + QString::number(Session::UserID));
    Forms::unload(this);
}

void frmChangePwd::reject() { Forms::unload(this); }
