// SPDX-License-Identifier: MIT
#include "import/CellConverter.h"

#include "platform/data/NumberText.h"

#include <QDate>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace Korvane {

namespace {

bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

std::string_view Trimmed(std::string_view text)
{
    while (!text.empty() && IsBlank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && IsBlank(text.back()))
        text.remove_suffix(1);
    return text;
}

/// Takes a run of digits off the beginning.
std::string_view TakeDigits(std::string_view &text)
{
    const auto end = std::find_if_not(text.begin(), text.end(), IsDigit);
    const std::string_view digits = text.substr(0, size_t(end - text.begin()));
    text.remove_prefix(digits.size());
    return digits;
}

bool TakeOne(std::string_view &text, std::string_view signs)
{
    if (text.empty() || signs.find(text.front()) == std::string_view::npos)
        return false;
    text.remove_prefix(1);
    return true;
}

int NumberOf(std::string_view digits)
{
    int number = 0;
    for (const char c : digits)
        number = number * 10 + (c - '0');
    return number;
}

bool IsDay(std::string_view date)
{
    return QDate::isValid(NumberOf(date.substr(0, 4)), NumberOf(date.substr(4, 2)),
                          NumberOf(date.substr(6, 2)));
}

bool IsTime(std::string_view time)
{
    return NumberOf(time.substr(0, 2)) < 24 && NumberOf(time.substr(2, 2)) < 60 &&
           NumberOf(time.substr(4, 2)) < 60;
}

constexpr std::string_view Midnight = "000000";

/// "2024-1-31", "2024/01/31 8:30", "2024.1.31T08:30:00" as 14 digits; false for all else.
bool ReadWrittenDate(std::string_view text, std::string &digits)
{
    struct TPart
    {
        size_t Most;
        std::string_view Before; ///< one of these stands before it
    };
    constexpr TPart parts[] = {{4, ""}, {2, "-/."}, {2, "-/."}, {2, " T"}, {2, ":"}, {2, ":"}};
    digits.clear();
    size_t count = 0;
    for (const TPart &part : parts) {
        if (count > 0 && !TakeOne(text, part.Before))
            break;
        const std::string_view number = TakeDigits(text);
        if (number.empty() || number.size() > part.Most || (count == 0 && number.size() != 4))
            return false;
        digits.append(part.Most - number.size(), '0').append(number);
        ++count;
    }
    if (!text.empty() || count < 3 || count == 4)
        return false;
    digits.append(14 - digits.size(), '0');
    return IsDay(digits) && IsTime(std::string_view(digits).substr(8));
}

enum class TOldKind { Flag, Number, Moment, Words, Bytes };

TOldKind KindOf(const TJetColumn &column)
{
    switch (column.Type) {
    case TJetType::Boolean:
        return TOldKind::Flag;
    case TJetType::Byte:
    case TJetType::Integer:
    case TJetType::LongInteger:
    case TJetType::Money:
    case TJetType::Single:
    case TJetType::Double:
    case TJetType::Decimal:
        return TOldKind::Number;
    case TJetType::DateTime:
        return TOldKind::Moment;
    case TJetType::Text:
    case TJetType::Memo:
    case TJetType::Guid:
        return TOldKind::Words;
    default:
        return TOldKind::Bytes;
    }
}

[[noreturn]] void Refuse(const QString &reason) { throw EImportValue(reason); }

[[noreturn]] void RefuseKind(const TImportColumn &column)
{
    Refuse(QStringLiteral("%1不能转换为 %2").arg(JetTypeText(column.OldColumn), FieldTypeText(column)));
}

std::string LowerAscii(std::string_view text)
{
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? char(c + 32) : c; });
    return lower;
}

} // namespace

bool CanonicalDecimal(std::string_view text, std::string &number)
{
    text = Trimmed(text);
    const bool isNegative = !text.empty() && text.front() == '-';
    TakeOne(text, "+-");
    std::string_view whole = TakeDigits(text);
    const bool hasPoint = TakeOne(text, ".");
    std::string_view decimals = hasPoint ? TakeDigits(text) : std::string_view();
    if (!text.empty() || (whole.empty() && decimals.empty()))
        return false;
    while (!whole.empty() && whole.front() == '0')
        whole.remove_prefix(1);
    while (!decimals.empty() && decimals.back() == '0')
        decimals.remove_suffix(1);
    number.clear();
    if (isNegative && !(whole.empty() && decimals.empty()))
        number += '-';
    number += whole.empty() ? std::string_view("0") : whole;
    if (!decimals.empty())
        number.append(1, '.').append(decimals);
    return true;
}

void CanonicalFloat(double value, std::string &number)
{
    constexpr size_t maxFractionDigits = 15;
    std::array<char, 400> buffer;
    // "d.ddde±xx" with the fewest digits.
    auto end =
        std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, std::chars_format::scientific);
    const std::string_view shortest(buffer.data(), size_t(end.ptr - buffer.data()));
    const auto digits =
        size_t(std::count_if(shortest.begin(), shortest.begin() + qsizetype(shortest.find('e')), IsDigit));
    if (digits > maxFractionDigits && value != std::trunc(value)) {
        end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                            std::chars_format::scientific, int(maxFractionDigits) - 1);
        std::from_chars(buffer.data(), end.ptr, value);
    }
    std::string text(1100, '\0');
    end = std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed);
    CanonicalDecimal({text.data(), size_t(end.ptr - text.data())}, number);
}

std::string_view WithoutTrailingBlanks(std::string_view text)
{
    const size_t last = text.find_last_not_of(' ');
    return text.substr(0, last == std::string_view::npos ? 0 : last + 1);
}

QString CellForReport(const TJetCell &cell)
{
    constexpr qsizetype most = 60;
    switch (cell.Kind) {
    case TJetCell::Null:
        return QStringLiteral("NULL");
    case TJetCell::Integer:
        return QString::number(cell.Int);
    case TJetCell::Real:
        return QString::number(cell.Number, 'g', QLocale::FloatingPointShortest);
    case TJetCell::Blob:
        return QStringLiteral("%1 字节").arg(cell.Bytes.size());
    case TJetCell::Text:
        break;
    }
    QString text = QString::fromUtf8(cell.Bytes.data(), qsizetype(cell.Bytes.size()));
    text.replace(QLatin1Char('\r'), QLatin1Char(' ')).replace(QLatin1Char('\n'), QLatin1Char(' '));
    return text.size() <= most ? text : text.left(most) + QStringLiteral("…");
}

TCellConverter::TCellConverter(const TImportColumn &column) : FColumn(column)
{
    if (!column.Default)
        return;
    const QByteArray text = column.Default->toUtf8();
    FDefault.assign(text.constData(), size_t(text.size()));
}

TImportValue TCellConverter::Convert(const TJetCell &cell)
{
    if (cell.Kind == TJetCell::Null)
        return ConvertNull();
    if (KindOf(FColumn.OldColumn) == TOldKind::Bytes && FColumn.Type != dtImage)
        RefuseKind(FColumn);
    switch (FColumn.Type) {
    case dtChar:
    case dtVarchar:
    case dtText:
        return ToWords(cell);
    case dtInt:
    case dtSmallint:
        return ToWhole(cell);
    case dtDecimal:
        return ToDecimal(cell);
    case dtFloat:
        return ToFloat(cell);
    case dtDateTime:
    case dtDate:
        return ToDate(cell);
    case dtBoolean:
        return ToFlag(cell);
    case dtImage:
        break;
    }
    return ToImage(cell);
}

TImportValue TCellConverter::ConvertNull()
{
    if (!FColumn.Default)
        return {};
    if (FColumn.Origin == TImportOrigin::OldColumn)
        ++FNotes.NullsFilled;
    switch (FColumn.Type) {
    case dtInt:
    case dtSmallint:
    case dtDecimal:
    case dtFloat:
        if (!CanonicalDecimal(FDefault, FBuffer))
            Refuse(QStringLiteral("没有值，而设计中的默认值“%1”不是数字").arg(*FColumn.Default));
        return Number(FBuffer);
    default:
        return Text(FDefault);
    }
}

// --- Texts

TImportValue TCellConverter::ToWords(const TJetCell &cell)
{
    const std::string_view text = WordsOf(cell);
    if (text.find('\0') != std::string_view::npos)
        Refuse(QStringLiteral("文本中有不能存储的空字符（NUL）"));
    CheckLength(text);
    return Text(text);
}

/// What a cell says as a text.
std::string_view TCellConverter::WordsOf(const TJetCell &cell)
{
    switch (KindOf(FColumn.OldColumn)) {
    case TOldKind::Flag:
        return cell.Int != 0 ? "Y" : "N";
    case TOldKind::Moment:
        return ToDate(cell).Bytes;
    case TOldKind::Number:
        if (!ReadNumber(cell))
            RefuseKind(FColumn);
        return FBuffer;
    default:
        break;
    }
    // The blanks behind a text of fixed length are not part of it.
    return FColumn.OldColumn.IsFixed ? WithoutTrailingBlanks(cell.Bytes) : cell.Bytes;
}

void TCellConverter::CheckLength(std::string_view text) const
{
    if (FColumn.Type == dtText || FColumn.Size <= 0 || text.size() <= size_t(FColumn.Size))
        return;
    // The first byte of each character is no continuation.
    const auto length =
        std::count_if(text.begin(), text.end(), [](char c) { return (quint8(c) & 0xc0) != 0x80; });
    if (length > FColumn.Size)
        Refuse(QStringLiteral("文本有 %1 个字符，栏位只能容纳 %2 个").arg(length).arg(FColumn.Size));
}

// --- Numbers

/// Puts the cell into the buffer as a decimal number in its one form; false if it is none.
bool TCellConverter::ReadNumber(const TJetCell &cell)
{
    switch (cell.Kind) {
    case TJetCell::Integer:
        FBuffer = std::to_string(cell.Int);
        return true;
    case TJetCell::Real:
        if (!std::isfinite(cell.Number))
            return false;
        if (FColumn.OldColumn.Type == TJetType::Single) {
            std::array<char, 64> text;
            const auto end = std::to_chars(text.data(), text.data() + text.size(), float(cell.Number),
                                           std::chars_format::fixed);
            return CanonicalDecimal({text.data(), size_t(end.ptr - text.data())}, FBuffer);
        }
        CanonicalFloat(cell.Number, FBuffer);
        return true;
    case TJetCell::Text:
        return KindOf(FColumn.OldColumn) != TOldKind::Moment && CanonicalDecimal(cell.Bytes, FBuffer);
    default:
        return false;
    }
}

TImportValue TCellConverter::ToWhole(const TJetCell &cell)
{
    if (cell.Kind == TJetCell::Text && Trimmed(cell.Bytes).empty())
        return ConvertNull();
    if (!ReadNumber(cell))
        Refuse(QStringLiteral("不是数字"));
    if (FBuffer.find('.') != std::string::npos)
        Refuse(QStringLiteral("有小数，不能存入整数栏位"));
    qint64 value = 0;
    const auto end = std::from_chars(FBuffer.data(), FBuffer.data() + FBuffer.size(), value);
    const qint64 most = FColumn.Type == dtSmallint ? 32767 : 2147483647;
    if (end.ec != std::errc() || value > most || value < -most - 1)
        Refuse(QStringLiteral("超出 %1 的范围").arg(FieldTypeText(FColumn)));
    return Number(FBuffer);
}

TImportValue TCellConverter::ToDecimal(const TJetCell &cell)
{
    if (cell.Kind == TJetCell::Text && Trimmed(cell.Bytes).empty())
        return ConvertNull();
    if (!ReadNumber(cell))
        Refuse(QStringLiteral("不是数字"));
    const size_t sign = FBuffer.front() == '-' ? 1 : 0;
    const size_t point = qMin(FBuffer.find('.'), FBuffer.size());
    const size_t decimals = point == FBuffer.size() ? 0 : FBuffer.size() - point - 1;
    const size_t whole = FBuffer[sign] == '0' ? 0 : point - sign;
    if (decimals > size_t(FColumn.Precision))
        Refuse(QStringLiteral("有 %1 位小数，栏位只有 %2 位").arg(decimals).arg(FColumn.Precision));
    if (FColumn.Size > 0 && whole > size_t(qMax(FColumn.Size - FColumn.Precision, 0)))
        Refuse(QStringLiteral("超出 %1 的范围").arg(FieldTypeText(FColumn)));
    return Number(FBuffer);
}

// The storage is a float: what counts is the float that the text stands for.
TImportValue TCellConverter::ToFloat(const TJetCell &cell)
{
    if (cell.Kind == TJetCell::Text && Trimmed(cell.Bytes).empty())
        return ConvertNull();
    double value = cell.Number;
    if (cell.Kind != TJetCell::Real) {
        const bool isNumber = ReadNumber(cell);
        const std::optional<double> read = isNumber ? ParseDouble(FBuffer) : std::nullopt;
        if (!read)
            Refuse(isNumber ? QStringLiteral("超出 float 的范围") : QStringLiteral("不是数字"));
        value = *read;
    }
    if (!std::isfinite(value))
        Refuse(QStringLiteral("不是有限的数"));
    FBuffer = TNumberText(value == 0 ? 0.0 : value).View();
    return Number(FBuffer);
}

// --- Dates and flags

TImportValue TCellConverter::Digits(std::string_view date, std::string_view time)
{
    // A text column takes as many digits as it has room for.
    const bool isText = FColumn.Type == dtChar || FColumn.Type == dtVarchar;
    const bool isDay = FColumn.Type == dtDate || (isText && FColumn.Size >= 8 && FColumn.Size < 14);
    std::string digits(date);
    if (!isDay)
        digits += time;
    else if (time != Midnight)
        ++FNotes.TimesDropped;
    FBuffer = std::move(digits);
    return Text(FBuffer);
}

TImportValue TCellConverter::ToDate(const TJetCell &cell)
{
    const TOldKind kind = KindOf(FColumn.OldColumn);
    if (kind == TOldKind::Moment) {
        std::string digits;
        std::copy_if(cell.Bytes.begin(), cell.Bytes.end(), std::back_inserter(digits), IsDigit);
        digits.append(14 - digits.size(), '0');
        return Digits(std::string_view(digits).substr(0, 8), std::string_view(digits).substr(8));
    }
    if (kind == TOldKind::Flag)
        RefuseKind(FColumn);
    if (kind == TOldKind::Number && !ReadNumber(cell))
        RefuseKind(FColumn);
    const std::string words(Trimmed(kind == TOldKind::Number ? std::string_view(FBuffer) : cell.Bytes));
    std::string_view text = words;
    if (text.empty())
        return Text({});
    const bool isDigits = std::all_of(text.begin(), text.end(), IsDigit);
    if (isDigits && (text.size() == 8 || text.size() == 14)) {
        const std::string_view time = text.size() == 8 ? Midnight : text.substr(8);
        if (!IsDay(text) || !IsTime(time))
            ++FNotes.OddDates;
        return Digits(text.substr(0, 8), time);
    }
    std::string digits;
    if (!ReadWrittenDate(text, digits))
        Refuse(QStringLiteral("不是日期"));
    return Digits(std::string_view(digits).substr(0, 8), std::string_view(digits).substr(8));
}

TImportValue TCellConverter::ToFlag(const TJetCell &cell)
{
    static constexpr std::string_view yes[] = {"y", "yes", "t", "true", "on", "1", "-1", "是", "真"};
    static constexpr std::string_view no[] = {"n", "no", "f", "false", "off", "0", "否", "假"};
    const auto isOneOf = [](const auto &words, const std::string &text) {
        return std::find(std::begin(words), std::end(words), text) != std::end(words);
    };
    switch (KindOf(FColumn.OldColumn)) {
    case TOldKind::Flag:
        return Text(cell.Int != 0 ? "Y" : "N");
    case TOldKind::Number:
        if (!ReadNumber(cell))
            Refuse(QStringLiteral("不是数字"));
        return Text(FBuffer == "0" ? "N" : "Y");
    case TOldKind::Words:
        break;
    default:
        RefuseKind(FColumn);
    }
    const std::string text = LowerAscii(Trimmed(cell.Bytes));
    if (text.empty())
        return Text({});
    const bool isYes = isOneOf(yes, text);
    if (!isYes && !isOneOf(no, text))
        Refuse(QStringLiteral("不是“是”或“否”"));
    return Text(isYes ? "Y" : "N");
}

TImportValue TCellConverter::ToImage(const TJetCell &cell)
{
    if (cell.Kind != TJetCell::Blob)
        RefuseKind(FColumn);
    return {TImportValue::Blob, cell.Bytes};
}

} // namespace Korvane
