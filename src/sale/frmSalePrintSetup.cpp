#include "frmSalePrintSetup.h"

#include "rptSale.h"

#include "platform/Forms.h"
#include "platform/Modal.h"
#include "platform/PageDesigner.h"
#include "platform/Prompter.h"

#include <QFontDialog>
#include <QMenu>
#include <QPageSetupDialog>
#include <QPrinter>
#include <QScrollArea>
#include <QStyle>
#include <QToolBar>
#include <QVBoxLayout>

frmSalePrintSetup::frmSalePrintSetup()
{
    setObjectName(QStringLiteral("frmSalePrintSetup"));
    setWindowTitle(QStringLiteral("打印参数设置"));

    acbMain = new QToolBar(this);
    acbMain->setObjectName(QStringLiteral("acbMain"));
    acbMain->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    const auto tool = [this](const char *name, const QString &caption, QStyle::StandardPixmap icon) {
        QAction *a = acbMain->addAction(style()->standardIcon(icon), caption);
        a->setObjectName(QLatin1String(name));
        return a;
    };
    QAction *tlSave = tool("tlSave", QStringLiteral("保存"), QStyle::SP_DialogSaveButton);
    QAction *tlPageSetup = tool("tlPageSetup", QStringLiteral("页面设置"), QStyle::SP_FileDialogDetailedView);
    acbMain->addSeparator();
    QAction *tlExit = tool("tlExit", QStringLiteral("退出"), QStyle::SP_DialogCloseButton);

    ardMain = new PageDesigner;
    ardMain->setObjectName(QStringLiteral("ardMain"));
    auto *scroll = new QScrollArea(this);
    scroll->setWidget(ardMain);
    scroll->setAlignment(Qt::AlignHCenter | Qt::AlignTop);
    scroll->setBackgroundRole(QPalette::Dark);

    mnuDo = new QMenu(QStringLiteral("操作"), this);
    mnuDo->setObjectName(QStringLiteral("mnuDo"));
    popIfPrint = mnuDo->addAction(QStringLiteral("是否打印"));
    popIfPrint->setObjectName(QStringLiteral("popIfPrint"));
    popIfPrint->setCheckable(true);
    popFont = mnuDo->addAction(QStringLiteral("设置字体....."));
    popFont->setObjectName(QStringLiteral("popFont"));

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(acbMain);
    layout->addWidget(scroll);
    resize(900, 560);

    connect(tlSave, &QAction::triggered, this, &frmSalePrintSetup::SaveLayout);
    connect(tlPageSetup, &QAction::triggered, this, &frmSalePrintSetup::PageSetup);
    connect(tlExit, &QAction::triggered, this, &QDialog::close);
    connect(ardMain, &PageDesigner::fieldRightClicked, this, &frmSalePrintSetup::ardMain_RightClick);
    connect(popIfPrint, &QAction::triggered, this, &frmSalePrintSetup::popIfPrint_Click);
    connect(popFont, &QAction::triggered, this, &frmSalePrintSetup::popFont_Click);

    // The window designs its own copy of the ticket, as the shop last saved it.
    m_report = new rptSale(this);
    m_report->LoadLayout(rptSale::layoutPath());
    ardMain->setPage(&m_report->layout());
}

void frmSalePrintSetup::ardMain_RightClick(const QString &field, const QPoint &globalPos)
{
    const PageField *f = m_report->layout().field(field);
    if (!f)
        return;
    m_field = field;
    popIfPrint->setChecked(f->visible);
    mnuDo->popup(globalPos);
}

void frmSalePrintSetup::popIfPrint_Click()
{
    // A field the shop does not want stays in the layout, hidden, and prints blank.
    if (PageField *f = m_report->layout().field(m_field)) {
        f->visible = !f->visible;
        ardMain->setChanged(true);
        ardMain->update();
    }
}

void frmSalePrintSetup::popFont_Click()
{
    PageField *f = m_report->layout().field(m_field);
    if (!f)
        return;
    QFontDialog cdlFont(this);
    cdlFont.setObjectName(QStringLiteral("cdlFont"));
    cdlFont.setOption(QFontDialog::DontUseNativeDialog);
    QFont shown(f->fontName);
    shown.setPointSizeF(f->fontSize);
    shown.setItalic(f->italic);
    shown.setUnderline(f->underline);
    cdlFont.setCurrentFont(shown);
    if (Modal::exec(&cdlFont) != QDialog::Accepted)
        return;
    // Bold is left out: the ticket prints every field in bold whatever is chosen here.
    const QFont chosen = cdlFont.selectedFont();
    const double size = chosen.pointSizeF() > 0 ? chosen.pointSizeF() : f->fontSize;
    if (chosen.family() == f->fontName && size == f->fontSize && chosen.italic() == f->italic
        && chosen.underline() == f->underline)
        return;
    f->fontName = chosen.family();
    f->fontSize = size;
    f->italic = chosen.italic();
    f->underline = chosen.underline();
    ardMain->setChanged(true);
    ardMain->update();
}

void frmSalePrintSetup::PageSetup()
{
    QPrinter printer(QPrinter::HighResolution);
    printer.setFullPage(true);
    printer.setPageLayout(m_report->layout().pageLayout());
    QPageSetupDialog dialog(&printer, this);
    dialog.setObjectName(QStringLiteral("dlgPageSetup"));
    if (Modal::exec(&dialog) != QDialog::Accepted)
        return;
    m_report->layout().setPageLayout(printer.pageLayout());
    ardMain->setPage(&m_report->layout()); // resizes the paper
    ardMain->setChanged(true);
}

void frmSalePrintSetup::SaveLayout()
{
    if (m_report->SaveLayout(rptSale::layoutPath()))
        ardMain->setChanged(false);
}

void frmSalePrintSetup::reject()
{
    if (m_closing)
        return;
    m_closing = true;
    if (ardMain->isChanged()
        && Msg::ask(QStringLiteral("你已经修改了单据的打印格式，要保存吗？"), QStringLiteral("保存")))
        SaveLayout();
    Forms::unload(this);
}
