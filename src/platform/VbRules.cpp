#include "VbRules.h"

#include "VbError.h"

#include <QRegularExpression>
#include <QTime>

#include <algorithm>
#include <cfloat>
#include <charconv>
#include <cmath>

namespace {

// ---------------------------------------------------------------------------------------------
// Numbers from text

bool isDigit(QChar c) { return c >= u'0' && c <= u'9'; }

bool isHexDigit(QChar c)
{
    return isDigit(c) || (c >= u'a' && c <= u'f') || (c >= u'A' && c <= u'F');
}

enum class Read { Ok, NoNumber, Overflow };

// &H and &O numbers are whole numbers of the smallest classic type that holds their digits:
// up to four hex digits a 16-bit one (&HFFFF is -1), up to eight a 32-bit one.
Read radixValue(const QString &digits, int radix, double *out)
{
    quint64 v = 0;
    for (QChar c : digits) {
        v = v * quint64(radix) + quint64(c.isDigit() ? c.unicode() - u'0' : (c.toLower().unicode() - u'a' + 10));
        if (v > 0xFFFFFFFFull)
            return Read::Overflow;
    }
    if (v <= 0xFFFF)
        *out = double(qint16(quint16(v)));
    else
        *out = double(qint32(quint32(v)));
    return Read::Ok;
}

// Reads a plain decimal number: digits with at most one point, scaled by a power of ten.
Read decimalValue(const QByteArray &mantissa, int exponent, bool negative, double *out)
{
    const QByteArray text = mantissa + 'e' + QByteArray::number(exponent);
    double v = 0;
    const auto result = std::from_chars(text.constData(), text.constData() + text.size(), v);
    if (result.ec == std::errc::result_out_of_range) {
        // Underflow is a zero; overflow is an error. Tell them apart by the decimal order of
        // the first significant digit.
        const qsizetype point = mantissa.contains('.') ? mantissa.indexOf('.') : mantissa.size();
        qsizetype first = 0;
        while (first < mantissa.size() && (mantissa[first] == '0' || mantissa[first] == '.'))
            ++first;
        if (first == mantissa.size()) {
            *out = 0;
            return Read::Ok;
        }
        const qint64 order = first < point ? point - first - 1 : point - first;
        if (order + exponent < 0) {
            *out = 0;
            return Read::Ok;
        }
        return Read::Overflow;
    }
    if (result.ec != std::errc())
        return Read::NoNumber;
    *out = negative ? -v : v;
    return Read::Ok;
}

// Exponents beyond this are over- or underflow whatever the mantissa, and stay inside int.
int clampExponent(qint64 e) { return int(std::clamp<qint64>(e, -100000, 100000)); }

// The leading number of text that has already lost its blanks, as Val reads it.
Read leadingNumber(const QString &s, double *out)
{
    *out = 0;
    qsizetype p = 0;
    const qsizetype n = s.size();
    if (n >= 2 && s[0] == u'&') {
        const QChar kind = s[1].toUpper();
        qsizetype q = (kind == u'H' || kind == u'O') ? 2 : 1;
        const int radix = kind == u'H' ? 16 : 8;
        const qsizetype start = q;
        while (q < n && (radix == 16 ? isHexDigit(s[q]) : (s[q] >= u'0' && s[q] <= u'7')))
            ++q;
        if (q == start)
            return Read::NoNumber;
        return radixValue(s.mid(start, q - start), radix, out);
    }
    bool negative = false;
    if (p < n && (s[p] == u'-' || s[p] == u'+'))
        negative = s[p++] == u'-';
    QByteArray mantissa;
    bool point = false;
    int digits = 0;
    for (; p < n; ++p) {
        if (isDigit(s[p])) {
            mantissa += char(s[p].unicode());
            ++digits;
        } else if (s[p] == u'.' && !point) {
            mantissa += '.';
            point = true;
        } else {
            break;
        }
    }
    if (digits == 0)
        return Read::NoNumber;
    qint64 exponent = 0;
    if (p < n && QStringLiteral("eEdD").contains(s[p])) {
        qsizetype q = p + 1;
        bool expNegative = false;
        if (q < n && (s[q] == u'-' || s[q] == u'+'))
            expNegative = s[q++] == u'-';
        qint64 e = 0;
        bool any = false;
        for (; q < n && isDigit(s[q]); ++q) {
            e = qMin<qint64>(e * 10 + (s[q].unicode() - u'0'), 1000000);
            any = true;
        }
        if (any)
            exponent = expNegative ? -e : e;
    }
    return decimalValue(mantissa, clampExponent(exponent), negative, out);
}

// The strict reading of a whole text as a number, as the classic conversions accept it.
Read strictNumber(const QString &text, double *out)
{
    QString s = text.trimmed();
    if (s.isEmpty())
        return Read::NoNumber;
    if (s[0] == u'&') {
        double v = 0;
        const Read r = leadingNumber(s, &v);
        if (r != Read::Ok)
            return r;
        // The whole text must be the number.
        static const QRegularExpression whole(QStringLiteral("^&([Hh][0-9A-Fa-f]+|[Oo]?[0-7]+)$"));
        if (!whole.match(s).hasMatch())
            return Read::NoNumber;
        *out = v;
        return Read::Ok;
    }
    static const QRegularExpression shape(QStringLiteral(
        "^([-+]?)\\s*[￥¥]?\\s*([0-9][0-9,]*(?:\\.[0-9]*)?|\\.[0-9]+)(?:[eEdD]([-+]?[0-9]+))?$"));
    const QRegularExpressionMatch m = shape.match(s);
    if (!m.hasMatch())
        return Read::NoNumber;
    const QByteArray mantissa = m.captured(2).remove(u',').toLatin1();
    qint64 exponent = 0;
    if (m.hasCaptured(3)) {
        const QString e = m.captured(3);
        const bool negative = e.startsWith(u'-');
        for (QChar c : e)
            if (isDigit(c))
                exponent = qMin<qint64>(exponent * 10 + (c.unicode() - u'0'), 1000000);
        if (negative)
            exponent = -exponent;
    }
    return decimalValue(mantissa, clampExponent(exponent), m.captured(1) == u"-", out);
}

// A value from any variant, as the classic conversions see it.
double variantNumber(const QVariant &value)
{
    if (!value.isValid())
        return 0;
    if (value.isNull())
        throw VbError(94, QStringLiteral("无效使用 Null"));
    switch (value.typeId()) {
    case QMetaType::Bool:
        return value.toBool() ? -1 : 0;
    case QMetaType::QString:
    case QMetaType::QByteArray:
    case QMetaType::QChar: {
        double v = 0;
        switch (strictNumber(value.toString(), &v)) {
        case Read::Ok:
            return v;
        case Read::Overflow:
            throw VbError::overflow();
        case Read::NoNumber:
            break;
        }
        throw VbError::typeMismatch();
    }
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Double:
    case QMetaType::Float:
    case QMetaType::Short:
    case QMetaType::UShort:
    case QMetaType::Long:
    case QMetaType::ULong:
    case QMetaType::Char:
    case QMetaType::SChar:
    case QMetaType::UChar:
        return value.toDouble();
    default:
        throw VbError::typeMismatch();
    }
}

// Banker's rounding to a whole number inside [low, high], or overflow.
double roundWhole(double v, double low, double high)
{
    const double r = std::nearbyint(v);   // the default rounding mode: halves go to even
    if (!(r >= low && r <= high))         // also catches NaN
        throw VbError::overflow();
    return r;
}

// ---------------------------------------------------------------------------------------------
// Numbers as text

// A magnitude in its 15-significant-digit decimal form: value = 0.digits x 10^point. The
// digits have no leading or trailing zeros; zero has no digits.
struct Decimal {
    QString digits;
    int point = 0;
};

Decimal decimalForm(double magnitude)
{
    Decimal d;
    if (magnitude == 0 || !std::isfinite(magnitude))
        return d;
    const QString s = QString::number(magnitude, 'e', 14);   // d.dddddddddddddde+XX
    const qsizetype e = s.indexOf(u'e');
    d.digits = s.left(e).remove(u'.');
    d.point = s.mid(e + 1).toInt() + 1;
    while (d.digits.endsWith(u'0'))
        d.digits.chop(1);
    return d;
}

// The whole digits (no leading zeros) and exactly `decimals` fraction digits of a Decimal,
// rounded half away from zero or, with halfEven, to even on an exact half.
void roundDecimal(const Decimal &d, int decimals, bool halfEven, QString *whole, QString *fraction)
{
    auto digitAt = [&](qint64 k) -> int {
        return (k >= 0 && k < d.digits.size()) ? d.digits[k].unicode() - u'0' : 0;
    };
    QString all;
    for (qint64 k = 0; k < d.point; ++k)
        all += QChar(u'0' + digitAt(k));
    const qsizetype wholeCount = all.size();
    for (int j = 0; j < decimals; ++j)
        all += QChar(u'0' + digitAt(qint64(d.point) + j));
    const qint64 next = qint64(d.point) + decimals;
    const int first = digitAt(next);
    bool up = first > 5 || (first == 5 && !halfEven);
    if (first == 5 && halfEven) {
        bool beyond = false;
        for (qint64 k = qMax<qint64>(next + 1, 0); k < d.digits.size(); ++k)
            beyond = beyond || d.digits[k] != u'0';
        const int last = all.isEmpty() ? 0 : all.back().unicode() - u'0';
        up = beyond || (last % 2 == 1);
    }
    qsizetype wholeDigits = wholeCount;
    if (up) {
        qsizetype i = all.size() - 1;
        for (; i >= 0; --i) {
            if (all[i] == u'9') {
                all[i] = u'0';
            } else {
                all[i] = QChar(all[i].unicode() + 1);
                break;
            }
        }
        if (i < 0) {
            all.prepend(u'1');
            ++wholeDigits;
        }
    }
    QString w = all.left(wholeDigits);
    qsizetype lead = 0;
    while (lead < w.size() && w[lead] == u'0')
        ++lead;
    *whole = w.mid(lead);
    *fraction = all.mid(wholeDigits);
}

struct Token {
    enum Kind { Zero, Hash, Point, Comma, Literal } kind;
    QString text;
};

// Cuts one section of a format pattern into placeholders and literal text.
QList<Token> tokenize(const QString &section, bool *percent)
{
    QList<Token> tokens;
    auto literal = [&](const QString &t) {
        if (!tokens.isEmpty() && tokens.back().kind == Token::Literal)
            tokens.back().text += t;
        else
            tokens.append(Token{Token::Literal, t});
    };
    for (qsizetype i = 0; i < section.size(); ++i) {
        const QChar c = section[i];
        if (c == u'0') {
            tokens.append(Token{Token::Zero, {}});
        } else if (c == u'#') {
            tokens.append(Token{Token::Hash, {}});
        } else if (c == u'.') {
            tokens.append(Token{Token::Point, {}});
        } else if (c == u',') {
            tokens.append(Token{Token::Comma, {}});
        } else if (c == u'%') {
            *percent = true;
            literal(QStringLiteral("%"));
        } else if (c == u'\\') {
            if (i + 1 < section.size())
                literal(section.mid(++i, 1));
        } else if (c == u'"') {
            const qsizetype close = section.indexOf(u'"', i + 1);
            const qsizetype end = close < 0 ? section.size() : close;
            literal(section.mid(i + 1, end - i - 1));
            i = end;
        } else {
            literal(QString(c));
        }
    }
    return tokens;
}

// Splits a pattern at the semicolons that are not quoted or escaped.
QStringList sections(const QString &pattern)
{
    QStringList out{QString()};
    bool quoted = false;
    for (qsizetype i = 0; i < pattern.size(); ++i) {
        const QChar c = pattern[i];
        if (c == u'"')
            quoted = !quoted;
        if (c == u'\\' && i + 1 < pattern.size()) {
            out.back() += c;
            out.back() += pattern[++i];
            continue;
        }
        if (c == u';' && !quoted)
            out.append(QString());
        else
            out.back() += c;
    }
    return out;
}

// One section applied to a magnitude. *shownZero tells whether every digit shown is zero.
QString formatSection(double magnitude, const QString &section, bool *shownZero)
{
    bool percent = false;
    QList<Token> tokens = tokenize(section, &percent);

    // The point splits the placeholders; a second point is literal text.
    qsizetype pointAt = -1;
    for (qsizetype i = 0; i < tokens.size(); ++i) {
        if (tokens[i].kind == Token::Point) {
            if (pointAt < 0)
                pointAt = i;
            else
                tokens[i] = Token{Token::Literal, QStringLiteral(".")};
        }
    }
    const qsizetype intEnd = pointAt < 0 ? tokens.size() : pointAt;
    auto isPlaceholder = [](const Token &t) { return t.kind == Token::Zero || t.kind == Token::Hash; };

    // Commas between whole-number placeholders group thousands; commas right after the last
    // one scale by a thousand each; any other comma is literal text.
    qsizetype firstPh = -1, lastPh = -1;
    for (qsizetype i = 0; i < intEnd; ++i) {
        if (isPlaceholder(tokens[i])) {
            if (firstPh < 0)
                firstPh = i;
            lastPh = i;
        }
    }
    bool grouping = false;
    int scale = 0;
    bool anyPlaceholder = false;
    for (qsizetype i = 0; i < tokens.size(); ++i) {
        anyPlaceholder = anyPlaceholder || isPlaceholder(tokens[i]);
        if (tokens[i].kind != Token::Comma)
            continue;
        if (i < intEnd && firstPh >= 0 && i > firstPh && i < lastPh)
            grouping = true;
        else if (i < intEnd && lastPh >= 0 && i > lastPh)
            ++scale;
        else
            tokens[i] = Token{Token::Literal, QStringLiteral(",")};
        if (tokens[i].kind == Token::Comma)
            tokens[i] = Token{Token::Literal, QString()};
    }

    double v = magnitude;
    if (percent)
        v *= 100;
    for (int k = 0; k < scale; ++k)
        v /= 1000;

    int decimals = 0, lastZero = 0;
    if (pointAt >= 0) {
        for (qsizetype i = pointAt + 1; i < tokens.size(); ++i) {
            if (isPlaceholder(tokens[i])) {
                ++decimals;
                if (tokens[i].kind == Token::Zero)
                    lastZero = decimals;
            }
        }
    }
    QString whole, fraction;
    roundDecimal(decimalForm(v), decimals, false, &whole, &fraction);
    *shownZero = whole.isEmpty() && std::all_of(fraction.cbegin(), fraction.cend(),
                                                [](QChar c) { return c == u'0'; });

    if (!anyPlaceholder) {
        QString out;
        for (const Token &t : tokens)
            out += t.text;
        return out;
    }

    // Whole part: the leftmost '0' and everything right of it are always shown.
    int minDigits = 0;
    bool seenZero = false;
    for (qsizetype i = 0; i < intEnd; ++i) {
        if (tokens[i].kind == Token::Zero)
            seenZero = true;
        if (seenZero && isPlaceholder(tokens[i]))
            ++minDigits;
    }
    if (whole.size() < minDigits)
        whole.prepend(QString(minDigits - whole.size(), u'0'));

    QString out;
    qsizetype left = whole.size();
    int emitted = 0;
    auto takeDigit = [&] {
        if (grouping && emitted > 0 && emitted % 3 == 0)
            out.prepend(u',');
        out.prepend(whole[--left]);
        ++emitted;
    };
    for (qsizetype i = intEnd - 1; i >= 0; --i) {
        const Token &t = tokens[i];
        if (!isPlaceholder(t)) {
            out.prepend(t.text);
        } else if (i == firstPh) {
            while (left > 0)
                takeDigit();
        } else if (left > 0) {
            takeDigit();
        }
    }
    if (firstPh < 0) {
        // No whole-number placeholder: the whole digits still stand before the point.
        while (left > 0)
            takeDigit();
    }
    if (pointAt >= 0) {
        qsizetype keep = fraction.size();
        while (keep > lastZero && fraction[keep - 1] == u'0')
            --keep;
        out += u'.';
        int k = 0;
        for (qsizetype i = pointAt + 1; i < tokens.size(); ++i) {
            if (isPlaceholder(tokens[i])) {
                if (k < keep)
                    out += fraction[k];
                ++k;
            } else {
                out += tokens[i].text;
            }
        }
    }
    return out;
}

QString namedFormat(const QString &pattern)
{
    const QString p = pattern.trimmed().toLower();
    if (p == u"currency")
        return QStringLiteral("￥#,##0.00");
    if (p == u"fixed")
        return QStringLiteral("0.00");
    if (p == u"standard")
        return QStringLiteral("#,##0.00");
    if (p == u"percent")
        return QStringLiteral("0.00%");
    return pattern;
}

// ---------------------------------------------------------------------------------------------
// Dates

bool readMoment(const QString &text, QDate *date, QTime *time)
{
    static const QRegularExpression re(QStringLiteral(
        "^[ \\t\\n\\r\\f]*([0-9]+)([-/])([0-9]+)\\2([0-9]+)"
        "(?:[ \\t\\n\\r\\f]+([0-9]{1,2}):([0-9]{1,2})(?::([0-9]{1,2}))?"
        "[ \\t\\n\\r\\f]*(?:([AaPp])[Mm])?)?[ \\t\\n\\r\\f]*$"));
    const QRegularExpressionMatch m = re.match(text);
    if (!m.hasMatch())
        return false;
    const QString a = m.captured(1), b = m.captured(3), c = m.captured(4);
    if (b.size() > 2)
        return false;
    QDate d;
    if (a.size() == 4 && c.size() <= 2)
        d = QDate(a.toInt(), b.toInt(), c.toInt());
    else if (a.size() <= 2 && c.size() == 4)
        d = QDate(c.toInt(), a.toInt(), b.toInt());
    if (!d.isValid() || d.year() < 1)
        return false;
    QTime t(0, 0);
    if (m.hasCaptured(5)) {
        int h = m.captured(5).toInt();
        if (m.hasCaptured(8)) {
            if (h > 12)
                return false;
            h = h % 12 + (m.captured(8).toUpper() == u"P" ? 12 : 0);
        }
        t = QTime(h, m.captured(6).toInt(), m.hasCaptured(7) ? m.captured(7).toInt() : 0);
        if (!t.isValid())
            return false;
    }
    *date = d;
    *time = t;
    return true;
}

} // namespace

QString LTrim(const QString &text)
{
    qsizetype i = 0;
    while (i < text.size() && text.at(i) == u' ')
        ++i;
    return text.mid(i);
}

QString RTrim(const QString &text)
{
    qsizetype n = text.size();
    while (n > 0 && text.at(n - 1) == u' ')
        --n;
    return text.left(n);
}

QString Trim(const QString &text) { return LTrim(RTrim(text)); }

double Val(const QString &text)
{
    QString compact;
    compact.reserve(text.size());
    for (QChar c : text)
        if (c != u' ' && c != u'\t' && c != u'\n')
            compact += c;
    double v = 0;
    if (leadingNumber(compact, &v) == Read::Overflow) {
        const bool negative = compact.startsWith(u'-');
        return negative ? -DBL_MAX : DBL_MAX;
    }
    return v;
}

qint16 CInt(const QVariant &value) { return qint16(roundWhole(variantNumber(value), -32768, 32767)); }

qint32 CLng(const QVariant &value)
{
    return qint32(roundWhole(variantNumber(value), -2147483648.0, 2147483647.0));
}

double CCur(const QVariant &value)
{
    const double v = variantNumber(value);
    if (!(std::fabs(v) <= 922337203685477.5807))
        throw VbError::overflow();
    QString whole, fraction;
    roundDecimal(decimalForm(std::fabs(v)), 4, true, &whole, &fraction);
    const QByteArray text = (whole.isEmpty() ? QStringLiteral("0") : whole).toLatin1() + '.' + fraction.toLatin1();
    double r = 0;
    std::from_chars(text.constData(), text.constData() + text.size(), r);
    return v < 0 ? -r : r;
}

double CDbl(const QVariant &value)
{
    const double v = variantNumber(value);
    if (!std::isfinite(v))
        throw VbError::overflow();
    return v;
}

bool IsNumeric(const QString &text)
{
    double v = 0;
    return strictNumber(text, &v) == Read::Ok;
}

bool isCInt(const QString &text)
{
    try {
        CInt(text);
        return true;
    } catch (const VbError &) {
        return false;
    }
}

bool isCLng(const QString &text)
{
    try {
        CLng(text);
        return true;
    } catch (const VbError &) {
        return false;
    }
}

bool isDate(const QString &text)
{
    QDate d;
    QTime t;
    return readMoment(text, &d, &t);
}

QString Format(double value, const QString &pattern)
{
    if (!std::isfinite(value))
        return QString();
    const QString p = namedFormat(pattern);
    if (p.isEmpty() || p.trimmed().compare(u"General Number", Qt::CaseInsensitive) == 0)
        return NumText(value);

    const QStringList parts = sections(p);
    QString section = parts[0];
    bool ownSign = false;   // the section chosen writes the sign itself (or shows none)
    if (value < 0 && parts.size() >= 2 && !parts[1].isEmpty()) {
        section = parts[1];
        ownSign = true;
    } else if (value == 0 && parts.size() >= 3 && !parts[2].isEmpty()) {
        section = parts[2];
    }
    bool shownZero = false;
    const QString text = formatSection(std::fabs(value), section, &shownZero);
    // Sums of money leave tiny remainders such as -1e-17; "-.00" would only confuse.
    if (value < 0 && !ownSign && !shownZero)
        return u'-' + text;
    return text;
}

QString NumText(double value)
{
    if (!std::isfinite(value))
        return QString();
    const Decimal d = decimalForm(std::fabs(value));
    if (d.digits.isEmpty())
        return QStringLiteral("0");
    const QString sign = value < 0 ? QStringLiteral("-") : QString();
    const int exponent = d.point - 1;
    if (exponent >= 15 || exponent < -4) {
        QString mantissa = d.digits.left(1);
        if (d.digits.size() > 1)
            mantissa += u'.' + d.digits.mid(1);
        return sign + mantissa + (exponent < 0 ? QStringLiteral("E-") : QStringLiteral("E+"))
               + QStringLiteral("%1").arg(std::abs(exponent), 2, 10, QLatin1Char('0'));
    }
    QString body;
    if (d.point <= 0)
        body = u'.' + QString(-d.point, u'0') + d.digits;
    else if (d.point >= d.digits.size())
        body = d.digits + QString(d.point - d.digits.size(), u'0');
    else
        body = d.digits.left(d.point) + u'.' + d.digits.mid(d.point);
    return sign + body;
}

QString Str(double value) { return NumText(value); }

QString DateText(const QDate &date)
{
    return date.isValid() ? date.toString(QStringLiteral("yyyy-MM-dd")) : QString();
}

QString DateTimeText(const QDateTime &dateTime)
{
    return dateTime.isValid() ? dateTime.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss")) : QString();
}

bool readDate(const QString &text, QDate *out)
{
    QDate d;
    QTime t;
    if (!readMoment(text, &d, &t))
        return false;
    if (out)
        *out = d;
    return true;
}

bool readDateTime(const QString &text, QDateTime *out)
{
    QDate d;
    QTime t;
    if (!readMoment(text, &d, &t))
        return false;
    if (out)
        *out = QDateTime(d, t);
    return true;
}

QDate CDate(const QString &text)
{
    QDate d;
    if (!readDate(text, &d))
        throw VbError::typeMismatch();
    return d;
}

QString JetDate(const QDate &date) { return u'#' + DateText(date) + u'#'; }

QString JetDateTime(const QDateTime &dateTime) { return u'#' + DateTimeText(dateTime) + u'#'; }
