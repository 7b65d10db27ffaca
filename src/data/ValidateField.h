#pragma once
#include <QString>

// Whether a field's text can be read as what the field holds. Kind 1: a 32-bit whole number
// (decimals round, "12.5" passes), 2: a date, 3: a 16-bit whole number; any other kind passes
// untested. On failure the user is told ("数据输入格式不正确， ...") and the result is false.
// Empty text fails every kind, so callers test for it first.
bool ValidateField(const QString &text, int kind);
