#pragma once
#include <QDialog>

class QLabel;
class QTimer;

// Shown for about two seconds while the program starts; a click ends it sooner.
class frmSplash : public QDialog {
    Q_OBJECT
public:
    frmSplash();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void Timer1_Timer();

    QLabel *Picture1;
    QLabel *lblCompany;
    QTimer *Timer1;
    int m_ticks = 0;
};
