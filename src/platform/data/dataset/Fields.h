// SPDX-License-Identifier: MIT
#pragma once

#include "platform/data/dataset/Field.h"

#include <QIODevice>

#include <memory>

namespace Korvane {

/// Texts of a declared size, and any others without one.
class TStringField : public TField
{
    Q_OBJECT

public:
    explicit TStringField(QObject *owner, TFieldType type = ftString) : TField(type, owner) {}

protected:
    int DefaultWidth() const override;
    /// A text longer than the declared size is cut to it.
    void StoreText(TRowValues &row, int column, const QString &text) const override;
};

/// Base of the numbers. Pictures are those of FormatFloat.
class TNumericField : public TField
{
    Q_OBJECT
    Q_PROPERTY(QString DisplayFormat READ DisplayFormat WRITE SetDisplayFormat)
    Q_PROPERTY(QString EditFormat READ EditFormat WRITE SetEditFormat)

public:
    TNumericField(TFieldType type, QObject *owner);

    QString DisplayFormat() const override { return FDisplayFormat; }
    void SetDisplayFormat(const QString &format) override;
    const QString &EditFormat() const { return FEditFormat; }
    void SetEditFormat(const QString &format);
    bool IsValidChar(QChar character) const override;

protected:
    QString FormattedText(bool display) const override;
    int DefaultWidth() const override;

private:
    QString FDisplayFormat;
    QString FEditFormat;
};

/// Whole numbers: ftSmallint, ftWord, ftInteger, ftAutoInc, ftLargeint. A value out of the
/// type's range, or of the bounds that are set, raises EDatabaseError.
class TIntegerField : public TNumericField
{
    Q_OBJECT
    Q_PROPERTY(qint64 MinValue READ MinValue WRITE SetMinValue)
    Q_PROPERTY(qint64 MaxValue READ MaxValue WRITE SetMaxValue)

public:
    explicit TIntegerField(QObject *owner, TFieldType type = ftInteger) : TNumericField(type, owner) {}

    /// Bounds count when one of them is not 0.
    qint64 MinValue() const { return FMinValue; }
    void SetMinValue(qint64 value) { FMinValue = value; }
    qint64 MaxValue() const { return FMaxValue; }
    void SetMaxValue(qint64 value) { FMaxValue = value; }
    bool IsValidChar(QChar character) const override;

protected:
    void StoreText(TRowValues &row, int column, const QString &text) const override;
    void StoreInt(TRowValues &row, int column, qint64 value) const override;
    void StoreFloat(TRowValues &row, int column, double value) const override;

private:
    qint64 FMinValue = 0;
    qint64 FMaxValue = 0;
};

/// ftFloat, ftCurrency, ftBCD. Bounds as of integers.
class TFloatField : public TNumericField
{
    Q_OBJECT
    Q_PROPERTY(double MinValue READ MinValue WRITE SetMinValue)
    Q_PROPERTY(double MaxValue READ MaxValue WRITE SetMaxValue)
    Q_PROPERTY(int Precision READ Precision WRITE SetPrecision)

public:
    explicit TFloatField(QObject *owner, TFieldType type = ftFloat) : TNumericField(type, owner) {}

    double MinValue() const { return FMinValue; }
    void SetMinValue(double value) { FMinValue = value; }
    double MaxValue() const { return FMaxValue; }
    void SetMaxValue(double value) { FMaxValue = value; }
    /// Significant digits that are shown; 15 by default.
    int Precision() const { return FPrecision; }
    void SetPrecision(int digits) { FPrecision = digits; }

protected:
    QString FormattedText(bool display) const override;
    void StoreText(TRowValues &row, int column, const QString &text) const override;
    void StoreInt(TRowValues &row, int column, qint64 value) const override;
    void StoreFloat(TRowValues &row, int column, double value) const override;

private:
    double FMinValue = 0;
    double FMaxValue = 0;
    int FPrecision = 15;
};

/// ftBoolean. DisplayFormat holds the words for true and false, "是;否" for example;
/// "True;False" by default. It reads as these words. Beginnings of them, blind to case, are
/// taken, and what any boolean field takes.
class TBooleanField : public TField
{
    Q_OBJECT
    Q_PROPERTY(QString DisplayValues READ DisplayFormat WRITE SetDisplayFormat)

public:
    explicit TBooleanField(QObject *owner) : TField(ftBoolean, owner) {}

    QString DisplayFormat() const override { return FDisplayValues; }
    void SetDisplayFormat(const QString &values) override;

protected:
    QString CellText(const TRowReader &row) const override;
    int DefaultWidth() const override;
    void StoreText(TRowValues &row, int column, const QString &text) const override;

private:
    const QString &Word(bool value) const { return value ? FTrueWord : FFalseWord; }

    QString FDisplayValues = QStringLiteral("True;False");
    QString FTrueWord = QStringLiteral("True");
    QString FFalseWord = QStringLiteral("False");
};

/// ftDate, ftTime, ftDateTime. Pictures are those of FormatDateTime. A date takes the day of what
/// is written, a time the time of the day.
class TDateTimeField : public TField
{
    Q_OBJECT
    Q_PROPERTY(QString DisplayFormat READ DisplayFormat WRITE SetDisplayFormat)

public:
    explicit TDateTimeField(QObject *owner, TFieldType type = ftDateTime) : TField(type, owner) {}

    QString DisplayFormat() const override { return FDisplayFormat; }
    void SetDisplayFormat(const QString &format) override;

protected:
    QString FormattedText(bool display) const override;
    int DefaultWidth() const override;

private:
    QString FDisplayFormat;
};

/// Blobs, memos and pictures.
class TBlobField : public TField
{
    Q_OBJECT

public:
    explicit TBlobField(QObject *owner, TFieldType type = ftBlob) : TField(type, owner) {}

    /// Bytes of the value; 0 for NULL.
    qint64 BlobSize() const { return AsBytes().size(); }
    /// Both raise EFileError.
    void LoadFromFile(const QString &fileName);
    void SaveToFile(const QString &fileName) const;
    /// A stream over the value: read-only, or, with write, one whose bytes become the value when
    /// it is closed or destroyed. Writing begins with an empty value for QIODevice::WriteOnly and
    /// with the present one for ReadWrite. The caller owns it; it is opened already. Closing raises
    /// what writing the value raises; destroying cannot, and leaves the old value then.
    std::unique_ptr<QIODevice> CreateBlobStream(QIODevice::OpenMode mode);

protected:
    /// Blobs show "(BLOB)" or "(blob)" when empty, memos "(MEMO)" or "(memo)".
    QString FormattedText(bool display) const override;
    int DefaultWidth() const override;
};

/// ftBytes, ftVarBytes, ftGuid and whatever else has no class of its own are plain TField.

/// A new field of the class that fits a type.
std::unique_ptr<TField> MakeField(TFieldType type, QObject *owner);

} // namespace Korvane
