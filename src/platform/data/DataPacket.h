// SPDX-License-Identifier: MIT
#pragma once

#include "platform/data/FieldTypes.h"
#include "platform/data/PodBuffer.h"

#include <QList>
#include <QString>

#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace Korvane {

class TRowReader;

/// How the values of a column stand in memory.
enum class TColumnKind : quint8 { Int32, Int64, Double, Text, Blob };

/// The kind of column that holds the values of a field type. ftUnknown counts as text.
TColumnKind ColumnKindOf(TFieldType type);

/// What a packet says of one of its fields.
struct TPacketField
{
    QString Name;
    TFieldType Type = ftUnknown;
    int Size = 0;      ///< characters of a text, as declared; 0 when unknown or unlimited
    int Precision = 0; ///< decimal places, as declared

    friend bool operator==(const TPacketField &, const TPacketField &) = default;
};

/// One frozen column of a packet: values of one kind in contiguous storage. A NULL has a
/// value too: 0, or the empty text.
class TPacketColumn
{
public:
    TColumnKind Kind() const { return FKind; }
    bool HasNulls() const { return !FNulls.IsEmpty(); }
    bool IsNull(qsizetype row) const
    {
        return !FNulls.IsEmpty() && (FNulls[size_t(row) >> 6] >> (size_t(row) & 63) & 1) != 0;
    }

    // Each is only for its kind.
    std::span<const qint32> Int32s() const { return FInt32s.Values(); }
    std::span<const qint64> Int64s() const { return FInt64s.Values(); }
    std::span<const double> Doubles() const { return FDoubles.Values(); }
    /// The value of a row in either of the integer kinds.
    qint64 Int(qsizetype row) const
    {
        return FKind == TColumnKind::Int32 ? FInt32s[size_t(row)] : FInt64s[size_t(row)];
    }
    /// The bytes of a text (UTF-8) or a blob; valid as long as the packet.
    std::string_view Bytes(qsizetype row) const
    {
        const quint32 begin = FOffsets[size_t(row)];
        return {FArena.Data() + begin, FOffsets[size_t(row) + 1] - begin};
    }

    /// Bytes held in memory.
    qsizetype MemoryUsage() const;

private:
    friend class TDataPacketBuilder;
    friend class TPacketReader;
    friend class TPacketWriter;
    friend class TPacketValidator;

    TColumnKind FKind = TColumnKind::Int32;
    TPodBuffer<qint32> FInt32s;
    TPodBuffer<qint64> FInt64s;
    TPodBuffer<double> FDoubles;
    TPodBuffer<quint32> FOffsets; // rows + 1 entries for texts and blobs
    TPodBuffer<char> FArena;
    TPodBuffer<quint64> FNulls; // a bit per row, set for NULL; empty when there is none
};

/// What the rows of a packet are.
enum class TPacketContent : quint8 {
    Rows,       ///< records as they are
    RowsAndLog, ///< records as they are stored, and behind them the log of their changes
    Delta       ///< a log of changes alone, to be walked
};

/// What a packet says of its last rows: those of a log.
struct TPacketMarks
{
    TPacketContent Content = TPacketContent::Rows;
    qsizetype Begin = 0;         ///< the first marked row
    TPodBuffer<quint8> Statuses; ///< each marked row's TUpdateStatus
    TPodBuffer<quint32> Records; ///< with RowsAndLog each marked row's record or place, else empty
};

/// An immutable table in memory: what a query returns and a dataset is loaded from. A cheap
/// handle; copies share the table. A default-made packet has no fields and no rows. A packet
/// without fields has no rows either, and none has more than MaxRowCount.
///
/// A packet may carry a log of changes in its last rows. With TPacketContent::RowsAndLog the
/// rows below LogBegin() are the stored records in natural order, deleted ones among them. The
/// rows from there on are the log in its order, one row for each record that has changed: its
/// present values for a modification and an insertion, anything for a deletion. With
/// TPacketContent::Delta every row is marked: a row marked usUnmodified holds the stored values
/// of the modification in the next row, which is marked usModified.
class TDataPacket
{
public:
    static constexpr qsizetype MaxRowCount = 0xFFFFFFFE;
    static constexpr quint32 NoRecord = 0xFFFFFFFF;

    TDataPacket();

    int FieldCount() const { return int(FTable->Columns.size()); }
    qsizetype RowCount() const { return FTable->RowCount; }
    const TPacketField &Field(int index) const { return FTable->Fields[index]; }
    const TPacketColumn &Column(int index) const { return FTable->Columns[size_t(index)]; }
    const QList<TPacketField> &Fields() const { return FTable->Fields; }
    /// Index of the field of a name, blind to the case of letters; -1 if there is none. Of
    /// several fields of the name it is the first.
    int IndexOf(QStringView name) const;

    /// A cell as a QVariant: int, qlonglong, double, QString or QByteArray, a null QVariant
    /// of that type for NULL. For single values, not for walks.
    QVariant Value(int field, qsizetype row) const;
    /// A text cell decoded; a number in its general form; empty for NULL.
    QString Text(int field, qsizetype row) const;

    TPacketContent Content() const;
    /// The first row of the log; RowCount() if there is none.
    qsizetype LogBegin() const;
    /// What a row of the log is; usUnmodified for the rows below LogBegin().
    TUpdateStatus UpdateStatus(qsizetype row) const;
    /// The row below LogBegin() that an entry of the log changes; NoRecord for an insertion, and
    /// for rows that are no entry of a log that goes with its records.
    quint32 LoggedRecord(qsizetype row) const;
    /// For an insertion in a log that goes with its records: its place in the natural order of
    /// the stored and the inserted records together. NoRecord for all other rows.
    quint32 InsertionPlace(qsizetype row) const;

    /// Bytes held in memory.
    qsizetype MemoryUsage() const;

    /// Checks that the columns and marks fit each other in length and kind. Cheap: no cell is
    /// read. Raises EDatabaseError.
    void Validate() const;
    /// Validate, and every offset, every text's UTF-8, every mark, and that each NULL's value
    /// is 0 or empty. Linear in the size.
    void ValidateFull() const;

    /// Writes the packet in its versioned binary form (docs/data-packet.md). The file
    /// appears whole or not at all. Raises EFileError.
    void SaveToFile(const QString &fileName) const;
    /// Reads what SaveToFile wrote. Anything else, damaged or hostile, gets an EFileError
    /// that names the file.
    static TDataPacket LoadFromFile(const QString &fileName);
    /// The binary form in memory, and back. Raises EDatabaseError on bad bytes.
    QByteArray ToBytes() const;
    static TDataPacket FromBytes(const QByteArray &bytes);

private:
    friend class TDataPacketBuilder;
    friend class TPacketReader;
    friend class TPacketWriter;
    struct TTable
    {
        QList<TPacketField> Fields;
        std::vector<TPacketColumn> Columns;
        TPacketMarks Marks;
        qsizetype RowCount = 0;
    };
    explicit TDataPacket(std::shared_ptr<const TTable> table);
    std::shared_ptr<const TTable> FTable;
};

/// Fills a packet row by row, with no QVariant and no QString per cell.
///
///     TDataPacketBuilder builder({{"CODE", ftString, 10}, {"QTY", ftInteger}});
///     builder.AppendText(0, "A1");
///     builder.AppendInt(1, 5);
///     builder.EndRow();
///     TDataPacket packet = std::move(builder).Build();
///
/// A field of type ftUnknown takes its type from its first value that is no NULL; one that
/// has only NULLs becomes ftString. A value that the column's kind cannot hold widens the
/// column (32 to 64 bits, integer to float, number to text, text to blob; an integer that a
/// float cannot hold meets a fraction as text), so that no value is ever lost; the field's
/// type changes with it: ftLargeint, ftFloat, ftString or ftBlob. Where the type was not
/// declared or has changed to text, texts of over 255 characters make the field an ftMemo.
/// A cell that gets no value in a row is NULL; a cell given two raises EDatabaseError.
class TDataPacketBuilder
{
public:
    /// The most bytes of texts or blobs that one column can hold: its offsets have 32 bits.
    static constexpr quint32 MaxArenaSize = 0xFFFFFFFF;

    /// A lower arena limit bounds the memory that a column of texts may take.
    explicit TDataPacketBuilder(QList<TPacketField> fields, quint32 arenaLimit = MaxArenaSize);

    int FieldCount() const { return int(FFilling.size()); }
    void AppendNull(int field)
    {
        if (FFilling[size_t(field)].Length > FRowCount)
            RaiseSecondValue(field);
    }
    void AppendInt(int field, qint64 value)
    {
        TFilling &filling = FFilling[size_t(field)];
        if (IsReady(filling, TColumnKind::Int32) && value == qint32(value)) {
            filling.Column.FInt32s.Append(qint32(value));
            ++filling.Length;
        } else {
            AddInt(field, value);
        }
    }
    void AppendDouble(int field, double value)
    {
        TFilling &filling = FFilling[size_t(field)];
        if (IsReady(filling, TColumnKind::Double)) {
            filling.Column.FDoubles.Append(value);
            ++filling.Length;
        } else {
            AddDouble(field, value);
        }
    }
    /// Text in UTF-8. Raises EOutOfResources beyond 4 GiB of text in one column.
    void AppendText(int field, std::string_view utf8)
    {
        TFilling &filling = FFilling[size_t(field)];
        if (IsReady(filling, TColumnKind::Text) && Fits(filling, utf8))
            Push(filling, utf8);
        else
            AddText(field, utf8);
    }
    void AppendBlob(int field, std::string_view bytes);
    /// Raises EOutOfResources beyond TDataPacket::MaxRowCount.
    void EndRow()
    {
        if (FRowCount == TDataPacket::MaxRowCount)
            RaiseTooManyRows();
        ++FRowCount;
    }

    /// Gives a field the value that another row has in the column of the same number; that
    /// column must be of the field's kind.
    void AppendCell(int field, const TRowReader &row);
    /// Adds whole rows of a packet, of those from begin to end (exclusive). For each field of the
    /// builder it is told which of the packet's columns, of the same kind, holds the values; -1
    /// leaves the field NULL; told nothing, it takes the packet's fields for its own. No row may have
    /// been begun. Raises EOutOfResources, and adds nothing, like EndRow and AppendText.
    void AppendRows(const TDataPacket &packet, qsizetype begin, qsizetype end,
                    std::span<const int> columns = {});

    /// Takes room at once for so many rows in all, by what those are like that are there. As many as
    /// come may come all the same.
    void Expect(qsizetype rows);

    /// The rows from here on are those of a log, and each is to be ended by EndLogRow.
    void BeginLog(TPacketContent content);
    /// `record` is the row that the entry changes, or the place of an insertion; for
    /// TPacketContent::RowsAndLog alone.
    void EndLogRow(TUpdateStatus status, quint32 record = TDataPacket::NoRecord);

    qsizetype RowCount() const { return FRowCount; }
    /// Freezes what was filled in; a row that was not ended is dropped. The builder is empty
    /// afterwards. Raises EDatabaseError when the rows of a log break the rules of TDataPacket.
    TDataPacket Build() &&;

private:
    struct TFilling
    {
        TPacketColumn Column;
        qsizetype Length = 0;     // rows that stand in the column; the rest is NULL so far
        bool IsSettled = false;   // whether the column's kind is known
        bool IsTypeGiven = false; // whether the field's type is the one that was declared
    };

    bool IsReady(const TFilling &filling, TColumnKind kind) const
    {
        return filling.IsSettled && filling.Column.FKind == kind && filling.Length == FRowCount;
    }
    bool Fits(const TFilling &filling, std::string_view bytes) const
    {
        return bytes.size() <= FArenaLimit - filling.Column.FArena.Size();
    }
    static void Push(TFilling &filling, std::string_view bytes)
    {
        filling.Column.FArena.Append(bytes.data(), bytes.size());
        filling.Column.FOffsets.Append(quint32(filling.Column.FArena.Size()));
        ++filling.Length;
    }

    void AddInt(int field, qint64 value);
    void AddDouble(int field, double value);
    void AddText(int field, std::string_view utf8);
    void AddBytes(int field, std::string_view bytes);
    TFilling &Prepare(int field, TColumnKind kind, TFieldType type);
    void PadWithNulls(TFilling &filling, qsizetype length);
    void AppendRun(int field, const TPacketColumn &source, size_t begin, size_t end);
    static void AppendTexts(TPacketColumn &column, const TPacketColumn &source, size_t begin, size_t end);
    static void AppendNullBits(TFilling &filling, const TPacketColumn &source, size_t begin, size_t end);
    void Widen(int field, TColumnKind kind);
    void WidenToText(int field);
    void WidenForFraction(int field);
    void Freeze(int field);
    bool HasLongText(const TPacketColumn &column) const;
    [[noreturn]] void RaiseSecondValue(int field) const;
    [[noreturn]] void RaiseTooManyRows() const;
    [[noreturn]] void RaiseTooMuchText(int field) const;

    QList<TPacketField> FFields;
    std::vector<TFilling> FFilling;
    TPacketMarks FMarks;
    qsizetype FRowCount = 0;
    quint32 FArenaLimit;
};

} // namespace Korvane
