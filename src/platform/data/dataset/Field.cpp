// SPDX-License-Identifier: MIT
#include "platform/data/dataset/Field.h"

#include "platform/core/FormatDateTime.h"
#include "platform/core/Numbers.h"
#include "platform/core/Text.h"
#include "platform/core/Variants.h"
#include "platform/data/CellValues.h"
#include "platform/data/dataset/DataSet.h"

namespace Korvane {

namespace {

/// A cell's value, to be put back.
class TSavedCell
{
public:
    TSavedCell(const TRowReader &row, int column, TColumnKind kind)
        : FColumn(column), FKind(kind), FIsNull(row.IsNull(column))
    {
        if (FIsNull)
            return;
        if (FKind == TColumnKind::Double)
            FDouble = row.GetDouble(column);
        else if (FKind < TColumnKind::Double)
            FInt = row.GetInt(column);
        else
            FText = row.GetText(column);
    }

    void Restore(TRowValues &row) const
    {
        if (FIsNull)
            row.SetNull(FColumn);
        else if (FKind == TColumnKind::Double)
            row.SetDouble(FColumn, FDouble);
        else if (FKind < TColumnKind::Double)
            row.SetInt(FColumn, FInt);
        else
            row.SetText(FColumn, FText);
    }

private:
    const int FColumn;
    const TColumnKind FKind;
    const bool FIsNull;
    qint64 FInt = 0;
    double FDouble = 0;
    std::string FText;
};

} // namespace

TField::TField(TFieldType type, QObject *owner) : TComponent(owner), FDataType(type) {}

TField::~TField()
{
    if (!FDataSet)
        return;
    TDataSet *dataSet = FDataSet;
    dataSet->RemoveField(this);
    if (!dataSet->Active())
        return;
    try {
        dataSet->Notify(deLayoutChange);
    } catch (const Exception &) {
        // A destructor has nobody to tell it to.
    }
}

TDataSet *TField::DataSet() const { return FDataSet; }

void TField::SetDataSet(TDataSet *dataSet)
{
    if (dataSet == FDataSet)
        return;
    if (FDataSet && FDataSet->Active())
        FDataSet->Fail(QStringLiteral("数据集已打开，不能增减字段"));
    if (dataSet)
        dataSet->AddField(this);
    if (FDataSet)
        FDataSet->RemoveField(this);
    FDataSet = dataSet;
}

// ---- what it is -----------------------------------------------------------------------

void TField::SetFieldName(const QString &name)
{
    if (name == FFieldName)
        return;
    if (FDataSet && FDataSet->Active())
        FDataSet->Fail(QStringLiteral("数据集已打开，不能改变字段“%1”的名称").arg(FFieldName));
    const TField *other = FDataSet && !name.isEmpty() ? FDataSet->FindField(name) : nullptr;
    if (other && other != this)
        FDataSet->Fail(QStringLiteral("字段“%1”已经存在").arg(name));
    FFieldName = name;
}

void TField::SetFieldKind(TFieldKind kind)
{
    if (kind == FFieldKind)
        return;
    if (FDataSet && FDataSet->Active())
        FDataSet->Fail(QStringLiteral("数据集已打开，不能改变字段“%1”的种类").arg(FFieldName));
    FFieldKind = kind;
}

int TField::DataSize() const
{
    switch (FDataType) {
    case ftSmallint:
    case ftWord:
    case ftBoolean:
        return 2;
    case ftInteger:
    case ftAutoInc:
    case ftDate:
    case ftTime:
        return 4;
    case ftLargeint:
    case ftFloat:
    case ftCurrency:
    case ftBCD:
    case ftDateTime:
        return 8;
    default:
        break;
    }
    if (IsBlob())
        return 0;
    return Kind() == TColumnKind::Text ? FSize + 1 : FSize;
}

int TField::Index() const
{
    return FDataSet ? int(FDataSet->Fields().indexOf(const_cast<TField *>(this))) : -1;
}

void TField::SetIndex(int index)
{
    if (FDataSet)
        FDataSet->MoveField(this, index);
}

bool TField::IsBlob() const { return IsBlobType(FDataType); }

bool TField::CanModify() const
{
    if (!FDataSet)
        return false;
    const TDataSetState state = FDataSet->State();
    if (Calculated())
        return state == dsCalcFields;
    return !FReadOnly && (state == dsEdit || state == dsInsert);
}

// ---- how it looks ---------------------------------------------------------------------

void TField::PropertyChanged()
{
    if (FDataSet && FDataSet->Active())
        FDataSet->Notify(deLayoutChange);
}

void TField::SetDisplayLabel(const QString &label)
{
    if (label == FDisplayLabel)
        return;
    FDisplayLabel = label;
    PropertyChanged();
}

void TField::SetDisplayWidth(int width)
{
    if (width == FDisplayWidth)
        return;
    FDisplayWidth = width;
    PropertyChanged();
}

void TField::SetVisible(bool visible)
{
    if (visible == FVisible)
        return;
    FVisible = visible;
    PropertyChanged();
}

void TField::SetReadOnly(bool readOnly)
{
    if (readOnly == FReadOnly)
        return;
    FReadOnly = readOnly;
    PropertyChanged();
}

void TField::SetAlignment(Qt::Alignment alignment)
{
    if (alignment == FAlignment)
        return;
    FAlignment = alignment;
    PropertyChanged();
}

void TField::SetDisplayFormat(const QString &)
{
    throw EInvalidCast(QStringLiteral("字段“%1”没有显示格式").arg(FFieldName));
}

int TField::DefaultWidth() const { return 10; }

// ---- reading --------------------------------------------------------------------------

const TRowReader *TField::Row() const { return FDataSet ? FDataSet->ReadRow(*this) : nullptr; }

/// What a reader of a row's cell gives; empty without a row.
template <class Result> Result TField::Read(const TRowReader *row, Result (TCellReader::*get)() const) const
{
    return row ? (TCellReader(*row, FFieldNo, FDataType, FFieldName).*get)() : Result();
}

QString TField::CellText(const TRowReader &row) const
{
    return TCellReader(row, FFieldNo, FDataType, FFieldName).AsString();
}

QString TField::StringIn(const TRowReader *row) const { return IsNullIn(row) ? QString() : CellText(*row); }

int TField::IntegerIn(const TRowReader *row) const
{
    const qint64 value = Read(row, &TCellReader::AsInteger);
    if (value != int(value))
        throw EConvertError(
            QStringLiteral("字段“%1”的值“%2”不是有效的整数").arg(FFieldName, IntToStr(value)));
    return int(value);
}

double TField::FloatIn(const TRowReader *row) const { return Read(row, &TCellReader::AsFloat); }

QByteArray TField::BytesIn(const TRowReader *row) const { return Read(row, &TCellReader::AsBytes); }

QVariant TField::ValueIn(const TRowReader *row) const
{
    return row ? TCellReader(*row, FFieldNo, FDataType, FFieldName).Value() : VarNull();
}

bool TField::IsNull() const { return IsNullIn(Row()); }

QString TField::AsString() const { return StringIn(Row()); }

int TField::AsInteger() const { return IntegerIn(Row()); }

qint64 TField::AsLargeInt() const { return Read(Row(), &TCellReader::AsInteger); }

double TField::AsFloat() const { return FloatIn(Row()); }

bool TField::AsBoolean() const { return Read(Row(), &TCellReader::AsBoolean); }

TDateTime TField::AsDateTime() const { return Read(Row(), &TCellReader::AsDateTime); }

QByteArray TField::AsBytes() const { return BytesIn(Row()); }

QVariant TField::Value() const { return ValueIn(Row()); }

QVariant TField::OldValue() const { return ValueIn(FDataSet ? FDataSet->OldRow(*this) : nullptr); }

QString TField::OldString() const { return StringIn(FDataSet ? FDataSet->OldRow(*this) : nullptr); }

// ---- writing --------------------------------------------------------------------------

TCellWriter TField::CellOf(TRowValues &row, int column) const { return {row, column, FDataType, FFieldName}; }

TRowValues &TField::WritableRow()
{
    if (!FDataSet)
        throw EDatabaseError(QStringLiteral("字段“%1”不属于任何数据集").arg(FFieldName));
    return FDataSet->WriteRow(*this);
}

/// Stores a value, converted, into the field's cell and tells of it.
template <class Store> void TField::Write(Store store)
{
    TRowValues &row = WritableRow();
    if (OnValidate) {
        if (!StoreValidated(row, FFieldNo, store))
            return;
    } else {
        store(row, FFieldNo);
    }
    FDataSet->FieldChanged(*this);
}

/// Lets OnValidate see the new value; an exception brings the old one back. False when the
/// handler has ended the edit.
template <class Store> bool TField::StoreValidated(TRowValues &row, int column, Store store)
{
    const QPointer<TField> self(this);
    const TSavedCell old(row, column, Kind());
    const auto isStillEdited = [&] { return self && Row() == &row && column < row.ColumnCount(); };
    store(row, column);
    FDataSet->ForgetCalculated();
    try {
        OnValidate(this);
    } catch (...) {
        if (isStillEdited()) {
            old.Restore(row);
            FDataSet->ForgetCalculated();
        }
        throw;
    }
    return isStillEdited();
}

void TField::StoreText(TRowValues &row, int column, const QString &text) const
{
    CellOf(row, column).SetText(text);
}

void TField::StoreInt(TRowValues &row, int column, qint64 value) const { CellOf(row, column).SetInt(value); }

void TField::StoreFloat(TRowValues &row, int column, double value) const
{
    CellOf(row, column).SetDouble(value);
}

void TField::StoreBytes(TRowValues &row, int column, const QByteArray &bytes) const
{
    TCellWriter cell = CellOf(row, column);
    if (Kind() == TColumnKind::Blob)
        cell.SetBytes(bytes);
    else
        StoreText(row, column, cell.TextOf(bytes));
}

void TField::Clear()
{
    Write([](TRowValues &row, int column) { row.SetNull(column); });
}

void TField::SetAsString(const QString &text)
{
    Write([&](TRowValues &row, int column) { StoreText(row, column, text); });
}

void TField::SetAsLargeInt(qint64 value)
{
    Write([&](TRowValues &row, int column) { StoreInt(row, column, value); });
}

void TField::SetAsFloat(double value)
{
    Write([&](TRowValues &row, int column) { StoreFloat(row, column, value); });
}

void TField::SetAsBoolean(bool value)
{
    if (Kind() < TColumnKind::Text)
        SetAsLargeInt(value ? 1 : 0);
    else
        SetAsString(value ? QStringLiteral("True") : QStringLiteral("False"));
}

void TField::SetAsDateTime(TDateTime value)
{
    if (Kind() < TColumnKind::Text)
        SetAsFloat(value.Days());
    else
        SetAsString(DateTimeToStr(value));
}

void TField::SetAsBytes(const QByteArray &bytes)
{
    Write([&](TRowValues &row, int column) { StoreBytes(row, column, bytes); });
}

void TField::SetValue(const QVariant &value)
{
    switch (FormOf(value)) {
    case TVariantForm::Null:
        return Clear();
    case TVariantForm::Text:
        return SetAsString(VarToStr(value));
    case TVariantForm::Bytes:
        return SetAsBytes(value.toByteArray());
    case TVariantForm::Integer:
        return SetAsLargeInt(value.toLongLong());
    case TVariantForm::Float:
        return SetAsFloat(value.toDouble());
    case TVariantForm::DateTime:
        return SetAsDateTime(VarToDateTime(value));
    case TVariantForm::None:
        break;
    }
    Write([&](TRowValues &row, int column) { CellOf(row, column).RaiseNoValue(value); });
}

// ---- showing and editing --------------------------------------------------------------

QString TField::FormattedText(bool) const { return AsString(); }

QString TField::ShownText(bool display) const
{
    if (!OnGetText)
        return IsNull() ? QString() : FormattedText(display);
    QString text;
    OnGetText(const_cast<TField *>(this), text, display);
    return text;
}

QString TField::DisplayText() const { return ShownText(true); }

QString TField::Text() const { return ShownText(false); }

void TField::SetText(const QString &text)
{
    if (OnSetText)
        OnSetText(this, text);
    else
        SetAsString(text);
}

bool TField::IsValidChar(QChar) const { return true; }

void TField::FocusControl()
{
    if (FDataSet)
        FDataSet->Notify(deFocusControl, this);
}

} // namespace Korvane
