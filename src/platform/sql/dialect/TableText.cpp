// SPDX-License-Identifier: MIT
#include "platform/sql/dialect/TableText.h"

#include "platform/sql/dialect/SqlEdits.h"

using namespace Qt::StringLiterals;

namespace Korvane {

namespace {

// SQLite's own language quotes names as the MSSQL dialect does.
TSqlEdits Tokens(const QString &text) { return TSqlEdits(text, TSqlDialect::MSSQL); }

bool SameName(const QString &a, const QString &b) { return a.compare(b, Qt::CaseInsensitive) == 0; }

QString NameOf(const TSqlToken &token)
{
    return token.Kind == TSqlTokenKind::Text ? SqlTextValue(token) : SqlName(token);
}

bool IsAnyOf(const TSqlToken &token, std::initializer_list<QLatin1StringView> words)
{
    return std::any_of(words.begin(), words.end(), [&](auto word) { return token.Is(word); });
}

bool BeginsConstraint(const TSqlToken &token)
{
    return IsAnyOf(token, {"constraint"_L1, "primary"_L1, "unique"_L1, "check"_L1, "foreign"_L1});
}

/// A piece of a column's definition behind its name: the type, or an option.
struct TPiece
{
    QString Kind;       ///< empty for the type; of options the first word, "null" also for "not null"
    QString Constraint; ///< the name before the option
    QString Text;
};

bool BeginsOption(const TSqlToken &token)
{
    return IsAnyOf(token, {"constraint"_L1, "primary"_L1, "not"_L1, "null"_L1, "unique"_L1, "check"_L1,
                           "default"_L1, "collate"_L1, "references"_L1, "generated"_L1, "as"_L1});
}

/// Behind what belongs to the option that begins at a token.
int OptionEnd(const TSqlEdits &tokens, int at)
{
    int end = at + 1;
    // These take the next word or bracket with them, whatever it is.
    const int last = tokens.Size() - 1;
    if (end < last && IsAnyOf(tokens[at], {"not"_L1, "default"_L1, "collate"_L1, "references"_L1})) {
        if (tokens[end].IsOperator("-"_L1) || tokens[end].IsOperator("+"_L1))
            ++end;
        end = tokens.Match(end) > end ? tokens.Match(end) + 1 : end + 1;
    }
    const bool isReference = tokens[at].Is("references"_L1);
    while (end < last) {
        const bool isAction = isReference && tokens[end].Is("on"_L1);
        const bool isSetAction = isReference && tokens[end].Is("set"_L1);
        if (isAction || isSetAction)
            end += 2; // on delete, set null
        else if (BeginsOption(tokens[end]) && !(tokens[end].Is("as"_L1) && tokens[at].Is("generated"_L1)))
            break;
        else
            end = tokens.Match(end) > end ? tokens.Match(end) + 1 : end + 1;
    }
    return std::min(end, last);
}

QList<TPiece> PiecesOf(const TSqlEdits &tokens, int at)
{
    QList<TPiece> pieces;
    const int last = tokens.Size() - 1;
    const int typeFirst = at;
    while (at < last && !BeginsOption(tokens[at]))
        at = tokens.Match(at) > at ? tokens.Match(at) + 1 : at + 1;
    if (at > typeFirst)
        pieces.append({QString(), QString(), tokens.Written(typeFirst, at - 1)});
    while (at < last) {
        TPiece piece;
        const int first = at;
        if (tokens[at].Is("constraint"_L1) && at + 2 < last) {
            piece.Constraint = NameOf(tokens[at + 1]);
            at += 2;
        }
        piece.Kind = (tokens[at].Is("not"_L1) ? u"null"_s : tokens[at].Text.toString().toLower());
        at = OptionEnd(tokens, at);
        piece.Text = tokens.Written(first, at - 1);
        pieces.append(piece);
    }
    return pieces;
}

QString TextOf(const QString &nameText, const QList<TPiece> &pieces)
{
    QStringList parts{nameText};
    for (const TPiece &piece : pieces)
        parts.append(piece.Text);
    return parts.join(u' ');
}

TTableText::TItem ItemOf(const QString &text)
{
    const TSqlEdits tokens = Tokens(text);
    const TSqlToken &first = tokens[0];
    if (first.Kind == TSqlTokenKind::End)
        throw ESqlError(u"列或约束的定义为空"_s);
    if (first.Is("constraint"_L1)) {
        if (tokens.Size() < 4)
            throw ESqlError(u"约束的定义不完整：%1"_s.arg(text.left(100)));
        return {NameOf(tokens[1]), text};
    }
    return {BeginsConstraint(first) ? QString() : NameOf(first), text};
}

} // namespace

TTableText::TTableText(const QString &sql)
{
    const TSqlEdits tokens = Tokens(sql);
    const auto fail = [&] { throw ESqlError(u"不是建表语句：%1"_s.arg(sql.left(100))); };
    int at = 0;
    if (!tokens[at].Is("create"_L1))
        fail();
    while (at < tokens.Size() - 1 && !tokens[at].Is("table"_L1))
        ++at;
    if (!tokens[at].Is("table"_L1))
        fail();
    FHead = tokens.Written(0, at);
    ++at;
    int open = at;
    while (open < tokens.Size() - 1 && !tokens[open].IsOperator("("_L1))
        ++open;
    const int close = tokens.Match(open);
    if (close < 0 || open == at || tokens[close - 1].IsOperator(","_L1))
        fail();
    FName = NameOf(tokens[open - 1]);
    FTail = tokens.Written(close + 1, tokens.Size() - 1);
    for (int first = open + 1; first < close;) {
        int end = first;
        while (end < close && !tokens[end].IsOperator(","_L1))
            end = tokens.Match(end) > end ? tokens.Match(end) + 1 : end + 1;
        if (end == first)
            fail();
        const TItem item = ItemOf(tokens.Written(first, end - 1));
        (BeginsConstraint(tokens[first]) ? FConstraints : FColumns).append(item);
        first = end + 1;
    }
    if (FColumns.isEmpty())
        fail();
}

void TTableText::Apply(const TTableChange &change)
{
    const QString text = QString::fromUtf8(change.Text);
    switch (change.Kind) {
    case TTableChange::AddColumn:
        return AddColumn(text);
    case TTableChange::AlterColumn:
        return AlterColumn(change.Column, text);
    case TTableChange::DropColumn:
        return DropColumn(change.Column);
    case TTableChange::AddConstraint:
        return AddConstraint(text);
    case TTableChange::DropConstraint:
        return DropConstraint(change.Column);
    }
}

TTableText::TItem *TTableText::FindColumn(const QString &name)
{
    for (TItem &column : FColumns) {
        if (SameName(column.Name, name))
            return &column;
    }
    return nullptr;
}

void TTableText::AddColumn(const QString &text)
{
    const TItem item = ItemOf(text);
    if (FindColumn(item.Name))
        throw ESqlError(u"数据表“%1”已有列“%2”"_s.arg(FName, item.Name));
    const TSqlEdits tokens = Tokens(text);
    for (const TPiece &piece : PiecesOf(tokens, 1)) {
        if (piece.Kind == "primary"_L1 && HasPrimaryKey())
            throw ESqlError(u"数据表“%1”已有主键"_s.arg(FName));
    }
    FColumns.append(item);
}

void TTableText::AlterColumn(const QString &name, const QString &text)
{
    TItem *column = FindColumn(name);
    if (!column)
        throw ESqlError(u"数据表“%1”没有列“%2”"_s.arg(FName, name));
    const TSqlEdits oldTokens = Tokens(column->Text);
    const TSqlEdits newTokens = Tokens(text);
    QList<TPiece> pieces = PiecesOf(oldTokens, 1);
    for (const TPiece &piece : PiecesOf(newTokens, 0)) {
        const bool isType = piece.Kind.isEmpty();
        // The order of letters goes with the type.
        pieces.removeIf([&](const TPiece &old) {
            return old.Kind == piece.Kind || (isType && old.Kind == "collate"_L1);
        });
        const bool isNothing =
            piece.Kind == "default"_L1 && piece.Text.endsWith(u"null"_s, Qt::CaseInsensitive);
        const bool hasType = !pieces.isEmpty() && pieces.first().Kind.isEmpty();
        if (isType)
            pieces.prepend(piece);
        else if (piece.Kind == "collate"_L1)
            pieces.insert(hasType ? 1 : 0, piece);
        else if (!isNothing)
            pieces.append(piece);
    }
    column->Text = TextOf(oldTokens.Written(0, 0), pieces);
}

/// True where the column is named by a token of the text.
bool TTableText::Mentions(const QString &text, const QString &column)
{
    const TSqlEdits tokens = Tokens(text);
    const bool hasName = tokens[0].Is("constraint"_L1);
    for (int i = hasName ? 2 : 0; i < tokens.Size() - 1; ++i) {
        // Behind "references" stand the other table's columns.
        if (tokens[i].Is("references"_L1))
            return false;
        const bool isName = tokens[i].Kind == TSqlTokenKind::Word || tokens[i].IsQuotedName();
        if (isName && SameName(SqlName(tokens[i]), column))
            return true;
    }
    return false;
}

void TTableText::DropColumn(const QString &name)
{
    const TItem *column = FindColumn(name);
    if (!column)
        throw ESqlError(u"数据表“%1”没有列“%2”"_s.arg(FName, name));
    if (FColumns.size() == 1)
        throw ESqlError(u"不能删除数据表“%1”的最后一列"_s.arg(FName));
    const auto refuse = [&](const QString &constraint) {
        throw ESqlError(u"约束“%1”使用了列“%2”，不能删除"_s.arg(constraint, column->Name));
    };
    for (const TItem &constraint : FConstraints) {
        if (Mentions(constraint.Text, name))
            refuse(constraint.Name.isEmpty() ? constraint.Text : constraint.Name);
    }
    for (const TItem &other : FColumns) {
        const TSqlEdits tokens = Tokens(other.Text);
        for (const TPiece &piece : PiecesOf(tokens, 1)) {
            const bool isOwn =
                &other == column && (piece.Kind == "primary"_L1 || piece.Kind == "unique"_L1 ||
                                     piece.Kind == "check"_L1 || piece.Kind == "references"_L1);
            const bool isUse = &other != column && !piece.Kind.isEmpty() && piece.Kind != "collate"_L1 &&
                               Mentions(piece.Text, name);
            if (isOwn || isUse)
                refuse(piece.Constraint.isEmpty() ? piece.Text : piece.Constraint);
        }
    }
    FColumns.removeIf([&](const TItem &item) { return SameName(item.Name, name); });
}

bool TTableText::HasPrimaryKey() const
{
    const auto isKey = [](const TItem &constraint) {
        const TSqlEdits tokens = Tokens(constraint.Text);
        return tokens[tokens[0].Is("constraint"_L1) ? 2 : 0].Is("primary"_L1);
    };
    const auto hasKey = [](const TItem &column) {
        const TSqlEdits tokens = Tokens(column.Text);
        const QList<TPiece> pieces = PiecesOf(tokens, 1);
        return std::any_of(pieces.begin(), pieces.end(),
                           [](const TPiece &p) { return p.Kind == "primary"_L1; });
    };
    return std::any_of(FConstraints.begin(), FConstraints.end(), isKey) ||
           std::any_of(FColumns.begin(), FColumns.end(), hasKey);
}

void TTableText::AddConstraint(const QString &text)
{
    const TItem item = ItemOf(text);
    const TSqlEdits tokens = Tokens(text);
    if (!BeginsConstraint(tokens[0]))
        throw ESqlError(u"不是约束的定义：%1"_s.arg(text.left(100)));
    for (const TItem &other : FConstraints) {
        if (!item.Name.isEmpty() && SameName(other.Name, item.Name))
            throw ESqlError(u"数据表“%1”已有约束“%2”"_s.arg(FName, item.Name));
    }
    if (tokens[tokens[0].Is("constraint"_L1) ? 2 : 0].Is("primary"_L1) && HasPrimaryKey())
        throw ESqlError(u"数据表“%1”已有主键"_s.arg(FName));
    FConstraints.append(item);
}

void TTableText::DropConstraint(const QString &name)
{
    if (FConstraints.removeIf([&](const TItem &item) { return SameName(item.Name, name); }) > 0)
        return;
    for (TItem &column : FColumns) {
        const TSqlEdits tokens = Tokens(column.Text);
        QList<TPiece> pieces = PiecesOf(tokens, 1);
        if (pieces.removeIf([&](const TPiece &p) { return SameName(p.Constraint, name); }) == 0)
            continue;
        column.Text = TextOf(tokens.Written(0, 0), pieces);
        return;
    }
    throw ESqlError(u"数据表“%1”没有约束“%2”"_s.arg(FName, name));
}

QString TTableText::ToSql(const QString &newName) const
{
    QStringList items;
    for (const TItem &column : FColumns)
        items.append(column.Text);
    for (const TItem &constraint : FConstraints)
        items.append(constraint.Text);
    return FHead + u' ' + QuotedSqlName(newName.isEmpty() ? FName : newName) + u"(\n  "_s +
           items.join(u",\n  "_s) + u"\n)"_s + (FTail.isEmpty() ? FTail : u' ' + FTail);
}

} // namespace Korvane
