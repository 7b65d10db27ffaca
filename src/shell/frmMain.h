#pragma once
#include <QMainWindow>

class CommandBar;
class QMdiArea;
class QTableView;

// The main window: the parent of the list windows, with the command bar whose every press
// arrives at ToolClick by the tool's name.
class frmMain : public QMainWindow {
    Q_OBJECT
public:
    frmMain();
    ~frmMain() override;

    CommandBar *acbMain() const { return m_bar; }
    QMdiArea *mdiArea() const { return m_mdi; }
    // The main window while it exists (during its own load too).
    static frmMain *current();
    // The address behind tlHomePage.
    static QString homePage();

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
};
