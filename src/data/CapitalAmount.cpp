#include "CapitalAmount.h"

#include "platform/VbRules.h"

#include <cmath>

// The printed ticket has always shown amounts this way, and customers compare tickets with
// older ones, so the known oddities stay: a zero in the hundred-thousands is written in the
// lower group (1012345 gives "壹佰壹万零贰仟..."), or lost when that group already starts with
// a zero (1010000 gives "壹佰壹万元"); digits above the ten-millions vanish; decimals beyond
// the fen are cut off, not rounded; there is never a "整".

namespace {
const QString kWhole = QStringLiteral("元");
const QString kJiao = QStringLiteral("角");
const QString kFen = QStringLiteral("分");
const QString kZero = QStringLiteral("零");
const QString kTen = QStringLiteral("拾");
const QString kHundred = QStringLiteral("佰");
const QString kThousand = QStringLiteral("仟");

// The capital of one character of the number's text. The text of a huge or tiny amount is in
// exponent form; its letters and signs have no capital.
QString capitalOf(QChar c) { return CapitalDigit(c.isDigit() ? c.digitValue() : -1); }

// Takes the last character of w; false when w is empty.
bool takeLast(QString *w, QChar *c)
{
    if (w->isEmpty())
        return false;
    *c = w->back();
    w->chop(1);
    return true;
}
}

QString CapitalDigit(int digit)
{
    static const QString digits = QStringLiteral("零壹贰叁肆伍陆柒捌玖");
    return digit >= 0 && digit <= 9 ? digits.mid(digit, 1) : QString();
}

QString CapitalAmount(double value)
{
    if (value == 0 || std::isnan(value))
        return QStringLiteral(" ");
    if (value < 0)
        return QStringLiteral("负") + CapitalAmount(-value);

    const QString text = NumText(value);
    QString whole, wan, fraction;
    QString w = text;
    const qsizetype point = text.indexOf(u'.');
    if (point >= 0) {
        const QString f = text.mid(point + 1);
        w = text.left(point);
        if (!f.isEmpty()) {
            if (f[0] != u'0')
                fraction += capitalOf(f[0]) + kJiao;
            if (f.size() > 1)
                fraction += capitalOf(f[1]) + kFen;
        }
    }

    QChar c;
    // Units: no zero test.
    if (takeLast(&w, &c))
        whole.prepend(capitalOf(c));
    // Tens, hundreds, thousands: one zero stands for a run of them.
    for (const QString &unit : {kTen, kHundred, kThousand}) {
        if (!takeLast(&w, &c))
            break;
        if (c != u'0')
            whole.prepend(capitalOf(c) + unit);
        else if (!whole.startsWith(kZero))
            whole.prepend(kZero);
    }
    // Ten thousands: no zero test.
    if (takeLast(&w, &c))
        wan.prepend(capitalOf(c));
    // Hundred thousands: the zero goes to the lower group.
    if (takeLast(&w, &c)) {
        if (c != u'0')
            wan.prepend(capitalOf(c) + kTen);
        else if (!whole.startsWith(kZero))
            whole.prepend(kZero);
    }
    // Millions.
    if (takeLast(&w, &c)) {
        if (c != u'0')
            wan.prepend(capitalOf(c) + kHundred);
        else if (!wan.startsWith(kZero))
            wan.prepend(kZero);
    }
    // Ten millions: a zero adds nothing. Anything above is dropped.
    if (takeLast(&w, &c) && c != u'0')
        wan.prepend(capitalOf(c) + kThousand);

    if (whole.endsWith(kZero))
        whole.chop(1);
    if (!wan.isEmpty()) {
        if (wan.endsWith(kZero))
            wan.chop(1);
        wan += QStringLiteral("万");
    }
    return wan + whole + kWhole + fraction;
}
