// SPDX-License-Identifier: MIT
#include "platform/core/Text.h"

#include <algorithm>

namespace Korvane {

namespace {

bool IsBlank(QChar c) { return c <= u' '; }

template <class Change> QString ChangedLetters(QString text, char16_t first, char16_t last, Change change)
{
    for (QChar &c : text)
        if (c >= first && c <= last)
            c = QChar(char16_t(change(c.unicode())));
    return text;
}

} // namespace

QString QuotedStr(const QString &text, QChar quote)
{
    QString result = text;
    result.replace(quote, QString(2, quote));
    return quote + result + quote;
}

QString AnsiExtractQuotedStr(const QString &text, qsizetype &pos, QChar quote)
{
    QString result;
    if (pos < 0 || pos >= text.size() || text[pos] != quote)
        return result;
    for (qsizetype start = pos + 1;;) {
        const qsizetype end = text.indexOf(quote, start);
        result += QStringView(text).mid(start, (end < 0 ? text.size() : end) - start);
        const bool isDoubled = end >= 0 && end + 1 < text.size() && text[end + 1] == quote;
        if (!isDoubled) {
            pos = end < 0 ? text.size() : end + 1;
            return result;
        }
        result += quote;
        start = end + 2;
    }
}

QString AnsiDequotedStr(const QString &text, QChar quote)
{
    qsizetype pos = 0;
    const QString result = AnsiExtractQuotedStr(text, pos, quote);
    return pos == 0 ? text : result;
}

QString TrimLeft(const QString &text)
{
    return text.mid(std::find_if_not(text.begin(), text.end(), IsBlank) - text.begin());
}

QString TrimRight(const QString &text)
{
    qsizetype end = text.size();
    while (end > 0 && IsBlank(text[end - 1]))
        --end;
    return text.left(end);
}

QString Trim(const QString &text) { return TrimLeft(TrimRight(text)); }

QString ExtractFieldName(const QString &fields, int &pos)
{
    const qsizetype start = std::max(pos, 1) - 1;
    const qsizetype end = fields.indexOf(u';', start);
    pos = int(end < 0 ? fields.size() + 1 : end + 2);
    return Trim(end < 0 ? fields.mid(start) : fields.mid(start, end - start));
}

QStringList SplitFieldNames(const QString &fields)
{
    QStringList result;
    for (int pos = 1; pos <= fields.size();)
        result += ExtractFieldName(fields, pos);
    return result;
}

bool SameText(QStringView left, QStringView right) { return left.compare(right, Qt::CaseInsensitive) == 0; }

int CompareText(QStringView left, QStringView right) { return left.compare(right, Qt::CaseInsensitive); }

QString UpperCase(const QString &text)
{
    return ChangedLetters(text, u'a', u'z', [](char16_t c) { return c - (u'a' - u'A'); });
}

QString LowerCase(const QString &text)
{
    return ChangedLetters(text, u'A', u'Z', [](char16_t c) { return c + (u'a' - u'A'); });
}

} // namespace Korvane
