#include "frmUser.h"

#include "views/DataCombo.h"
#include "data/Gateway.h"
#include "data/SqlText.h"
#include "platform/Forms.h"
#include "platform/VbRules.h"
#include "platform/Prompter.h"

#include <QCheckBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>

frmUser::frmUser()
{
    setObjectName("frmUser");
    setWindowTitle(QStringLiteral("操作员"));
    txtName = new QLineEdit(this);
    txtName->setObjectName("txtName");
    txtPassword = new QLineEdit(this);
    txtPassword->setObjectName("txtPassword");
    txtPassword->setEchoMode(QLineEdit::Password);
    txtDetail = new QLineEdit(this);
    txtDetail->setObjectName("txtDetail");
    lsbRole = new QListWidget(this);
    lsbRole->setObjectName("lsbRole");
    lsbRole->setSelectionMode(QAbstractItemView::MultiSelection);
    lsbRole->addItems({"系统管理", "销售开票", "销售收款", "销售出库", "空瓶回收", "库存管理",
                       "结帐盘点", "查询统计"});
    lsbRole->setFixedHeight(lsbRole->sizeHintForRow(0) * lsbRole->count() + 2 * lsbRole->frameWidth() + 4);
    chkDisable = new QCheckBox(QStringLiteral("用户被禁用"), this);
    chkDisable->setObjectName("chkDisable");
    lblStation = new QLabel(QStringLiteral("所辖供水站："), this);
    lblStation->setObjectName("lblStation");
    cmbStation = new DataCombo(this);
    cmbStation->setObjectName("cmbStation");

    auto *form = new QFormLayout;
    form->addRow(QStringLiteral("用户名称："), txtName);
    form->addRow(QStringLiteral("初始密码："), txtPassword);
    form->addRow(QStringLiteral("备注"), txtDetail);
    form->addRow(QStringLiteral("权限设置："), lsbRole);
    form->addRow(QString(), chkDisable);
    form->addRow(lblStation, cmbStation);
    layOut(form, 360);

    connect(txtName, &QLineEdit::textChanged, this,
            [this](const QString &text) { btnSave->setEnabled(!Trim(text).isEmpty()); });
    connect(btnSave, &QPushButton::clicked, this, &frmUser::btnSave_Click);
}

void frmUser::Form_Load()
{
    cmbStation->setRowSource(OpenRecordset("select * from Station WHERE Status='1'"), "Name", "ID");
    // One station is in daily use: the choice stays out of sight.
    cmbStation->hide();
    lblStation->hide();
    if (auto *form = findChild<QFormLayout *>())
        form->setRowVisible(cmbStation, false);

    if (mActionType != 2) {
        btnSave->setEnabled(false);
        cmbStation->setBoundText("1");
    } else {
        RecordsetPtr rs = OpenRecordset("Select * from SysUser where ID=" + QString::number(mCurID));
        if (!rs || rs->recordCount() == 0) {
            unloadLater();
            return;
        }
        txtName->setText(rs->text("Name"));
        txtDetail->setText(rs->text("Detail"));
        cmbStation->setBoundText(rs->text("StationID"));
        chkDisable->setChecked(Trim(rs->text("Status")) == "0");
        SetRoleString(Trim(rs->text("rolestring")));
        btnSave->setEnabled(true);
        // The password is its owner's business; here it can be neither seen nor changed.
        txtPassword->setEnabled(false);
        txtPassword->setText("********");
    }
    if (mCurID == GetMinValue("SysUser", "ID")) {
        Msg::info(QStringLiteral("当前用户是系统管理，不能被禁用和修改权限！"), QStringLiteral("消息"));
        chkDisable->setEnabled(false);
        lsbRole->setEnabled(false);
        cmbStation->setEnabled(false);
    }
}

QString frmUser::GetRoleString() const
{
    QString roles;
    for (int i = 0; i < lsbRole->count(); ++i)
        roles += lsbRole->item(i)->isSelected() ? '1' : '0';
    return roles;
}

void frmUser::SetRoleString(const QString &roles)
{
    for (int i = 0; i < lsbRole->count(); ++i)
        lsbRole->item(i)->setSelected(i < roles.size() && roles.at(i) == '1');
}

void frmUser::ResetInput()
{
    txtName->clear();
    txtPassword->clear();
    txtDetail->clear();
    chkDisable->setChecked(false);
    for (int i = 0; i < lsbRole->count(); ++i)
        lsbRole->item(i)->setSelected(false);
}

void frmUser::btnSave_Click()
{
    if (txtName->text().isEmpty())
        return;
    if (mActionType == 2) {
        const QString sql = "update SysUser set " + QString("name='") + Sql::text(Trim(txtName->text()))
                            + "', " + "detail='" + Sql::text(Trim(txtDetail->text())) + "', "
                            + "rolestring='" + GetRoleString() + "', " + "StationID="
                            + cmbStation->BoundText() + ", "
                            + (chkDisable->isChecked() ? "Status='0'" : "Status='1'")
                            + " where ID=" + QString::number(mCurID);
        if (ExecuteSql(sql))
            Forms::unload(this);
    } else if (mActionType == 1) {
        const QString sql = QString("insert into SysUser (name,pwd,rolestring,detail,status,StationID)")
                            + " values ('" + Sql::text(Trim(txtName->text())) + "','"
                            + Sql::text(txtPassword->text()) + "','" + GetRoleString() + "','"
                            + Sql::text(txtDetail->text())
                            + (chkDisable->isChecked() ? "','0'" : "','1'") + ","
                            + cmbStation->BoundText() + ")";
        if (ExecuteSql(sql))
            ResetInput();
    }
}
