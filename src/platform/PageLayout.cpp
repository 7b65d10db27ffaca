#include "PageLayout.h"

#include <QFile>
#include <QFontDatabase>
#include <QPagedPaintDevice>
#include <QPainter>
#include <QPrinter>
#include <QSaveFile>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

namespace {
constexpr double TwipsPerPoint = 20.0;

bool readInt(const QXmlStreamAttributes &a, const char *name, int *out)
{
    if (!a.hasAttribute(QLatin1String(name)))
        return true;
    bool ok = false;
    const int v = a.value(QLatin1String(name)).toInt(&ok);
    if (ok)
        *out = v;
    return ok;
}

bool readFlag(const QXmlStreamAttributes &a, const char *name, bool *out)
{
    if (!a.hasAttribute(QLatin1String(name)))
        return true;
    const auto v = a.value(QLatin1String(name));
    if (v != QLatin1String("0") && v != QLatin1String("1"))
        return false;
    *out = v == QLatin1String("1");
    return true;
}
}

QFont PageField::font() const
{
    QFont f(fontName);
    f.setPointSizeF(fontSize > 0 ? fontSize : 10);
    f.setBold(bold);
    f.setItalic(italic);
    f.setUnderline(underline);
    return f;
}

PageField *PageLayout::field(const QString &name)
{
    for (auto &f : fields)
        if (f.name.compare(name, Qt::CaseInsensitive) == 0)
            return &f;
    return nullptr;
}

const PageField *PageLayout::field(const QString &name) const
{
    return const_cast<PageLayout *>(this)->field(name);
}

bool PageLayout::load(const QString &path, QString *error)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        if (error)
            *error = file.errorString();
        return false;
    }
    PageLayout read = *this;
    QXmlStreamReader xml(&file);
    const auto fail = [&](const QString &why) {
        if (error)
            *error = why;
        return false;
    };
    if (!xml.readNextStartElement() || xml.name() != QLatin1String("page"))
        return fail(QStringLiteral("not a page layout"));
    const auto page = xml.attributes();
    if (!readInt(page, "width", &read.paperWidth) || !readInt(page, "height", &read.paperHeight)
        || !readInt(page, "left", &read.leftMargin) || !readInt(page, "top", &read.topMargin)
        || !readInt(page, "body", &read.bodyHeight))
        return fail(QStringLiteral("bad page attributes"));
    if (read.paperWidth <= 0 || read.paperHeight <= 0 || read.leftMargin < 0 || read.topMargin < 0)
        return fail(QStringLiteral("bad paper size"));
    while (xml.readNextStartElement()) {
        if (xml.name() != QLatin1String("field")) {
            xml.skipCurrentElement();
            continue;
        }
        const auto a = xml.attributes();
        PageField *f = read.field(a.value(QLatin1String("name")).toString());
        PageField ignored;
        PageField &target = f ? *f : ignored;
        int left = target.rect.left(), top = target.rect.top();
        int width = target.rect.width(), height = target.rect.height();
        if (!readInt(a, "left", &left) || !readInt(a, "top", &top) || !readInt(a, "width", &width)
            || !readInt(a, "height", &height) || !readFlag(a, "visible", &target.visible)
            || !readFlag(a, "bold", &target.bold) || !readFlag(a, "italic", &target.italic)
            || !readFlag(a, "underline", &target.underline) || width < 0 || height < 0)
            return fail(QStringLiteral("bad field ") + target.name);
        target.rect = QRect(left, top, width, height);
        if (a.hasAttribute(QLatin1String("font")))
            target.fontName = a.value(QLatin1String("font")).toString();
        if (a.hasAttribute(QLatin1String("size"))) {
            bool ok = false;
            const double size = a.value(QLatin1String("size")).toDouble(&ok);
            if (!ok || size <= 0 || size > 400)
                return fail(QStringLiteral("bad font size"));
            target.fontSize = size;
        }
        target.text = xml.readElementText();
    }
    if (xml.hasError())
        return fail(xml.errorString());
    *this = read;
    return true;
}

bool PageLayout::save(const QString &path, QString *error) const
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        if (error)
            *error = file.errorString();
        return false;
    }
    QXmlStreamWriter xml(&file);
    xml.setAutoFormatting(true);
    xml.writeStartDocument();
    xml.writeStartElement(QStringLiteral("page"));
    xml.writeAttribute(QStringLiteral("width"), QString::number(paperWidth));
    xml.writeAttribute(QStringLiteral("height"), QString::number(paperHeight));
    xml.writeAttribute(QStringLiteral("left"), QString::number(leftMargin));
    xml.writeAttribute(QStringLiteral("top"), QString::number(topMargin));
    xml.writeAttribute(QStringLiteral("body"), QString::number(bodyHeight));
    const auto flag = [](bool b) { return b ? QStringLiteral("1") : QStringLiteral("0"); };
    for (const auto &f : fields) {
        xml.writeStartElement(QStringLiteral("field"));
        xml.writeAttribute(QStringLiteral("name"), f.name);
        xml.writeAttribute(QStringLiteral("left"), QString::number(f.rect.left()));
        xml.writeAttribute(QStringLiteral("top"), QString::number(f.rect.top()));
        xml.writeAttribute(QStringLiteral("width"), QString::number(f.rect.width()));
        xml.writeAttribute(QStringLiteral("height"), QString::number(f.rect.height()));
        xml.writeAttribute(QStringLiteral("visible"), flag(f.visible));
        xml.writeAttribute(QStringLiteral("font"), f.fontName);
        xml.writeAttribute(QStringLiteral("size"), QString::number(f.fontSize));
        xml.writeAttribute(QStringLiteral("bold"), flag(f.bold));
        xml.writeAttribute(QStringLiteral("italic"), flag(f.italic));
        xml.writeAttribute(QStringLiteral("underline"), flag(f.underline));
        xml.writeCharacters(f.text);
        xml.writeEndElement();
    }
    xml.writeEndElement();
    xml.writeEndDocument();
    if (xml.hasError() || !file.commit()) {
        if (error)
            *error = file.errorString();
        return false;
    }
    return true;
}

QPageLayout PageLayout::pageLayout() const
{
    const QPageSize size(QSizeF(paperWidth / TwipsPerPoint, paperHeight / TwipsPerPoint),
                         QPageSize::Point);
    const QMarginsF margins(leftMargin / TwipsPerPoint, topMargin / TwipsPerPoint, 0, 0);
    QPageLayout page(size, QPageLayout::Portrait, QMarginsF(), QPageLayout::Point);
    page.setMode(QPageLayout::FullPageMode);
    page.setMargins(margins);
    return page;
}

void PageLayout::setPageLayout(const QPageLayout &page)
{
    const QRectF full = page.fullRect(QPageLayout::Point);
    paperWidth = qRound(full.width() * TwipsPerPoint);
    paperHeight = qRound(full.height() * TwipsPerPoint);
    const QMarginsF margins = page.margins(QPageLayout::Point);
    leftMargin = qRound(margins.left() * TwipsPerPoint);
    topMargin = qRound(margins.top() * TwipsPerPoint);
}

void PageLayout::paint(QPainter *painter) const
{
    painter->save();
    painter->translate(leftMargin, topMargin);
    painter->setPen(Qt::black);
    for (const auto &f : fields) {
        if (!f.visible || f.text.isEmpty())
            continue;
        QFont font = f.font();
        // The painter counts in twips; a point is twenty of them.
        font.setPixelSize(qMax(1, qRound(f.fontSize * TwipsPerPoint)));
        painter->setFont(font);
        painter->drawText(f.rect, Qt::AlignLeft | Qt::AlignTop | Qt::TextWordWrap, f.text);
    }
    painter->restore();
}

bool PageLayout::print(QPagedPaintDevice *device) const
{
    // Our margins are painted by us, so the device gets the bare paper.
    QPageLayout bare = pageLayout();
    bare.setMargins(QMarginsF());
    if (auto *printer = dynamic_cast<QPrinter *>(device))
        printer->setFullPage(true);
    device->setPageLayout(bare);
    QPainter painter;
    if (!painter.begin(device))
        return false;
    const double scale = device->logicalDpiX() / 1440.0;
    painter.scale(scale, device->logicalDpiY() / 1440.0);
    paint(&painter);
    return painter.end();
}

void installSongFontSubstitutes()
{
    static bool done = false;
    if (done)
        return;
    done = true;
    const QStringList installed = QFontDatabase::families();
    QStringList ming;
    for (const char *name : {"AR PL UMing CN", "AR PL UMing TW", "AR PL SungtiL GB",
                             "Noto Serif CJK SC", "WenQuanYi Zen Hei"}) {
        if (installed.contains(QLatin1String(name)))
            ming << QLatin1String(name);
    }
    if (ming.isEmpty())
        return;
    for (const char *windowsName : {"宋体", "新宋体", "SimSun", "NSimSun"})
        QFont::insertSubstitutions(QString::fromUtf8(windowsName), ming);
}
