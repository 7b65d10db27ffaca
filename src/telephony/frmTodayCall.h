#pragma once
#include <QWidget>

class QTreeWidget;

// Today's calls, as a child window of the main window. Prepared for a later use: no tool
// opens it yet and nothing fills its list.
class frmTodayCall : public QWidget {
    Q_OBJECT
public:
    explicit frmTodayCall(QWidget *parent = nullptr);

    QTreeWidget *lsvTodayCall;
};
