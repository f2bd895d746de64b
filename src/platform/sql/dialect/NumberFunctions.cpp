// SPDX-License-Identifier: MIT
#include "platform/core/DateTime.h"
#include "platform/core/FormatDateTime.h"
#include "platform/core/FormatFloat.h"
#include "platform/sql/dialect/SqlCall.h"
#include "platform/sql/dialect/SqlMoment.h"

#include <cmath>

using namespace Qt::StringLiterals;

namespace Korvane {

namespace {

/// The number times ten to the digits, free of what binary fractions leave behind: 1.005 with two
/// digits is 100.5.
double Scaled(double value, int digits)
{
    const double scaled = value * std::pow(10.0, digits);
    return std::isfinite(scaled) ? std::strtod(QByteArray::number(scaled, 'g', 15).constData(), nullptr)
                                 : scaled;
}

double Unscaled(double value, int digits)
{
    return digits >= 0 ? value / std::pow(10.0, digits) : value * std::pow(10.0, -digits);
}

/// Halves go to the even neighbour.
double RoundEven(double value, int digits) { return Unscaled(std::nearbyint(Scaled(value, digits)), digits); }

/// Halves go away from zero.
double RoundAway(double value, int digits) { return Unscaled(std::round(Scaled(value, digits)), digits); }

void Whole(TSqlCall &call)
{
    if (!call.IsNull(0))
        call.SetNumber(RoundEven(call.Number(0), 0));
}

void Truncated(TSqlCall &call)
{
    if (call.IsNull(0))
        return;
    if (call.Type(0) == SQLITE_INTEGER)
        call.SetInteger(call.Integer(0));
    else
        call.SetNumber(std::trunc(call.Number(0)));
}

void Floor(TSqlCall &call)
{
    if (!call.IsNull(0))
        call.SetNumber(std::floor(call.Number(0)));
}

void Number(TSqlCall &call)
{
    if (!call.IsNull(0))
        call.SetDouble(call.Number(0));
}

void Currency(TSqlCall &call)
{
    if (!call.IsNull(0))
        call.SetNumber(RoundEven(call.Number(0), 4));
}

/// decimal(x, scale)
void Decimal(TSqlCall &call)
{
    if (!call.AnyNull())
        call.SetNumber(RoundAway(call.Number(0), std::clamp(call.Position(1), 0, 15)));
}

/// round(x[, digits[, cut]])
void Round(TSqlCall &call)
{
    if (call.AnyNull())
        return;
    const double value = call.Number(0);
    const int digits = call.Count() > 1 ? std::clamp(call.Position(1), -15, 15) : 0;
    if (call.Count() > 2 && call.Number(2) != 0)
        call.SetNumber(Unscaled(std::trunc(Scaled(value, digits)), digits));
    else
        call.SetNumber(call.IsAccess() ? RoundEven(value, digits) : RoundAway(value, digits));
}

void Power(TSqlCall &call)
{
    if (call.AnyNull())
        return;
    const double result = std::pow(call.Number(0), call.Number(1));
    if (!std::isfinite(result))
        throw ESqlError(u"乘方的结果超出范围"_s);
    call.SetNumber(result);
}

/// Both operands are rounded first, as "\" and "mod" do. Division by zero gives NULL as the
/// engine's own does.
void WholeQuotient(TSqlCall &call)
{
    if (call.AnyNull())
        return;
    const double divisor = RoundEven(call.Number(1), 0);
    if (divisor != 0)
        call.SetNumber(std::trunc(RoundEven(call.Number(0), 0) / divisor));
}

void Modulo(TSqlCall &call)
{
    if (call.AnyNull())
        return;
    const double divisor = RoundEven(call.Number(1), 0);
    if (divisor != 0)
        call.SetNumber(std::fmod(RoundEven(call.Number(0), 0), divisor));
}

void Xor(TSqlCall &call)
{
    if (!call.AnyNull())
        call.SetInteger(call.Integer(0) ^ call.Integer(1));
}

/// The number that a text begins with, blanks apart; 0 if it begins with none.
void Val(TSqlCall &call)
{
    if (call.IsNull(0))
        return;
    std::string text(call.Text(0));
    std::erase_if(text, [](char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; });
    const size_t end = text.find_first_not_of("+-0123456789.eE");
    call.SetNumber(std::strtod(text.substr(0, end).c_str(), nullptr));
}

/// The letter of a flag.
void Flag(TSqlCall &call)
{
    if (call.IsNull(0))
        return;
    const QString text = call.String(0).trimmed().toLower();
    const bool isTrue = text == "y"_L1 || text == "yes"_L1 || text == "true"_L1;
    const bool isFalse = text.isEmpty() || text == "n"_L1 || text == "no"_L1 || text == "false"_L1;
    call.SetText(std::string_view(isTrue || (!isFalse && call.Number(0) != 0) ? "Y" : "N"));
}

void IsNumeric(TSqlCall &call)
{
    call.SetInteger(call.IsNumber(0) || (!call.IsNull(0) && ParseSqlNumber(call.Text(0))));
}

void Blob(TSqlCall &call)
{
    if (call.IsNull(0))
        return;
    const auto *bytes = static_cast<const char *>(sqlite3_value_blob(call.Value(0)));
    call.SetBlob({bytes, size_t(sqlite3_value_bytes(call.Value(0)))});
}

/// str(x) of the Access dialect keeps a place for the sign; str(x[, length[, decimals]]) of the other
/// one stands at the right.
void Str(TSqlCall &call)
{
    if (call.AnyNull())
        return;
    const double value = call.Number(0);
    if (call.IsAccess())
        return call.SetText((value < 0 ? "" : " ") + GeneralNumber(value));
    const int length = call.Count() > 1 ? std::clamp(call.Position(1), 1, 8000) : 10;
    const int decimals = call.Count() > 2 ? std::clamp(call.Position(2), 0, 15) : 0;
    const QByteArray text = QByteArray::number(RoundAway(value, decimals), 'f', decimals);
    call.SetText(
        QString::fromLatin1(text.size() > length ? QByteArray(length, '*') : text.rightJustified(length)));
}

/// A date-time by a style number of "convert".
QString StyledMoment(const TSqlMoment &moment, int style)
{
    struct TStyle
    {
        int Number;
        const char16_t *Format;
    };
    static constexpr TStyle Styles[] = {{8, u"hh:nn:ss"},
                                        {108, u"hh:nn:ss"},
                                        {114, u"hh:nn:ss:zzz"},
                                        {20, u"yyyy-mm-dd hh:nn:ss"},
                                        {120, u"yyyy-mm-dd hh:nn:ss"},
                                        {21, u"yyyy-mm-dd hh:nn:ss.zzz"},
                                        {121, u"yyyy-mm-dd hh:nn:ss.zzz"},
                                        {126, u"yyyy-mm-dd\"T\"hh:nn:ss.zzz"},
                                        {23, u"yyyy-mm-dd"},
                                        {12, u"yymmdd"},
                                        {112, u"yyyymmdd"},
                                        {11, u"yy/mm/dd"},
                                        {111, u"yyyy/mm/dd"},
                                        {102, u"yyyy.mm.dd"},
                                        {101, u"mm/dd/yyyy"},
                                        {103, u"dd/mm/yyyy"},
                                        {104, u"dd.mm.yyyy"},
                                        {105, u"dd-mm-yyyy"},
                                        {110, u"mm-dd-yyyy"}};
    for (const TStyle &known : Styles) {
        if (known.Number != style)
            continue;
        static const TFormatSettings settings = [] {
            // The marks of the format are meant to the letter.
            TFormatSettings result;
            result.DateSeparator = u'/';
            result.TimeSeparator = u':';
            return result;
        }();
        return FormatDateTime(QString::fromUtf16(known.Format), moment.ToDateTime(), settings);
    }
    throw ESqlError(u"内嵌数据库引擎不支持“CONVERT 样式 %1”"_s.arg(style));
}

/// text(x[, length[, style]]); a length below 0 means none.
void Text(TSqlCall &call)
{
    if (call.IsNull(0))
        return;
    QString text;
    const auto moment = call.Count() > 2 && !call.IsNumber(0) ? ParseSqlMoment(call.String(0)) : std::nullopt;
    text = moment ? StyledMoment(*moment, call.Position(2)) : call.String(0);
    const int length = call.Count() > 1 ? call.Position(1) : -1;
    call.SetText(length >= 0 ? text.left(length) : text);
}

bool IsDateFormat(const QString &format)
{
    static const QString Letters = u"ymdhnsctYMDHNSCT"_s;
    QChar quote;
    for (const QChar c : format) {
        if (!quote.isNull())
            quote = c == quote ? QChar() : quote;
        else if (c == u'"' || c == u'\'')
            quote = c;
        else if (Letters.contains(c))
            return true;
    }
    return false;
}

/// format(x[, format]) of the Access dialect: a date-time, a number or a text.
void Format(TSqlCall &call)
{
    if (call.IsNull(0))
        return call.SetText(std::string_view());
    const QString format = call.Count() > 1 && !call.IsNull(1) ? call.String(1) : QString();
    if (format.isEmpty())
        return call.SetText(call.Text(0));
    if (format == ">"_L1)
        return call.SetText(call.String(0).toUpper());
    if (format == "<"_L1)
        return call.SetText(call.String(0).toLower());
    if (IsDateFormat(format)) {
        if (call.IsNumber(0))
            return call.SetText(FormatDateTime(format, TDateTime(call.Number(0))));
        const auto moment = ParseSqlMoment(call.String(0));
        return call.SetText(moment ? FormatDateTime(format, moment->ToDateTime()) : call.String(0));
    }
    const auto number = call.IsNumber(0) ? call.Number(0) : ParseSqlNumber(call.Text(0));
    call.SetText(number ? FormatFloat(format, *number) : call.String(0));
}

constexpr TSqlFunction Functions[] = {
    {"korvane_whole", 1, 1, true, &Whole},
    {"korvane_truncated", 1, 1, true, &Truncated},
    {"korvane_fix", 1, 1, true, &Truncated},
    {"korvane_int", 1, 1, true, &Floor},
    {"korvane_number", 1, 1, true, &Number},
    {"korvane_currency", 1, 1, true, &Currency},
    {"korvane_decimal", 2, 2, true, &Decimal},
    {"korvane_round", 1, 3, true, &Round},
    {"korvane_power", 2, 2, true, &Power},
    {"korvane_div", 2, 2, true, &WholeQuotient},
    {"korvane_mod", 2, 2, true, &Modulo},
    {"korvane_xor", 2, 2, true, &Xor},
    {"korvane_val", 1, 1, true, &Val},
    {"korvane_flag", 1, 1, true, &Flag},
    {"korvane_isnumeric", 1, 1, true, &IsNumeric},
    {"korvane_blob", 1, 1, true, &Blob},
    {"korvane_str", 1, 3, true, &Str},
    {"korvane_text", 1, 3, true, &Text},
    {"korvane_format", 1, 2, true, &Format},
};

} // namespace

std::span<const TSqlFunction> SqlNumberFunctions() { return Functions; }

} // namespace Korvane
