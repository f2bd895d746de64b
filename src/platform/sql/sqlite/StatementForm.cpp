// SPDX-License-Identifier: MIT
#include "platform/sql/sqlite/StatementForm.h"

#include "platform/sql/dialect/SqlTokenizer.h"

#include <cstring>

using namespace Qt::StringLiterals;

namespace Korvane {

namespace {

constexpr size_t MaxPlaceCount = 500;

struct TPlace
{
    qsizetype Begin;
    qsizetype End;
};

/// Finds the places of a statement. It looks at the surroundings of a literal only: what it
/// takes for a place wrongly does not matter as long as a parameter may stand there.
class TPlaceFinder
{
public:
    TPlaceFinder(QStringView text, TSqlDialect dialect) : FText(text), FTokens(TokenizeSql(text, dialect)) {}

    /// Whether the statement is one of a kind that has a form.
    bool IsSuitable() const
    {
        const auto isVerb = [](const TSqlToken &token) {
            return token.IsReserved && (token.Is("select"_L1) || token.Is("insert"_L1) ||
                                        token.Is("update"_L1) || token.Is("delete"_L1));
        };
        // Subqueries and further statements have verbs of their own.
        return isVerb(FTokens.front()) && std::count_if(FTokens.begin(), FTokens.end(), isVerb) == 1;
    }

    std::vector<TPlace> Find()
    {
        if (FTokens.front().Is("insert"_L1))
            FindValues();
        else if (FTokens.front().Is("update"_L1))
            FindAssignments();
        else
            FindConditions(IndexOf("where"_L1, 0));
        return std::move(FPlaces);
    }

private:
    const TSqlToken &Token(size_t index) const { return FTokens[std::min(index, FTokens.size() - 1)]; }

    /// Index of a word outside of brackets, from an index on; the last token's if there is none.
    size_t IndexOf(QLatin1StringView word, size_t from) const
    {
        int depth = 0;
        for (size_t i = from; i < FTokens.size(); ++i) {
            depth += DepthChange(FTokens[i]);
            if (depth == 0 && FTokens[i].Is(word))
                return i;
        }
        return FTokens.size() - 1;
    }

    static int DepthChange(const TSqlToken &token)
    {
        return token.IsOperator("("_L1) ? 1 : token.IsOperator(")"_L1) ? -1 : 0;
    }

    qsizetype BeginOf(size_t index) const { return FTokens[index].Text.data() - FText.data(); }

    /// How many tokens the literal at an index has; 0 if there is none or it does not stand free.
    size_t LiteralAt(size_t index) const
    {
        const TSqlToken &token = Token(index);
        size_t count = 0;
        if (token.Kind == TSqlTokenKind::Text || token.Kind == TSqlTokenKind::Number || token.Is("null"_L1))
            count = 1;
        else if (token.IsOperator("-"_L1) && Token(index + 1).Kind == TSqlTokenKind::Number &&
                 Token(index + 1).Blanks.isEmpty())
            count = 2;
        if (count == 0 || index == 0)
            return 0;
        const TSqlToken &last = Token(index + count - 1);
        const qsizetype behind = BeginOf(index + count - 1) + last.Text.size();
        const QChar before = FText[BeginOf(index) - 1];
        const bool isFree =
            IsOneOf(before, u"=(,<>") && (behind == FText.size() || IsOneOf(FText[behind], u",);"));
        return isFree ? count : 0;
    }

    static bool IsOneOf(QChar c, QStringView signs) { return c <= u' ' || signs.contains(c); }

    void Take(size_t index, size_t count)
    {
        const qsizetype begin = BeginOf(index);
        FPlaces.push_back({begin, BeginOf(index + count - 1) + FTokens[index + count - 1].Text.size()});
    }

    /// values (a, b), (c, d)
    void FindValues()
    {
        int depth = 0;
        for (size_t i = IndexOf("values"_L1, 0) + 1; i < FTokens.size(); ++i) {
            depth += DepthChange(FTokens[i]);
            const bool isBeforeValue = FTokens[i].IsOperator("("_L1) || FTokens[i].IsOperator(","_L1);
            const size_t count = depth == 1 && isBeforeValue ? LiteralAt(i + 1) : 0;
            const TSqlToken &behind = Token(i + 1 + count);
            if (count > 0 && (behind.IsOperator(","_L1) || behind.IsOperator(")"_L1)))
                Take(i + 1, count);
        }
    }

    /// set a=1, T.b=2 where …
    void FindAssignments()
    {
        const size_t set = IndexOf("set"_L1, 0);
        const size_t where = IndexOf("where"_L1, set);
        int depth = 0;
        for (size_t i = set + 1; i < where; ++i) {
            depth += DepthChange(FTokens[i]);
            const size_t count = depth == 0 && FTokens[i].IsOperator("="_L1) ? LiteralAt(i + 1) : 0;
            const size_t behind = i + 1 + count;
            const size_t before = NameBefore(i);
            if (count > 0 && (Token(before).IsOperator(","_L1) || before == set) &&
                (Token(behind).IsOperator(","_L1) || behind == where || IsEnd(Token(behind))))
                Take(i + 1, count);
        }
        FindConditions(where);
    }

    /// where a=1 and (T.b<'x' or not c=2)
    void FindConditions(size_t where)
    {
        static constexpr QLatin1StringView Comparisons[] = {"="_L1, "<>"_L1, "<"_L1,
                                                            ">"_L1, "<="_L1, ">="_L1};
        for (size_t i = where + 1; i < FTokens.size() && !EndsCondition(FTokens[i]); ++i) {
            const bool isComparison = std::any_of(std::begin(Comparisons), std::end(Comparisons),
                                                  [&](auto sign) { return FTokens[i].IsOperator(sign); });
            const size_t count = isComparison ? LiteralAt(i + 1) : 0;
            if (count == 0)
                continue;
            const TSqlToken &before = Token(NameBefore(i));
            const TSqlToken &behind = Token(i + 1 + count);
            const bool isWhole = behind.Is("and"_L1) || behind.Is("or"_L1) || behind.IsOperator(")"_L1) ||
                                 IsEnd(behind) || EndsCondition(behind);
            if (isWhole && (before.Is("where"_L1) || before.Is("and"_L1) || before.Is("or"_L1) ||
                            before.Is("not"_L1) || before.IsOperator("("_L1)))
                Take(i + 1, count);
        }
    }

    static bool IsEnd(const TSqlToken &token)
    {
        return token.Kind == TSqlTokenKind::End || token.IsOperator(";"_L1);
    }

    static bool EndsCondition(const TSqlToken &token)
    {
        return token.IsReserved && (token.Is("order"_L1) || token.Is("group"_L1) || token.Is("having"_L1));
    }

    /// Index of the token before the name that ends before an index; the index itself if no
    /// name does.
    size_t NameBefore(size_t index) const
    {
        size_t at = index;
        while (at >= 2 && FTokens[at - 1].IsName()) {
            at -= 2;
            if (!FTokens[at].IsOperator("."_L1))
                return at;
        }
        return index;
    }

    const QStringView FText;
    const std::vector<TSqlToken> FTokens;
    std::vector<TPlace> FPlaces;
};

} // namespace

std::optional<TStatementForm> TStatementForm::Of(const QString &statement, TSqlDialect dialect)
{
    // A comment may hold what ends a text for the engine.
    if (statement.contains(u'\0'))
        return std::nullopt;
    TPlaceFinder finder(statement, dialect);
    if (!finder.IsSuitable())
        return std::nullopt;
    const std::vector<TPlace> places = finder.Find();
    if (places.size() > MaxPlaceCount)
        return std::nullopt;
    TStatementForm form;
    qsizetype begin = 0;
    for (const TPlace &place : places) {
        form.FPieces.append(statement.mid(begin, place.Begin - begin));
        begin = place.End;
    }
    form.FPieces.append(statement.mid(begin));
    form.FHash = qHash(form.FPieces);
    return form;
}

QString TStatementForm::With(const std::function<QString(qsizetype)> &textAt) const
{
    QString text = FPieces[0];
    for (qsizetype i = 1; i < FPieces.size(); ++i)
        text += textAt(i - 1) + FPieces[i];
    return text;
}

bool TStatementForm::Reads(QStringView statement, TLiteralReader &reader) const
{
    const char16_t *at = statement.utf16();
    const char16_t *const end = at + statement.size();
    const auto skip = [&](const QString &piece) {
        const size_t size = size_t(piece.size());
        if (size_t(end - at) < size || std::memcmp(at, piece.constData(), size * sizeof(char16_t)) != 0)
            return false;
        at += size;
        return true;
    };
    if (!skip(FPieces[0]))
        return false;
    reader.Start(statement.size());
    for (qsizetype i = 1; i < FPieces.size(); ++i) {
        at = reader.Read(at, end);
        if (!at || !skip(FPieces[i]))
            return false;
    }
    return at == end;
}

} // namespace Korvane
