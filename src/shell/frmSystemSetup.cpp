#include "frmSystemSetup.h"

#include "Shell.h"
#include "frmMain.h"

#include "data/Gateway.h"
#include "platform/Forms.h"
#include "platform/Prompter.h"
#include "platform/VbError.h"
#include "platform/VbRules.h"
#include "telephony/NcidCallSource.h"
#include "telephony/cTAPILine.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace {
// The stored flags, in the order of the boxes; the first two keys cross over their captions
// on purpose, and the ticket window acts on the keys.
const char *const AutoKeys[] = {"AutoOutAmount", "AutoInMoney", "AutoInContainer"};
}

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
    txtNcidServer = new QLineEdit(frameLine);
    txtNcidServer->setObjectName("txtNcidServer");
    txtNcidServer->setPlaceholderText(QStringLiteral("127.0.0.1:%1").arg(NcidCallSource::DefaultPort));
    txtNcidServer->setToolTip(QStringLiteral("来电显示服务器的地址和端口，例如 192.168.1.5:3333；"
                                             "重新打开本窗口后生效"));
    auto *lineLayout = new QFormLayout(frameLine);
    lineLayout->addRow(cboModem);
    lineLayout->addRow(QStringLiteral("所属地区长途编号："), txtAreaCode);
    lineLayout->addRow(QStringLiteral("当地电话号码位数："), txtNumberLen);
    lineLayout->addRow(QStringLiteral("来电显示服务器(NCID)："), txtNcidServer);

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

// Every step that fails is passed over and the next one runs: no failure of the line, nor a
// stored device position that is no number, stops the main window or says anything.
void frmSystemSetup::Form_Load()
{
    const auto step = [](auto &&f) {
        try {
            f();
        } catch (const VbError &) {
        }
    };
    cboModem->clear();
    // A new line each load; the main window lets go of the one before, and with it the device.
    auto *line = new cTAPILine;
    if (frmMain *main = frmMain::current())
        main->setTapiline(line);
    else
        line->setParent(this); // no session to hand caller numbers to: it lives with this window
    step([&] {
        for (const LineDevice &device : ListLineDevices(*line))
            cboModem->addItem(device.name, device.number);
    });
    cboModem->setCurrentIndex(-1);

    for (int i = 0; i < 3; ++i)
        chkAutoDo[i]->setChecked(GetSysValue(AutoKeys[i]) == "1");
    chkSearchAddress->setChecked(GetSysValue("SearchAddress") == "1");
    chkAutoDataRefresh->setChecked(GetSysValue("AutoDataRefresh") == "1");
    txtNcidServer->setText(GetSysValue("NcidServer"));

    // ModemIndex is a position in the list, not a device number. A position past the end
    // selects nothing, and the line then opens the device it already stands at: the last one
    // enumerated. A text that is no number counts as the first position.
    qint32 modem = 0;
    step([&] {
        const QString stored = GetSysValue("ModemIndex");
        if (!stored.trimmed().isEmpty())
            modem = CLng(stored);
    });
    if (modem >= 0) {
        if (modem < cboModem->count())
            cboModem->setCurrentIndex(modem);
        step([&] {
            if (cboModem->currentIndex() >= 0)
                line->setCurrentLineID(cboModem->currentData().toInt());
        });
        // Owner privilege, data-modem media: the line is watched, never answered.
        step([&] { line->OpenLine(4, 16); });
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
    SetSysValue("NcidServer", txtNcidServer->text().trimmed());
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
