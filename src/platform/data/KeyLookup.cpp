// SPDX-License-Identifier: MIT
#include "platform/data/KeyLookup.h"

#include "platform/core/Exceptions.h"
#include "platform/core/Variants.h"

#include <QStringEncoder>

#include <limits>

namespace Korvane {

namespace {

bool IsDate(TFieldType type) { return type == ftDate || type == ftTime || type == ftDateTime; }

bool IsFloat(const QVariant &value)
{
    const int type = value.typeId();
    return type == QMetaType::Double || type == QMetaType::Float || type == QMetaType::ULong ||
           type == QMetaType::ULongLong;
}

/// The value of an integer or enumeration that fits into 64 bits with a sign.
std::optional<qint64> IntegerOf(const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::Bool:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::Short:
    case QMetaType::UShort:
    case QMetaType::Char:
    case QMetaType::SChar:
    case QMetaType::UChar:
    case QMetaType::Long:
    case QMetaType::LongLong:
        return value.toLongLong();
    case QMetaType::ULong:
    case QMetaType::ULongLong:
        return value.toULongLong() <= quint64(std::numeric_limits<qint64>::max())
                   ? std::optional(value.toLongLong())
                   : std::nullopt;
    default:
        return value.metaType().flags() & QMetaType::IsEnumeration ? std::optional(value.toLongLong())
                                                                   : std::nullopt;
    }
}

} // namespace

TRowKey::TRowKey(std::vector<int> columns, std::vector<TFieldType> types, TLocateOptions options)
    : FColumns(std::move(columns)), FParts(FColumns.size()), FOptions(options),
      FMode(options & loCaseInsensitive ? TCaseMode::Blind : TCaseMode::Exact),
      FIsPartial(options & loPartialKey)
{
    for (size_t i = 0; i < FParts.size(); ++i) {
        FParts[i].Column = FColumns[i];
        FParts[i].Type = types[i];
        FParts[i].Kind = ColumnKindOf(types[i]);
    }
}

void TRowKey::Set(size_t i, const QVariant &value)
{
    TPart &part = FParts[i];
    part.IsPossible = true;
    part.IsNull = VarIsNull(value);
    if (part.IsNull)
        return;
    if (value.typeId() == QMetaType::QString) {
        const auto *text = static_cast<const QString *>(value.constData());
        Set(i, QStringView(*text));
    } else if (value.typeId() == QMetaType::QByteArray) {
        const auto *bytes = static_cast<const QByteArray *>(value.constData());
        SetText(part, {bytes->constData(), size_t(bytes->size())});
    } else {
        SetNumber(part, value);
    }
}

void TRowKey::Set(size_t i, QStringView text)
{
    TPart &part = FParts[i];
    part.IsPossible = true;
    part.IsNull = false;
    if (!part.IsText()) {
        SetText(part, text.toUtf8().toStdString());
        return;
    }
    // Straight into the text, whose memory is used again and again.
    QStringEncoder encoder(QStringEncoder::Utf8);
    part.Text.resize(size_t(encoder.requiredSpace(text.size())));
    part.Text.resize(size_t(encoder.appendToBuffer(part.Text.data(), text) - part.Text.data()));
}

void TRowKey::SetFrom(const TRowReader &row)
{
    for (TPart &part : FParts) {
        part.IsPossible = true;
        part.IsNull = row.IsNull(part.Column);
        if (part.Kind == TColumnKind::Double)
            part.Double = row.GetDouble(part.Column);
        else if (part.IsText())
            part.Text = row.GetText(part.Column);
        else
            part.Int = row.GetInt(part.Column);
    }
}

void TRowKey::SetText(TPart &part, std::string_view utf8) const
{
    if (part.IsText()) {
        part.Text = utf8;
        return;
    }
    const auto integer = ParseInt(utf8);
    const auto number = ParseDouble(utf8);
    if (integer) {
        part.Int = *integer;
        part.Double = double(*integer);
        part.IsPossible = part.Kind != TColumnKind::Double || IsExactAsDouble(*integer);
    } else if (number) {
        SetNumber(part, *number);
    } else if (IsDate(part.Type)) {
        SetDate(part, QString::fromUtf8(utf8.data(), qsizetype(utf8.size())));
    } else {
        part.IsPossible = false;
    }
}

void TRowKey::SetNumber(TPart &part, const QVariant &value) const
{
    if (const auto integer = IntegerOf(value)) {
        part.Int = *integer;
        part.Double = double(*integer);
        part.IsPossible = part.Kind != TColumnKind::Double || IsExactAsDouble(*integer);
        if (part.IsText())
            part.Text = TNumberText(*integer).View();
    } else if (IsFloat(value)) {
        const double number = value.toDouble();
        const auto whole = ExactInt(number == 0 ? 0 : number);
        part.Double = number;
        part.Int = whole.value_or(0);
        part.IsPossible = part.Kind >= TColumnKind::Double || whole;
        if (part.IsText())
            part.Text = TNumberText(number).View();
    } else if (part.IsText()) {
        part.Text = VarToStr(value).toStdString();
    } else {
        SetDate(part, value);
    }
}

void TRowKey::SetDate(TPart &part, const QVariant &value) const
{
    part.IsPossible = false;
    if (part.Kind != TColumnKind::Double)
        return;
    try {
        part.Double = double(VarToDateTime(value));
        part.IsPossible = true;
    } catch (const Exception &) {
        // What cannot be read as a date equals none.
    }
}

size_t TRowKey::Hash() const
{
    size_t hash = 0;
    for (const TPart &part : FParts) {
        if (part.IsNull)
            hash = Mix(hash, 0);
        else if (part.Kind == TColumnKind::Double)
            hash = Mix(hash, HashDouble(part.Double));
        else
            hash = Mix(hash, part.IsText() ? HashText(part.Text, FMode) : HashInt(part.Int));
    }
    return hash;
}

} // namespace Korvane
