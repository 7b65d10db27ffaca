#include "frmSale.h"

#include "views/DataCombo.h"
#include "views/LineGrid.h"
#include "data/Gateway.h"
#include "data/RecordsetModel.h"
#include "data/Session.h"
#include "data/SqlText.h"
#include "data/ValidateField.h"
#include "platform/Clock.h"
#include "platform/Forms.h"
#include "platform/Modal.h"
#include "platform/Prompter.h"
#include "platform/VbError.h"
#include "platform/VbRules.h"

#include <QApplication>
#include <QFocusEvent>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QShortcut>
#include <QTabWidget>
#include <QTimer>
#include <QVBoxLayout>

namespace {
const QString ErrorTitle = QStringLiteral("错误");

QString fieldText(const RecordsetPtr &rs, const QString &name)
{
    const QVariant v = rs->field(name);
    if (v.isNull())
        return QString();
    if (v.typeId() == QMetaType::Double)
        return NumText(v.toDouble());
    return v.toString();
}

QString custTypeLabel(int type)
{
    static const char *const labels[] = {"未开户", "已开户", "大客户", "托管户", "其它"};
    return type >= 0 && type < 5 ? QString::fromUtf8(labels[type]) : QString();
}

QLineEdit *numberField(QWidget *parent, const QString &name, bool locked)
{
    auto *e = new QLineEdit(parent);
    e->setObjectName(name);
    e->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    e->setReadOnly(locked);
    e->setText(QStringLiteral("0"));
    if (locked)
        e->setFocusPolicy(Qt::ClickFocus);
    return e;
}

void colour(QLineEdit *e, const QColor &c, bool bold)
{
    QPalette p = e->palette();
    p.setColor(QPalette::Text, c);
    e->setPalette(p);
    QFont f = e->font();
    f.setBold(bold);
    e->setFont(f);
}
}

template <class F> void frmSale::guarded(F &&f)
{
    try {
        f();
    } catch (const VbError &e) {
        if (Conn.inTransaction())
            Conn.RollbackTrans();
        Msg::error(e.description(), ErrorTitle);
    }
}

frmSale::frmSale(QWidget *parent) : QDialog(parent), m_lines(new LineTable(LineTable::ticket(), this))
{
    setObjectName(QStringLiteral("frmSale"));
    setWindowTitle(QStringLiteral("销售单据"));
    buildLayout();
    setUpDetailGrid();
}

// ---------------------------------------------------------------------------------------------
// The window's face

void frmSale::buildLayout()
{
    auto label = [this](const QString &text, QWidget *buddy) {
        auto *l = new QLabel(text, this);
        l->setBuddy(buddy);
        l->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        return l;
    };
    auto field = [this](const QString &name, bool locked) {
        auto *e = new QLineEdit(this);
        e->setObjectName(name);
        e->setReadOnly(locked);
        if (locked)
            e->setFocusPolicy(Qt::ClickFocus);
        return e;
    };

    SSTab1 = new QTabWidget(this);
    SSTab1->setObjectName(QStringLiteral("SSTab1"));
    SSTab1->setFocusPolicy(Qt::NoFocus);
    auto *basic = new QWidget(SSTab1);
    auto *history = new QWidget(SSTab1);
    SSTab1->addTab(basic, QStringLiteral("基本信息"));
    SSTab1->addTab(history, QStringLiteral("客户历史购水资料"));

    txtSaleID = field(QStringLiteral("txtSaleID"), true);
    txtCreateDate = field(QStringLiteral("txtCreateDate"), false);
    txtCustAccount = field(QStringLiteral("txtCustAccount"), false);
    txtCustPhone = field(QStringLiteral("txtCustPhone"), false);
    txtCustAddress = field(QStringLiteral("txtCustAddress"), false);
    txtCustName = field(QStringLiteral("txtCustName"), true);
    txtCustType = field(QStringLiteral("txtCustType"), true);
    txtCustCreateDate = field(QStringLiteral("txtCustCreateDate"), true);
    for (QLineEdit *e : {txtSaleID, txtCustName, txtCustType, txtCustCreateDate})
        e->setPalette([&] { QPalette p = e->palette(); p.setColor(QPalette::Base, p.color(QPalette::Window)); return p; }());

    cmbSender = new DataCombo(this);
    cmbSender->setObjectName(QStringLiteral("cmbSender"));
    txtTransferFee = numberField(this, QStringLiteral("txtTransferFee"), false);
    txtTotalAmount = numberField(this, QStringLiteral("txtTotalAmount"), true);
    txtOutAmount = numberField(this, QStringLiteral("txtOutAmount"), true);
    txtTotalMoney = numberField(this, QStringLiteral("txtTotalMoney"), true);
    txtInMoney = numberField(this, QStringLiteral("txtInMoney"), true);
    txtTotalContainer = numberField(this, QStringLiteral("txtTotalContainer"), true);
    txtInContainer = numberField(this, QStringLiteral("txtInContainer"), true);
    for (QLineEdit *e : {txtTotalAmount, txtTotalMoney, txtTotalContainer})
        colour(e, Qt::red, true);
    txtDetail = new QPlainTextEdit(this);
    txtDetail->setObjectName(QStringLiteral("txtDetail"));
    txtDetail->setTabChangesFocus(true);
    txtDetail->setFixedHeight(txtDetail->fontMetrics().height() * 3 + 12);

    txtHistoryAmount = numberField(this, QStringLiteral("txtHistoryAmount"), true);
    txtHistoryMoney = numberField(this, QStringLiteral("txtHistoryMoney"), true);
    txtHistoryMoneyBalance = numberField(this, QStringLiteral("txtHistoryMoneyBalance"), true);
    txtHistoryContainerBalance = numberField(this, QStringLiteral("txtHistoryContainerBalance"), true);
    txtHistoryTimes = numberField(this, QStringLiteral("txtHistoryTimes"), true);
    for (QLineEdit *e : {txtHistoryAmount, txtHistoryMoney, txtHistoryMoneyBalance, txtHistoryContainerBalance,
                         txtHistoryTimes})
        colour(e, Qt::blue, false);

    cmbStation = new DataCombo(this);
    cmbStation->setObjectName(QStringLiteral("cmbStation"));
    lblStation = new QLabel(QStringLiteral("所辖供水站："), this);
    lblStation->setObjectName(QStringLiteral("lblStation"));

    dbgDetail = new LineGrid(this);
    dbgDetail->setObjectName(QStringLiteral("dbgDetail"));

    // The customer block.
    auto *customer = new QGroupBox(QStringLiteral("客户"), basic);
    auto *cg = new QGridLayout(customer);
    cg->addWidget(label(QStringLiteral("客户编号："), txtCustAccount), 0, 0);
    cg->addWidget(txtCustAccount, 0, 1);
    cg->addWidget(label(QStringLiteral("客户电话："), txtCustPhone), 0, 2);
    cg->addWidget(txtCustPhone, 0, 3);
    cg->addWidget(label(QStringLiteral("客户姓名："), txtCustName), 0, 4);
    cg->addWidget(txtCustName, 0, 5);
    cg->addWidget(label(QStringLiteral("客户地址："), txtCustAddress), 1, 0);
    cg->addWidget(txtCustAddress, 1, 1, 1, 3);
    cg->addWidget(label(QStringLiteral("客户种类："), txtCustType), 1, 4);
    cg->addWidget(txtCustType, 1, 5);
    cg->addWidget(lblStation, 2, 0);
    cg->addWidget(cmbStation, 2, 1);
    cg->addWidget(label(QStringLiteral("开户日期："), txtCustCreateDate), 2, 4);
    cg->addWidget(txtCustCreateDate, 2, 5);
    cg->setColumnStretch(1, 1);
    cg->setColumnStretch(3, 1);
    cg->setColumnStretch(5, 1);

    auto *head = new QHBoxLayout;
    head->addWidget(label(QStringLiteral("单据编号："), txtSaleID));
    head->addWidget(txtSaleID);
    head->addWidget(label(QStringLiteral("单据日期："), txtCreateDate));
    head->addWidget(txtCreateDate);
    head->addStretch(1);
    head->addWidget(label(QStringLiteral("送水工："), cmbSender));
    head->addWidget(cmbSender);
    head->addWidget(label(QStringLiteral("搬运费："), txtTransferFee));
    head->addWidget(txtTransferFee);
    cmbSender->setMinimumWidth(110);
    txtTransferFee->setMaximumWidth(80);

    // Captioned fields two to a row, as the totals and the history sums stand.
    const auto twoColumns = [&label](QGroupBox *box, const QList<QPair<QString, QLineEdit *>> &fields) {
        auto *grid = new QGridLayout(box);
        for (int i = 0; i < fields.size(); ++i) {
            grid->addWidget(label(fields[i].first, fields[i].second), i / 2, (i % 2) * 2);
            grid->addWidget(fields[i].second, i / 2, (i % 2) * 2 + 1);
        }
    };
    auto *figures = new QGroupBox(QStringLiteral("合计"), basic);
    twoColumns(figures, {{QStringLiteral("应发货总数："), txtTotalAmount},
                                                    {QStringLiteral("实发货总数："), txtOutAmount},
                                                    {QStringLiteral("应收现金："), txtTotalMoney},
                                                    {QStringLiteral("实收现金："), txtInMoney},
                                                    {QStringLiteral("应返还空瓶数："), txtTotalContainer},
                                                    {QStringLiteral("已返还空瓶数："), txtInContainer}});
    auto *past = new QGroupBox(QStringLiteral("客户历史"), basic);
    twoColumns(past, {{QStringLiteral("购水总数量："), txtHistoryAmount},
                                                     {QStringLiteral("总购水金额："), txtHistoryMoney},
                                                     {QStringLiteral("总欠费金额："), txtHistoryMoneyBalance},
                                                     {QStringLiteral("总欠空瓶数："), txtHistoryContainerBalance},
                                                     {QStringLiteral("总购水次数："), txtHistoryTimes}});
    auto *remark = new QHBoxLayout;
    auto *remarkLabel = label(QStringLiteral("备    注："), txtDetail);
    remarkLabel->setAlignment(Qt::AlignRight | Qt::AlignTop);
    remark->addWidget(remarkLabel);
    remark->addWidget(txtDetail);

    auto *bottom = new QHBoxLayout;
    bottom->addWidget(figures, 3);
    bottom->addWidget(past, 2);

    auto *bl = new QVBoxLayout(basic);
    bl->addLayout(head);
    bl->addWidget(customer);
    bl->addWidget(dbgDetail, 1);
    bl->addLayout(bottom);
    bl->addLayout(remark);

    dbgHistory = new QTableView(history);
    dbgHistory->setObjectName(QStringLiteral("dbgHistory"));
    dbgHistory->setEditTriggers(QAbstractItemView::NoEditTriggers);
    dbgHistory->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_history = new RecordsetModel(this);
    auto money = [](const QVariant &v) { return v.isNull() ? QString() : Format(v.toDouble(), QStringLiteral("Currency")); };
    auto plain = [](const QVariant &v) {
        return v.isNull() ? QString() : v.typeId() == QMetaType::Double ? NumText(v.toDouble()) : v.toString();
    };
    const Qt::Alignment right = Qt::AlignRight | Qt::AlignVCenter;
    m_history->setColumns({{QStringLiteral("单据编号"), QStringLiteral("ID"), 900, right, plain},
                           {QStringLiteral("购水日期"), QStringLiteral("CreateDate"), 1300, Qt::AlignLeft | Qt::AlignVCenter, plain},
                           {QStringLiteral("总数量"), QStringLiteral("TotalAmount"), 900, right, plain},
                           {QStringLiteral("总金额"), QStringLiteral("TotalMoney"), 1200, right, money},
                           {QStringLiteral("欠瓶总额"), QStringLiteral("ContainerBalance"), 1000, right, plain},
                           {QStringLiteral("欠钱总额"), QStringLiteral("MoneyBalance"), 1000, right, plain},
                           {QStringLiteral("送水工编号"), QStringLiteral("SenderID"), 1100, right, plain},
                           {QStringLiteral("操作员编号"), QStringLiteral("UserID"), 1100, right, plain}});
    dbgHistory->setModel(m_history);
    // The model's size hint gives widths only; the head row keeps a readable height.
    dbgHistory->horizontalHeader()->setMinimumHeight(dbgHistory->horizontalHeader()->fontMetrics().height() + 8);
    for (int c = 0; c < m_history->columns().size(); ++c)
        dbgHistory->setColumnWidth(c, RecordsetModel::twipsToPixels(m_history->columns().at(c).widthTwips));
    auto *hl = new QVBoxLayout(history);
    hl->addWidget(dbgHistory);

    // The address hits lie over the form, under the address field.
    dtlCustomer = new QListView(this);
    dtlCustomer->setObjectName(QStringLiteral("dtlCustomer"));
    dtlCustomer->setEditTriggers(QAbstractItemView::NoEditTriggers);
    dtlCustomer->setFrameShape(QFrame::Box);
    // One character of an address finds thousands of customers on every keystroke. Every row
    // is one line of the same font, so the list takes the first row's height for all of them
    // instead of measuring each address, and reads only the rows it draws.
    dtlCustomer->setUniformItemSizes(true);
    m_addresses = new RecordsetModel(this);
    GridColumn address;
    address.caption = QStringLiteral("客户地址");
    address.field = QStringLiteral("Address");
    m_addresses->setColumns({address});
    dtlCustomer->setModel(m_addresses);
    dtlCustomer->hide();

    auto button = [this](const QString &name, const QString &caption) {
        auto *b = new QPushButton(caption, this);
        b->setObjectName(name);
        // Enter in a field moves on; it never presses a button by itself.
        b->setAutoDefault(false);
        b->setDefault(false);
        return b;
    };
    btnAddCustomer = button(QStringLiteral("btnAddCustomer"), QStringLiteral("新开户"));
    btnSave = button(QStringLiteral("btnSave"), QStringLiteral("保存"));
    btnSavePrint = button(QStringLiteral("btnSavePrint"), QStringLiteral("保存并打印"));
    btnReset = button(QStringLiteral("btnReset"), QStringLiteral("重置"));
    btnPreview = button(QStringLiteral("btnPreview"), QStringLiteral("打印预览"));
    btnPrintSetup = button(QStringLiteral("btnPrintSetup"), QStringLiteral("打印设置"));
    btnExit = button(QStringLiteral("btnExit"), QStringLiteral("退出"));
    connect(new QShortcut(QKeySequence(Qt::CTRL | Qt::Key_S), this), &QShortcut::activated, this,
            [this] { saveByKey(btnSave); });
    connect(new QShortcut(QKeySequence(Qt::CTRL | Qt::Key_P), this), &QShortcut::activated, this,
            [this] { saveByKey(btnSavePrint); });
    btnSave->setToolTip(QStringLiteral("Ctrl+S"));
    btnSavePrint->setToolTip(QStringLiteral("Ctrl+P"));

    auto *buttons = new QHBoxLayout;
    buttons->addWidget(btnAddCustomer);
    buttons->addStretch(1);
    for (QPushButton *b : {btnSave, btnSavePrint, btnReset, btnPreview, btnPrintSetup, btnExit})
        buttons->addWidget(b);

    auto *main = new QVBoxLayout(this);
    main->addWidget(SSTab1, 1);
    main->addLayout(buttons);
    resize(860, 640);

    // The telephone operator's road: who, then the lines, then worker and fee, then save.
    setTabOrder(txtCustAccount, txtCustPhone);
    setTabOrder(txtCustPhone, txtCustAddress);
    setTabOrder(txtCustAddress, dbgDetail);
    setTabOrder(dbgDetail, cmbSender);
    setTabOrder(cmbSender, txtTransferFee);
    setTabOrder(txtTransferFee, txtDetail);
    setTabOrder(txtDetail, btnSave);
    setTabOrder(btnSave, btnSavePrint);
    setTabOrder(btnSavePrint, btnReset);
    setTabOrder(btnReset, btnPreview);
    setTabOrder(btnPreview, btnPrintSetup);
    setTabOrder(btnPrintSetup, btnExit);
    setTabOrder(btnExit, btnAddCustomer);
    setTabOrder(btnAddCustomer, txtCreateDate);
    setTabOrder(txtCreateDate, txtCustAccount);

    for (QWidget *w : {static_cast<QWidget *>(txtCustAccount), static_cast<QWidget *>(txtCustPhone),
                       static_cast<QWidget *>(txtCustAddress), static_cast<QWidget *>(txtInContainer),
                       static_cast<QWidget *>(txtInMoney), static_cast<QWidget *>(txtOutAmount),
                       static_cast<QWidget *>(txtTransferFee), static_cast<QWidget *>(dtlCustomer)})
        w->installEventFilter(this);

    connect(txtCustAccount, &QLineEdit::returnPressed, dbgDetail, [this] { dbgDetail->setFocus(); });
    connect(txtCustPhone, &QLineEdit::returnPressed, dbgDetail, [this] { dbgDetail->setFocus(); });
    connect(txtCustAddress, &QLineEdit::returnPressed, dbgDetail, [this] { dbgDetail->setFocus(); });
    connect(txtCustAddress, &QLineEdit::textChanged, this, [this] { txtCustAddress_Change(); });
    connect(txtTotalAmount, &QLineEdit::textChanged, this, [this] { UpdateSaveButtons(); });
    connect(txtTotalMoney, &QLineEdit::textChanged, this, [this] { UpdateSaveButtons(); });
    connect(dtlCustomer, &QListView::clicked, this, [this](const QModelIndex &i) { chooseAddress(i); });
    connect(dtlCustomer, &QListView::activated, this, [this](const QModelIndex &i) { chooseAddress(i); });
    connect(cmbSender, &QComboBox::currentIndexChanged, this, [this] { cmbSender_Change(); });

    connect(btnAddCustomer, &QPushButton::clicked, this, &frmSale::btnAddCustomer_Click);
    connect(btnSave, &QPushButton::clicked, this, &frmSale::btnSave_Click);
    connect(btnSavePrint, &QPushButton::clicked, this, &frmSale::btnSavePrint_Click);
    connect(btnReset, &QPushButton::clicked, this, &frmSale::btnReset_Click);
    connect(btnPreview, &QPushButton::clicked, this, &frmSale::btnPreview_Click);
    connect(btnPrintSetup, &QPushButton::clicked, this, &frmSale::btnPrintSetup_Click);
    connect(btnExit, &QPushButton::clicked, this, &frmSale::btnExit_Click);
}

void frmSale::setUpDetailGrid()
{
    dbgDetail->setLines(m_lines);
    connect(m_lines, &LineTable::cellCommitted, this, [this] { guarded([this] { SumArray(); }); });
}

// ---------------------------------------------------------------------------------------------
// Load

int frmSale::exec()
{
    if (!m_loaded && !Form_Load()) {
        closeWindow();
        return QDialog::Rejected;
    }
    return QDialog::exec();
}

void frmSale::showEvent(QShowEvent *event)
{
    QDialog::showEvent(event);
    if (!m_loaded && !Form_Load())
        QTimer::singleShot(0, this, [this] { closeWindow(); });
}

bool frmSale::Form_Load()
{
    m_loaded = true;
    AutoOutAmount = GetSysValue(QStringLiteral("AutoOutAmount")) == QLatin1String("1");
    AutoInMoney = GetSysValue(QStringLiteral("AutoInMoney")) == QLatin1String("1");
    AutoInContainer = GetSysValue(QStringLiteral("AutoInContainer")) == QLatin1String("1");

    cmbStation->setRowSource(OpenRecordset(QStringLiteral("select * from Station WHERE Status='1'")),
                             QStringLiteral("Name"), QStringLiteral("ID"));
    cmbStation->hide();
    lblStation->hide();

    m_lines->clear();
    dbgHistory->setEditTriggers(QAbstractItemView::NoEditTriggers);
    dbgDetail->productDropDown()->setRows(OpenRecordset(QStringLiteral("Select * from product where Status='1'")));
    cmbSender->setRowSource(OpenRecordset(QStringLiteral("Select * from Sender where Status='1'")),
                            QStringLiteral("Name"), QStringLiteral("ID"));
    dtlCustomer->hide();

    switch (mActionType) {
    case 1:
        txtCreateDate->setText(DateText(Clock::today()));
        txtSaleID->setText(QString::number(GetNewSaleID()));
        cmbStation->setBoundText(QStringLiteral("1"));
        btnPreview->hide();
        // The operator starts with whatever he knows of the customer.
        txtCustAccount->setFocus();
        break;
    case 2:
        loadTicket();
        if (m_closeRequested)
            return false;
        btnAddCustomer->setEnabled(false);
        btnReset->hide();
        btnPreview->show();
        for (QWidget *w : {txtCustAccount, txtCustPhone, txtCustAddress, txtCreateDate})
            w->setEnabled(false);
        break;
    case 0:
        loadTicket();
        if (m_closeRequested)
            return false;
        for (QWidget *w : {btnSave, btnSavePrint, btnAddCustomer, btnReset, btnPrintSetup})
            w->hide();
        btnPreview->show();
        for (QWidget *w : {static_cast<QWidget *>(txtCustAccount), static_cast<QWidget *>(txtCustPhone),
                           static_cast<QWidget *>(txtCustAddress), static_cast<QWidget *>(txtCreateDate),
                           static_cast<QWidget *>(cmbSender), static_cast<QWidget *>(txtTransferFee)})
            w->setEnabled(false);
        break;
    default:
        break;
    }
    UpdateSaveButtons();
    InputReady = 1;
    return true;
}

void frmSale::loadTicket()
{
    InputReady = 0;
    const QString id = QString::number(mCurID);
    RecordsetPtr rs = OpenRecordset(QStringLiteral("Select * from Sale where ID=") + id);
    if (!rs || rs->recordCount() < 1) {
        m_closeRequested = true;
        return;
    }
    rs->moveFirst();
    txtSaleID->setText(fieldText(rs, QStringLiteral("ID")));
    txtCreateDate->setText(fieldText(rs, QStringLiteral("CreateDate")));
    txtDetail->setPlainText(fieldText(rs, QStringLiteral("Detail")));
    txtCustAccount->setText(GetFieldByID(rs->field(QStringLiteral("CustomerID")).toLongLong(),
                                         QStringLiteral("Customer"), QStringLiteral("Account")));
    txtTotalAmount->setText(fieldText(rs, QStringLiteral("TotalAmount")));
    txtTotalMoney->setText(fieldText(rs, QStringLiteral("TotalMoney")));
    txtTotalContainer->setText(fieldText(rs, QStringLiteral("TotalContainer")));
    txtInMoney->setText(fieldText(rs, QStringLiteral("InMoney")));
    txtOutAmount->setText(fieldText(rs, QStringLiteral("OutAmount")));
    txtInContainer->setText(fieldText(rs, QStringLiteral("InContainer")));
    // The worker brings his current fee along; the ticket's own fee must win over it.
    cmbSender->setBoundText(fieldText(rs, QStringLiteral("SenderID")));
    txtTransferFee->setText(fieldText(rs, QStringLiteral("TransferFee")));
    if (mActionType == 2) {
        GetCustomerInfo(0);
        cmbStation->setBoundText(fieldText(rs, QStringLiteral("StationID")));
    } else {
        cmbStation->setBoundText(fieldText(rs, QStringLiteral("StationID")));
        GetCustomerInfo(0);
    }

    RecordsetPtr lines = OpenRecordset(
        QStringLiteral("select a.ProductID as product_id,a.MyAmount as product_MyAmount,a.price as "
                       "product_price,a.MyMoney as product_MyMoney,b.name as product_name,b.unit as "
                       "product_unit from Sale_detail as a ,product as b where a.SaleID=")
        + id + QStringLiteral(" and a.ProductID=b.ID and a.IsContainer='0'"));
    if (!lines || lines->recordCount() < 1) {
        m_closeRequested = true;
        return;
    }
    m_lines->clear();
    for (lines->moveFirst(); !lines->eof(); lines->moveNext())
        m_lines->appendLine({lines->field(QStringLiteral("Product_ID")), lines->text(QStringLiteral("Product_Name")),
                             lines->text(QStringLiteral("Product_Unit")), lines->field(QStringLiteral("Product_Price")),
                             lines->field(QStringLiteral("Product_MyAmount")),
                             lines->field(QStringLiteral("Product_MyMoney"))});
}

void frmSale::ResetInput()
{
    InputReady = 0;
    ClearCustomerFields();
    txtSaleID->setText(QString::number(GetNewSaleID()));
    for (QLineEdit *e : {txtHistoryAmount, txtHistoryMoney, txtHistoryMoneyBalance, txtHistoryContainerBalance,
                         txtHistoryTimes, txtTotalMoney, txtTotalAmount, txtInMoney, txtOutAmount})
        e->setText(QStringLiteral("0"));
    txtDetail->clear();
    m_lines->clear();
    m_history->setRecordset(nullptr);
    txtCustAccount->setFocus();
    InputReady = 1;
}

qint32 frmSale::GetNewSaleID()
{
    RecordsetPtr rs = OpenRecordset(QStringLiteral("select max(ID) as MaxID from Sale"));
    if (!rs || rs->recordCount() < 1) {
        Msg::error(QStringLiteral("向系统获取新的系统编号时出现错误！"), ErrorTitle);
        return 0;
    }
    rs->moveFirst();
    const QVariant max = rs->field(QStringLiteral("MaxID"));
    return max.isNull() ? 1 : qint32(max.toLongLong() + 1);
}

void frmSale::UpdateSaveButtons()
{
    const bool ready = Val(txtTotalAmount->text()) != 0 && Val(txtTotalMoney->text()) != 0
                       && !Trim(txtCustAddress->text()).isEmpty();
    btnSave->setEnabled(ready);
    btnSavePrint->setEnabled(ready);
}

void frmSale::ClearCustomerFields()
{
    for (QLineEdit *e : {txtCustPhone, txtCustAddress, txtCustName, txtCustType, txtCustCreateDate})
        e->clear();
}

// ---------------------------------------------------------------------------------------------
// The customer: lookup by account, phone or address

bool frmSale::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::KeyPress && watched == txtCustAddress) {
        if (static_cast<QKeyEvent *>(event)->key() == Qt::Key_Down) {
            showAddressList();
            return true;
        }
    }
    if (event->type() == QEvent::FocusIn && watched == dtlCustomer) {
        dtlCustomer->show();
        dtlCustomer->raise();
        if (!dtlCustomer->currentIndex().isValid() && m_addresses->rowCount() > 0)
            dtlCustomer->setCurrentIndex(m_addresses->index(0, 0));
    }
    if (event->type() == QEvent::KeyPress && watched == dtlCustomer) {
        const int key = static_cast<QKeyEvent *>(event)->key();
        if (key == Qt::Key_Escape) {
            dtlCustomer->hide();
            txtCustAddress->setFocus();
            return true;
        }
    }
    if (event->type() != QEvent::FocusOut)
        return QDialog::eventFilter(watched, event);
    // A message box or another window taking the focus is not the operator leaving the field.
    const Qt::FocusReason reason = static_cast<QFocusEvent *>(event)->reason();
    if (reason == Qt::ActiveWindowFocusReason || reason == Qt::PopupFocusReason || !isVisible())
        return QDialog::eventFilter(watched, event);

    if (!leaveField(watched)) {
        auto *field = static_cast<QWidget *>(watched);
        QTimer::singleShot(0, field, [field] { field->setFocus(); });
    }
    return QDialog::eventFilter(watched, event);
}

bool frmSale::leaveField(QObject *field)
{
    if (field == txtCustAccount) {
        if (!validateCustAccount())
            return false;
        if (!txtCustAccount->text().isEmpty())
            guarded([this] { GetCustomerInfo(0); });
    } else if (field == txtCustPhone) {
        if (!txtCustPhone->text().isEmpty())
            guarded([this] { GetCustomerInfo(1); });
    } else if (field == txtCustAddress) {
        if (!txtCustAddress->text().isEmpty())
            guarded([this] { GetCustomerInfo(2); });
        // Going down into the list keeps it; leaving anywhere else puts it away.
        if (QApplication::focusWidget() != dtlCustomer)
            dtlCustomer->hide();
    } else if (field == txtInContainer) {
        return validateActualFigure(txtInContainer, txtTotalContainer,
                                    QStringLiteral("错误，实际回收空瓶超过应回收空瓶数！"));
    } else if (field == txtInMoney) {
        return validateActualFigure(txtInMoney, txtTotalMoney, QStringLiteral("错误，实收现金超过应收现金！"));
    } else if (field == txtOutAmount) {
        return validateActualFigure(txtOutAmount, txtTotalAmount, QStringLiteral("错误，实际出库超过定单应出货量！"));
    } else if (field == txtTransferFee) {
        return validateTransferFee();
    }
    return true;
}

void frmSale::saveByKey(QPushButton *button)
{
    if (!button->isVisibleTo(this))
        return;
    QWidget *field = QApplication::focusWidget();
    const bool finished = field && dbgDetail->isAncestorOf(field) ? dbgDetail->finishEditing() : leaveField(field);
    if (finished && button->isEnabled())
        button->click();
}

bool frmSale::validateCustAccount()
{
    const QString text = txtCustAccount->text();
    if (text.isEmpty() || Val(text) != 0)
        return true;
    Msg::error(QStringLiteral("所输入的客户编号不是有效的数字！"), ErrorTitle);
    txtCustAccount->clear();
    return false;
}

void frmSale::txtCustAddress_Change()
{
    if (InputReady == 1 && GetSysValue(QStringLiteral("SearchAddress")) == QLatin1String("1")) {
        RecordsetPtr rs = OpenRecordset(QStringLiteral("Select * from Customer where Status='1' AND  Address Like '%")
                                        + Sql::text(Trim(txtCustAddress->text())) + QStringLiteral("%'"));
        m_addresses->setRecordset(rs);
        if (!rs || rs->recordCount() < 1) {
            dtlCustomer->hide();
        } else {
            const QRect field = txtCustAddress->geometry();
            const QPoint below = txtCustAddress->parentWidget()->mapTo(this, field.bottomLeft());
            const int rows = qMin(rs->recordCount(), 8);
            dtlCustomer->setGeometry(below.x(), below.y() + 1, field.width(),
                                     rows * dtlCustomer->sizeHintForRow(0) + 4);
            dtlCustomer->show();
            dtlCustomer->raise();
        }
    }
    UpdateSaveButtons();
}

void frmSale::showAddressList()
{
    const QRect field = txtCustAddress->geometry();
    const QPoint below = txtCustAddress->parentWidget()->mapTo(this, field.bottomLeft());
    const int rows = qBound(3, m_addresses->rowCount(), 8);
    dtlCustomer->setGeometry(below.x(), below.y() + 1, field.width(), rows * (fontMetrics().height() + 4) + 4);
    dtlCustomer->show();
    dtlCustomer->raise();
    dtlCustomer->setFocus();
}

void frmSale::chooseAddress(const QModelIndex &index)
{
    // A click may also count as activation; the first of the two chooses.
    if (!index.isValid() || !dtlCustomer->isVisible())
        return;
    txtCustAddress->setText(m_addresses->value(index.row(), QStringLiteral("Address")).toString());
    dtlCustomer->hide();
    guarded([this] { GetCustomerInfo(2); });
    dbgDetail->setFocus();
}

bool frmSale::GetCustomerInfo(int mGetType)
{
    InputReady = 0;
    RecordsetPtr rs;
    switch (mGetType) {
    case 0:
        rs = OpenRecordset(QStringLiteral("Select * from Customer where Status='1' AND Account=")
                           + Sql::number(Trim(txtCustAccount->text())));
        if (!rs)
            break;
        if (rs->recordCount() < 1) {
            Msg::error(QStringLiteral("没有找到该客户帐号！"), ErrorTitle);
            txtCustAccount->clear();
            InputReady = 1;
            txtCustAccount->setFocus();
            return false;
        }
        ClearCustomerFields();
        rs->moveFirst();
        txtCustAccount->setText(fieldText(rs, QStringLiteral("Account")));
        txtCustAddress->setText(fieldText(rs, QStringLiteral("Address")));
        txtCustPhone->setText(fieldText(rs, QStringLiteral("Phone")));
        break;
    case 1: {
        const QString sql = QStringLiteral("Select * from Customer where Status='1' AND Phone='")
                            + Sql::text(Trim(txtCustPhone->text())) + QStringLiteral("'");
        rs = OpenRecordset(sql);
        if (!rs)
            break;
        if (rs->recordCount() < 1) {
            txtCustAccount->clear();
            InputReady = 1;
            return false;
        }
        if (rs->recordCount() > 1) {
            int chosen = 0;
            QWidget *selection = Forms::get(QStringLiteral("frmSelCustomer"));
            if (selection)
                QMetaObject::invokeMethod(selection, "SelectCustomer", Qt::DirectConnection,
                                          Q_RETURN_ARG(int, chosen), Q_ARG(QString, sql));
            if (chosen == 0) {
                // The address search stays asleep until the next lookup that finds someone.
                txtCustAccount->clear();
                return false;
            }
            // The chosen account is taken as the row's ID; they agree for system numbering.
            rs->setFilter(QStringLiteral("ID=") + QString::number(chosen));
        }
        rs->moveFirst();
        if (rs->eof()) {
            rs = nullptr;
            break;
        }
        ClearCustomerFields();
        txtCustAccount->setText(fieldText(rs, QStringLiteral("Account")));
        txtCustAddress->setText(fieldText(rs, QStringLiteral("Address")));
        txtCustPhone->setText(fieldText(rs, QStringLiteral("Phone")));
        break;
    }
    case 2:
        rs = OpenRecordset(QStringLiteral("Select * from Customer where Status='1' AND Address='")
                           + Sql::text(Trim(txtCustAddress->text())) + QStringLiteral("'"));
        if (!rs)
            break;
        if (rs->recordCount() < 1) {
            // The typed address stays: it is how a new customer starts.
            txtCustAccount->clear();
            InputReady = 1;
            return false;
        }
        rs->moveFirst();
        txtCustAddress->setText(fieldText(rs, QStringLiteral("Address")));
        txtCustAccount->setText(fieldText(rs, QStringLiteral("Account")));
        txtCustPhone->setText(fieldText(rs, QStringLiteral("Phone")));
        break;
    default:
        break;
    }
    if (!rs || rs->eof()) {
        Msg::error(QStringLiteral("查找客户信息时出现错误！"), ErrorTitle);
        return false;
    }

    const QString id = fieldText(rs, QStringLiteral("ID"));
    txtCustName->setText(fieldText(rs, QStringLiteral("Name")));
    txtCustCreateDate->setText(fieldText(rs, QStringLiteral("CreateDate")));
    const QVariant type = rs->field(QStringLiteral("CustType"));
    if (!type.isNull() && type.toInt() >= 0 && type.toInt() <= 4)
        txtCustType->setText(custTypeLabel(type.toInt()));
    cmbStation->setBoundText(fieldText(rs, QStringLiteral("StationID")));

    RecordsetPtr sums = OpenRecordset(
        QStringLiteral("select sum(TotalAmount) as HistoryAmount,sum(TotalMoney) as HistoryMoney,"
                       "sum(TotalContainer-InContainer) as HistoryContainerBalance,sum(TotalMoney-InMoney) as "
                       "HistoryMoneyBalance,count(*) as TotalNumber from Sale where CustomerID=")
        + id);
    if (!sums) {
        Msg::error(QStringLiteral("查找客户信息时出现错误！"), ErrorTitle);
        return false;
    }
    if (sums->recordCount() > 0) {
        sums->moveFirst();
        // A customer without tickets has null sums: the figures shown before stay.
        const QList<QPair<QString, QLineEdit *>> fields = {
            {QStringLiteral("HistoryAmount"), txtHistoryAmount},
            {QStringLiteral("HistoryMoney"), txtHistoryMoney},
            {QStringLiteral("HistoryContainerBalance"), txtHistoryContainerBalance},
            {QStringLiteral("HistoryMoneyBalance"), txtHistoryMoneyBalance},
            {QStringLiteral("TotalNumber"), txtHistoryTimes}};
        for (const auto &f : fields)
            if (!sums->field(f.first).isNull())
                f.second->setText(fieldText(sums, f.first));
    }
    RecordsetPtr tickets = OpenRecordset(
        QStringLiteral("select ID,CreateDate,TotalAmount,TotalMoney,(TotalMoney-InMoney) as MoneyBalance,"
                       "(TotalContainer-InContainer) as ContainerBalance,SenderID,UserID from Sale where CustomerID=")
        + id);
    if (!tickets) {
        Msg::error(QStringLiteral("查找客户信息时出现错误！"), ErrorTitle);
        return false;
    }
    m_history->setRecordset(tickets);
    InputReady = 1;
    return true;
}

void frmSale::btnAddCustomer_Click()
{
    QWidget *card = Forms::get(QStringLiteral("frmCustomer"));
    int made = 0;
    if (!card
        || !QMetaObject::invokeMethod(card, "openForTicket", Qt::DirectConnection, Q_RETURN_ARG(int, made),
                                      Q_ARG(QString, txtCustPhone->text()), Q_ARG(QString, txtCustAddress->text())))
        return;
    if (made != 0) {
        txtCustAccount->setText(QString::number(made));
        guarded([this] { GetCustomerInfo(0); });
    }
}

// ---------------------------------------------------------------------------------------------
// The lines and their totals

void frmSale::SumArray()
{
    const LineTable::Totals t = m_lines->totals();
    txtTotalAmount->setText(QString::number(t.amount));
    txtTotalMoney->setText(NumText(t.money));
    txtTotalContainer->setText(QString::number(t.containers));
    if (AutoOutAmount)
        txtOutAmount->setText(txtTotalAmount->text());
    if (AutoInMoney)
        txtInMoney->setText(txtTotalMoney->text());
    if (AutoInContainer)
        txtInContainer->setText(txtTotalContainer->text());
}

bool frmSale::validateActualFigure(QLineEdit *field, QLineEdit *total, const QString &message)
{
    if (field->text().isEmpty()) {
        field->setText(QStringLiteral("0"));
        return true;
    }
    if (!ValidateField(Trim(field->text()), 1))
        return false;
    if (Val(field->text()) > Val(total->text())) {
        Msg::error(message, ErrorTitle);
        return false;
    }
    return true;
}

bool frmSale::validateTransferFee()
{
    if (txtTransferFee->text().isEmpty()) {
        txtTransferFee->setText(QStringLiteral("0"));
        return true;
    }
    return ValidateField(Trim(txtTransferFee->text()), 1);
}

void frmSale::cmbSender_Change()
{
    const QString bound = cmbSender->BoundText();
    if (bound.isEmpty())
        return;
    txtTransferFee->setText(NumText(Val(GetFieldByID(qint64(Val(bound)), QStringLiteral("Sender"), QStringLiteral("Price")))));
}

// ---------------------------------------------------------------------------------------------
// The buttons

void frmSale::btnReset_Click() { ResetInput(); }

void frmSale::btnPreview_Click() { PreviewSale(mCurID); }

void frmSale::btnPrintSetup_Click()
{
    if (QWidget *setup = Forms::get(QStringLiteral("frmSalePrintSetup")))
        Modal::exec(setup);
}

void frmSale::btnExit_Click() { closeWindow(); }

void frmSale::reject() { closeWindow(); }

void frmSale::closeWindow()
{
    m_closeRequested = true;
    Forms::unload(this);
}

// ---------------------------------------------------------------------------------------------
// The save

void frmSale::btnSave_Click()
{
    guarded([this] {
        if (mActionType == 1) {
            if (saveNew())
                ResetInput();
        } else if (mActionType == 2) {
            if (saveEdit())
                closeWindow();
        }
    });
}

void frmSale::btnSavePrint_Click()
{
    btnSave_Click();
    PrintSale(mCurID);
}

bool frmSale::saveNew()
{
    const QString address = Trim(txtCustAddress->text());
    const QString phone = Trim(txtCustPhone->text());
    const QString station = cmbStation->BoundText();
    const QString findCustomer = QStringLiteral("select * from Customer WHERE Address='") + Sql::text(address)
                                 + QStringLiteral("'");
    Transaction tx(Conn);
    if (!tx.begun())
        return false; // another workstation kept the file: nothing may be written outside it
    // A disabled customer at this address is taken as he is.
    RecordsetPtr rs = OpenRecordset(findCustomer);
    if (!rs) {
        Conn.RollbackTrans();
        return false;
    }
    if (rs->recordCount() < 1) {
        const bool made = ExecuteSql(
            QStringLiteral("insert into Customer(Name,Account,Address,Phone,Detail,CustType,Status,UserID,"
                           "CreateDate,StationID) values ('',0,'")
            + Sql::text(address) + QStringLiteral("','") + Sql::text(phone)
            + QStringLiteral("','系统自动加入用户！',0,'1',") + QString::number(Session::UserID) + QStringLiteral(",")
            + JetDate(Clock::today()) + QStringLiteral(",") + Sql::number(station) + QStringLiteral(")"));
        if (!made) {
            Conn.RollbackTrans();
            Msg::error(QStringLiteral("往系统增加新客户信息时出现错误！"), ErrorTitle);
            return false;
        }
        ExecuteSql(QStringLiteral("Update Customer set Account=ID where Account=0"));
        rs = OpenRecordset(findCustomer);
        if (!rs || rs->recordCount() < 1) {
            Conn.RollbackTrans();
            return false;
        }
    }
    rs->moveFirst();
    mCurID = rs->field(QStringLiteral("ID")).toInt();
    // The phone on the ticket is the customer's phone from now on, even when it is empty.
    rs->setField(QStringLiteral("Phone"), phone);
    if (!rs->update()) {
        Conn.RollbackTrans();
        Msg::error(QStringLiteral("更新数据库时出现系统错误，错误信息：") + rs->lastError(), QStringLiteral("系统错误"));
        return false;
    }

    const QString header =
        QStringLiteral("insert into Sale (CustomerID,SenderID,UserID,TotalAmount,TotalMoney,TotalContainer,InMoney,"
                       "OutAmount,InContainer,TransferFee,Detail,CreateDate,FinishFlag,StationID) values (")
        + QString::number(mCurID) + QStringLiteral(",") + NumText(Val(cmbSender->BoundText())) + QStringLiteral(",")
        + QString::number(Session::UserID) + QStringLiteral(",") + Sql::number(txtTotalAmount->text())
        + QStringLiteral(",") + Sql::number(txtTotalMoney->text()) + QStringLiteral(",")
        + Sql::number(txtTotalContainer->text()) + QStringLiteral(",") + Sql::number(txtInMoney->text())
        + QStringLiteral(",") + Sql::number(txtOutAmount->text()) + QStringLiteral(",")
        + Sql::number(txtInContainer->text()) + QStringLiteral(",") + Sql::number(txtTransferFee->text())
        + QStringLiteral(",'") + Sql::text(txtDetail->toPlainText()) + QStringLiteral("',#")
        + Sql::date(txtCreateDate->text()) + QStringLiteral("#,'0',") + Sql::number(station) + QStringLiteral(")");
    if (!ExecuteSql(header)) {
        Conn.RollbackTrans();
        return false;
    }
    RecordsetPtr max = OpenRecordset(QStringLiteral("select max(ID) as MaxID from Sale"));
    if (!max || max->recordCount() < 1) {
        Conn.RollbackTrans();
        return false;
    }
    max->moveFirst();
    mCurID = max->field(QStringLiteral("MaxID")).toInt();
    if (!writeLines())
        return false;
    return committed(tx);
}

bool frmSale::saveEdit()
{
    const QString sql =
        QStringLiteral("update Sale set Detail='") + Sql::text(txtDetail->toPlainText()) + QStringLiteral("', ")
        + QStringLiteral("TotalAmount=") + NumText(Val(txtTotalAmount->text())) + QStringLiteral(", ")
        + QStringLiteral("TotalMoney=") + Sql::number(txtTotalMoney->text()) + QStringLiteral(",")
        + QStringLiteral("TotalContainer=") + Sql::number(txtTotalContainer->text()) + QStringLiteral(",")
        + QStringLiteral("OutAmount=") + Sql::number(txtOutAmount->text()) + QStringLiteral(",")
        + QStringLiteral("InMoney=") + Sql::number(txtInMoney->text()) + QStringLiteral(",")
        + QStringLiteral("InContainer=") + Sql::number(txtInContainer->text()) + QStringLiteral(",")
        + QStringLiteral("UserID=") + QString::number(Session::UserID) + QStringLiteral(", ")
        + QStringLiteral("StationID=") + Sql::number(cmbStation->BoundText()) + QStringLiteral(", ")
        + QStringLiteral("SenderID=") + NumText(Val(cmbSender->BoundText())) + QStringLiteral(", ")
        + QStringLiteral("TransferFee=") + Sql::number(txtTransferFee->text())
        + QStringLiteral(" where ID=") + QString::number(mCurID);
    Transaction tx(Conn);
    if (!tx.begun() || !ExecuteSql(sql)) {
        Conn.RollbackTrans();
        return false;
    }
    ExecuteSql(QStringLiteral("delete from Sale_detail where SaleID=") + QString::number(mCurID));
    if (!writeLines())
        return false;
    return committed(tx);
}

// A failed empties line rolls the ticket back while the lines after it are still written, so
// the commit finding nothing open means the ticket is not (all) there: the input stays.
bool frmSale::committed(Transaction &tx)
{
    if (tx.commit())
        return true;
    Msg::error(QStringLiteral("单据没有保存：数据库没有接受这张单据，请检查输入后重新保存。"),
               QStringLiteral("系统错误"));
    return false;
}

bool frmSale::writeLines()
{
    const QString saleID = QString::number(mCurID);
    for (int row = 0; row < m_lines->lineCount(); ++row) {
        if (!m_lines->isLine(row))
            continue;
        const QString code = Trim(m_lines->text(row, LineTable::ProductID));
        const QVariant typedAmount = m_lines->value(row, LineTable::ProductAmount);
        // A new ticket carries its quantities as 16-bit numbers, an edited one as 32-bit.
        const QString amount = mActionType == 2 ? QString::number(CLng(typedAmount))
                                                : QString::number(CInt(typedAmount));
        const bool written = ExecuteSql(
            QStringLiteral("insert into Sale_detail(SaleID,ProductID,Price,MyAmount,MyMoney,IsContainer)  values(")
            + saleID + QStringLiteral(",") + Sql::number(code) + QStringLiteral(",")
            + Sql::number(m_lines->text(row, LineTable::ProductPrice)) + QStringLiteral(",") + amount
            + QStringLiteral(",") + Sql::number(m_lines->text(row, LineTable::ProductMoney))
            + QStringLiteral(",'0')"));
        if (!written) {
            Conn.RollbackTrans();
            return false;
        }
        RecordsetPtr product = OpenRecordset(
            QStringLiteral("select * from Product where IsContainer='0' and ContainerID<>0 and ID=") + Sql::number(code));
        if (!product || product->recordCount() < 1)
            continue;
        product->moveFirst();
        const bool bottle = ExecuteSql(
            QStringLiteral("insert into Sale_detail(SaleID,ProductID,Price,MyAmount,MyMoney,IsContainer)  values(")
            + saleID + QStringLiteral(",") + fieldText(product, QStringLiteral("ContainerID"))
            + QStringLiteral(",0,") + QString::number(CInt(typedAmount)) + QStringLiteral(",0,'1')"));
        // A failed bottle line undoes what went before and the save carries on regardless.
        if (!bottle)
            Conn.RollbackTrans();
    }
    return true;
}
