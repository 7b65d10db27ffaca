#include "frmProduct.h"

#include "CatalogForms.h"

#include "views/DataCombo.h"
#include "data/Gateway.h"
#include "data/SqlText.h"
#include "platform/Forms.h"
#include "platform/Prompter.h"
#include "platform/VbRules.h"

#include <QCheckBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>

frmProduct::frmProduct()
{
    setObjectName("frmProduct");
    setWindowTitle(QStringLiteral("产品及服务"));
    const auto edit = [this](const char *name) {
        auto *e = new QLineEdit(this);
        e->setObjectName(name);
        return e;
    };
    txtName = edit("txtName");
    txtUnit = edit("txtUnit");
    txtPrice = edit("txtPrice");
    txtPrice->setText("0");
    txtDetail = edit("txtDetail");
    new PriceField(txtPrice);
    chkDisable = new QCheckBox(QStringLiteral("暂停使用"), this);
    chkDisable->setObjectName("chkDisable");
    chkIsDefault = new QCheckBox(QStringLiteral("属经常销售产品"), this);
    chkIsDefault->setObjectName("chkIsDefault");
    chkIsContainer = new QCheckBox(QStringLiteral("该项产品本身是空瓶"), this);
    chkIsContainer->setObjectName("chkIsContainer");
    cmbContainer = new DataCombo(this);
    cmbContainer->setObjectName("cmbContainer");

    auto *form = new QFormLayout;
    form->addRow(QStringLiteral("名称："), txtName);
    form->addRow(QStringLiteral("单位："), txtUnit);
    form->addRow(QStringLiteral("单价："), txtPrice);
    form->addRow(QStringLiteral("备注："), txtDetail);
    form->addRow(QString(), chkDisable);
    form->addRow(QString(), chkIsDefault);
    form->addRow(QString(), chkIsContainer);
    form->addRow(QStringLiteral("所用空瓶："), cmbContainer);
    layOut(form, 360);

    connect(txtName, &QLineEdit::textChanged, this, &frmProduct::RefreshControl);
    connect(txtUnit, &QLineEdit::textChanged, this, &frmProduct::RefreshControl);
    connect(chkIsContainer, &QCheckBox::clicked, this, &frmProduct::chkIsContainer_Click);
    connect(btnSave, &QPushButton::clicked, this, &frmProduct::btnSave_Click);
}

void frmProduct::Form_Load()
{
    cmbContainer->setRowSource(
        OpenRecordset("select * from Product WHERE isContainer='1' and Status='1'"), "Name", "ID");
    if (mActionType != 2) {
        btnSave->setEnabled(false);
        return;
    }
    RecordsetPtr rs = OpenRecordset("Select * from Product where ID=" + QString::number(mCurID));
    if (!rs || rs->recordCount() == 0) {
        unloadLater();
        return;
    }
    txtName->setText(rs->text("Name"));
    txtUnit->setText(rs->text("Unit"));
    txtDetail->setText(rs->text("Detail"));
    txtPrice->setText(rs->text("Price"));
    chkDisable->setChecked(Trim(rs->text("Status")) == "0");
    if (rs->text("IsContainer") == "1") {
        chkIsContainer->setChecked(true);
        chkIsContainer_Click();
    } else {
        chkIsContainer->setChecked(false);
    }
    cmbContainer->setBoundText(rs->text("ContainerID"));
    chkIsDefault->setChecked(rs->text("IsDefault") != "0");
    btnSave->setEnabled(true);
}

void frmProduct::RefreshControl()
{
    btnSave->setEnabled(!Trim(txtName->text()).isEmpty() && !Trim(txtUnit->text()).isEmpty());
}

void frmProduct::chkIsContainer_Click()
{
    if (chkIsContainer->isChecked()) {
        cmbContainer->setEnabled(false);
        chkIsDefault->setEnabled(false);
        return;
    }
    chkIsDefault->setEnabled(true);
    Msg::info(QStringLiteral("如果要取消该产品的空瓶属性，则所有以它该产品作为空瓶的产品都将成为无空瓶的产品！"),
              QStringLiteral("提示"));
    cmbContainer->setEnabled(true);
}

void frmProduct::btnSave_Click()
{
    if (txtName->text().isEmpty() || !PriceField::accepted(txtPrice))
        return;
    const QString price = Sql::number(Trim(txtPrice->text()));
    if (mActionType == 2) {
        QString sql = "update Product set " + QString("name='") + Sql::text(Trim(txtName->text()))
                      + "', " + "unit='" + Sql::text(txtUnit->text()) + "', " + "detail='"
                      + Sql::text(txtDetail->text()) + "', " + "price=" + price + ", "
                      + (chkIsDefault->isChecked() ? "IsDefault='1'," : "IsDefault='0',")
                      + (chkDisable->isChecked() ? "Status='0'," : "Status='1',");
        if (chkIsContainer->isChecked())
            sql += "IsContainer='1',ContainerID=0";
        else
            sql += "IsContainer='0',ContainerID=" + QString::number(qint64(Val(cmbContainer->BoundText())));
        sql += " where ID=" + QString::number(mCurID);
        if (!ExecuteSql(sql))
            return;
        // A bottle that stops being usable leaves no product pointing at it.
        if (chkDisable->isChecked() || !chkIsContainer->isChecked())
            ExecuteSql("Update Product set ContainerID=0 WHERE ContainerID=" + QString::number(mCurID));
        Forms::unload(this);
    } else if (mActionType == 1) {
        const QString sql =
            QString("insert into Product (name,unit,detail,IsDefault,status,IsContainer,ContainerID,price)")
            + " values ('" + Sql::text(Trim(txtName->text())) + "','" + Sql::text(txtUnit->text())
            + "','" + Sql::text(txtDetail->text()) + "','" + (chkIsDefault->isChecked() ? "1','" : "0','")
            + (chkDisable->isChecked() ? "0','" : "1','") + (chkIsContainer->isChecked() ? "1'," : "0',")
            + QString::number(qint64(Val(Trim(cmbContainer->BoundText())))) + "," + price + ")";
        if (ExecuteSql(sql))
            ResetInput();
    }
}

void frmProduct::ResetInput()
{
    txtName->clear();
    txtUnit->clear();
    txtPrice->setText("0");
    txtDetail->clear();
    chkDisable->setChecked(false);
    chkIsDefault->setChecked(false);
    // The bottle mark and the bottle stay, so a run of bottles needs the mark only once.
    txtName->setFocus();
}
