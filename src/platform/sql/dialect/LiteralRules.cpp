// SPDX-License-Identifier: MIT
#include "platform/sql/dialect/LiteralRules.h"

#include <QDate>
#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace Korvane {

namespace {

/// '2024-01-31', '2024-01-31 08:30:00' or '08:30:00' for #1/31/2024 8:30 AM#: month, day and year,
/// or year, month and day.
QString DateLiteral(QStringView written)
{
    static const QRegularExpression pattern(
        uR"(^\s*(?:(\d{1,4})[-/.](\d{1,2})[-/.](\d{1,4}))?)"
        uR"(\s*(?:(\d{1,2}):(\d{1,2})(?::(\d{1,2}))?\s*([AaPp])?[Mm]?)?\s*$)"_s);
    const auto match = pattern.match(written.mid(1, written.size() - 2).toString());
    const auto number = [&](int group) { return match.captured(group).toInt(); };
    const bool hasDate = match.hasMatch() && match.hasCaptured(1);
    const bool hasTime = match.hasMatch() && match.hasCaptured(4);
    QDate date;
    if (hasDate && match.capturedLength(1) == 4) {
        date = QDate(number(1), number(2), number(3));
    } else if (hasDate) {
        const int year = number(3) >= 100 ? number(3) : number(3) + (number(3) < 30 ? 2000 : 1900);
        // A month that cannot be one is the day.
        date = number(1) > 12 ? QDate(year, number(2), number(1)) : QDate(year, number(1), number(2));
    }
    const bool isAfternoon = match.captured(7).toLower() == "p"_L1;
    const bool isHalfDay = hasTime && match.hasCaptured(7);
    const int hour = isHalfDay ? number(4) % 12 + (isAfternoon ? 12 : 0) : number(4);
    const QTime time = hasTime ? QTime(hour, number(5), number(6)) : QTime();
    const bool isGood = (hasDate || hasTime) && hasDate == date.isValid() && hasTime == time.isValid();
    if (!isGood)
        throw ESqlError(u"日期不正确：%1"_s.arg(written));
    QStringList parts;
    if (hasDate)
        parts.append(date.toString(u"yyyy-MM-dd"_s));
    if (hasTime)
        parts.append(time.toString(u"HH:mm:ss"_s));
    return u'\'' + parts.join(u' ') + u'\'';
}

QString BlobLiteral(QStringView written)
{
    const QStringView digits = written.mid(2);
    return u"x'"_s + (digits.size() % 2 ? u"0"_s : QString()) + digits.toString() + u'\'';
}

void RewriteText(TSqlEdits &edits, int i)
{
    const QStringView text = edits[i].Text;
    if (text.front() != u'\'') // N'text', "text"
        edits.Replace(i, u'\'' + SqlTextValue(edits[i]).replace(u'\'', u"''"_s) + u'\'');
}

void RewriteVariable(TSqlEdits &edits, int i)
{
    const TSqlToken &token = edits[i];
    if (token.Is("@@spid"_L1))
        edits.Replace(i, u"korvane_spid()"_s);
    else if (token.Is("@@identity"_L1))
        edits.Replace(i, u"last_insert_rowid()"_s);
    else if (token.Is("@@rowcount"_L1))
        edits.Replace(i, u"changes()"_s);
    else
        RefuseSql(token.Text.toString());
}

/// Words that only SQLite reserves.
bool IsForeignReserved(const TSqlToken &token)
{
    static constexpr QLatin1StringView Words[] = {"limit"_L1, "nothing"_L1, "notnull"_L1, "returning"_L1,
                                                  "deferrable"_L1};
    return std::any_of(std::begin(Words), std::end(Words), [&](auto word) { return token.Is(word); });
}

void RewriteWord(TSqlEdits &edits, int i)
{
    const TSqlToken &token = edits[i];
    const QChar first = token.Text.front();
    if (first == u'@' && !(i > 0 && edits[i - 1].Is("declare"_L1)))
        RewriteVariable(edits, i);
    else if (first == u'#' || IsForeignReserved(token))
        edits.Replace(i, QuotedSqlName(token.Text.toString()));
}

} // namespace

void RewriteLiterals(TSqlCursor &cursor)
{
    TSqlEdits &edits = cursor.Edits;
    for (int i = 0; i < edits.Size(); ++i) {
        const TSqlToken &token = edits[i];
        switch (token.Kind) {
        case TSqlTokenKind::Text:
            RewriteText(edits, i);
            break;
        case TSqlTokenKind::Date:
            edits.Replace(i, DateLiteral(token.Text));
            break;
        case TSqlTokenKind::Number:
            if (!cursor.IsAccess() && token.Text.startsWith("0x"_L1, Qt::CaseInsensitive))
                edits.Replace(i, BlobLiteral(token.Text));
            break;
        case TSqlTokenKind::BracketName:
            if (token.Text.size() == 2)
                throw ESqlError(u"方括号中没有名称"_s);
            // SQLite does not know a doubled bracket.
            if (token.Text.contains(u"]]"))
                edits.Replace(i, QuotedSqlName(SqlName(token)));
            break;
        case TSqlTokenKind::Word:
            RewriteWord(edits, i);
            break;
        default:
            break;
        }
    }
}

} // namespace Korvane
