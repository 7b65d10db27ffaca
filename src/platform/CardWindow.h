#pragma once
#include <QDialog>

class QFormLayout;
class QPushButton;

// A card window of the list-and-card pattern. The opener sets mActionType (1 new, 2 edit)
// and mCurID before showing it; the card's load step reads them when it is first shown.
// Closing the card in any way unloads it, so the next opening starts afresh.
class CardWindow : public QDialog {
    Q_OBJECT
    Q_PROPERTY(int mActionType MEMBER mActionType)
    Q_PROPERTY(int mCurID MEMBER mCurID)
public:
    using QDialog::QDialog;

    int mActionType = 0;
    int mCurID = 0;

protected:
    // Lays the card out: its fields, then 保存 and 退出 at the bottom right. The two buttons
    // are made here, after the fields, so that Tab reaches them last; 退出 unloads the card.
    void layOut(QFormLayout *form, int minimumWidth);
    QPushButton *btnSave = nullptr;
    QPushButton *btnExit = nullptr;

    // The load step, run once, when the window is first shown.
    virtual void Form_Load() = 0;
    // Unloads the card from inside its load step, once its dialog loop runs.
    void unloadLater();
    void showEvent(QShowEvent *event) override;
    void reject() override;

private:
    bool m_loaded = false;
};
