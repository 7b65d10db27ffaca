#pragma once
#include "platform/PageLayout.h"

#include <QObject>

class QPagedPaintDevice;

// The printed sale ticket ("单据打印"): one page of fields filled from one Sale row, with
// room for three lines. Where the fields stand is the shop's own layout, sale.rpx beside the
// database; without a readable file the layout built in here is used.
class rptSale : public QObject {
    Q_OBJECT
    Q_PROPERTY(int mCurID MEMBER mCurID)
public:
    explicit rptSale(QObject *parent = nullptr);

    int mCurID = 0;

    // sale.rpx beside the database file.
    static QString layoutPath();
    static PageLayout builtInLayout();

    PageLayout &layout() { return m_layout; }
    const PageLayout &layout() const { return m_layout; }
    QString text(const QString &field) const;

public slots:
    // A missing or unreadable file leaves the present layout and says nothing.
    bool LoadLayout(const QString &path);
    bool SaveLayout(const QString &path);
    void ResetMyReport();
    void SetLabelFont(const QString &field);
    // Fills the fields from ticket mCurID. A failure is shown to the user ("出现系统故障：")
    // and gives false: the ticket is then not printed.
    bool ReportStart();
    // Straight to the default printer, with no dialog; a machine without a printer is told so.
    void PrintReport();
    // The preview window, from which the user can print or save a PDF.
    void Show();

public:
    // Fills and prints on the given device (a printer or a PDF); false when the fill failed
    // or the device could not be painted on.
    bool render(QPagedPaintDevice *device);

private:
    void setText(const QString &field, const QString &text);

    PageLayout m_layout;
};

// The two doors of the gateway: load the shop's layout, fill ticket saleID, then print it
// straight away or show it in the preview window.
void printTicket(qint32 saleID, bool preview);
// The same steps onto a device of the caller's choosing, such as a PDF file.
bool renderTicket(qint32 saleID, QPagedPaintDevice *device);
