// SPDX-License-Identifier: MIT
#include "platform/data/FilterSyntax.h"

#include "platform/core/Exceptions.h"
#include "platform/data/NumberText.h"

namespace Korvane {

namespace {

// Trees are walked by recursion: what nests deeper than this is no filter that anybody wrote.
constexpr int MaxDepth = 200;

enum class TTokenKind { End, Word, Name, Text, Number, Symbol };

struct TToken
{
    TTokenKind Kind = TTokenKind::End;
    qsizetype Position = 1; // 1-based
    QString Text;           // of names and texts without their quotes
};

class TFilterLexer
{
public:
    explicit TFilterLexer(const QString &text) : FText(text) {}

    TToken Next()
    {
        while (FAt < FText.size() && FText[FAt].isSpace())
            ++FAt;
        TToken token;
        token.Position = FAt + 1;
        if (FAt == FText.size())
            return token;
        const QChar c = FText[FAt];
        if (c == u'\'')
            Quoted(token, TTokenKind::Text, u'\'');
        else if (c == u'"')
            Quoted(token, TTokenKind::Name, u'"');
        else if (c == u'[')
            Quoted(token, TTokenKind::Name, u']');
        else if (IsDigit(c) || (c == u'.' && IsDigit(At(1))))
            Number(token);
        else if (c.isLetter() || c == u'_' || c.isSurrogate())
            Word(token);
        else
            Symbol(token);
        return token;
    }

private:
    static bool IsDigit(QChar c) { return c >= u'0' && c <= u'9'; }
    QChar At(qsizetype offset) const { return FAt + offset < FText.size() ? FText[FAt + offset] : QChar(); }

    /// The closing character stands doubled where it belongs to the text.
    void Quoted(TToken &token, TTokenKind kind, QChar close)
    {
        token.Kind = kind;
        for (++FAt; FAt < FText.size(); ++FAt) {
            if (FText[FAt] == close && At(1) != close) {
                ++FAt;
                return;
            }
            if (FText[FAt] == close)
                ++FAt;
            token.Text += FText[FAt];
        }
        RaiseFilterError(FText, token.Position, QStringLiteral("缺少结束符“%1”").arg(close));
    }

    void Number(TToken &token)
    {
        token.Kind = TTokenKind::Number;
        const qsizetype begin = FAt;
        SkipDigits();
        if (At(0) == u'.') {
            ++FAt;
            SkipDigits();
        }
        if (At(0).toLower() == u'e') {
            const qsizetype sign = At(1) == u'+' || At(1) == u'-' ? 1 : 0;
            if (IsDigit(At(1 + sign))) {
                FAt += 1 + sign;
                SkipDigits();
            }
        }
        token.Text = FText.mid(begin, FAt - begin);
    }
    void SkipDigits()
    {
        while (IsDigit(At(0)))
            ++FAt;
    }

    void Word(TToken &token)
    {
        token.Kind = TTokenKind::Word;
        const qsizetype begin = FAt;
        while (At(0).isLetterOrNumber() || At(0) == u'_' || At(0) == u'$' || At(0).isSurrogate())
            ++FAt;
        token.Text = FText.mid(begin, FAt - begin);
    }

    void Symbol(TToken &token)
    {
        token.Kind = TTokenKind::Symbol;
        static const QString pairs[] = {QStringLiteral("<>"), QStringLiteral("<="), QStringLiteral(">=")};
        const QStringView two = QStringView(FText).mid(FAt, 2);
        const bool isPair = std::find(std::begin(pairs), std::end(pairs), two) != std::end(pairs);
        token.Text = FText.mid(FAt, isPair ? 2 : 1);
        if (!QStringLiteral("=<>()+-*/,").contains(token.Text[0]))
            RaiseFilterError(FText, token.Position, QStringLiteral("无法识别的字符“%1”").arg(token.Text));
        FAt += token.Text.size();
    }

    const QString FText;
    qsizetype FAt = 0;
};

class TFilterParser
{
public:
    explicit TFilterParser(const QString &text) : FText(text), FLexer(text), FToken(FLexer.Next()) {}

    std::unique_ptr<TFilterNode> Parse()
    {
        if (FToken.Kind == TTokenKind::End)
            return nullptr;
        TNode node = Condition();
        if (FToken.Kind != TTokenKind::End)
            RaiseUnexpected();
        return node;
    }

private:
    using TNode = std::unique_ptr<TFilterNode>;
    using TRule = TNode (TFilterParser::*)();

    // What a look at the current token may find.
    bool IsWord(const char *word) const
    {
        return FToken.Kind == TTokenKind::Word &&
               FToken.Text.compare(QLatin1String(word), Qt::CaseInsensitive) == 0;
    }
    bool IsSymbol(const char *symbol) const
    {
        return FToken.Kind == TTokenKind::Symbol && FToken.Text == QLatin1String(symbol);
    }
    bool Take(bool isThere)
    {
        if (isThere)
            FToken = FLexer.Next();
        return isThere;
    }
    bool TakeWord(const char *word) { return Take(IsWord(word)); }
    bool TakeSymbol(const char *symbol) { return Take(IsSymbol(symbol)); }
    void Expect(bool isTaken)
    {
        if (!isTaken)
            RaiseUnexpected();
    }
    [[noreturn]] void RaiseUnexpected() const
    {
        RaiseFilterError(FText, FToken.Position,
                         FToken.Kind == TTokenKind::End
                             ? QStringLiteral("条件不完整")
                             : QStringLiteral("此处不应出现“%1”").arg(FToken.Text));
    }

    template <class... Nodes> TNode Make(TFilterNodeKind kind, qsizetype position, Nodes... children) const
    {
        auto node = std::make_unique<TFilterNode>(TFilterNode{.Kind = kind, .Position = position});
        (Adopt(*node, std::move(children)), ...);
        return node;
    }
    void Adopt(TFilterNode &parent, TNode child) const
    {
        parent.Depth = std::max(parent.Depth, child->Depth + 1);
        if (parent.Depth > MaxDepth)
            RaiseFilterError(FText, parent.Position, QStringLiteral("条件嵌套过深"));
        parent.Children.push_back(std::move(child));
    }

    TNode Condition() { return Chain(TFilterNodeKind::Or, "or", &TFilterParser::AndPart); }
    TNode AndPart() { return Chain(TFilterNodeKind::And, "and", &TFilterParser::NotPart); }

    TNode Chain(TFilterNodeKind kind, const char *word, TRule part)
    {
        TNode first = (this->*part)();
        if (!IsWord(word))
            return first;
        const qsizetype position = first->Position;
        TNode chain = Make(kind, position, std::move(first));
        while (TakeWord(word))
            Adopt(*chain, (this->*part)());
        return chain;
    }

    TNode NotPart()
    {
        const qsizetype position = FToken.Position;
        if (!TakeWord("not"))
            return Test();
        return Nested([&] { return Make(TFilterNodeKind::Not, position, NotPart()); });
    }

    TNode Test()
    {
        const qsizetype position = FToken.Position;
        TNode left = Sum();
        if (const int outcomes = TakeComparison())
            return Comparison(std::move(left), outcomes);
        if (TakeWord("is")) {
            const bool isNot = TakeWord("not");
            Expect(TakeWord("null"));
            return Negated(isNot, Make(TFilterNodeKind::IsNull, position, std::move(left)));
        }
        const bool isNot = TakeWord("not");
        if (TakeWord("like"))
            return Negated(isNot, Make(TFilterNodeKind::Like, position, std::move(left), Sum()));
        if (TakeWord("in"))
            return Negated(isNot, InList(std::move(left)));
        if (isNot)
            RaiseUnexpected();
        return left;
    }

    int TakeComparison()
    {
        static constexpr std::pair<const char *, int> comparisons[] = {
            {"=", coEqual},   {"<>", coLess | coGreater}, {"<", coLess},
            {">", coGreater}, {"<=", coLess | coEqual},   {">=", coGreater | coEqual}};
        for (const auto &[symbol, outcomes] : comparisons)
            if (TakeSymbol(symbol))
                return outcomes;
        return 0;
    }

    TNode Comparison(TNode left, int outcomes)
    {
        const qsizetype position = left->Position;
        if (IsWord("null")) {
            if (outcomes != coEqual && outcomes != (coLess | coGreater))
                RaiseFilterError(FText, FToken.Position, QStringLiteral("NULL 只能用 = 或 <> 比较"));
            TakeWord("null");
            return Negated(outcomes != coEqual, Make(TFilterNodeKind::IsNull, position, std::move(left)));
        }
        TNode node = Make(TFilterNodeKind::Compare, position, std::move(left), Sum());
        node->Int = outcomes;
        return node;
    }

    TNode InList(TNode left)
    {
        const qsizetype position = left->Position;
        TNode node = Make(TFilterNodeKind::In, position, std::move(left));
        Expect(TakeSymbol("("));
        do {
            // Int counts the NULLs in the list.
            if (TakeWord("null"))
                ++node->Int;
            else
                Adopt(*node, Sum());
        } while (TakeSymbol(","));
        Expect(TakeSymbol(")"));
        return node;
    }

    TNode Negated(bool isNegated, TNode node) const
    {
        const qsizetype position = node->Position;
        return isNegated ? Make(TFilterNodeKind::Not, position, std::move(node)) : std::move(node);
    }

    TNode Sum()
    {
        return Arithmetic({{"+", TFilterNodeKind::Add}, {"-", TFilterNodeKind::Subtract}},
                          &TFilterParser::Product);
    }
    TNode Product()
    {
        return Arithmetic({{"*", TFilterNodeKind::Multiply}, {"/", TFilterNodeKind::Divide}},
                          &TFilterParser::Signed);
    }
    TNode Arithmetic(std::initializer_list<std::pair<const char *, TFilterNodeKind>> operators, TRule part)
    {
        TNode left = (this->*part)();
        for (auto at = operators.begin(); at != operators.end();) {
            if (!TakeSymbol(at->first)) {
                ++at;
                continue;
            }
            const qsizetype position = left->Position;
            left = Make(at->second, position, std::move(left), (this->*part)());
            at = operators.begin();
        }
        return left;
    }

    TNode Signed()
    {
        const qsizetype position = FToken.Position;
        if (TakeSymbol("+"))
            return Nested([this] { return Signed(); });
        if (!TakeSymbol("-"))
            return Primary();
        TNode minusOne = Make(TFilterNodeKind::Int, position);
        minusOne->Int = -1;
        return Nested(
            [&] { return Make(TFilterNodeKind::Multiply, position, std::move(minusOne), Signed()); });
    }

    TNode Primary()
    {
        const TToken token = FToken;
        switch (token.Kind) {
        case TTokenKind::Name:
            return FieldName();
        case TTokenKind::Word:
            return Word();
        case TTokenKind::Text: {
            TNode node = Make(TFilterNodeKind::Text, token.Position);
            node->Text = token.Text.toStdString();
            Take(true);
            return node;
        }
        case TTokenKind::Number:
            return Number();
        case TTokenKind::Symbol:
        case TTokenKind::End:
            break;
        }
        Expect(TakeSymbol("("));
        TNode node = Nested([this] { return Condition(); });
        Expect(TakeSymbol(")"));
        return node;
    }

    TNode Word()
    {
        for (const bool value : {false, true}) {
            if (IsWord(value ? "true" : "false")) {
                TNode node = Make(TFilterNodeKind::Boolean, FToken.Position);
                node->Int = value;
                Take(true);
                return node;
            }
        }
        for (const char *reserved : {"and", "or", "not", "like", "in", "is", "null"})
            if (IsWord(reserved))
                RaiseUnexpected();
        return FieldName();
    }

    TNode FieldName()
    {
        TNode node = Make(TFilterNodeKind::Name, FToken.Position);
        node->Name = FToken.Text;
        Take(true);
        return node;
    }

    TNode Number()
    {
        const std::string text = FToken.Text.toStdString();
        TNode node = Make(TFilterNodeKind::Int, FToken.Position);
        if (const auto integer = ParseInt(text)) {
            node->Int = *integer;
        } else if (const auto number = ParseDouble(text)) {
            node->Kind = TFilterNodeKind::Double;
            node->Double = *number;
        } else {
            RaiseFilterError(FText, FToken.Position, QStringLiteral("“%1”不是有效的数值").arg(FToken.Text));
        }
        Take(true);
        return node;
    }

    template <class Rule> TNode Nested(Rule rule)
    {
        if (++FNesting > MaxDepth)
            RaiseFilterError(FText, FToken.Position, QStringLiteral("条件嵌套过深"));
        TNode node = rule();
        --FNesting;
        return node;
    }

    const QString FText;
    TFilterLexer FLexer;
    TToken FToken;
    int FNesting = 0;
};

} // namespace

std::unique_ptr<TFilterNode> ParseFilter(const QString &text) { return TFilterParser(text).Parse(); }

void RaiseFilterError(const QString &text, qsizetype position, const QString &fault)
{
    throw EDatabaseError(
        QStringLiteral("过滤条件“%1”第 %2 个字符处有误：%3").arg(text, QString::number(position), fault));
}

} // namespace Korvane
