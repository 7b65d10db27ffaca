#pragma once
#include "data/Recordset.h"

#include <QString>
#include <functional>

class SaleListWindow;

// What can be done to tickets from a list: collect and refund money, deliver and take back
// goods, take back empties and mark them owed, for the ticket in the current row or for all
// open tickets, and delete tickets. The checks read the list's snapshot as of its last
// refresh; the statements change the database; the list refreshes as each one requires.
class TicketOperations {
public:
    explicit TicketOperations(SaleListWindow *list) : m_list(list) {}

    void InMoney();
    void OutMoney();
    void OutAmount();
    void InAmount();
    void InContainer();
    void OutContainer();

    void InAllMoney();
    void OutAllMoney();
    void OutAllAmount();
    void InAllAmount();
    void InAllContainer();
    void OutAllContainer();

    void DeleteData();
    void DeleteAll();

private:
    // Which state lets a single-ticket operation run.
    enum class Check { Collectable, NotFinished, Open };
    struct Single {
        QString selectTitle, selectText;
        Check check;
        QString refuseTitle, refuseText;
        QString askTitle, askBefore, askAfter; // no question when askTitle is empty
        QString statement;                      // the ticket number follows it
        bool refreshAlways;
        std::function<void(const Recordset &)> done = {}; // after a successful statement
    };
    struct Bulk {
        QString askTitle, askText;
        QString statement;
        bool refreshAlways;
        QString doneText; // shown, with askTitle, after a successful statement; none when empty
    };
    // Runs a single-ticket operation; true when its statement ran and succeeded.
    bool runSingle(const Single &op);
    void runBulk(const Bulk &op);

    SaleListWindow *m_list;
};
