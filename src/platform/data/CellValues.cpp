// SPDX-License-Identifier: MIT
#include "platform/data/CellValues.h"

#include "platform/core/Exceptions.h"
#include "platform/core/FormatDateTime.h"
#include "platform/core/FormatFloat.h"
#include "platform/core/Numbers.h"
#include "platform/core/Text.h"
#include "platform/core/Variants.h"
#include "platform/data/NumberText.h"

#include <QStringEncoder>
#include <QUtf8StringView>
#include <QVarLengthArray>

#include <cmath>
#include <limits>

namespace Korvane {

namespace {

QString Decoded(std::string_view utf8) { return QString::fromUtf8(utf8.data(), qsizetype(utf8.size())); }

QString DateText(TFieldType type, double days)
{
    if (type == ftTime)
        return TimeToStr(TDateTime(days));
    return type == ftDate ? DateToStr(TDateTime(days)) : DateTimeToStr(TDateTime(days));
}

/// The null QVariant of the type that a kind's values have.
QVariant TypedNull(TColumnKind kind)
{
    switch (kind) {
    case TColumnKind::Int32:
        return QVariant(QMetaType::fromType<int>());
    case TColumnKind::Int64:
        return QVariant(QMetaType::fromType<qlonglong>());
    case TColumnKind::Double:
        return QVariant(QMetaType::fromType<double>());
    case TColumnKind::Text:
        return QVariant(QMetaType::fromType<QString>());
    case TColumnKind::Blob:
        break;
    }
    return QVariant(QMetaType::fromType<QByteArray>());
}

struct TRange
{
    qint64 Low;
    qint64 High;
};

TRange RangeOf(TFieldType type)
{
    switch (type) {
    case ftSmallint:
        return {std::numeric_limits<qint16>::min(), std::numeric_limits<qint16>::max()};
    case ftWord:
        return {0, std::numeric_limits<quint16>::max()};
    case ftLargeint:
        return {std::numeric_limits<qint64>::min(), std::numeric_limits<qint64>::max()};
    default:
        return {std::numeric_limits<qint32>::min(), std::numeric_limits<qint32>::max()};
    }
}

bool IsBlank(const QString &text) { return QStringView(text).trimmed().isEmpty(); }

QString IntegerWord() { return QStringLiteral("整数"); }
QString NumberWord() { return QStringLiteral("数值"); }
QString DateWord() { return QStringLiteral("日期或时间"); }

} // namespace

bool IsDateType(TFieldType type) { return type == ftDate || type == ftTime || type == ftDateTime; }

bool IsBlobType(TFieldType type)
{
    return (type >= ftBlob && type <= ftTypedBinary) || type == ftOraBlob || type == ftOraClob;
}

bool IsStringType(TFieldType type) { return type == ftString || type == ftFixedChar || type == ftWideString; }

TVariantForm FormOf(const QVariant &value)
{
    if (VarIsNull(value))
        return TVariantForm::Null;
    switch (value.typeId()) {
    case QMetaType::QString:
        return TVariantForm::Text;
    case QMetaType::QByteArray:
        return TVariantForm::Bytes;
    case QMetaType::Bool:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::Long:
    case QMetaType::LongLong:
    case QMetaType::Short:
    case QMetaType::UShort:
    case QMetaType::Char:
    case QMetaType::SChar:
    case QMetaType::UChar:
        return TVariantForm::Integer;
    case QMetaType::ULong:
    case QMetaType::ULongLong:
        // Beyond 63 bits only a text still has all digits.
        return value.toULongLong() >> 63 ? TVariantForm::Text : TVariantForm::Integer;
    case QMetaType::Double:
    case QMetaType::Float:
        return TVariantForm::Float;
    case QMetaType::QDate:
    case QMetaType::QTime:
    case QMetaType::QDateTime:
        return TVariantForm::DateTime;
    default:
        break;
    }
    if (value.metaType() == QMetaType::fromType<TDateTime>())
        return TVariantForm::DateTime;
    if (value.metaType().flags() & QMetaType::IsEnumeration)
        return TVariantForm::Integer;
    return !VarIsArray(value) && value.canConvert<QString>() ? TVariantForm::Text : TVariantForm::None;
}

// ---- TCellReader ----------------------------------------------------------------------

void TCellReader::RaiseConvert(const QString &what) const
{
    throw EConvertError(QStringLiteral("字段“%1”的值“%2”不是有效的%3").arg(FField, AsString(), what));
}

QString TCellReader::AsString() const
{
    if (IsNull())
        return {};
    switch (Kind()) {
    case TColumnKind::Int32:
    case TColumnKind::Int64:
        return Decoded(TNumberText(FRow.GetInt(FColumn)).View());
    case TColumnKind::Double:
        return IsDateType(FType) ? DateText(FType, FRow.GetDouble(FColumn))
                                 : Decoded(TNumberText(FRow.GetDouble(FColumn)).View());
    case TColumnKind::Text:
    case TColumnKind::Blob:
        break;
    }
    return Decoded(FRow.GetText(FColumn));
}

qint64 TCellReader::AsInteger() const
{
    if (IsNull())
        return 0;
    const TColumnKind kind = Kind();
    if (kind < TColumnKind::Double)
        return FRow.GetInt(FColumn);
    if (kind == TColumnKind::Double) {
        if (const auto whole = ExactInt(std::nearbyint(FRow.GetDouble(FColumn)) + 0.0))
            return *whole;
    } else if (const auto integer = ParseInt(FRow.GetText(FColumn))) {
        return *integer;
    }
    RaiseConvert(IntegerWord());
}

double TCellReader::AsFloat() const
{
    if (IsNull())
        return 0;
    const TColumnKind kind = Kind();
    if (kind == TColumnKind::Double)
        return FRow.GetDouble(FColumn);
    if (kind < TColumnKind::Double)
        return double(FRow.GetInt(FColumn));
    if (const auto number = ParseDouble(FRow.GetText(FColumn)))
        return *number;
    RaiseConvert(NumberWord());
}

bool TCellReader::AsBoolean() const
{
    if (IsNull())
        return false;
    const TColumnKind kind = Kind();
    if (kind == TColumnKind::Double)
        return FRow.GetDouble(FColumn) != 0;
    if (kind < TColumnKind::Double)
        return FRow.GetInt(FColumn) != 0;
    const std::string_view text = FRow.GetText(FColumn);
    return !text.empty() && std::string_view("YyTt").find(text.front()) != std::string_view::npos;
}

TDateTime TCellReader::AsDateTime() const
{
    if (IsNull())
        return {};
    if (Kind() < TColumnKind::Text)
        return TDateTime(AsFloat());
    try {
        return VarToDateTime(AsString());
    } catch (const EVariantError &) {
        RaiseConvert(DateWord());
    }
}

QByteArray TCellReader::AsBytes() const
{
    if (IsNull())
        return {};
    if (Kind() < TColumnKind::Text)
        return AsString().toUtf8();
    const std::string_view bytes = FRow.GetText(FColumn);
    return {bytes.data(), qsizetype(bytes.size())};
}

QVariant TCellReader::Value() const
{
    const TColumnKind kind = Kind();
    if (IsNull())
        return TypedNull(kind);
    switch (kind) {
    case TColumnKind::Int32:
        return int(FRow.GetInt(FColumn));
    case TColumnKind::Int64:
        return FRow.GetInt(FColumn);
    case TColumnKind::Double:
        return FRow.GetDouble(FColumn);
    case TColumnKind::Text:
        return AsString();
    case TColumnKind::Blob:
        break;
    }
    return AsBytes();
}

// ---- TCellWriter: failures ------------------------------------------------------------

void TCellWriter::RaiseConvert(const QString &value, const QString &what) const
{
    throw EConvertError(QStringLiteral("字段“%1”的值“%2”不是有效的%3").arg(FField, value, what));
}

void TCellWriter::RaiseRange(const QString &value, const QString &low, const QString &high) const
{
    throw EDatabaseError(
        QStringLiteral("字段“%1”的值“%2”超出范围，应在 %3 到 %4 之间").arg(FField, value, low, high));
}

void TCellWriter::RaiseNoValue(const QVariant &value) const
{
    const QString type =
        VarIsArray(value) ? QStringLiteral("数组") : QString::fromLatin1(value.metaType().name());
    throw EConvertError(QStringLiteral("字段“%1”不能存入类型为 %2 的值").arg(FField, type));
}

// ---- TCellWriter: what is stored ------------------------------------------------------

qint64 TCellWriter::IntegerOf(const QString &text) const
{
    if (const auto integer = ParseInt(text.trimmed().toStdString()))
        return *integer;
    RaiseConvert(text, IntegerWord());
}

qint64 TCellWriter::IntegerOf(double value) const
{
    if (const auto whole = ExactInt(std::nearbyint(value) + 0.0))
        return *whole;
    if (std::isnan(value))
        RaiseConvert(FloatToStr(value), IntegerWord());
    const TRange range = RangeOf(FType);
    RaiseRange(FloatToStr(value), IntToStr(range.Low), IntToStr(range.High));
}

/// NOTE: "." is the decimal point whatever the settings say, since that is how numbers are read;
/// what a user types in the settings' form is taken as well.
double TCellWriter::NumberOf(const QString &text) const
{
    const auto parsed = ParseDouble(text.trimmed().toStdString());
    double number = 0;
    if (parsed)
        number = *parsed;
    else if (!TryStrToFloat(text, number))
        RaiseConvert(text, NumberWord());
    if (!std::isfinite(number))
        RaiseConvert(text, NumberWord());
    return number;
}

double TCellWriter::DaysOf(const QString &text) const
{
    TDateTime value;
    const bool isOther =
        (FType == ftDate && TryStrToTime(text, value)) || (FType == ftTime && TryStrToDate(text, value));
    try {
        if (!isOther)
            return VarToDateTime(text).Days();
    } catch (const EVariantError &) {
        // Told below, with the field's name.
    }
    RaiseConvert(text, DateWord());
}

QString TCellWriter::TextOf(const QByteArray &bytes) const
{
    if (!QUtf8StringView(bytes).isValidUtf8())
        throw EConvertError(QStringLiteral("字段“%1”的内容不是有效的 UTF-8 文本").arg(FField));
    return QString::fromUtf8(bytes);
}

bool TCellWriter::IsTrue(const QString &text) const
{
    const QString word = text.trimmed();
    for (const bool value : {true, false})
        if (QStringView(value ? u"True" : u"False").startsWith(word, Qt::CaseInsensitive))
            return value;
    const auto number = ParseDouble(word.toStdString());
    if (!number || std::isnan(*number))
        RaiseConvert(text, QStringLiteral("布尔值"));
    return *number != 0;
}

// ---- TCellWriter: storing -------------------------------------------------------------

void TCellWriter::SetUtf8(const QString &text)
{
    QStringEncoder encoder(QStringEncoder::Utf8);
    QVarLengthArray<char, 512> buffer(encoder.requiredSpace(text.size()));
    const char *end = encoder.appendToBuffer(buffer.data(), text);
    FRow.SetText(FColumn, {buffer.constData(), size_t(end - buffer.constData())});
}

/// NOTE: the comparison also turns NaN away.
void TCellWriter::SetDays(double days)
{
    static const double first = EncodeDate(1, 1, 1).Days();
    static const double end = EncodeDate(9999, 12, 31).Days() + 1;
    if (!(days > first - 1 && days < end))
        RaiseConvert(FloatToStr(days), DateWord());
    if (FType == ftDate)
        days = DateOf(TDateTime(days)).Days();
    else if (FType == ftTime)
        days = TimeOf(TDateTime(days)).Days();
    FRow.SetDouble(FColumn, days);
}

void TCellWriter::SetText(const QString &text)
{
    const TColumnKind kind = Kind();
    if (kind == TColumnKind::Text)
        return SetUtf8(text);
    if (kind == TColumnKind::Blob ? text.isEmpty() : IsBlank(text))
        return SetNull();
    if (kind == TColumnKind::Blob)
        return SetUtf8(text);
    if (FType == ftBoolean)
        return SetInt(IsTrue(text) ? 1 : 0);
    if (kind < TColumnKind::Double)
        return SetInt(IntegerOf(text));
    if (IsDateType(FType))
        return SetDays(DaysOf(text));
    SetDouble(NumberOf(text));
}

void TCellWriter::SetInt(qint64 value)
{
    const TColumnKind kind = Kind();
    if (kind == TColumnKind::Double)
        return SetDouble(double(value));
    if (kind >= TColumnKind::Text)
        return FRow.SetText(FColumn, TNumberText(value).View());
    if (FType == ftBoolean)
        return FRow.SetInt(FColumn, value != 0 ? 1 : 0);
    const TRange range = RangeOf(FType);
    if (value < range.Low || value > range.High)
        RaiseRange(IntToStr(value), IntToStr(range.Low), IntToStr(range.High));
    FRow.SetInt(FColumn, value);
}

void TCellWriter::SetDouble(double value)
{
    const TColumnKind kind = Kind();
    if (IsDateType(FType))
        return SetDays(value);
    if (!std::isfinite(value))
        RaiseConvert(FloatToStr(value), NumberWord());
    if (kind >= TColumnKind::Text)
        return FRow.SetText(FColumn, TNumberText(value).View());
    if (kind == TColumnKind::Double)
        return FRow.SetDouble(FColumn, value);
    if (FType == ftBoolean)
        return SetInt(value != 0 ? 1 : 0);
    SetInt(IntegerOf(value));
}

void TCellWriter::SetDateTime(TDateTime value)
{
    if (Kind() >= TColumnKind::Text)
        SetText(DateTimeToStr(value));
    else
        SetDouble(value.Days());
}

void TCellWriter::SetBytes(const QByteArray &bytes)
{
    const TColumnKind kind = Kind();
    if (kind < TColumnKind::Text)
        return SetText(TextOf(bytes));
    if (kind == TColumnKind::Text && !QUtf8StringView(bytes).isValidUtf8())
        TextOf(bytes); // raises
    FRow.SetText(FColumn, {bytes.constData(), size_t(bytes.size())});
}

void TCellWriter::SetValue(const QVariant &value)
{
    switch (FormOf(value)) {
    case TVariantForm::Null:
        return SetNull();
    case TVariantForm::Text:
        return SetText(VarToStr(value));
    case TVariantForm::Bytes:
        return SetBytes(value.toByteArray());
    case TVariantForm::Integer:
        return SetInt(value.toLongLong());
    case TVariantForm::Float:
        return SetDouble(value.toDouble());
    case TVariantForm::DateTime:
        return SetDateTime(VarToDateTime(value));
    case TVariantForm::None:
        break;
    }
    RaiseNoValue(value);
}

} // namespace Korvane
