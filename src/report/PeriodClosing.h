#pragma once
#include <QString>
#include <optional>

// The closing of the today report: up to a cut-off date it deletes the tickets that were
// never fully delivered, finishes those with nothing owed either way and writes an out
// voucher for each, and leaves the others open for the next closing. Every question goes
// through the Prompter, so a test can run it without a window.
class PeriodClosing {
public:
    // Asks for the cut-off date and the confirmations, then closes in one transaction.
    // The number of tickets finished when the closing was committed; nothing when the
    // operator stopped it, a count failed, or it was rolled back.
    std::optional<int> FinishToday();
};
