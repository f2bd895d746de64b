// SPDX-License-Identifier: MIT
#include "platform/sql/dialect/SqlTokenizer.h"

#include "platform/sql/QuotedText.h"

#include <string_view>
#include <unordered_set>

using namespace Qt::StringLiterals;

namespace Korvane {

namespace {

/// Words that end an expression or an alias wherever they stand bare.
const std::unordered_set<std::string_view> &ReservedWords()
{
    static const std::unordered_set<std::string_view> words{
        "alter",    "and",      "as",      "asc",    "backup", "begin",   "between",   "by",
        "case",     "commit",   "compute", "create", "cross",  "declare", "default",   "delete",
        "desc",     "distinct", "drop",    "else",   "end",    "escape",  "except",    "exec",
        "execute",  "exists",   "fetch",   "for",    "from",   "full",    "go",        "grant",
        "group",    "having",   "if",      "in",     "inner",  "insert",  "intersect", "into",
        "is",       "join",     "left",    "like",   "not",    "null",    "on",        "option",
        "or",       "order",    "outer",   "pivot",  "print",  "restore", "return",    "revoke",
        "right",    "rollback", "select",  "set",    "table",  "then",    "top",       "transform",
        "truncate", "union",    "unpivot", "update", "use",    "values",  "when",      "where",
        "while",    "with"};
    return words;
}

bool IsReservedWord(QStringView word)
{
    char lower[12];
    if (word.size() > qsizetype(sizeof lower))
        return false;
    for (qsizetype i = 0; i < word.size(); ++i) {
        const char16_t c = word[i].unicode() | 0x20;
        if (c < u'a' || c > u'z')
            return false;
        lower[i] = char(c);
    }
    return ReservedWords().contains(std::string_view(lower, size_t(word.size())));
}

bool IsDigit(QChar c) { return c >= u'0' && c <= u'9'; }

bool IsWordStart(QChar c)
{
    return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || c == u'_' || c == u'@' ||
           c.unicode() >= 0x80;
}

bool IsBlank(QChar c) { return c.unicode() <= u' '; }

class TTokenizer
{
public:
    TTokenizer(QStringView text, TSqlDialect dialect) : FText(text), FDialect(dialect) {}

    std::vector<TSqlToken> Run()
    {
        std::vector<TSqlToken> tokens;
        tokens.reserve(size_t(FText.size() / 4 + 2));
        do {
            const qsizetype blanks = FAt;
            SkipBlanks();
            const qsizetype start = FAt;
            const TSqlTokenKind kind = Next();
            TSqlToken token{kind, false, FText.mid(blanks, start - blanks), FText.mid(start, FAt - start)};
            token.IsReserved = kind == TSqlTokenKind::Word && IsReservedWord(token.Text);
            tokens.push_back(token);
        } while (tokens.back().Kind != TSqlTokenKind::End);
        return tokens;
    }

private:
    QChar Peek(qsizetype ahead = 0) const
    {
        return FAt + ahead < FText.size() ? FText[FAt + ahead] : QChar(u'\0');
    }

    [[noreturn]] void Fail(const QString &what, qsizetype position) const
    {
        throw ESqlError(u"%1（%2）"_s.arg(what, SqlPlace(FText, position)));
    }

    void SkipBlanks()
    {
        for (; FAt < FText.size(); ++FAt) {
            const QChar c = FText[FAt];
            if (c == u'-' || c == u'/') {
                const qsizetype end = CommentEnd(FText, FAt);
                if (end < 0)
                    Fail(u"注释没有结束"_s, FAt);
                if (end == FAt)
                    return;
                FAt = end - 1;
            } else if (!IsBlank(c) || c == u'\0') {
                return;
            }
        }
    }

    TSqlTokenKind Next()
    {
        if (FAt >= FText.size())
            return TSqlTokenKind::End;
        const QChar c = FText[FAt];
        const bool access = FDialect == TSqlDialect::Access;
        if (c == u'\0')
            Fail(u"语句含有空字符"_s, FAt);
        if (!access && (c == u'N' || c == u'n') && Peek(1) == u'\'') {
            ++FAt;
            return Quoted(u'\'', u"文本没有结束"_s, TSqlTokenKind::Text);
        }
        if (c == u'\'')
            return Quoted(u'\'', u"文本没有结束"_s, TSqlTokenKind::Text);
        if (c == u'"')
            return access ? Quoted(u'"', u"文本没有结束"_s, TSqlTokenKind::Text)
                          : Quoted(u'"', u"名称没有结束"_s, TSqlTokenKind::QuotedName);
        if (c == u'`')
            return Quoted(u'`', u"名称没有结束"_s, TSqlTokenKind::QuotedName);
        if (c == u'[')
            return Quoted(u']', u"方括号没有结束"_s, TSqlTokenKind::BracketName);
        if (c == u'#' && access)
            return Quoted(u'#', u"日期没有结束"_s, TSqlTokenKind::Date);
        if (IsDigit(c) || (c == u'.' && IsDigit(Peek(1))))
            return Number();
        if (IsWordStart(c) || (c == u'#' && (IsWordStart(Peek(1)) || Peek(1) == u'#')))
            return Word();
        if (c == u'?' || (c == u':' && IsWordStart(Peek(1))))
            return Parameter();
        return Operator();
    }

    /// From an opening sign to the closing one; a doubled closing sign is one inside.
    TSqlTokenKind Quoted(QChar closing, const QString &fault, TSqlTokenKind kind)
    {
        const qsizetype start = FAt;
        const qsizetype end = kind == TSqlTokenKind::Date ? FText.indexOf(closing, FAt + 1) + 1
                                                          : QuotedEnd(FText, FAt, closing);
        const QStringView piece = FText.mid(start, end > 0 ? end - start : -1);
        if (const qsizetype null = piece.indexOf(u'\0'); null >= 0)
            Fail(u"语句含有空字符"_s, start + null);
        if (end <= 0)
            Fail(fault, start);
        FAt = end;
        return kind;
    }

    TSqlTokenKind Number()
    {
        if (FText[FAt] == u'0' && (Peek(1) == u'x' || Peek(1) == u'X')) {
            for (FAt += 2; FAt < FText.size() && IsHex(FText[FAt]); ++FAt)
                ;
            return TSqlTokenKind::Number;
        }
        SkipDigits();
        // NOTE: "1..2" is a number and two points, not two numbers.
        if (Peek() == u'.' && Peek(1) != u'.') {
            ++FAt;
            SkipDigits();
        }
        if (Peek() == u'e' || Peek() == u'E') {
            const qsizetype sign = Peek(1) == u'+' || Peek(1) == u'-' ? 2 : 1;
            if (IsDigit(Peek(sign))) {
                FAt += sign;
                SkipDigits();
            }
        }
        return TSqlTokenKind::Number;
    }

    static bool IsHex(QChar c) { return IsDigit(c) || (c >= u'a' && c <= u'f') || (c >= u'A' && c <= u'F'); }

    void SkipDigits()
    {
        while (IsDigit(Peek()))
            ++FAt;
    }

    TSqlTokenKind Word()
    {
        SkipWord();
        return TSqlTokenKind::Word;
    }

    void SkipWord()
    {
        for (; FAt < FText.size(); ++FAt) {
            const QChar c = FText[FAt];
            if (!IsDigit(c) && c != u'$' && c != u'#' && !IsWordStart(c))
                return;
        }
    }

    TSqlTokenKind Parameter()
    {
        if (FText[FAt++] == u'?')
            SkipDigits();
        else
            SkipWord();
        return TSqlTokenKind::Parameter;
    }

    TSqlTokenKind Operator()
    {
        static constexpr QLatin1StringView Pairs[] = {"<>"_L1, "<="_L1, ">="_L1, "!="_L1, "!<"_L1,
                                                      "!>"_L1, "=="_L1, "||"_L1, "<<"_L1, ">>"_L1,
                                                      "*="_L1, "=*"_L1, "+="_L1, "-="_L1};
        const QChar first = FText[FAt], second = Peek(1);
        const bool isPair = std::any_of(std::begin(Pairs), std::end(Pairs),
                                        [&](auto pair) { return first == pair[0] && second == pair[1]; });
        FAt += isPair ? 2 : 1;
        return TSqlTokenKind::Operator;
    }

    const QStringView FText;
    const TSqlDialect FDialect;
    qsizetype FAt = 0;
};

} // namespace

std::vector<TSqlToken> TokenizeSql(QStringView text, TSqlDialect dialect)
{
    return TTokenizer(text, dialect).Run();
}

QString SqlName(const TSqlToken &token)
{
    if (!token.IsQuotedName())
        return token.Text.toString();
    const QChar closing = token.Text.back();
    return token.Text.mid(1, token.Text.size() - 2).toString().replace(QString(2, closing), QString(closing));
}

QString SqlTextValue(const TSqlToken &token)
{
    const qsizetype open = token.Text.front() == u'\'' || token.Text.front() == u'"' ? 0 : 1;
    const QChar quote = token.Text.back();
    return token.Text.mid(open + 1, token.Text.size() - open - 2)
        .toString()
        .replace(QString(2, quote), QString(quote));
}

QString QuotedSqlName(const QString &name) { return u'"' + QString(name).replace(u'"', u"\"\""_s) + u'"'; }

QString SqlPlace(QStringView text, qsizetype position)
{
    const QStringView before = text.left(position);
    const qsizetype lineStart = std::max(before.lastIndexOf(u'\n'), before.lastIndexOf(u'\r')) + 1;
    // A line ends with CR LF, LF or CR alone.
    const qsizetype lines = before.count(u'\n') + before.count(u'\r') - before.count(u"\r\n");
    return u"第 %1 行第 %2 列"_s.arg(lines + 1).arg(position - lineStart + 1);
}

} // namespace Korvane
