#pragma once
#include <QFont>
#include <QList>
#include <QPageLayout>
#include <QRect>
#include <QString>

class QPainter;
class QPagedPaintDevice;

// A printed page made of named text fields placed in twips (1440 to the inch) from the top
// left of the printable area. The printed ticket and its designer both work on one of these.
struct PageField {
    QString name;
    QString text;       // what prints; in the designer, the caption that tells fields apart
    QRect rect;         // twips, relative to the top left margin
    QString fontName = QStringLiteral("宋体");
    double fontSize = 10; // points
    bool bold = false;
    bool italic = false;
    bool underline = false;
    bool visible = true;

    QFont font() const;  // sized in points
};

class PageLayout {
public:
    // Paper and margins in twips. The default is A4 with one-inch margins.
    int paperWidth = 11906;
    int paperHeight = 16838;
    int leftMargin = 1440;
    int topMargin = 1440;
    int bodyHeight = 0; // height of the part of the page that holds the fields
    QList<PageField> fields;

    PageField *field(const QString &name);
    const PageField *field(const QString &name) const;

    // The file format is XML:
    //   <page width=".." height=".." left=".." top=".." body="..">
    //     <field name=".." left=".." top=".." width=".." height=".." visible="1"
    //            font=".." size=".." bold="0" italic="0" underline="0">caption</field>
    //   </page>
    // Loading replaces this layout only when the whole file reads; fields named in the file
    // but unknown here are ignored, fields missing from the file keep their present place.
    bool load(const QString &path, QString *error = nullptr);
    bool save(const QString &path, QString *error = nullptr) const;

    QPageLayout pageLayout() const;              // paper with our margins
    void setPageLayout(const QPageLayout &page); // from a page setup dialog

    // Paints the visible fields, one twip to one unit of the painter's own device scale.
    void paint(QPainter *painter) const;
    // Prints the page on its paper; false when the device cannot be painted on.
    bool print(QPagedPaintDevice *device) const;
};

// "宋体" and the other Windows names for Song/Ming faces have no font of that name on a
// Linux desktop: point them at an installed Ming face so that tickets print in Chinese.
void installSongFontSubstitutes();
