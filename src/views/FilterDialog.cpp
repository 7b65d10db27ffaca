#include "FilterDialog.h"

#include "DataCombo.h"

#include "data/Gateway.h"
#include "data/PickDate.h"
#include "data/Session.h"
#include "data/SqlText.h"
#include "data/ValidateField.h"
#include "platform/Clock.h"
#include "platform/Forms.h"
#include "platform/Modal.h"
#include "platform/VbRules.h"

#include <QApplication>
#include <QButtonGroup>
#include <QCheckBox>
#include <QFocusEvent>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>

bool ConditionRow::ticked() const { return check->isChecked(); }
QString ConditionRow::opText() const { return op ? op->currentText() : QString(); }
QLineEdit *ConditionRow::edit() const { return qobject_cast<QLineEdit *>(field); }
DataCombo *ConditionRow::list() const { return qobject_cast<DataCombo *>(field); }
QString ConditionRow::text() const { return edit() ? edit()->text() : QString(); }
QString ConditionRow::boundText() const { return list() ? list()->BoundText() : QString(); }
int ConditionRow::position() const
{
    auto *box = qobject_cast<QComboBox *>(field);
    return box ? box->currentIndex() : -1;
}

// The one place a typed date is marked, so that the statement sees where it begins and ends.
QString ConditionRow::typedDate(const QString &text) { return u'#' + Sql::date(text) + u'#'; }

void ConditionRow::refresh(const QColor &offBackground)
{
    const bool on = ticked();
    field->setEnabled(on);
    QPalette pal = field->palette();
    pal.setColor(QPalette::Base, on ? QColor(Qt::white) : offBackground);
    field->setPalette(pal);
    if (op) {
        op->setEnabled(on);
        if (on && op->currentIndex() < 0)
            op->setCurrentIndex(1); // "="
    }
    QLineEdit *e = edit();
    if (!on || !e || !e->text().isEmpty())
        return;
    if (kind == Kind::Number)
        e->setText(QStringLiteral("0"));
    else if (kind == Kind::Date)
        e->setText(DateText(Clock::today()));
}

bool ConditionRow::checkValue()
{
    QLineEdit *e = edit();
    if (!e || kind == Kind::Text)
        return true;
    const QString typed = Trim(e->text());
    if (kind == Kind::Date) {
        if (typed.isEmpty() && emptyDateIsToday) {
            e->setText(DateText(Clock::today()));
            return true;
        }
        return typed.isEmpty() || ValidateField(typed, 2);
    }
    if (e->text().isEmpty()) {
        e->setText(QStringLiteral("0"));
        return true;
    }
    return ValidateField(typed, valueKind);
}

FilterDialog::FilterDialog(const QString &name, const QString &caption, Joining joining)
    : m_joining(joining), m_grid(new QGridLayout)
{
    setObjectName(name);
    setWindowTitle(caption);
    m_grid->setColumnMinimumWidth(1, 60);
    m_grid->setColumnStretch(2, 1);
    btnOk = new QPushButton(QStringLiteral("确认"), this);
    btnOk->setObjectName(QStringLiteral("btnOk"));
    btnOk->setDefault(true);
    btnCancel = new QPushButton(QStringLiteral("取消"), this);
    btnCancel->setObjectName(QStringLiteral("btnCancel"));
    btnCancel->setAutoDefault(false);
    connect(btnOk, &QPushButton::clicked, this, &FilterDialog::btnOk_Click);
    connect(btnCancel, &QPushButton::clicked, this, [this] { Forms::unload(this); });
}

ConditionRow &FilterDialog::addCondition(const char *checkName, const QString &caption, const char *fieldName,
                                ConditionRow::Kind kind, int operatorIndex,
                                std::function<QString(const ConditionRow &)> clause)
{
    ConditionRow row;
    row.kind = kind;
    row.clause = std::move(clause);
    row.check = new QCheckBox(caption, this);
    row.check->setObjectName(QLatin1String(checkName));
    connect(row.check, &QCheckBox::clicked, this, &FilterDialog::RefreshControl);
    if (kind == ConditionRow::Kind::List) {
        row.field = new DataCombo(this);
    } else if (kind == ConditionRow::Kind::Choice) {
        row.field = new QComboBox(this);
    } else {
        auto *e = new QLineEdit(this);
        e->installEventFilter(this);
        row.field = e;
    }
    row.field->setObjectName(QLatin1String(fieldName));
    if (operatorIndex >= 0) {
        while (cmbOperator.size() <= operatorIndex) {
            auto *op = new QComboBox(this);
            op->setObjectName(QStringLiteral("cmbOperator_") + QString::number(cmbOperator.size()));
            op->addItems({QStringLiteral(">"), QStringLiteral("="), QStringLiteral("<"), QStringLiteral("<="),
                          QStringLiteral(">=")});
            op->setCurrentIndex(-1);
            cmbOperator << op;
        }
        row.op = cmbOperator[operatorIndex];
    }

    const int line = int(m_rows.size());
    m_grid->addWidget(row.check, line, 0);
    if (row.op) {
        m_grid->addWidget(row.op, line, 1);
        m_grid->addWidget(row.field, line, 2);
    } else {
        m_grid->addWidget(row.field, line, 1, 1, 2);
    }
    if (kind == ConditionRow::Kind::Date) {
        btnPickDate = new QPushButton(QStringLiteral("..."), this);
        btnPickDate->setObjectName(QStringLiteral("btnPickDate"));
        btnPickDate->setFixedWidth(32);
        btnPickDate->setAutoDefault(false);
        connect(btnPickDate, &QPushButton::clicked, this, &FilterDialog::btnPickDate_Click);
        m_grid->addWidget(btnPickDate, line, 3);
    }
    m_rows << row;
    m_parts << [this, line] {
        const ConditionRow &r = m_rows[line];
        return r.ticked() ? r.clause(r) : QString();
    };
    return m_rows.last();
}

void FilterDialog::setValueKind(const char *fieldName, int kind)
{
    for (ConditionRow &row : m_rows)
        if (row.field->objectName() == QLatin1String(fieldName))
            row.valueKind = kind;
}

void FilterDialog::addClause(std::function<QString()> clause) { m_parts << std::move(clause); }

QList<QRadioButton *> FilterDialog::addOptions(const QString &title, const char *name, const QStringList &captions)
{
    auto *box = new QGroupBox(title, this);
    auto *line = new QHBoxLayout(box);
    auto *group = new QButtonGroup(box);
    QList<QRadioButton *> buttons;
    for (int i = 0; i < captions.size(); ++i) {
        auto *b = new QRadioButton(captions[i], box);
        b->setObjectName(QLatin1String(name) + QLatin1Char('_') + QString::number(i));
        group->addButton(b, i);
        line->addWidget(b);
        buttons << b;
    }
    buttons.first()->setChecked(true);
    m_optionBoxes << box;
    return buttons;
}

void FilterDialog::keepStationOutOfSight()
{
    auto *station = findChild<DataCombo *>(QStringLiteral("cmbStation"));
    station->setRowSource(OpenRecordset("select * from Station WHERE Status='1'"), "Name", "ID");
    station->setBoundText(QStringLiteral("1"));
    station->hide();
    findChild<QCheckBox *>(QStringLiteral("chkStation"))->hide();
}

void FilterDialog::finishLayout()
{
    optSearchType = addOptions(QStringLiteral("查询方式"), "optSearchType",
                               {QStringLiteral("查询现有结果"), QStringLiteral("全新查询")});
    auto *buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(btnOk);
    buttons->addWidget(btnCancel);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(m_grid);
    for (QWidget *box : m_optionBoxes)
        layout->addWidget(box);
    layout->addLayout(buttons);
    setMinimumWidth(440);
    RefreshControl();
}

void FilterDialog::RefreshControl()
{
    const QColor off = palette().color(QPalette::Window);
    for (ConditionRow &row : m_rows) {
        row.refresh(off);
        if (row.kind == ConditionRow::Kind::Date && btnPickDate)
            btnPickDate->setEnabled(row.ticked());
    }
}

bool FilterDialog::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::FocusOut) {
        // The buttons check for themselves (OK) or do not care (Cancel); a popup or another
        // window taking the focus is not the user leaving the field.
        QWidget *next = QApplication::focusWidget();
        const auto reason = static_cast<QFocusEvent *>(event)->reason();
        // While one field is being sent back, the field the user went to is not checked:
        // two bad fields would otherwise send the focus to and fro.
        if (!m_checking && next != btnOk && next != btnCancel && reason != Qt::PopupFocusReason
            && reason != Qt::ActiveWindowFocusReason) {
            for (ConditionRow &row : m_rows) {
                if (row.field != watched)
                    continue;
                m_checking = true;
                if (!row.checkValue())
                    row.field->setFocus();
                m_checking = false;
            }
        }
    }
    return QDialog::eventFilter(watched, event);
}

void FilterDialog::btnPickDate_Click()
{
    if (!Forms::isKnown(QStringLiteral("frmPickDate")))
        registerPickDateForm();
    Modal::exec(Forms::get(QStringLiteral("frmPickDate")));
    // Cancelled, the field still takes the last date picked, or the zero date before any.
    const QDate picked = Session::PickedDate.isValid() ? Session::PickedDate : QDate(1899, 12, 30);
    for (ConditionRow &row : m_rows)
        if (row.kind == ConditionRow::Kind::Date && row.edit())
            row.edit()->setText(DateText(picked));
}

QString FilterDialog::filterText() const
{
    QString sql;
    for (const auto &part : m_parts) {
        const QString clause = part();
        if (clause.isEmpty())
            continue;
        if (m_joining == Joining::WhereAnd && !sql.isEmpty())
            sql += QStringLiteral(" AND ");
        sql += clause;
    }
    return sql;
}

void FilterDialog::btnOk_Click()
{
    // A field typed into and left for OK directly has not had its check yet.
    for (ConditionRow &row : m_rows) {
        if (row.ticked() && !row.checkValue()) {
            row.field->setFocus();
            return;
        }
    }
    const QString sql = filterText();
    const bool fresh = optSearchType[1]->isChecked();
    if (QWidget *list = Forms::activeChild()) {
        const QString present = list->property("curFilterSQL").toString();
        if (m_joining == Joining::OwnWords) {
            if (fresh)
                list->setProperty("curFilterSQL", sql);
            else if (!sql.isEmpty())
                list->setProperty("curFilterSQL", present + sql);
        } else if (fresh) {
            list->setProperty("curFilterSQL", sql.isEmpty() ? QString() : QStringLiteral(" WHERE ") + sql);
        } else if (!sql.isEmpty()) {
            list->setProperty("curFilterSQL", Trim(present).isEmpty() ? QStringLiteral(" WHERE ") + sql
                                                                           : present + QStringLiteral(" AND ") + sql);
        }
    }
    Forms::unload(this);
}

void FilterDialog::reject() { Forms::unload(this); }
