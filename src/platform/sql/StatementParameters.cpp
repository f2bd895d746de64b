// SPDX-License-Identifier: MIT
#include "platform/sql/StatementParameters.h"

#include "platform/sql/QuotedText.h"

namespace Korvane {

namespace {

bool IsNameCharacter(QChar c) { return c.isLetterOrNumber() || c == QLatin1Char('_'); }

/// Adds the parameter whose colon stands at a position, unless it is known, and gives the
/// index behind it; nothing is added where no name follows.
qsizetype TakeParameter(QStringView text, qsizetype colon, QList<TSqlParameter> &parameters)
{
    qsizetype end = colon + 1;
    if (end == text.size() || !(text[end].isLetter() || text[end] == QLatin1Char('_')))
        return end;
    while (end < text.size() && IsNameCharacter(text[end]))
        ++end;
    const QStringView name = text.mid(colon + 1, end - colon - 1);
    const bool known = std::any_of(parameters.begin(), parameters.end(), [&](const TSqlParameter &parameter) {
        return name.compare(parameter.Name, Qt::CaseInsensitive) == 0;
    });
    if (!known)
        parameters.append({name.toString(), {}});
    return end;
}

} // namespace

QList<TSqlParameter> ParametersOf(const QString &statement)
{
    QList<TSqlParameter> parameters;
    const QStringView text(statement);
    if (!text.contains(u':'))
        return parameters;
    // What does not end goes on to the end of the statement.
    const auto past = [&](qsizetype end) { return end < 0 ? text.size() : end; };
    for (qsizetype i = 0; i < text.size();) {
        const QChar c = text[i];
        switch (c.unicode()) {
        case u'\'':
        case u'"':
        case u'`':
            i = past(QuotedEnd(text, i, c));
            break;
        case u'[':
            i = past(QuotedEnd(text, i, u']'));
            break;
        case u'-':
        case u'/':
            i = std::max(past(CommentEnd(text, i)), i + 1);
            break;
        case u':':
            i = TakeParameter(text, i, parameters);
            break;
        default:
            ++i;
        }
    }
    return parameters;
}

} // namespace Korvane
