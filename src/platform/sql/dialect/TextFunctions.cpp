// SPDX-License-Identifier: MIT
#include "platform/sql/dialect/SqlCall.h"

#include <cmath>

using namespace Qt::StringLiterals;

namespace Korvane {

namespace {

bool IsContinuation(char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; }

/// The byte at which character number count (from 0) begins, or the text's end.
size_t CharacterStart(std::string_view text, qint64 count)
{
    size_t at = 0;
    for (; at < text.size() && count > 0; --count) {
        do
            ++at;
        while (at < text.size() && IsContinuation(text[at]));
    }
    return at;
}

qint64 CharacterCount(std::string_view text)
{
    return std::count_if(text.begin(), text.end(), [](char c) { return !IsContinuation(c); });
}

[[noreturn]] void FailLength() { throw ESqlError(u"文本函数的长度或位置不正确"_s); }

void Left(TSqlCall &call)
{
    if (call.AnyNull())
        return;
    const int count = call.Position(1);
    if (count < 0)
        FailLength();
    const std::string_view text = call.Text(0);
    call.SetText(text.substr(0, CharacterStart(text, count)));
}

void Right(TSqlCall &call)
{
    if (call.AnyNull())
        return;
    const int count = call.Position(1);
    if (count < 0)
        FailLength();
    const std::string_view text = call.Text(0);
    call.SetText(text.substr(CharacterStart(text, std::max<qint64>(CharacterCount(text) - count, 0))));
}

/// mid(text, start[, length]). A start before the text shortens the piece in the MSSQL dialect; in
/// the Access dialect it is a fault.
void Mid(TSqlCall &call)
{
    if (call.AnyNull())
        return;
    qint64 start = call.Position(1);
    qint64 count = call.Count() > 2 ? call.Position(2) : 2147483647;
    if (count < 0 || (call.IsAccess() && start < 1))
        FailLength();
    if (start < 1) {
        count = std::max<qint64>(count + start - 1, 0);
        start = 1;
    }
    const std::string_view rest = call.Text(0).substr(CharacterStart(call.Text(0), start - 1));
    call.SetText(rest.substr(0, CharacterStart(rest, count)));
}

/// Blanks at the end do not count in the MSSQL dialect.
void Len(TSqlCall &call)
{
    if (call.IsNull(0))
        return;
    std::string_view text = call.Text(0);
    while (!call.IsAccess() && !text.empty() && text.back() == ' ')
        text.remove_suffix(1);
    call.SetInteger(CharacterCount(text));
}

/// The place of a text in another from character start (from 1) on, blind to the case of a–z; 0 if
/// it is not there.
qint64 Find(std::string_view text, std::string_view sought, qint64 start)
{
    const size_t from = CharacterStart(text, start - 1);
    if (sought.empty())
        return from < text.size() ? start : 0;
    const auto same = [](char a, char b) {
        const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? char(c + 32) : c; };
        return lower(a) == lower(b);
    };
    const auto found = std::search(text.begin() + from, text.end(), sought.begin(), sought.end(), same);
    return found == text.end() ? 0 : CharacterCount(text.substr(0, size_t(found - text.begin()))) + 1;
}

/// instr([start, ]text, sought[, compare])
void Instr(TSqlCall &call)
{
    const int first = call.Count() > 2 ? 1 : 0;
    if (call.IsNull(first) || call.IsNull(first + 1))
        return;
    const int start = first ? call.Position(0) : 1;
    if (start < 1)
        FailLength();
    call.SetInteger(Find(call.Text(first), call.Text(first + 1), start));
}

/// charindex(sought, text[, start])
void CharIndex(TSqlCall &call)
{
    if (call.IsNull(0) || call.IsNull(1))
        return;
    const int start = call.Count() > 2 ? std::max(call.Position(2), 1) : 1;
    if (call.Text(0).empty())
        return call.SetInteger(0);
    call.SetInteger(Find(call.Text(1), call.Text(0), start));
}

/// Some text, so many times. Gives up where the engine would.
void Repeat(TSqlCall &call, std::string_view text, int count)
{
    if (count < 0)
        return;
    if (text.size() * size_t(count) > 100'000'000)
        return sqlite3_result_error_toobig(call.Context());
    std::string result;
    result.reserve(text.size() * size_t(count));
    for (int i = 0; i < count; ++i)
        result += text;
    call.SetText(result);
}

void Space(TSqlCall &call)
{
    if (!call.AnyNull())
        Repeat(call, " ", call.Position(0));
}

void Replicate(TSqlCall &call)
{
    if (!call.AnyNull())
        Repeat(call, call.Text(0), call.Position(1));
}

/// string(count, character): the character by its code, or a text's first one.
void String(TSqlCall &call)
{
    if (call.AnyNull())
        return;
    if (call.IsNumber(1))
        return Repeat(call, QString(QChar(call.Position(1) & 0xFFFF)).toStdString(), call.Position(0));
    const std::string_view text = call.Text(1);
    Repeat(call, text.substr(0, CharacterStart(text, 1)), call.Position(0));
}

/// Texts joined; NULL is an empty text.
void Join(TSqlCall &call)
{
    std::string result;
    for (int i = 0; i < call.Count(); ++i)
        result += call.Text(i);
    call.SetText(result);
}

/// A sum that stays whole as long as it can.
class TSum
{
public:
    void Add(qint64 whole)
    {
        qint64 sum = 0;
        if (FIsWhole && !__builtin_add_overflow(FWhole, whole, &sum))
            FWhole = sum;
        else
            Add(double(whole));
    }
    void Add(double number)
    {
        if (FIsWhole)
            FNumber = double(FWhole);
        FIsWhole = false;
        FNumber += number;
    }
    void AddText(const std::string &text)
    {
        const auto number = ParseSqlNumber(text);
        if (!number)
            throw ESqlError(u"“%1”不是数值，不能与数值相加"_s.arg(QString::fromStdString(text).left(100)));
        if (std::abs(*number) < 9e15 && *number == std::trunc(*number))
            Add(qint64(*number));
        else
            Add(*number);
    }
    void Give(TSqlCall &call) const
    {
        if (FIsWhole)
            call.SetInteger(FWhole);
        else
            call.SetDouble(FNumber);
    }

private:
    bool FIsWhole = true;
    qint64 FWhole = 0;
    double FNumber = 0;
};

/// a + b where the statement does not show what they are: numbers are added, texts joined; of a
/// number and a text, the text must be a number.
void Add(TSqlCall &call)
{
    if (call.AnyNull())
        return;
    TSum sum;
    std::string text;
    bool isText = true;
    for (int i = 0; i < call.Count(); ++i) {
        if (isText && !call.IsNumber(i)) {
            text += call.Text(i);
            continue;
        }
        if (isText && i > 0)
            sum.AddText(text);
        isText = false;
        if (call.Type(i) == SQLITE_INTEGER)
            sum.Add(call.Integer(i));
        else if (call.IsNumber(i))
            sum.Add(call.Number(i));
        else
            sum.AddText(std::string(call.Text(i)));
    }
    if (isText)
        call.SetText(text);
    else
        sum.Give(call);
}

constexpr TSqlFunction Functions[] = {
    {"korvane_left", 2, 2, true, &Left},
    {"korvane_right", 2, 2, true, &Right},
    {"korvane_mid", 2, 3, true, &Mid},
    {"korvane_len", 1, 1, true, &Len},
    {"korvane_instr", 2, 4, true, &Instr},
    {"korvane_charindex", 2, 3, true, &CharIndex},
    {"korvane_space", 1, 1, true, &Space},
    {"korvane_string", 2, 2, true, &String},
    {"korvane_replicate", 2, 2, true, &Replicate},
    {"korvane_join", 0, -1, true, &Join},
    {"korvane_add", 0, -1, true, &Add},
};

} // namespace

std::span<const TSqlFunction> SqlTextFunctions() { return Functions; }

} // namespace Korvane
