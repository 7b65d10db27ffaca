#pragma once
#include <QString>
#include <QTextStream>

// The long version of the kill test: a program saving tickets is killed at random moments,
// and after each kill the file must be sound and hold every ticket reported saved.
namespace KillSoak {
// Starts `program --save-tickets <file>` kills times. 0 when the file stayed sound throughout.
int run(const QString &program, int kills, QTextStream &out);
}
