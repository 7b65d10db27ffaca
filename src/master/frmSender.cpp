#include "frmSender.h"

#include "CatalogForms.h"

#include "views/DataCombo.h"
#include "data/Gateway.h"
#include "data/SqlText.h"
#include "platform/Forms.h"
#include "platform/VbRules.h"

#include <QCheckBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

frmSender::frmSender()
{
    setObjectName("frmSender");
    setWindowTitle(QStringLiteral("送水工"));
    const auto edit = [this](const char *name) {
        auto *e = new QLineEdit(this);
        e->setObjectName(name);
        return e;
    };
    txtName = edit("txtName");
    txtPhone = edit("txtPhone");
    txtPrice = edit("txtPrice");
    txtPrice->setText("0");
    txtDetail = edit("txtDetail");
    new PriceField(txtPrice);
    chkDisable = new QCheckBox(QStringLiteral("暂停使用"), this);
    chkDisable->setObjectName("chkDisable");
    lblStation = new QLabel(QStringLiteral("所辖供水站："), this);
    lblStation->setObjectName("lblStation");
    cmbStation = new DataCombo(this);
    cmbStation->setObjectName("cmbStation");

    auto *form = new QFormLayout;
    form->addRow(QStringLiteral("姓名："), txtName);
    form->addRow(QStringLiteral("电话："), txtPhone);
    form->addRow(QStringLiteral("运费："), txtPrice);
    form->addRow(QStringLiteral("备注："), txtDetail);
    form->addRow(QString(), chkDisable);
    form->addRow(lblStation, cmbStation);
    layOut(form, 340);

    connect(txtName, &QLineEdit::textChanged, this,
            [this](const QString &text) { btnSave->setEnabled(!Trim(text).isEmpty()); });
    connect(btnSave, &QPushButton::clicked, this, &frmSender::btnSave_Click);
}

void frmSender::Form_Load()
{
    cmbStation->setRowSource(OpenRecordset("select * from Station WHERE Status='1'"), "Name", "ID");
    // One station is in daily use: the choice stays out of sight.
    cmbStation->hide();
    lblStation->hide();
    if (auto *form = findChild<QFormLayout *>())
        form->setRowVisible(cmbStation, false);
    if (mActionType != 2) {
        cmbStation->setBoundText("1");
        btnSave->setEnabled(false);
        return;
    }
    RecordsetPtr rs = OpenRecordset("Select * from Sender where ID=" + QString::number(mCurID));
    if (!rs || rs->recordCount() == 0) {
        unloadLater();
        return;
    }
    txtName->setText(rs->text("Name"));
    txtPhone->setText(rs->text("Phone"));
    txtDetail->setText(rs->text("Detail"));
    txtPrice->setText(rs->text("Price"));
    cmbStation->setBoundText(rs->text("StationID"));
    chkDisable->setChecked(Trim(rs->text("Status")) == "0");
    btnSave->setEnabled(true);
}

void frmSender::btnSave_Click()
{
    if (txtName->text().isEmpty() || !PriceField::accepted(txtPrice))
        return;
    const QString status = chkDisable->isChecked() ? "0" : "1";
    if (mActionType == 2) {
        const QString sql = "update Sender set " + QString("name='") + Sql::text(Trim(txtName->text()))
                            + "', " + "phone='" + Sql::text(txtPhone->text()) + "', " + "detail='"
                            + Sql::text(txtDetail->text()) + "', " + "price="
                            + Sql::number(Trim(txtPrice->text())) + ", " + "StationID="
                            + cmbStation->BoundText() + ", " + "Status='" + status + "'"
                            + " where ID=" + QString::number(mCurID);
        if (ExecuteSql(sql))
            Forms::unload(this);
    } else if (mActionType == 1) {
        const QString sql = QString("insert into Sender (name,phone,detail,status,price,StationID)")
                            + " values ('" + Sql::text(Trim(txtName->text())) + "','"
                            + Sql::text(txtPhone->text()) + "','" + Sql::text(txtDetail->text()) + "','"
                            + status + "'," + Sql::number(Trim(txtPrice->text())) + ","
                            + cmbStation->BoundText() + ")";
        if (ExecuteSql(sql))
            ResetInput();
    }
}

void frmSender::ResetInput()
{
    txtName->clear();
    txtPhone->clear();
    txtPrice->setText("0");
    txtDetail->clear();
    chkDisable->setChecked(false);
}
