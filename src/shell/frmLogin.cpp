#include "frmLogin.h"

#include "views/DataCombo.h"
#include "data/Gateway.h"
#include "platform/Prompter.h"
#include "platform/VbRules.h"
#include "Shell.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

frmLogin::frmLogin()
{
    setObjectName("frmLogin");
    setWindowTitle(QStringLiteral("用户登录"));

    auto *Label1 = new QLabel(
        QStringLiteral("请选择操作员姓名并输入相应密码。初始用户为：“管理员” 密码为空"), this);
    Label1->setObjectName("Label1");
    Label1->setWordWrap(true);
    auto *lblUser = new QLabel(QStringLiteral("用户名称：:"), this);
    lblUser->setObjectName("lblLabels");
    auto *lblPassword = new QLabel(QStringLiteral("用户密码：:"), this);
    lblPassword->setObjectName("lblLabels");
    cmbUser = new DataCombo(this);
    cmbUser->setObjectName("cmbUser");
    txtPassword = new QLineEdit(this);
    txtPassword->setObjectName("txtPassword");
    txtPassword->setEchoMode(QLineEdit::Password);
    cmdOK = new QPushButton(QStringLiteral("确认"), this);
    cmdOK->setObjectName("cmdOK");
    cmdOK->setDefault(true);
    cmdCancel = new QPushButton(QStringLiteral("取消"), this);
    cmdCancel->setObjectName("cmdCancel");
    cmdCancel->setAutoDefault(false);

    auto *icon = new QLabel(this);
    icon->setPixmap(QPixmap(QStringLiteral(":/tarvik/icons/48/dialog-password.png")));
    auto *grid = new QGridLayout;
    grid->addWidget(lblUser, 0, 0);
    grid->addWidget(cmbUser, 0, 1);
    grid->addWidget(lblPassword, 1, 0);
    grid->addWidget(txtPassword, 1, 1);
    auto *top = new QHBoxLayout;
    top->addWidget(icon, 0, Qt::AlignTop);
    top->addWidget(Label1, 1);
    auto *buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(cmdOK);
    buttons->addWidget(cmdCancel);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(top);
    layout->addLayout(grid);
    layout->addLayout(buttons);
    setMinimumWidth(380);

    connect(cmdOK, &QPushButton::clicked, this, &frmLogin::cmdOK_Click);
    connect(cmdCancel, &QPushButton::clicked, this, &frmLogin::cmdCancel_Click);

    m_users = OpenRecordset("SELECT * FROM SysUser Where Status='1'");
    cmbUser->setRowSource(m_users, "Name", "ID");
    m_loginSucceeded = false;
}

QString frmLogin::boundUser() const { return cmbUser->BoundText(); }

bool frmLogin::CheckOnlineUsers()
{
    // The place for a limit on users online at once; the shop has none.
    return true;
}

void frmLogin::cmdOK_Click()
{
    if (cmbUser->BoundText().isEmpty()) {
        Msg::error(QStringLiteral("请先选定用户名！"), QStringLiteral("错误"));
        return;
    }
    QString stored;
    if (m_users) {
        m_users->setFilter(QString());
        m_users->setFilter("ID=" + cmbUser->BoundText());
        stored = m_users->text("Pwd");
    }
    if (Trim(stored) == Trim(txtPassword->text())) {
        m_loginSucceeded = true;
        if (CheckOnlineUsers()) {
            hide();
        } else {
            Msg::error(QStringLiteral("超过最大同时在线用户数限制，登录失败！"), QStringLiteral("失败"));
            Shell::endProgram();
        }
        return;
    }
    Msg::error(QStringLiteral("密码错误，请重新输入！"), QStringLiteral("错误"));
    txtPassword->setFocus();
    txtPassword->selectAll();
}

void frmLogin::cmdCancel_Click()
{
    m_loginSucceeded = false;
    hide();
}

void frmLogin::reject() { cmdCancel_Click(); }
