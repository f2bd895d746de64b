// SPDX-License-Identifier: MIT
#include "platform/data/dataset/Fields.h"

#include "platform/core/FormatDateTime.h"
#include "platform/core/FormatFloat.h"
#include "platform/core/Numbers.h"
#include "platform/data/CellValues.h"
#include "platform/data/dataset/DataSet.h"

namespace Korvane {

namespace {

/// How much of a text stays: so many characters (all for 0), of which a surrogate pair is one,
/// and no blanks at the end if they are trimmed.
qsizetype KeptLength(const QString &text, int size, bool trims)
{
    qsizetype length = text.size();
    if (size > 0 && length > size) {
        length = 0;
        for (int i = 0; i < size && length < text.size(); ++i)
            length += text[length].isHighSurrogate() && length + 1 < text.size() ? 2 : 1;
    }
    while (trims && length > 0 && text[length - 1] == u' ')
        --length;
    return length;
}

template <class T, class ToText>
void CheckBounds(const TCellWriter &cell, T value, T low, T high, ToText toText)
{
    const bool isBounded = low != 0 || high != 0;
    if (isBounded && !(value >= low && value <= high))
        cell.RaiseRange(toText(value), toText(low), toText(high));
}

bool IsSign(QChar character) { return character == u'+' || character == u'-'; }

bool IsDigit(QChar character) { return character >= u'0' && character <= u'9'; }

bool IsBlank(const QString &text) { return QStringView(text).trimmed().isEmpty(); }

} // namespace

// ---- TStringField ---------------------------------------------------------------------

int TStringField::DefaultWidth() const { return Size() > 0 ? Size() : 20; }

void TStringField::StoreText(TRowValues &row, int column, const QString &text) const
{
    const bool trims = IsStringType(DataType()) && DataSet() && DataSet()->TrimsStrings();
    const qsizetype length = KeptLength(text, Size(), trims);
    TField::StoreText(row, column, length == text.size() ? text : text.left(length));
}

// ---- TNumericField --------------------------------------------------------------------

TNumericField::TNumericField(TFieldType type, QObject *owner) : TField(type, owner)
{
    SetAlignment(Qt::AlignRight);
}

void TNumericField::SetDisplayFormat(const QString &format)
{
    if (format == FDisplayFormat)
        return;
    FDisplayFormat = format;
    PropertyChanged();
}

void TNumericField::SetEditFormat(const QString &format)
{
    if (format == FEditFormat)
        return;
    FEditFormat = format;
    PropertyChanged();
}

bool TNumericField::IsValidChar(QChar character) const
{
    return IsDigit(character) || IsSign(character) || character == u'.' || character == u'E' ||
           character == u'e' || character == DefaultFormatSettings().DecimalSeparator;
}

QString TNumericField::FormattedText(bool display) const
{
    const QString &format = display ? FDisplayFormat : FEditFormat;
    return format.isEmpty() ? AsString() : FormatFloat(format, AsFloat());
}

int TNumericField::DefaultWidth() const { return 10; }

// ---- TIntegerField --------------------------------------------------------------------

bool TIntegerField::IsValidChar(QChar character) const { return IsDigit(character) || IsSign(character); }

void TIntegerField::StoreText(TRowValues &row, int column, const QString &text) const
{
    if (IsBlank(text))
        CellOf(row, column).SetNull();
    else
        StoreInt(row, column, CellOf(row, column).IntegerOf(text));
}

void TIntegerField::StoreInt(TRowValues &row, int column, qint64 value) const
{
    TCellWriter cell = CellOf(row, column);
    CheckBounds(cell, value, FMinValue, FMaxValue, IntToStr);
    cell.SetInt(value);
}

void TIntegerField::StoreFloat(TRowValues &row, int column, double value) const
{
    StoreInt(row, column, CellOf(row, column).IntegerOf(value));
}

// ---- TFloatField ----------------------------------------------------------------------

QString TFloatField::FormattedText(bool display) const
{
    if (!(display ? DisplayFormat() : EditFormat()).isEmpty())
        return TNumericField::FormattedText(display);
    return FloatToStrF(AsFloat(), ffGeneral, FPrecision, 0);
}

void TFloatField::StoreText(TRowValues &row, int column, const QString &text) const
{
    if (IsBlank(text))
        CellOf(row, column).SetNull();
    else
        StoreFloat(row, column, CellOf(row, column).NumberOf(text));
}

void TFloatField::StoreInt(TRowValues &row, int column, qint64 value) const
{
    StoreFloat(row, column, double(value));
}

void TFloatField::StoreFloat(TRowValues &row, int column, double value) const
{
    TCellWriter cell = CellOf(row, column);
    CheckBounds(cell, value, FMinValue, FMaxValue, [](double number) { return FloatToStr(number); });
    cell.SetDouble(value);
}

// ---- TBooleanField --------------------------------------------------------------------

void TBooleanField::SetDisplayFormat(const QString &values)
{
    if (values == FDisplayValues)
        return;
    FDisplayValues = values;
    FTrueWord = values.section(u';', 0, 0);
    FFalseWord = values.section(u';', 1, 1);
    PropertyChanged();
}

QString TBooleanField::CellText(const TRowReader &row) const { return Word(row.GetInt(FieldNo()) != 0); }

int TBooleanField::DefaultWidth() const { return int(qMax(FTrueWord.size(), FFalseWord.size())); }

void TBooleanField::StoreText(TRowValues &row, int column, const QString &text) const
{
    const QString word = text.trimmed();
    for (const bool value : {true, false})
        if (!word.isEmpty() && Word(value).startsWith(word, Qt::CaseInsensitive))
            return StoreInt(row, column, value ? 1 : 0);
    TField::StoreText(row, column, text);
}

// ---- TDateTimeField -------------------------------------------------------------------

void TDateTimeField::SetDisplayFormat(const QString &format)
{
    if (format == FDisplayFormat)
        return;
    FDisplayFormat = format;
    PropertyChanged();
}

QString TDateTimeField::FormattedText(bool display) const
{
    return display && !FDisplayFormat.isEmpty() ? FormatDateTime(FDisplayFormat, AsDateTime()) : AsString();
}

int TDateTimeField::DefaultWidth() const { return DataType() == ftDateTime ? 18 : 10; }

// ---- by type --------------------------------------------------------------------------

std::unique_ptr<TField> MakeField(TFieldType type, QObject *owner)
{
    switch (type) {
    case ftString:
    case ftFixedChar:
    case ftWideString:
        return std::make_unique<TStringField>(owner, type);
    case ftSmallint:
    case ftInteger:
    case ftWord:
    case ftAutoInc:
    case ftLargeint:
        return std::make_unique<TIntegerField>(owner, type);
    case ftFloat:
    case ftCurrency:
    case ftBCD:
        return std::make_unique<TFloatField>(owner, type);
    case ftBoolean:
        return std::make_unique<TBooleanField>(owner);
    case ftDate:
    case ftTime:
    case ftDateTime:
        return std::make_unique<TDateTimeField>(owner, type);
    default:
        break;
    }
    if (IsBlobType(type))
        return std::make_unique<TBlobField>(owner, type);
    return std::make_unique<TField>(type, owner);
}

} // namespace Korvane
