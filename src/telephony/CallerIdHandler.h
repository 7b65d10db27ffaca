#pragma once
#include <QObject>
#include <QString>
#include <functional>

class cTAPILine;

// The shop's delivered build leaves caller numbers alone; building with
// -DTARVIK_CALLER_ID_HANDLING=ON logs each call and brings up the caller on the ticket.
#ifdef TARVIK_CALLER_ID_HANDLING
constexpr bool CallerIdHandlingOff = false;
#else
constexpr bool CallerIdHandlingOff = true;
#endif

// What a caller number does while a new ticket stands open: a beep, a row in Call, and the
// caller's customer on the ticket with the focus on its lines. The ticket window is reached
// by name only. A step that fails is passed over and the next one runs.
class CallerIdHandler : public QObject {
    Q_OBJECT
public:
    explicit CallerIdHandler(bool handlingOff = CallerIdHandlingOff, QObject *parent = nullptr);

    // Listens to the line's caller numbers.
    void attach(cTAPILine *line);
    // How the beep is made; the desktop's bell unless a test counts it.
    void setBeeper(std::function<void()> beeper) { m_beep = std::move(beeper); }

public slots:
    void Tapiline_InfoCallerID(const QString &number);

private:
    bool m_handlingOff;
    std::function<void()> m_beep;
};
