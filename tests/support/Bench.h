#pragma once
// What the window tests share: a fresh database and a message script for each test, the
// operator's keys, and letting every window go before the database closes.
#include "support/ModalScript.h"
#include "support/Rows.h"

#include "platform/Forms.h"
#include "platform/Modal.h"

#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QTableView>
#include <QtTest>
#include <memory>

// Unloads every window and lets the deleted ones go.
inline void unloadForms()
{
    Forms::unloadAll();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

// Taken into a test class beside QObject: start() in init, FINISH_BENCH() in cleanup. Every
// message must be expected through prompts, and every expected one shown, by the test's end.
struct Bench {
    std::unique_ptr<TestDb> db;
    std::unique_ptr<ScriptedPrompter> prompts;

    bool start()
    {
        db = std::make_unique<TestDb>();
        prompts = std::make_unique<ScriptedPrompter>();
        return db->ok();
    }
    // The windows go, then the script and the database; what the script saw wrong fails the test.
    void finish()
    {
        const QStringList problems = prompts ? prompts->problems() : QStringList();
        unloadForms();
        prompts.reset();
        db.reset();
        QVERIFY2(problems.isEmpty(), qPrintable(problems.join(QLatin1Char('\n'))));
    }
};
#define FINISH_BENCH() finish()

// Key presses for any text, Chinese included.
inline void typeText(QWidget *w, const QString &text)
{
    for (const QChar ch : text) {
        QTest::sendKeyEvent(QTest::Press, w, Qt::Key_unknown, QString(ch), Qt::NoModifier);
        QTest::sendKeyEvent(QTest::Release, w, Qt::Key_unknown, QString(ch), Qt::NoModifier);
    }
}

// Keys a value into a cell of the form's line grid and presses Enter, as the operator does;
// an empty value deletes what the cell held.
inline void keyCell(QWidget *form, int row, int column, const QString &value)
{
    auto *view = form->findChild<QTableView *>(QStringLiteral("dbgDetail"));
    const QModelIndex cell = view->model()->index(row, column);
    view->setFocus();
    view->setCurrentIndex(cell);
    view->edit(cell);
    QWidget *editor = QApplication::focusWidget();
    QVERIFY(editor && editor != view);
    if (auto *combo = qobject_cast<QComboBox *>(editor))
        combo->lineEdit()->selectAll();
    else if (auto *line = qobject_cast<QLineEdit *>(editor))
        line->selectAll();
    if (value.isEmpty())
        QTest::keyClick(editor, Qt::Key_Delete);
    typeText(editor, value);
    QTest::keyClick(editor, Qt::Key_Return);
    QCoreApplication::processEvents();
}

// Types into a field of the form over what it held and leaves it with Enter.
inline void typeAndEnter(QWidget *form, const QString &field, const QString &value)
{
    auto *edit = form->findChild<QLineEdit *>(field);
    edit->setFocus();
    edit->selectAll();
    if (value.isEmpty())
        QTest::keyClick(edit, Qt::Key_Delete);
    typeText(edit, value);
    QTest::keyClick(edit, Qt::Key_Return);
    QCoreApplication::processEvents();
}
