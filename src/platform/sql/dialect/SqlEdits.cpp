// SPDX-License-Identifier: MIT
#include "platform/sql/dialect/SqlEdits.h"

using namespace Qt::StringLiterals;

namespace Korvane {

namespace {

constexpr int MaxBracketDepth = 1000;

bool HasComment(QStringView blanks)
{
    return std::any_of(blanks.begin(), blanks.end(), [](QChar c) { return c == u'-' || c == u'/'; });
}

} // namespace

TSqlEdits::TSqlEdits(QStringView text, TSqlDialect dialect)
    : FTokens(TokenizeSql(text, dialect)), FMatches(FTokens.size(), -1), FEditIndex(FTokens.size(), -1)
{
    MatchBrackets(text);
}

void TSqlEdits::MatchBrackets(QStringView text)
{
    std::vector<int> open;
    const auto fail = [&](const QString &what, int token) {
        throw ESqlError(
            u"%1（%2）"_s.arg(what, SqlPlace(text, FTokens[size_t(token)].Text.data() - text.data())));
    };
    for (int i = 0; i < Size(); ++i) {
        const TSqlToken &token = FTokens[size_t(i)];
        if (token.IsOperator("("_L1)) {
            open.push_back(i);
            if (open.size() > MaxBracketDepth)
                fail(u"括号嵌套过深"_s, i);
        } else if (token.IsOperator(")"_L1)) {
            if (open.empty())
                fail(u"多余的右括号"_s, i);
            FMatches[size_t(i)] = open.back();
            FMatches[size_t(open.back())] = i;
            open.pop_back();
        }
    }
    if (!open.empty())
        fail(u"括号没有结束"_s, open.back());
}

TSqlEdits::TEdit &TSqlEdits::Edit(int token)
{
    int &index = FEditIndex[size_t(token)];
    if (index < 0) {
        index = int(FEdits.size());
        FEdits.emplace_back();
    }
    return FEdits[size_t(index)];
}

void TSqlEdits::Replace(int token, const QString &text)
{
    TEdit &edit = Edit(token);
    edit.Text = text;
    edit.IsReplaced = true;
}

void TSqlEdits::ReplaceTight(int token, const QString &text)
{
    Replace(token, text);
    Edit(token).IsTight = true;
}

void TSqlEdits::Remove(int first, int last)
{
    for (int i = first; i <= last; ++i)
        ReplaceTight(i, QString());
}

void TSqlEdits::Before(int token, const QString &text) { Edit(token).Before.append(text); }

void TSqlEdits::After(int token, const QString &text) { Edit(token).After += text; }

void TSqlEdits::Append(QString &out, int token, bool withBlanks) const
{
    const TSqlToken &t = FTokens[size_t(token)];
    const int index = FEditIndex[size_t(token)];
    if (index < 0) {
        if (withBlanks)
            out += t.Blanks;
        out += t.Text;
        return;
    }
    const TEdit &edit = FEdits[size_t(index)];
    if (withBlanks && (!edit.IsTight || HasComment(t.Blanks)))
        out += t.Blanks;
    for (auto it = edit.Before.crbegin(); it != edit.Before.crend(); ++it)
        out += *it;
    if (edit.IsReplaced)
        out += edit.Text;
    else
        out += t.Text;
    out += edit.After;
}

QString TSqlEdits::Text(int first, int last) const
{
    QString out;
    if (first <= last) // and a little for what the edits add
        out.reserve((FTokens[size_t(last)].Text.end() - FTokens[size_t(first)].Blanks.begin()) * 9 / 8);
    for (int i = first; i <= last; ++i)
        Append(out, i, true);
    return out;
}

QString TSqlEdits::Trimmed(int first, int last) const
{
    QString out;
    for (int i = first; i <= last; ++i)
        Append(out, i, i > first);
    return out;
}

QString TSqlEdits::Written(int first, int last) const
{
    QString out;
    for (int i = first; i <= last; ++i) {
        if (i > first)
            out += FTokens[size_t(i)].Blanks;
        out += FTokens[size_t(i)].Text;
    }
    return out;
}

} // namespace Korvane
