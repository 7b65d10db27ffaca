#include "frmStore.h"

#include "VoucherSave.h"

#include "data/Gateway.h"
#include "data/Session.h"
#include "platform/Clock.h"
#include "platform/Forms.h"
#include "platform/Prompter.h"
#include "platform/VbError.h"
#include "platform/VbRules.h"
#include "views/DataCombo.h"
#include "views/LineGrid.h"
#include "views/LineTable.h"

#include <QButtonGroup>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTimer>
#include <QVBoxLayout>

namespace {
QString fieldText(const RecordsetPtr &rs, const QString &name)
{
    const QVariant v = rs->field(name);
    if (v.isNull())
        return QString();
    return v.typeId() == QMetaType::Double ? NumText(v.toDouble()) : v.toString();
}
}

frmStore::frmStore(QWidget *parent) : QDialog(parent), m_lines(new LineTable(LineTable::voucher(), this))
{
    setObjectName(QStringLiteral("frmStore"));
    setWindowTitle(QStringLiteral("库存管理"));
    buildLayout();
}

void frmStore::buildLayout()
{
    auto label = [this](const QString &text, QWidget *buddy) {
        auto *l = new QLabel(text, this);
        l->setBuddy(buddy);
        l->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        return l;
    };
    auto field = [this](const char *name) {
        auto *e = new QLineEdit(this);
        e->setObjectName(QLatin1String(name));
        return e;
    };

    auto *kind = new QGroupBox(this);
    optType0 = new QRadioButton(QStringLiteral("商品进库单"), kind);
    optType0->setObjectName(QStringLiteral("optType_0"));
    optType1 = new QRadioButton(QStringLiteral("商品出库单"), kind);
    optType1->setObjectName(QStringLiteral("optType_1"));
    optType0->setChecked(true);
    auto *group = new QButtonGroup(kind);
    group->addButton(optType0, 0);
    group->addButton(optType1, 1);
    auto *kl = new QHBoxLayout(kind);
    kl->addWidget(optType0);
    kl->addSpacing(24);
    kl->addWidget(optType1);
    kl->addStretch(1);

    txtPaperID = field("txtPaperID");
    txtCreateDate = field("txtCreateDate");
    txtTotalAmount = field("txtTotalAmount");
    txtTotalMoney = field("txtTotalMoney");
    for (QLineEdit *e : {txtTotalAmount, txtTotalMoney}) {
        e->setReadOnly(true);
        e->setFocusPolicy(Qt::ClickFocus);
        e->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        QPalette p = e->palette();
        p.setColor(QPalette::Base, p.color(QPalette::Window));
        p.setColor(QPalette::Text, Qt::red);
        e->setPalette(p);
    }
    txtDetail = new QPlainTextEdit(this);
    txtDetail->setObjectName(QStringLiteral("txtDetail"));
    txtDetail->setTabChangesFocus(true);
    txtDetail->setFixedHeight(txtDetail->fontMetrics().height() * 3 + 12);

    cmbStation = new DataCombo(this);
    cmbStation->setObjectName(QStringLiteral("cmbStation"));
    lblStation = new QLabel(QStringLiteral("选择仓库所属供水站："), this);
    lblStation->setObjectName(QStringLiteral("lblStation"));

    lblInfo = new QLabel(this);
    lblInfo->setObjectName(QStringLiteral("lblInfo"));
    QPalette info = lblInfo->palette();
    info.setColor(QPalette::WindowText, Qt::red);
    lblInfo->setPalette(info);

    dbgDetail = new LineGrid(this);
    dbgDetail->setObjectName(QStringLiteral("dbgDetail"));
    dbgDetail->setLines(m_lines);
    connect(m_lines, &LineTable::cellCommitted, this, [this] {
        // A quantity too large for a whole number is a failed step, not the end of the program.
        try {
            SumArray();
        } catch (const VbError &e) {
            Msg::error(e.description(), QStringLiteral("错误"));
        }
    });

    btnSave = new QPushButton(QStringLiteral("保存"), this);
    btnSave->setObjectName(QStringLiteral("btnSave"));
    btnExit = new QPushButton(QStringLiteral("退出"), this);
    btnExit->setObjectName(QStringLiteral("btnExit"));
    for (QPushButton *b : {btnSave, btnExit}) {
        // Enter commits a grid cell; it never presses a button by itself.
        b->setAutoDefault(false);
        b->setDefault(false);
    }

    auto *head = new QGridLayout;
    head->addWidget(label(QStringLiteral("原始单据编号："), txtPaperID), 0, 0);
    head->addWidget(txtPaperID, 0, 1);
    head->addWidget(label(QStringLiteral("单据日期："), txtCreateDate), 0, 2);
    head->addWidget(txtCreateDate, 0, 3);
    head->addWidget(lblStation, 1, 0);
    head->addWidget(cmbStation, 1, 1);
    head->setColumnStretch(1, 1);
    head->setColumnStretch(3, 1);

    auto *totals = new QHBoxLayout;
    totals->addWidget(label(QStringLiteral("数 量 总 额："), txtTotalAmount));
    totals->addWidget(txtTotalAmount, 1);
    totals->addSpacing(24);
    totals->addWidget(label(QStringLiteral("总金额："), txtTotalMoney));
    totals->addWidget(txtTotalMoney, 1);

    auto *remark = new QHBoxLayout;
    auto *remarkLabel = label(QStringLiteral("备 注 信 息："), txtDetail);
    remarkLabel->setAlignment(Qt::AlignRight | Qt::AlignTop);
    remark->addWidget(remarkLabel);
    remark->addWidget(txtDetail, 1);

    auto *buttons = new QHBoxLayout;
    buttons->addWidget(lblInfo, 1);
    buttons->addWidget(btnSave);
    buttons->addWidget(btnExit);

    auto *main = new QVBoxLayout(this);
    main->addWidget(kind);
    main->addLayout(head);
    main->addWidget(dbgDetail, 1);
    main->addLayout(totals);
    main->addLayout(remark);
    main->addLayout(buttons);
    resize(720, 560);

    setTabOrder(optType0, optType1);
    setTabOrder(optType1, txtPaperID);
    setTabOrder(txtPaperID, txtCreateDate);
    setTabOrder(txtCreateDate, dbgDetail);
    setTabOrder(dbgDetail, txtDetail);
    setTabOrder(txtDetail, btnSave);
    setTabOrder(btnSave, btnExit);

    connect(txtTotalAmount, &QLineEdit::textChanged, this, [this] { UpdateSaveButton(); });
    connect(txtTotalMoney, &QLineEdit::textChanged, this, [this] { UpdateSaveButton(); });
    connect(btnSave, &QPushButton::clicked, this, &frmStore::btnSave_Click);
    connect(btnExit, &QPushButton::clicked, this, &frmStore::btnExit_Click);
}

int frmStore::exec()
{
    if (!m_loaded && !Form_Load()) {
        closeWindow();
        return QDialog::Rejected;
    }
    return QDialog::exec();
}

void frmStore::showEvent(QShowEvent *event)
{
    QDialog::showEvent(event);
    if (!m_loaded && !Form_Load())
        QTimer::singleShot(0, this, [this] { closeWindow(); });
}

bool frmStore::Form_Load()
{
    m_loaded = true;
    cmbStation->setRowSource(OpenRecordset(QStringLiteral("select * from Station WHERE Status='1'")),
                             QStringLiteral("Name"), QStringLiteral("ID"));
    // One station is in daily use: a voucher goes to station 1 without asking.
    cmbStation->hide();
    lblStation->hide();
    m_lines->clear();
    dbgDetail->productDropDown()->setRows(OpenRecordset(QStringLiteral("Select * from product where Status='1'")));

    if (mActionType == 1) {
        txtCreateDate->setText(DateText(Clock::today()));
        btnSave->setEnabled(false);
        cmbStation->setBoundText(QStringLiteral("1"));
    } else if (mActionType == 2) {
        if (!loadVoucher())
            return false;
        btnSave->setEnabled(true); // a hidden button stays hidden
        txtCreateDate->setEnabled(false);
    }
    return true;
}

// False when there is nothing to show: the voucher is gone, or none of its lines can be read.
bool frmStore::loadVoucher()
{
    const QString id = QString::number(mCurID);
    RecordsetPtr rs = OpenRecordset(QStringLiteral("Select * from Store where ID=") + id);
    if (!rs || rs->recordCount() < 1)
        return false;
    rs->moveFirst();
    cmbStation->setBoundText(fieldText(rs, QStringLiteral("StationID")));
    txtPaperID->setText(fieldText(rs, QStringLiteral("PaperID")));
    txtCreateDate->setText(fieldText(rs, QStringLiteral("CreateDate")));
    txtDetail->setPlainText(fieldText(rs, QStringLiteral("Detail")));
    if (fieldText(rs, QStringLiteral("Direction")) == QLatin1String("0"))
        optType0->setChecked(true);
    else
        optType1->setChecked(true);
    txtTotalAmount->setText(fieldText(rs, QStringLiteral("TotalAmount")));
    txtTotalMoney->setText(fieldText(rs, QStringLiteral("TotalMoney")));
    // The notes do not lock the fields; without the button nothing typed can be stored.
    if (fieldText(rs, QStringLiteral("HandInput")) == QLatin1String("0")) {
        btnSave->hide();
        lblInfo->setText(QStringLiteral("（注：本单据是系统生成单据，不能修改！）"));
    }
    if (fieldText(rs, QStringLiteral("FinishFlag")) == QLatin1String("1")) {
        btnSave->hide();
        lblInfo->setText(QStringLiteral("（注：本单据已结转，不能再修改！）"));
    }

    RecordsetPtr lines = OpenRecordset(
        QStringLiteral("select a.ProductID as product_id,a.MyAmount as product_MyAmount,a.price as "
                       "product_price,a.MyMoney as product_MyMoney,b.name as product_name,b.unit as "
                       "product_unit from Store_detail as a ,product as b where a.StoreID=")
        + id + QStringLiteral(" and a.ProductID=b.ID"));
    if (!lines || lines->recordCount() < 1)
        return false;
    for (lines->moveFirst(); !lines->eof(); lines->moveNext())
        m_lines->appendLine({lines->field(QStringLiteral("Product_ID")), lines->text(QStringLiteral("Product_Name")),
                             lines->text(QStringLiteral("Product_Unit")), lines->field(QStringLiteral("Product_Price")),
                             lines->field(QStringLiteral("Product_MyAmount")),
                             lines->field(QStringLiteral("Product_MyMoney"))});
    return true;
}

// Plain text comparisons: "0.0" or an empty money total still counts as something.
void frmStore::UpdateSaveButton()
{
    const QString amount = txtTotalAmount->text();
    btnSave->setEnabled(!amount.isEmpty() && amount != QLatin1String("0") && !txtTotalMoney->text().isEmpty());
}

void frmStore::SumArray()
{
    const LineTable::Totals t = m_lines->totals();
    txtTotalAmount->setText(QString::number(t.amount));
    txtTotalMoney->setText(NumText(t.money));
}

void frmStore::ClearVoucher()
{
    for (QLineEdit *e : {txtPaperID, txtTotalMoney, txtTotalAmount})
        e->clear();
    txtDetail->clear();
    m_lines->clear();
}

VoucherInput frmStore::input() const
{
    VoucherInput in;
    in.paperID = txtPaperID->text();
    in.createDate = txtCreateDate->text();
    in.totalAmount = txtTotalAmount->text();
    in.totalMoney = txtTotalMoney->text();
    in.detail = txtDetail->toPlainText();
    in.stationID = cmbStation->BoundText();
    in.goodsOut = !optType0->isChecked();
    return in;
}

void frmStore::btnSave_Click()
{
    // A cell still being typed in counts as keyed, as leaving it would.
    if (!dbgDetail->finishEditing())
        return;
    if (mActionType == 1) {
        if (VoucherSave::insert(input(), *m_lines))
            ClearVoucher();
    } else if (mActionType == 2) {
        if (VoucherSave::update(mCurID, input(), *m_lines))
            closeWindow();
    }
}

void frmStore::btnExit_Click() { closeWindow(); }

void frmStore::reject() { closeWindow(); }

void frmStore::closeWindow() { Forms::unload(this); }
