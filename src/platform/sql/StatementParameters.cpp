// SPDX-License-Identifier: MIT
#include "platform/sql/StatementParameters.h"

namespace Korvane {

namespace {

/// Index behind the text that opens at pos and ends with the closing character; a doubled
/// closing character stands for itself.
qsizetype SkipQuoted(const QString &text, qsizetype pos, QChar close)
{
    for (++pos; pos < text.size(); ++pos)
        if (text[pos] == close) {
            if (pos + 1 < text.size() && text[pos + 1] == close)
                ++pos;
            else
                return pos + 1;
        }
    return text.size();
}

qsizetype SkipComment(const QString &text, qsizetype pos, QStringView end)
{
    const qsizetype found = text.indexOf(end, pos + 2);
    return found < 0 ? text.size() : found + end.size();
}

bool IsNameCharacter(QChar c) { return c.isLetterOrNumber() || c == QLatin1Char('_'); }

} // namespace

QList<TSqlParameter> ParametersOf(const QString &statement)
{
    QList<TSqlParameter> parameters;
    for (qsizetype i = 0; i < statement.size();) {
        const QChar c = statement[i];
        const QChar next = i + 1 < statement.size() ? statement[i + 1] : QChar();
        if (c == QLatin1Char('\'') || c == QLatin1Char('"') || c == QLatin1Char('`')) {
            i = SkipQuoted(statement, i, c);
        } else if (c == QLatin1Char('[')) {
            i = SkipQuoted(statement, i, QLatin1Char(']'));
        } else if (c == QLatin1Char('-') && next == c) {
            i = SkipComment(statement, i, u"\n");
        } else if (c == QLatin1Char('/') && next == QLatin1Char('*')) {
            i = SkipComment(statement, i, u"*/");
        } else if (c == QLatin1Char(':') && (next.isLetter() || next == QLatin1Char('_'))) {
            qsizetype end = i + 1;
            while (end < statement.size() && IsNameCharacter(statement[end]))
                ++end;
            const QString name = statement.mid(i + 1, end - i - 1);
            const bool known =
                std::any_of(parameters.begin(), parameters.end(), [&](const TSqlParameter &parameter) {
                    return parameter.Name.compare(name, Qt::CaseInsensitive) == 0;
                });
            if (!known)
                parameters.append({name, {}});
            i = end;
        } else {
            ++i;
        }
    }
    return parameters;
}

} // namespace Korvane
