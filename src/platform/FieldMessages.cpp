#include "FieldMessages.h"

#include "Prompter.h"

QString FieldErrorText(const QString &text, int kind)
{
    QString ending;
    switch (kind) {
    case 1:
        ending = QStringLiteral(" 不是有效的数字！");
        break;
    case 2:
        ending = QStringLiteral(" 不是有效的日期！");
        break;
    case 3:
        ending = QStringLiteral(" 不是有效的整数！");
        break;
    default:
        break;
    }
    return QStringLiteral("数据输入格式不正确， ") + text + ending;
}

void ShowFieldError(const QString &text, int kind)
{
    Msg::error(FieldErrorText(text, kind), QStringLiteral("错误"));
}
