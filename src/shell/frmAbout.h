#pragma once
#include <QDialog>

// The program's name, version and build, and what the platform tells about the machine.
class frmAbout : public QDialog {
    Q_OBJECT
public:
    frmAbout();

public slots:
    void StartSysInfo();

protected:
    void reject() override;
};
