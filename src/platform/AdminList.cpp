#include "AdminList.h"

#include "Forms.h"
#include "Modal.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QPushButton>
#include <QStyle>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace {
QIcon g_inUse;
QIcon g_suspended;
}

void AdminListWindow::setRowIcons(const QIcon &inUse, const QIcon &suspended)
{
    g_inUse = inUse;
    g_suspended = suspended;
}

AdminListWindow::AdminListWindow(const QString &title, const QString &cardName,
                                 const QStringList &headers, QWidget *parent)
    : QDialog(parent), m_cardName(cardName)
{
    setWindowTitle(title);
    resize(560, 400);

    lsvMain = new QTreeWidget(this);
    lsvMain->setObjectName("lsvMain");
    lsvMain->setRootIsDecorated(false);
    lsvMain->setUniformRowHeights(true);
    lsvMain->setAllColumnsShowFocus(true);
    lsvMain->setColumnCount(headers.size());
    lsvMain->setHeaderLabels(headers);
    lsvMain->header()->setDefaultSectionSize(150);

    btnNew = new QPushButton(QStringLiteral("新建"), this);
    btnNew->setObjectName("btnNew");
    btnEdit = new QPushButton(QStringLiteral("修改"), this);
    btnEdit->setObjectName("btnEdit");
    btnExit = new QPushButton(QStringLiteral("退出"), this);
    btnExit->setObjectName("btnExit");
    for (QPushButton *b : {btnNew, btnEdit, btnExit})
        b->setAutoDefault(false);

    auto *buttons = new QVBoxLayout;
    buttons->addWidget(btnNew);
    buttons->addWidget(btnEdit);
    buttons->addStretch();
    buttons->addWidget(btnExit);
    auto *layout = new QHBoxLayout(this);
    layout->addWidget(lsvMain, 1);
    layout->addLayout(buttons);

    connect(lsvMain, &QTreeWidget::itemClicked, this, [this] { btnEdit->setEnabled(true); });
    connect(lsvMain, &QTreeWidget::itemSelectionChanged, this, [this] {
        if (!lsvMain->selectedItems().isEmpty())
            btnEdit->setEnabled(true);
    });
    connect(lsvMain, &QTreeWidget::itemDoubleClicked, this, [this] { btnEdit_Click(); });
    connect(btnNew, &QPushButton::clicked, this, [this] { btnNew_Click(); });
    connect(btnEdit, &QPushButton::clicked, this, [this] { btnEdit_Click(); });
    connect(btnExit, &QPushButton::clicked, this, [this] { Forms::unload(this); });
}

void AdminListWindow::Form_Load()
{
    RefreshList();
    btnEdit->setEnabled(false);
}

void AdminListWindow::RefreshList()
{
    lsvMain->clear();
    const QIcon inUse = g_inUse.isNull() ? style()->standardIcon(QStyle::SP_DialogApplyButton) : g_inUse;
    const QIcon suspended =
        g_suspended.isNull() ? style()->standardIcon(QStyle::SP_DialogCancelButton) : g_suspended;
    for (const Row &row : listRows()) {
        auto *item = new QTreeWidgetItem(lsvMain, row.columns);
        item->setData(0, Qt::UserRole, row.key);
        item->setIcon(0, row.inUse ? inUse : suspended);
    }
    if (LastIndex > 0 && LastIndex <= lsvMain->topLevelItemCount()) {
        QTreeWidgetItem *item = lsvMain->topLevelItem(LastIndex - 1);
        lsvMain->setCurrentItem(item);
        lsvMain->scrollToItem(item);
    }
}

void AdminListWindow::btnNew_Click()
{
    QWidget *card = Forms::get(m_cardName);
    if (!card)
        return;
    card->setProperty("mActionType", 1);
    Modal::exec(card);
    RefreshList();
}

void AdminListWindow::btnEdit_Click()
{
    QTreeWidgetItem *item = lsvMain->currentItem();
    if (!item || !item->isSelected())
        return;
    QWidget *card = Forms::get(m_cardName);
    if (!card)
        return;
    card->setProperty("mCurID", item->data(0, Qt::UserRole).toString().mid(1).toInt());
    card->setProperty("mActionType", 2);
    Modal::exec(card);
    LastIndex = lsvMain->indexOfTopLevelItem(item) + 1;
    RefreshList();
    lsvMain->setFocus();
}

void AdminListWindow::reject() { Forms::unload(this); }
