// SPDX-License-Identifier: MIT
#pragma once

#include "platform/core/Component.h"
#include "platform/core/DateTime.h"
#include "platform/core/Event.h"
#include "platform/data/RowReader.h"
#include "platform/data/dataset/DataSetTypes.h"

#include <QPointer>
#include <QVariant>

namespace Korvane {

class TCellReader;
class TCellWriter;
class TDataSet;
class TRowReader;
class TRowValues;

/// One field of a dataset: the value of the current row, and how it is called and shown.
///
/// Reading converts as far as the value allows and raises EConvertError otherwise; NULL reads
/// as 0 or empty. Writing needs the dataset in dsEdit or dsInsert (a calculated field:
/// OnCalcFields running), converts to the field's type, runs OnValidate with the new value
/// visible, and then OnChange; a failure leaves the old value. Writing an empty text makes any
/// field but a text one NULL.
///
/// A dataset makes its fields when it opens, by their type (MakeField). An application adds
/// fields before, calculated ones above all:
///
///     auto *total = new TFloatField(&orders);
///     total->SetFieldName("TOTAL");
///     total->SetFieldKind(fkCalculated);
///     total->SetDataSet(&orders);
///     orders.OnCalcFields = [total](TDataSet *set) { total->SetAsFloat(…); };
class TField : public TComponent
{
    Q_OBJECT
    Q_PROPERTY(QString FieldName READ FieldName WRITE SetFieldName)
    Q_PROPERTY(QString DisplayLabel READ DisplayLabel WRITE SetDisplayLabel)
    Q_PROPERTY(int DisplayWidth READ DisplayWidth WRITE SetDisplayWidth)
    Q_PROPERTY(bool Visible READ Visible WRITE SetVisible)
    Q_PROPERTY(bool ReadOnly READ ReadOnly WRITE SetReadOnly)
    Q_PROPERTY(bool Required READ Required WRITE SetRequired)
    Q_PROPERTY(Qt::Alignment Alignment READ Alignment WRITE SetAlignment)
    Q_PROPERTY(QString DefaultExpression READ DefaultExpression WRITE SetDefaultExpression)

public:
    TField(TFieldType type, QObject *owner);
    /// Leaves its dataset.
    ~TField() override;

    TDataSet *DataSet() const;
    /// Joins a closed dataset, or leaves it for null. Raises EDatabaseError while open, and when the
    /// dataset has a field of the name.
    void SetDataSet(TDataSet *dataSet);

    const QString &FieldName() const { return FFieldName; }
    void SetFieldName(const QString &name);
    TFieldType DataType() const { return FDataType; }
    TFieldKind FieldKind() const { return FFieldKind; }
    void SetFieldKind(TFieldKind kind);
    bool Calculated() const { return FFieldKind == fkCalculated; }
    /// Declared characters of a text; 0 where it has no meaning.
    int Size() const { return FSize; }
    void SetSize(int size) { FSize = size; }
    /// Bytes that a value takes in a row: of a text, Size and a terminator; 2, 4 or 8 of numbers
    /// and dates.
    int DataSize() const;
    /// The column of a data field in the rows of its open dataset, or the number among the
    /// calculated ones; -1 while closed.
    int FieldNo() const { return FFieldNo; }
    /// The place among the dataset's fields.
    int Index() const;
    /// Moves the field to another place among the fields.
    void SetIndex(int index);
    bool IsBlob() const;
    /// Whether it can be written now.
    bool CanModify() const;

    /// The field's name unless one is set.
    QString DisplayLabel() const { return FDisplayLabel.isEmpty() ? FFieldName : FDisplayLabel; }
    void SetDisplayLabel(const QString &label);
    /// In characters; by the type unless one is set.
    int DisplayWidth() const { return FDisplayWidth > 0 ? FDisplayWidth : DefaultWidth(); }
    void SetDisplayWidth(int width);
    bool Visible() const { return FVisible; }
    void SetVisible(bool visible);
    bool ReadOnly() const { return FReadOnly; }
    /// Stops programs as well as controls.
    void SetReadOnly(bool readOnly);
    /// Post refuses a NULL.
    bool Required() const { return FRequired; }
    void SetRequired(bool required) { FRequired = required; }
    Qt::Alignment Alignment() const { return FAlignment; }
    void SetAlignment(Qt::Alignment alignment);
    /// What a new row is filled with, as a text; empty for NULL.
    const QString &DefaultExpression() const { return FDefaultExpression; }
    void SetDefaultExpression(const QString &text) { FDefaultExpression = text; }
    /// A picture or format for showing; only numbers, dates and booleans have one.
    virtual QString DisplayFormat() const { return {}; }
    /// Raises EInvalidCast where the type has none.
    virtual void SetDisplayFormat(const QString &format);

    // The value of the current row.
    bool IsNull() const;
    QString AsString() const;
    int AsInteger() const; ///< rounds halves to the even neighbour; raises EConvertError beyond 32 bits
    qint64 AsLargeInt() const;
    double AsFloat() const;
    bool AsBoolean() const; ///< of a text: whether it begins with Y or T
    TDateTime AsDateTime() const;
    QByteArray AsBytes() const; ///< of a text in UTF-8
    QVariant Value() const;     ///< a null QVariant for NULL

    // The value in a row that stands elsewhere and has the dataset's columns; null is no row.
    bool IsNullIn(const TRowReader *row) const { return !row || row->IsNull(FFieldNo); }
    QString StringIn(const TRowReader *row) const;
    int IntegerIn(const TRowReader *row) const;
    double FloatIn(const TRowReader *row) const;
    QByteArray BytesIn(const TRowReader *row) const;
    QVariant ValueIn(const TRowReader *row) const;
    /// The row that the field itself reads; null without one.
    const TRowReader *Row() const;

    void Clear();
    virtual void SetAsString(const QString &text);
    void SetAsInteger(int value) { SetAsLargeInt(value); }
    void SetAsLargeInt(qint64 value);
    void SetAsFloat(double value);
    void SetAsBoolean(bool value);
    void SetAsDateTime(TDateTime value);
    void SetAsBytes(const QByteArray &bytes);
    /// Null and unassigned make it NULL.
    void SetValue(const QVariant &value);

    /// The value before the row's logged change or, of a row that has none, before the edit that is
    /// going on; NULL for a new row.
    QVariant OldValue() const;
    QString OldString() const;

    /// What a control shows: OnGetText with display true, or the formatted value.
    QString DisplayText() const;
    /// What a control edits: OnGetText with display false, or the value to edit.
    QString Text() const;
    /// What a control has edited: OnSetText, or SetAsString.
    void SetText(const QString &text);
    /// Whether a character may be typed.
    virtual bool IsValidChar(QChar character) const;
    /// Asks the controls for the focus.
    void FocusControl();

    /// (field, text, display): fills in the text to show or to edit.
    TEvent<TField *, QString &, bool> OnGetText;
    /// (field, text): takes an edited text.
    TEvent<TField *, const QString &> OnSetText;
    /// Sees the new value; an exception keeps the old one.
    TEvent<TField *> OnValidate;
    TEvent<TField *> OnChange;

protected:
    friend class TDataSet;

    /// The value formatted for showing, or as it is edited. Never called for NULL.
    virtual QString FormattedText(bool display) const;
    virtual int DefaultWidth() const;
    /// Puts a text into a row's cell, converted to the field's type. Raises EConvertError,
    /// EDatabaseError for a value out of range.
    virtual void StoreText(TRowValues &row, int column, const QString &text) const;
    virtual void StoreInt(TRowValues &row, int column, qint64 value) const;
    virtual void StoreFloat(TRowValues &row, int column, double value) const;

    /// The field's value in a row, as a text. Never called for NULL.
    virtual QString CellText(const TRowReader &row) const;

    TColumnKind Kind() const { return ColumnKindOf(FDataType); }
    TCellWriter CellOf(TRowValues &row, int column) const;
    /// The row that the field may be written into now. Raises EDatabaseError when there is none.
    TRowValues &WritableRow();
    /// Tells the controls that the field looks otherwise.
    void PropertyChanged();

private:
    template <class Result> Result Read(const TRowReader *row, Result (TCellReader::*get)() const) const;
    template <class Store> void Write(Store store);
    template <class Store> bool StoreValidated(TRowValues &row, int column, Store store);
    QString ShownText(bool display) const;
    void StoreBytes(TRowValues &row, int column, const QByteArray &bytes) const;

    QPointer<TDataSet> FDataSet;
    const TFieldType FDataType;
    TFieldKind FFieldKind = fkData;
    QString FFieldName;
    int FSize = 0;
    int FFieldNo = -1;       // set by the dataset
    bool FIsDefault = false; // made by the dataset at opening, and going with it
    QString FDisplayLabel;
    int FDisplayWidth = 0;
    bool FVisible = true;
    bool FReadOnly = false;
    bool FRequired = false;
    Qt::Alignment FAlignment = Qt::AlignLeft;
    QString FDefaultExpression;
};

} // namespace Korvane
