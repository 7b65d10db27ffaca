#include "frmSystemSetup.h"

#include "Shell.h"

#include "data/Gateway.h"
#include "platform/Forms.h"
#include "platform/Prompter.h"
#include "platform/VbError.h"
#include "platform/VbRules.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QSerialPortInfo>
#include <QVBoxLayout>

namespace {
std::function<QList<frmSystemSetup::LineDevice>()> g_lister = [] {
    QList<frmSystemSetup::LineDevice> devices;
    const auto ports = QSerialPortInfo::availablePorts();
    for (int i = 0; i < ports.size(); ++i) {
        const QString description = ports[i].description();
        devices << frmSystemSetup::LineDevice{
            i, description.isEmpty() ? ports[i].portName() : ports[i].portName() + " " + description};
    }
    return devices;
};
std::function<void(int)> g_opener;

// The stored flags, in the order of the boxes; the first two keys cross over their captions
// on purpose, and the ticket window acts on the keys.
const char *const AutoKeys[] = {"AutoOutAmount", "AutoInMoney", "AutoInContainer"};
}

void frmSystemSetup::setLineDevices(std::function<QList<LineDevice>()> lister) { g_lister = std::move(lister); }
void frmSystemSetup::setLineOpener(std::function<void(int)> opener) { g_opener = std::move(opener); }

frmSystemSetup::frmSystemSetup()
{
    setObjectName("frmSystemSetup");
    setWindowTitle(QStringLiteral("系统参数设置"));

    auto *frameAuto = new QGroupBox(QStringLiteral("&K、开票时同时执行以下操作："), this);
    auto *autoLayout = new QVBoxLayout(frameAuto);
    for (const char *caption : {"自动全额收款", "自动全数出库", "自动空瓶回收"}) {
        auto *box = new QCheckBox(QString::fromUtf8(caption), frameAuto);
        box->setObjectName(QStringLiteral("chkAutoDo_%1").arg(chkAutoDo.size()));
        chkAutoDo << box;
        autoLayout->addWidget(box);
    }
    chkSearchAddress = new QCheckBox(QStringLiteral("启用地址自动检索功能。"), this);
    chkSearchAddress->setObjectName("chkSearchAddress");
    chkAutoDataRefresh = new QCheckBox(QStringLiteral("启用自动刷新数据显示模式"), this);
    chkAutoDataRefresh->setObjectName("chkAutoDataRefresh");

    auto *frameLine = new QGroupBox(QStringLiteral("&L、请选择需要启用来电感知的设备："), this);
    cboModem = new QComboBox(frameLine);
    cboModem->setObjectName("cboModem");
    txtAreaCode = new QLineEdit(frameLine);
    txtAreaCode->setObjectName("txtAreaCode");
    txtNumberLen = new QLineEdit(frameLine);
    txtNumberLen->setObjectName("txtNumberLen");
    auto *lineLayout = new QFormLayout(frameLine);
    lineLayout->addRow(cboModem);
    lineLayout->addRow(QStringLiteral("所属地区长途编号："), txtAreaCode);
    lineLayout->addRow(QStringLiteral("当地电话号码位数："), txtNumberLen);

    auto *btnOk = new QPushButton(QStringLiteral("确定"), this);
    btnOk->setObjectName("btnOk");
    btnOk->setDefault(true);
    auto *btnCancel = new QPushButton(QStringLiteral("取消"), this);
    btnCancel->setObjectName("btnCancel");
    btnCancel->setAutoDefault(false);
    auto *buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(btnOk);
    buttons->addWidget(btnCancel);

    auto *layout = new QVBoxLayout(this);
    layout->addWidget(frameAuto);
    layout->addWidget(chkSearchAddress);
    layout->addWidget(chkAutoDataRefresh);
    layout->addWidget(frameLine);
    layout->addLayout(buttons);
    setMinimumWidth(380);

    connect(btnOk, &QPushButton::clicked, this, &frmSystemSetup::btnOk_Click);
    connect(btnCancel, &QPushButton::clicked, this, [this] { Forms::unload(this); });
    Form_Load();
}

void frmSystemSetup::Form_Load()
{
    cboModem->clear();
    for (const LineDevice &device : g_lister ? g_lister() : QList<LineDevice>())
        cboModem->addItem(device.name, device.number);
    cboModem->setCurrentIndex(-1);

    for (int i = 0; i < 3; ++i)
        chkAutoDo[i]->setChecked(GetSysValue(AutoKeys[i]) == "1");
    chkSearchAddress->setChecked(GetSysValue("SearchAddress") == "1");
    chkAutoDataRefresh->setChecked(GetSysValue("AutoDataRefresh") == "1");

    // A stored value that is no whole number of the 16-bit range is passed over, like every
    // failure of this load: the position stays 0 and the program goes on.
    int modem = 0;
    try {
        const QString stored = GetSysValue("ModemIndex");
        if (!stored.trimmed().isEmpty())
            modem = CInt(stored);
    } catch (const VbError &) {
    }
    if (modem >= 0) {
        cboModem->setCurrentIndex(modem < cboModem->count() ? modem : -1);
        if (cboModem->currentIndex() >= 0 && g_opener)
            g_opener(cboModem->currentData().toInt());
    }
    // Shown as numbers: a stored "0427" shows as 427.
    const double areaCode = Val(GetSysValue("AreaCode"));
    if (areaCode >= 0)
        txtAreaCode->setText(NumText(areaCode));
    const double numberLen = Val(GetSysValue("NumberLen"));
    if (numberLen >= 0)
        txtNumberLen->setText(NumText(numberLen));
}

void frmSystemSetup::btnOk_Click()
{
    for (int i = 0; i < 3; ++i)
        SetSysValue(AutoKeys[i], chkAutoDo[i]->isChecked() ? "1" : "0");
    SetSysValue("SearchAddress", chkSearchAddress->isChecked() ? "1" : "0");
    SetSysValue("AutoDataRefresh", chkAutoDataRefresh->isChecked() ? "1" : "0");
    SetSysValue("ModemIndex", QString::number(cboModem->currentIndex()));
    SetSysValue("AreaCode", txtAreaCode->text());
    SetSysValue("NumberLen", txtNumberLen->text());
    Forms::unload(this);
}

void frmSystemSetup::reject() { Forms::unload(this); }

void ResetSystem()
{
    const QString title = QStringLiteral("初始化");
    const auto yes = [&title](const QString &text) {
        return Msg::box(title, text, QMessageBox::Critical, QMessageBox::Yes | QMessageBox::No)
               == QMessageBox::Yes;
    };
    if (!yes(QStringLiteral("你确认要重新启用系统吗？执行此操作后所有运行过程中产生的数据包括销售单、收款单、库存单、用户资料都将被删除！")))
        return;
    if (!yes(QStringLiteral("请再次确认是否要重新启用系统！！！执行此操作后所有运行过程中产生的数据包括销售单、收款单、库存单、用户资料都将被删除！")))
        return;
    try {
        Transaction tx(Conn);
        if (!tx.begun())
            throw VbError(3246, QStringLiteral("事务无法开始"));
        // Operators, settings, stations and the call log stay.
        for (const char *sql : {"Delete from Sender", "delete from Product", "delete from Customer",
                                "delete from sale", "delete from sale_detail", "delete from store",
                                "delete from store_detail"})
            ExecuteSql(QString::fromLatin1(sql));
        if (!tx.commit())
            throw VbError(3246, QStringLiteral("事务无法提交"));
    } catch (const VbError &) {
        Msg::error(QStringLiteral("重新启用系统时出现错误，重启失败！"), QStringLiteral("失败"));
        return;
    }
    Msg::info(QStringLiteral("系统重新启用成功，现在系统需要退出再进入，请按确认键退出系统重新登录！"),
              QStringLiteral("退出"));
    Shell::endProgram();
}
