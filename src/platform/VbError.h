#pragma once
#include <QString>
#include <stdexcept>

// A run-time error in the classic sense: a number and a description. Conversions that
// overflow or cannot read their input raise one; the entry routine shows it in its
// failure branch.
class VbError : public std::runtime_error {
public:
    VbError(int number, const QString &description)
        : std::runtime_error(description.toStdString()), m_number(number), m_description(description) {}
    int number() const { return m_number; }
    QString description() const { return m_description; }

    static VbError overflow() { return VbError(6, QStringLiteral("溢出")); }
    static VbError typeMismatch() { return VbError(13, QStringLiteral("类型不匹配")); }
    static VbError objectNotSet() { return VbError(91, QStringLiteral("对象变量或 With 块变量未设置")); }

private:
    int m_number;
    QString m_description;
};
