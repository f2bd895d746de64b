// SPDX-License-Identifier: MIT
// "like" of the dialect: blind to the case of a to z, with sets in brackets, and a backslash is a
// letter like any other.
#include "platform/sql/postgres/PostgresEngine.h"
#include "platform/sql/postgres/PostgresNames.h"

using namespace Qt::StringLiterals;

namespace Korvane {

namespace {

/// A pattern that stands in the statement, and its escape character.
struct TPattern
{
    QString Text;
    QString Escape;
};

/// Where the set that begins at "[" ends; -1 for a bracket that is a letter. "[]]" holds "]".
qsizetype SetEnd(const QString &pattern, qsizetype open)
{
    const qsizetype first = open + (pattern.mid(open + 1, 1) == "^"_L1 ? 2 : 1);
    return pattern.indexOf(u']', first + 1);
}

bool HasSet(const TPattern &pattern)
{
    const QString &text = pattern.Text;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (!pattern.Escape.isEmpty() && text[i] == pattern.Escape[0])
            ++i;
        else if (text[i] == u'[' && SetEnd(text, i) > 0)
            return true;
    }
    return false;
}

QString RegexLetter(QChar c)
{
    return QStringView(u".^$*+?()[]{}|\\").contains(c) ? QString(u'\\') + c : QString(c);
}

QString RegexSet(QStringView inside)
{
    QString set = u"["_s;
    if (inside.startsWith(u'^')) {
        set += u'^';
        inside = inside.mid(1);
    }
    for (const QChar c : inside)
        set += QStringView(u"[]^\\").contains(c) ? QString(u'\\') + c : QString(c);
    return set + u']';
}

QString Regex(const TPattern &pattern)
{
    const QString &text = pattern.Text;
    QString regex = u"^"_s;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text[i];
        const qsizetype end = c == u'[' ? SetEnd(text, i) : -1;
        if (!pattern.Escape.isEmpty() && c == pattern.Escape[0] && i + 1 < text.size()) {
            regex += RegexLetter(text[++i]);
        } else if (end > 0) {
            regex += RegexSet(QStringView(text).mid(i + 1, end - i - 1));
            i = end;
        } else {
            regex += c == u'%' ? u".*"_s : c == u'_' ? u"."_s : RegexLetter(c);
        }
    }
    return regex + u'$';
}

/// The word "escape" of the operand; -1 if it has none.
int EscapeWord(const TSqlEdits &edits, const TSqlOperand &right)
{
    for (int i = right.First; i <= right.Last; ++i) {
        if (edits[i].Is("escape"_L1))
            return i;
        if (edits.Match(i) > i)
            i = edits.Match(i);
    }
    return -1;
}

bool IsLiteral(const TSqlEdits &edits, int first, int last)
{
    return first == last && edits[first].Kind == TSqlTokenKind::Text;
}

void WriteLiteral(TSqlEdits &edits, int like, bool isNegated, const TSqlOperand &right, int escape)
{
    const TPattern pattern{SqlTextValue(edits[right.First]),
                           escape < 0 ? QString() : SqlTextValue(edits[right.Last])};
    if (escape >= 0 && pattern.Escape.size() != 1)
        throw ESqlError(u"ESCAPE 后只能有一个字符"_s);
    if (HasSet(pattern)) {
        edits.Replace(like, isNegated ? u"!~*"_s : u"~*"_s);
        if (isNegated)
            edits.Remove(like - 1, like - 1);
        edits.Replace(right.First, PostgresText(Regex(pattern)));
        edits.Remove(right.First + 1, right.Last);
        return;
    }
    edits.Replace(like, u"ilike"_s);
    if (escape < 0 && pattern.Text.contains(u'\\'))
        edits.After(right.Last, u" escape ''"_s);
}

} // namespace

void TPostgresEngine::WriteLike(TSqlCursor &cursor, int token, const TSqlOperand &left,
                                const TSqlOperand &right)
{
    TSqlEdits &edits = cursor.Edits;
    const bool isNegated = edits[token].Is("not"_L1);
    const int like = isNegated ? token + 1 : token;
    const int escape = EscapeWord(edits, right);
    const bool isLiteral = IsLiteral(edits, right.First, escape < 0 ? right.Last : escape - 1) &&
                           (escape < 0 || IsLiteral(edits, escape + 1, right.Last));
    edits.Before(left.First, u"cast("_s);
    edits.After(left.Last, isLiteral ? u" as text) collate \"C\""_s : u" as text),"_s);
    if (isLiteral)
        return WriteLiteral(edits, like, isNegated, right, escape);
    edits.Before(left.First, isNegated ? u"not korvane_like("_s : u"korvane_like("_s);
    edits.Remove(token, like);
    edits.Before(right.First, u"cast("_s);
    edits.After(escape < 0 ? right.Last : escape - 1, u" as text)"_s);
    if (escape >= 0)
        edits.ReplaceTight(escape, u","_s);
    edits.After(right.Last, u")"_s);
}

} // namespace Korvane
