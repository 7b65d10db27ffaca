#pragma once
#include "telephony/cTAPILine.h"

#include <QMainWindow>
#include <QPointer>

class CallerIdHandler;
class CommandBar;
class QMdiArea;
class QTableView;

// The main window: the parent of the list windows, with the command bar whose every press
// arrives at ToolClick by the tool's name.
class frmMain : public QMainWindow {
    Q_OBJECT
    Q_PROPERTY(cTAPILine *Tapiline READ Tapiline WRITE setTapiline)
public:
    frmMain();
    ~frmMain() override;

    CommandBar *acbMain() const { return m_bar; }
    QMdiArea *mdiArea() const { return m_mdi; }
    // The main window while it exists (during its own load too).
    static frmMain *current();
    // The address behind tlHomePage.
    static QString homePage();

    // The caller-ID line, made and opened by the settings window's load. Setting a new one
    // lets go of the old one, which closes its line and shuts it down; the caller numbers of
    // the new one go to the caller-ID handler.
    cTAPILine *Tapiline() const { return m_tapiline; }
    void setTapiline(cTAPILine *line);
    // What reacts to a caller number; the window keeps it and gives it every later line.
    CallerIdHandler *callerIdHandler() const { return m_callerId; }
    void setCallerIdHandler(CallerIdHandler *handler);

public slots:
    void ToolClick(const QString &tool);
    void NextRow();
    void PreviousRow();
    void FirstRow();
    void LastRow();

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    void Form_Load();
    void showChild(const QString &name);
    void callChild(const char *procedure);
    void showReport(int mode);
    void showChart();
    void clearUser();
    void tile(Qt::Orientation direction);
    void printSetup();
    void moveRow(int step);
    QTableView *activeGrid() const;

    CommandBar *m_bar;
    QMdiArea *m_mdi;
    QPointer<cTAPILine> m_tapiline;
    CallerIdHandler *m_callerId = nullptr;
};
