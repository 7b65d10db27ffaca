#include "frmSelCustomer.h"

#include "data/Gateway.h"
#include "data/RecordsetModel.h"
#include "data/Session.h"
#include "platform/Forms.h"
#include "platform/Modal.h"
#include "platform/VbRules.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QPushButton>
#include <QTableView>
#include <QVBoxLayout>

frmSelCustomer::frmSelCustomer(QWidget *parent) : QDialog(parent), m_rows(new RecordsetModel(this))
{
    setObjectName(QStringLiteral("frmSelCustomer"));
    setWindowTitle(QStringLiteral("请选择客户"));
    dbgMain = new QTableView(this);
    dbgMain->setObjectName(QStringLiteral("dbgMain"));
    dbgMain->setEditTriggers(QAbstractItemView::NoEditTriggers);
    dbgMain->setSelectionBehavior(QAbstractItemView::SelectRows);
    dbgMain->setSelectionMode(QAbstractItemView::SingleSelection);
    dbgMain->verticalHeader()->hide();
    auto plain = [](const QVariant &v) {
        return v.isNull() ? QString() : v.typeId() == QMetaType::Double ? NumText(v.toDouble()) : v.toString();
    };
    const Qt::Alignment left = Qt::AlignLeft | Qt::AlignVCenter;
    m_rows->setColumns({{QStringLiteral("客户编号"), QStringLiteral("Account"), 1000, left, plain},
                        {QStringLiteral("联系电话"), QStringLiteral("Phone"), 1500, left, plain},
                        {QStringLiteral("联系人"), QStringLiteral("Name"), 1200, left, plain},
                        {QStringLiteral("开户日期"), QStringLiteral("CreateDate"), 1300, left, plain},
                        {QStringLiteral("客户地址"), QStringLiteral("Address"), 3000, left, plain}});
    dbgMain->setModel(m_rows);
    // The model's size hint gives widths only; the head row keeps a readable height.
    dbgMain->horizontalHeader()->setMinimumHeight(dbgMain->horizontalHeader()->fontMetrics().height() + 8);
    for (int c = 0; c < m_rows->columns().size(); ++c)
        dbgMain->setColumnWidth(c, RecordsetModel::twipsToPixels(m_rows->columns().at(c).widthTwips));
    dbgMain->horizontalHeader()->setStretchLastSection(true);

    btnOk = new QPushButton(QStringLiteral("确认"), this);
    btnOk->setObjectName(QStringLiteral("btnOk"));
    btnCancel = new QPushButton(QStringLiteral("取消"), this);
    btnCancel->setObjectName(QStringLiteral("btnCancel"));
    btnOk->setDefault(true);
    auto *buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(btnOk);
    buttons->addWidget(btnCancel);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(dbgMain, 1);
    layout->addLayout(buttons);
    resize(620, 260);

    connect(btnOk, &QPushButton::clicked, this, &frmSelCustomer::btnOk_Click);
    connect(btnCancel, &QPushButton::clicked, this, &frmSelCustomer::btnCancel_Click);
    connect(dbgMain, &QTableView::doubleClicked, this, &frmSelCustomer::btnOk_Click);
}

void frmSelCustomer::setCurSQL(const QString &sql)
{
    m_sql = sql;
    m_rows->setRecordset(OpenRecordset(sql));
    if (m_rows->rowCount() > 0)
        dbgMain->setCurrentIndex(m_rows->index(0, 0));
    dbgMain->setFocus();
}

int frmSelCustomer::SelectCustomer(const QString &sql)
{
    Session::SelectedCustomerID = -1;
    setCurSQL(sql);
    Modal::exec(this);
    Forms::unload(this);
    return Session::SelectedCustomerID == -1 ? 0 : Session::SelectedCustomerID;
}

void frmSelCustomer::btnOk_Click()
{
    const QModelIndex current = dbgMain->currentIndex();
    if (current.isValid()) {
        const QString account = m_rows->index(current.row(), 0).data().toString();
        if (!account.isEmpty())
            Session::SelectedCustomerID = qint32(Val(account));
    }
    accept();
}

void frmSelCustomer::btnCancel_Click() { reject(); }
