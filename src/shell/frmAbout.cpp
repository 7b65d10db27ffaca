#include "frmAbout.h"

#include "Shell.h"

#include "platform/Forms.h"
#include "platform/Prompter.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSysInfo>
#include <QThread>
#include <QVBoxLayout>

frmAbout::frmAbout()
{
    setObjectName("frmAbout");
    setWindowTitle(QStringLiteral("关于 ") + Shell::programTitle());

    auto *picture = new QLabel(this);
    picture->setObjectName("picIcon");
    picture->setPixmap(QPixmap(QStringLiteral(":/tarvik/icons/48/emblem-package.png")));
    auto *lblTitle = new QLabel(Shell::programTitle(), this);
    lblTitle->setObjectName("lblTitle");
    QFont f = lblTitle->font();
    f.setPointSize(f.pointSize() + 4);
    f.setBold(true);
    lblTitle->setFont(f);
    auto *lblVersion = new QLabel(QStringLiteral("版本 " TARVIK_VERSION "　构建于 " __DATE__ " " __TIME__), this);
    lblVersion->setObjectName("lblVersion");
    auto *lblDescription = new QLabel(
        QStringLiteral("燃气、纯净水零售与送货的后台管理：开票、收款、发货、空瓶回收、库存与统计报表。"),
        this);
    lblDescription->setObjectName("lblDescription");
    lblDescription->setWordWrap(true);
    auto *cmdOK = new QPushButton(QStringLiteral("确定"), this);
    cmdOK->setObjectName("cmdOK");
    cmdOK->setDefault(true);
    auto *cmdSysInfo = new QPushButton(QStringLiteral("系统信息(&S)..."), this);
    cmdSysInfo->setObjectName("cmdSysInfo");
    cmdSysInfo->setAutoDefault(false);

    auto *text = new QVBoxLayout;
    text->addWidget(lblTitle);
    text->addWidget(lblVersion);
    text->addWidget(lblDescription);
    text->addStretch();
    auto *top = new QHBoxLayout;
    top->addWidget(picture, 0, Qt::AlignTop);
    top->addLayout(text, 1);
    auto *buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(cmdOK);
    buttons->addWidget(cmdSysInfo);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(top);
    layout->addLayout(buttons);
    setMinimumWidth(420);

    connect(cmdOK, &QPushButton::clicked, this, [this] { Forms::unload(this); });
    connect(cmdSysInfo, &QPushButton::clicked, this, &frmAbout::StartSysInfo);
}

void frmAbout::StartSysInfo()
{
    QStringList lines;
    const auto add = [&lines](const QString &label, const QString &value) {
        if (!value.trimmed().isEmpty() && value != QLatin1String("unknown"))
            lines << label + value;
    };
    add(QStringLiteral("操作系统："), QSysInfo::prettyProductName());
    add(QStringLiteral("内核："), QSysInfo::kernelType() + ' ' + QSysInfo::kernelVersion());
    add(QStringLiteral("处理器架构："), QSysInfo::currentCpuArchitecture());
    add(QStringLiteral("处理器数："), QString::number(QThread::idealThreadCount()));
    add(QStringLiteral("计算机名："), QSysInfo::machineHostName());
    if (lines.isEmpty()) {
        Msg::warning(QStringLiteral("此时系统信息不可用"), windowTitle());
        return;
    }
    Msg::info(lines.join('\n'), QStringLiteral("系统信息"));
}

void frmAbout::reject() { Forms::unload(this); }
