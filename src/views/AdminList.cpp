#include "AdminList.h"

#include "data/Gateway.h"

#include "platform/DbGrid.h"
#include "platform/Forms.h"
#include "platform/Modal.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QPushButton>
#include <QStyle>
#include <QVBoxLayout>

namespace {
QIcon g_inUse;
QIcon g_suspended;

// The rows of the list with the in-use or suspended icon before each first cell.
class StatusIconModel : public RecordsetModel {
public:
    explicit StatusIconModel(QWidget *owner) : RecordsetModel(owner), m_owner(owner) {}

    QVariant data(const QModelIndex &index, int role) const override
    {
        if (role != Qt::DecorationRole || index.column() != 0)
            return RecordsetModel::data(index, role);
        if (!index.isValid() || !recordset())
            return QVariant();
        const bool inUse = value(index.row(), QStringLiteral("Status")).toString() == QLatin1String("1");
        if (inUse)
            return g_inUse.isNull() ? m_owner->style()->standardIcon(QStyle::SP_DialogApplyButton) : g_inUse;
        return g_suspended.isNull() ? m_owner->style()->standardIcon(QStyle::SP_DialogCancelButton) : g_suspended;
    }

private:
    QWidget *m_owner;
};
}

void AdminListWindow::setRowIcons(const QIcon &inUse, const QIcon &suspended)
{
    g_inUse = inUse;
    g_suspended = suspended;
}

AdminListWindow::AdminListWindow(const QString &formName, const QString &title, const QString &cardName,
                                 const QString &listSQL, const QList<Column> &columns, QWidget *parent)
    : QDialog(parent), m_cardName(cardName), m_listSQL(listSQL), m_model(new StatusIconModel(this))
{
    setObjectName(formName);
    setWindowTitle(title);
    resize(560, 400);

    QList<GridColumn> gridColumns;
    for (const Column &c : columns) {
        GridColumn column;
        column.caption = c.first;
        column.field = c.second;
        column.widthTwips = 2250;
        gridColumns << column;
    }
    m_model->setColumns(gridColumns);
    lsvMain = new DbGrid(this);
    lsvMain->setObjectName(QStringLiteral("lsvMain"));
    lsvMain->setModel(m_model);
    lsvMain->horizontalHeader()->setStretchLastSection(true);

    btnNew = new QPushButton(QStringLiteral("新建"), this);
    btnNew->setObjectName(QStringLiteral("btnNew"));
    btnEdit = new QPushButton(QStringLiteral("修改"), this);
    btnEdit->setObjectName(QStringLiteral("btnEdit"));
    btnExit = new QPushButton(QStringLiteral("退出"), this);
    btnExit->setObjectName(QStringLiteral("btnExit"));
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

    connect(lsvMain, &QAbstractItemView::clicked, this, [this] { btnEdit->setEnabled(true); });
    connect(lsvMain->selectionModel(), &QItemSelectionModel::selectionChanged, this, [this] {
        if (lsvMain->selectionModel()->hasSelection())
            btnEdit->setEnabled(true);
    });
    connect(lsvMain, &QAbstractItemView::doubleClicked, this, [this] { btnEdit_Click(); });
    connect(btnNew, &QPushButton::clicked, this, [this] { btnNew_Click(); });
    connect(btnEdit, &QPushButton::clicked, this, [this] { btnEdit_Click(); });
    connect(btnExit, &QPushButton::clicked, this, [this] { Forms::unload(this); });

    // The load step.
    RefreshList();
    btnEdit->setEnabled(false);
}

void AdminListWindow::RefreshList()
{
    m_model->setRecordset(OpenRecordset(m_listSQL));
    if (LastIndex > 0 && LastIndex <= m_model->rowCount())
        lsvMain->setCurrentRow(LastIndex - 1);
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
    const int row = lsvMain->currentRow();
    if (row < 0 || !lsvMain->selectionModel()->isRowSelected(row, QModelIndex()))
        return;
    QWidget *card = Forms::get(m_cardName);
    if (!card)
        return;
    card->setProperty("mCurID", m_model->value(row, QStringLiteral("ID")).toInt());
    card->setProperty("mActionType", 2);
    Modal::exec(card);
    LastIndex = row + 1;
    RefreshList();
    lsvMain->setFocus();
}

void AdminListWindow::reject() { Forms::unload(this); }
