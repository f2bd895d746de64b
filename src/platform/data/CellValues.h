// SPDX-License-Identifier: MIT
#pragma once

#include "platform/core/DateTime.h"
#include "platform/data/store/RowValues.h"

#include <QVariant>

namespace Korvane {

bool IsDateType(TFieldType type); ///< date, time, or both
bool IsBlobType(TFieldType type); ///< blobs, pictures and memos
/// Texts of a limited length, which a dataset may trim and cut.
bool IsStringType(TFieldType type);

/// How a QVariant is written into a cell.
enum class TVariantForm {
    Null,
    Text,    ///< by VarToStr
    Bytes,   ///< a QByteArray
    Integer, ///< also booleans and enumerations
    Float,
    DateTime, ///< by VarToDateTime
    None      ///< an array or an object: not at all
};
TVariantForm FormOf(const QVariant &value);

/// Reads a cell of a row by its field's type. NULL reads as 0 or empty; a conversion that the
/// value does not allow raises EConvertError. A light value over what it is given.
class TCellReader
{
public:
    /// The field's name is for messages.
    TCellReader(const TRowReader &row, int column, TFieldType type, const QString &field)
        : FRow(row), FColumn(column), FType(type), FField(field)
    {
    }

    bool IsNull() const { return FRow.IsNull(FColumn); }
    /// Dates in the short form, numbers in the general one.
    QString AsString() const;
    qint64 AsInteger() const; ///< a fraction rounds, halves to the even neighbour
    double AsFloat() const;
    bool AsBoolean() const; ///< a number unless it is 0, a text if it begins with Y or T
    TDateTime AsDateTime() const;
    QByteArray AsBytes() const; ///< of a text and all that has no bytes of its own in UTF-8
    /// As TDataPacket::Value: booleans are integers, dates are doubles.
    QVariant Value() const;

private:
    TColumnKind Kind() const { return ColumnKindOf(FType); }
    [[noreturn]] void RaiseConvert(const QString &what) const;

    const TRowReader &FRow;
    const int FColumn;
    const TFieldType FType;
    const QString &FField;
};

/// Writes a cell of a row, converted to its field's type. What the type cannot hold raises
/// EConvertError, a number out of its range EDatabaseError; the cell stays as it was then.
class TCellWriter
{
public:
    TCellWriter(TRowValues &row, int column, TFieldType type, const QString &field)
        : FRow(row), FColumn(column), FType(type), FField(field)
    {
    }

    void SetNull() { FRow.SetNull(FColumn); }
    /// A blank text makes all but texts NULL. Booleans take "True", "False", their beginnings,
    /// and numbers.
    void SetText(const QString &text);
    void SetInt(qint64 value);
    /// Integers round, halves to the even neighbour.
    void SetDouble(double value);
    /// A date takes the day, a time the time of the day.
    void SetDateTime(TDateTime value);
    /// Texts take UTF-8 alone.
    void SetBytes(const QByteArray &bytes);
    void SetValue(const QVariant &value);

    // What the setters would store.
    qint64 IntegerOf(const QString &text) const;
    qint64 IntegerOf(double value) const;
    double NumberOf(const QString &text) const;
    double DaysOf(const QString &text) const;
    /// The text that bytes are in UTF-8; raises EConvertError for others.
    QString TextOf(const QByteArray &bytes) const;

    [[noreturn]] void RaiseConvert(const QString &value, const QString &what) const;
    /// For a number outside of its bounds.
    [[noreturn]] void RaiseRange(const QString &value, const QString &low, const QString &high) const;
    /// For a QVariant of the form None.
    [[noreturn]] void RaiseNoValue(const QVariant &value) const;

private:
    TColumnKind Kind() const { return ColumnKindOf(FType); }
    void SetUtf8(const QString &text);
    void SetDays(double days);
    bool IsTrue(const QString &text) const;

    TRowValues &FRow;
    const int FColumn;
    const TFieldType FType;
    const QString &FField;
};

} // namespace Korvane
