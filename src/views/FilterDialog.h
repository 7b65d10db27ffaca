#pragma once
#include <QDialog>
#include <QList>
#include <functional>

class DataCombo;
class QCheckBox;
class QComboBox;
class QGridLayout;
class QLineEdit;
class QPushButton;
class QRadioButton;
class QVBoxLayout;

// One condition of a filter dialog: its check box, its field, the operator list where the
// comparison is free, the field's value check and the clause it adds when ticked.
class ConditionRow {
public:
    // List: a drop-down over a result set, read by its bound value. Choice: a drop-down of
    // fixed items, read by the position of the chosen one.
    enum class Kind { Text, Number, Date, List, Choice };

    QCheckBox *check = nullptr;
    QWidget *field = nullptr;
    QComboBox *op = nullptr; // nullptr where the comparison is fixed
    Kind kind = Kind::Text;
    int valueKind = 1;       // the value check of a number field: 1, or 3 for 16-bit ones
    bool emptyDateIsToday = false; // a date field left empty takes today instead of staying empty
    std::function<QString(const ConditionRow &)> clause;

    bool ticked() const;
    QString opText() const;
    QString text() const;      // the field's text as typed
    QString boundText() const; // of a list field
    int position() const;      // of a list or choice field; -1 with nothing chosen
    QLineEdit *edit() const;
    DataCombo *list() const;

    // Brings the field into line with its check box; fills an empty number with "0" and an
    // empty date with today when ticked.
    void refresh(const QColor &offBackground);
    // The check on leaving the field: false (after the message) when it cannot be read. An
    // empty number becomes 0; a date is tested only when typed, or first becomes today.
    bool checkValue();

    // A typed date between the statement's date marks.
    static QString typedDate(const QString &text);
};

// A filter dialog: its conditions in the order they are built, its options, and OK / Cancel.
// OK writes the built text into curFilterSQL of the list window in front, either as a run of
// clauses each carrying its own "AND" (the ticket lists), or as " WHERE " and clauses joined
// by " AND " (lists whose query has no condition of its own). Every opening starts over.
class FilterDialog : public QDialog {
    Q_OBJECT
public:
    enum class Joining { OwnWords, WhereAnd };

    // The clauses the dialog would hand over now.
    QString filterText() const;

public slots:
    void RefreshControl();
    void btnPickDate_Click();
    void btnOk_Click();

protected:
    FilterDialog(const QString &name, const QString &caption, Joining joining);

    // The controls of one condition, added in the order of building. operatorIndex is the
    // place in cmbOperator, -1 for none. The row given back is for settings made at once: the
    // next condition added may move it.
    ConditionRow &addCondition(const char *checkName, const QString &caption, const char *fieldName,
                               ConditionRow::Kind kind, int operatorIndex,
                               std::function<QString(const ConditionRow &)> clause);
    // A number field whose value check is another kind (3: a 16-bit whole number).
    void setValueKind(const char *fieldName, int kind);
    // A clause from something other than a condition (an option), in its place among them.
    void addClause(std::function<QString()> clause);
    // A row of options; the first is chosen.
    QList<QRadioButton *> addOptions(const QString &title, const char *name, const QStringList &captions);
    // Lays out the conditions, the option rows and the buttons; the last step of building.
    void finishLayout();
    // Fills the station list with the stations in use on station 1 and hides its condition:
    // one station is in daily use, so the choice stays out of sight.
    void keepStationOutOfSight();

    QList<QComboBox *> cmbOperator;
    QList<QRadioButton *> optSearchType;
    QPushButton *btnPickDate = nullptr;
    QPushButton *btnOk;
    QPushButton *btnCancel;

    bool eventFilter(QObject *watched, QEvent *event) override;
    void reject() override;

private:
    Joining m_joining;
    QList<ConditionRow> m_rows;
    QList<std::function<QString()>> m_parts;
    QList<QWidget *> m_optionBoxes;
    QGridLayout *m_grid;
    bool m_checking = false;
};
