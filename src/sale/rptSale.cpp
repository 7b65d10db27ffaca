#include "rptSale.h"

#include "data/CapitalAmount.h"
#include "data/Database.h"
#include "data/Gateway.h"
#include "platform/Modal.h"
#include "platform/Prompter.h"
#include "platform/VbError.h"
#include "platform/VbRules.h"

#include <QDir>
#include <QPrintPreviewDialog>
#include <QPrinter>
#include <QPrinterInfo>

namespace {
// The header of the ticket is 3930 twips high; everything prints in it.
constexpr int TicketHeight = 3930;

struct Placed {
    const char *name;
    const char *caption;
    int left, top, width;
};

// Fields that always get a fresh value at the fill, so the reset leaves them alone.
const QStringList &alwaysFilled()
{
    static const QStringList names = {QStringLiteral("txtSaleID"), QStringLiteral("txtDate"),
                                      QStringLiteral("txtBigTotal"), QStringLiteral("txtSmallTotal")};
    return names;
}

VbError noCurrentRecord()
{
    return VbError(3021, QStringLiteral("BOF 或 EOF 中有一个是“真”，或者当前的记录已被删除，"
                                        "所请求的操作要求一个当前的记录。"));
}

// A stored figure as it stands in the database: 12 not 12.00, 0.5 not .5.
QString asStored(const QVariant &value) { return value.isNull() ? QString() : value.toString(); }

QString custTypeLabel(const QString &type)
{
    static const QStringList labels = {QStringLiteral("未开户"), QStringLiteral("已开户"),
                                       QStringLiteral("大客户"), QStringLiteral("托管户"),
                                       QStringLiteral("其它")};
    bool ok = false;
    const int i = type.trimmed().toInt(&ok);
    return ok && i >= 0 && i < labels.size() ? labels.at(i) : QString();
}

QString dateInWords(const QString &stored)
{
    QDate date;
    QDateTime when;
    if (!readDate(stored, &date) && readDateTime(stored, &when))
        date = when.date();
    if (!date.isValid())
        return QString();
    return QStringLiteral("%1年%2月%3日").arg(date.year()).arg(date.month()).arg(date.day());
}
}

rptSale::rptSale(QObject *parent) : QObject(parent), m_layout(builtInLayout())
{
    setObjectName(QStringLiteral("rptSale"));
    installSongFontSubstitutes();
}

QString rptSale::layoutPath() { return QDir(Database::folder()).filePath(QStringLiteral("sale.rpx")); }

PageLayout rptSale::builtInLayout()
{
    static const Placed fixed[] = {
        {"txtSaleID", "单据编号", 7228, 142, 1276},   {"txtCustName", "客户姓名", 850, 425, 1418},
        {"txtCustID", "客户编号", 2551, 425, 1134},   {"txtCustPhone", "客户电话", 3969, 425, 1701},
        {"txtCustType", "客户种类", 5811, 425, 1417}, {"txtAddress", "客户地址", 1620, 720, 4950},
        {"txtDate", "单据日期", 7290, 720, 1701},     {"txtDetail", "备注", 850, 1134, 5528},
        {"txtBigTotal", "大写总金额", 2520, 2700, 3690},
        {"txtSmallTotal", "小写总金额", 8100, 2610, 1260},
        {"txtOperator", "操作员", 1170, 3060, 1260},  {"txtSender", "送气员", 4410, 3060, 1710},
        {"txtStation", "所辖煤气站", 6661, 3118, 1985},
    };
    static const Placed line[] = {
        {"txtLine", "序号", 810, 0, 900},     {"txtProduct", "品名", 1980, 0, 2610},
        {"txtUnit", "单位", 4770, 0, 810},    {"txtPrice", "单价", 5760, 0, 900},
        {"txtAmount", "数量", 6840, 0, 810},  {"txtMoney", "金额", 7920, 0, 1080},
    };
    constexpr int FieldHeight = 270;
    PageLayout page;
    page.bodyHeight = TicketHeight;
    const auto add = [&](const QString &name, const QString &caption, int left, int top, int width) {
        PageField f;
        f.name = name;
        f.text = caption;
        f.rect = QRect(left, top, width, FieldHeight);
        page.fields << f;
    };
    for (const auto &p : fixed)
        add(QString::fromUtf8(p.name), QString::fromUtf8(p.caption), p.left, p.top, p.width);
    const int rowTop[] = {1530, 1890, 2250};
    for (int i = 1; i <= 3; ++i)
        for (const auto &p : line)
            add(QString::fromUtf8(p.name) + QString::number(i),
                QString::fromUtf8(p.caption) + QString::number(i), p.left, rowTop[i - 1], p.width);
    return page;
}

QString rptSale::text(const QString &field) const
{
    const PageField *f = m_layout.field(field);
    return f ? f->text : QString();
}

void rptSale::setText(const QString &field, const QString &text)
{
    if (PageField *f = m_layout.field(field))
        f->text = text;
}

bool rptSale::LoadLayout(const QString &path) { return m_layout.load(path); }

bool rptSale::SaveLayout(const QString &path)
{
    QString error;
    if (m_layout.save(path, &error))
        return true;
    Msg::error(QStringLiteral("单据打印格式不能保存到 ") + QDir::toNativeSeparators(path)
                   + QStringLiteral("：") + error,
               QStringLiteral("保存"));
    return false;
}

void rptSale::ResetMyReport()
{
    for (auto &f : m_layout.fields) {
        if (!alwaysFilled().contains(f.name))
            f.text.clear();
        SetLabelFont(f.name);
    }
}

void rptSale::SetLabelFont(const QString &field)
{
    if (PageField *f = m_layout.field(field)) {
        f->fontName = QStringLiteral("宋体");
        f->bold = true;
    }
}

bool rptSale::ReportStart()
{
    try {
        ResetMyReport();
        const QString id = QString::number(mCurID);
        RecordsetPtr sale = OpenRecordset("select * from Sale where ID=" + id);
        if (!sale)
            throw VbError::objectNotSet();
        if (sale->eof())
            throw noCurrentRecord();
        setText("txtSaleID", sale->text("ID"));
        setText("txtDetail", sale->text("Detail"));
        setText("txtStation", GetFieldByID(sale->field("StationID").toLongLong(), "Station", "Name"));

        const qint64 customer = sale->field("CustomerID").toLongLong();
        setText("txtCustID", GetFieldByID(customer, "Customer", "Account"));
        setText("txtCustName", GetFieldByID(customer, "Customer", "Name"));
        setText("txtCustPhone", GetFieldByID(customer, "Customer", "Phone"));
        setText("txtAddress", GetFieldByID(customer, "Customer", "Address"));
        setText("txtCustType", custTypeLabel(GetFieldByID(customer, "Customer", "CustType")));

        setText("txtDate", dateInWords(sale->text("CreateDate")));
        setText("txtOperator", GetFieldByID(sale->field("UserID").toLongLong(), "SysUser", "Name"));
        if (const qint64 sender = sale->field("SenderID").toLongLong(); sender != 0)
            setText("txtSender", GetFieldByID(sender, "Sender", "Name"));

        const double total = sale->field("TotalMoney").toDouble();
        setText("txtSmallTotal", QStringLiteral("￥") + Format(total, "##,##0.00"));
        setText("txtBigTotal", CapitalAmount(total));

        // Only three lines fit on the paper; the total above already counts all of them.
        RecordsetPtr lines =
            OpenRecordset("select * from Sale_Detail where IsContainer='0' and SaleID=" + id);
        if (!lines)
            throw VbError::objectNotSet();
        for (int i = 1; i <= lines->recordCount() && !lines->eof(); ++i, lines->moveNext()) {
            if (i > 3)
                continue;
            const QString n = QString::number(i);
            const qint64 product = lines->field("ProductID").toLongLong();
            setText("txtLine" + n, n);
            setText("txtProduct" + n, GetFieldByID(product, "Product", "Name"));
            setText("txtUnit" + n, GetFieldByID(product, "Product", "Unit"));
            setText("txtPrice" + n, asStored(lines->field("Price")));
            setText("txtAmount" + n, asStored(lines->field("MyAmount")));
            setText("txtMoney" + n, asStored(lines->field("MyMoney")));
        }
        return true;
    } catch (const VbError &e) {
        Msg::error(QStringLiteral("出现系统故障：") + e.description(), QStringLiteral("失败"));
        return false;
    }
}

bool rptSale::render(QPagedPaintDevice *device)
{
    return ReportStart() && m_layout.print(device);
}

void rptSale::PrintReport()
{
    const QPrinterInfo target = QPrinterInfo::defaultPrinter();
    if (target.isNull()) {
        Msg::warning(QStringLiteral("没有找到默认打印机，单据没有打印。请先在系统中安装打印机并设为默认打印机。"),
                     QStringLiteral("单据打印"));
        return;
    }
    QPrinter printer(target, QPrinter::HighResolution);
    printer.setDocName(QStringLiteral("单据") + QString::number(mCurID));
    if (!ReportStart())
        return;
    if (!m_layout.print(&printer))
        Msg::error(QStringLiteral("打印机 ") + target.printerName() + QStringLiteral(" 不能打印这张单据。"),
                   QStringLiteral("单据打印"));
}

void rptSale::Show()
{
    if (!ReportStart())
        return;
    QPrinter printer(QPrinter::HighResolution);
    printer.setDocName(QStringLiteral("单据") + QString::number(mCurID));
    QPrintPreviewDialog preview(&printer);
    preview.setObjectName(QStringLiteral("rptSale"));
    preview.setWindowTitle(QStringLiteral("单据打印"));
    connect(&preview, &QPrintPreviewDialog::paintRequested, this,
            [this](QPrinter *target) { m_layout.print(target); });
    preview.resize(900, 700);
    Modal::exec(&preview);
}

void printTicket(qint32 saleID, bool preview)
{
    rptSale report;
    report.LoadLayout(rptSale::layoutPath());
    report.mCurID = saleID;
    if (preview)
        report.Show();
    else
        report.PrintReport();
}

bool renderTicket(qint32 saleID, QPagedPaintDevice *device)
{
    rptSale report;
    report.LoadLayout(rptSale::layoutPath());
    report.mCurID = saleID;
    return report.render(device);
}
