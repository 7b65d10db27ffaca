#pragma once
#include <QDate>
#include <QDialog>

class QCalendarWidget;
class QLineEdit;
class QPushButton;

// The calendar dialog. It opens on today; a date chosen in the calendar shows in txtValue,
// where the user may also type one. btnOk takes the typed date, or the calendar's when
// nothing is typed, announces it through dateChosen and closes. However it closes, the form
// unloads itself, so the next showing starts afresh.
class frmPickDate : public QDialog {
    Q_OBJECT
public:
    explicit frmPickDate(QWidget *parent = nullptr);

    // The date taken by btnOk; null when the dialog was closed without choosing.
    QDate chosenDate() const { return m_chosen; }

    void done(int result) override;

signals:
    void dateChosen(const QDate &date);

private slots:
    void btnOk_Click();

private:
    QCalendarWidget *mvwMain;
    QLineEdit *txtValue;
    QPushButton *btnOk;
    QDate m_chosen;
    bool m_unloading = false;
};
