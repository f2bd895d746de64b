// SPDX-License-Identifier: MIT
#pragma once

#include "platform/data/CaseFold.h"
#include "platform/data/NumberText.h"
#include "platform/data/RowReader.h"

#include <QFlags>
#include <QVariant>

namespace Korvane {

enum TLocateOption {
    loCaseInsensitive = 1, ///< texts compare blind to the case of letters
    loPartialKey = 2,      ///< a text need only begin with the value
};
Q_DECLARE_FLAGS(TLocateOptions, TLocateOption)
Q_DECLARE_OPERATORS_FOR_FLAGS(TLocateOptions)

/// Values that some columns of a row are compared with. Numbers compare by value whatever
/// their type, NULL equals NULL alone. A value that no cell of its column can equal, a word
/// next to an integer column for instance, makes a key that matches no row.
class TRowKey
{
public:
    /// The columns' numbers, and the type of each.
    TRowKey(std::vector<int> columns, std::vector<TFieldType> types, TLocateOptions options);

    const std::vector<int> &Columns() const { return FColumns; }
    TLocateOptions Options() const { return FOptions; }

    /// Sets the value for the i-th column. Null and unassigned stand for NULL.
    void Set(size_t i, const QVariant &value);
    void Set(size_t i, QStringView text);
    /// Sets all values to those of a row, as it stands.
    void SetFrom(const TRowReader &row);

    template <class Row> bool Matches(const Row &row) const
    {
        for (const TPart &part : FParts)
            if (!part.Matches(row, FMode, FIsPartial))
                return false;
        return true;
    }

    /// Equal keys and rows have equal hashes. Not for partial keys.
    size_t Hash() const;
    template <class Row> size_t HashOf(const Row &row) const
    {
        size_t hash = 0;
        for (const TPart &part : FParts)
            hash = Mix(hash, part.HashOf(row, FMode));
        return hash;
    }
    /// Whether two rows have equal values in the key's columns.
    template <class Row> bool AreSame(const Row &left, const Row &right) const
    {
        for (const TPart &part : FParts)
            if (!part.AreSame(left, right, FMode))
                return false;
        return true;
    }

private:
    struct TPart
    {
        int Column = 0;
        TFieldType Type = ftString;
        TColumnKind Kind = TColumnKind::Text;
        bool IsNull = true;
        bool IsPossible = true; // whether any cell of the column can equal the value
        qint64 Int = 0;
        double Double = 0;
        std::string Text;

        bool IsText() const { return Kind == TColumnKind::Text || Kind == TColumnKind::Blob; }

        template <class Row> bool Matches(const Row &row, TCaseMode mode, bool isPartial) const
        {
            if (!IsPossible || row.IsNull(Column) != IsNull)
                return false;
            if (IsNull)
                return true;
            if (Kind == TColumnKind::Double)
                return row.GetDouble(Column) == Double;
            if (!IsText())
                return row.GetInt(Column) == Int;
            const std::string_view text = row.GetText(Column);
            return isPartial ? StartsWith(text, Text, mode) : EqualTexts(text, Text, mode);
        }
        template <class Row> size_t HashOf(const Row &row, TCaseMode mode) const
        {
            if (row.IsNull(Column))
                return 0;
            if (Kind == TColumnKind::Double)
                return HashDouble(row.GetDouble(Column));
            return IsText() ? HashText(row.GetText(Column), mode) : HashInt(row.GetInt(Column));
        }
        template <class Row> bool AreSame(const Row &left, const Row &right, TCaseMode mode) const
        {
            if (left.IsNull(Column) || right.IsNull(Column))
                return left.IsNull(Column) && right.IsNull(Column);
            if (Kind == TColumnKind::Double)
                return CompareNumbers(left.GetDouble(Column), right.GetDouble(Column)) == 0;
            if (!IsText())
                return left.GetInt(Column) == right.GetInt(Column);
            return EqualTexts(left.GetText(Column), right.GetText(Column), mode);
        }
    };

    static size_t HashInt(qint64 value) { return size_t(value) * 0x9E3779B97F4A7C15u + 1; }
    static size_t HashDouble(double value) { return std::hash<double>()(value) + 1; }
    static size_t Mix(size_t hash, size_t value)
    {
        hash = (hash ^ value) * 0xBF58476D1CE4E5B9u;
        return hash ^ hash >> 29;
    }
    void SetText(TPart &part, std::string_view utf8) const;
    void SetNumber(TPart &part, const QVariant &value) const;
    void SetDate(TPart &part, const QVariant &value) const;

    std::vector<int> FColumns;
    std::vector<TPart> FParts;
    TLocateOptions FOptions;
    TCaseMode FMode;
    bool FIsPartial;
};

/// A hash index from keys to the first row that has each of them, in the order in which the
/// rows were given. It keeps row numbers alone; the rows are read through the caller's
/// functions, so that it serves packets and changed rows alike. It must be built anew when
/// the data, the selection of rows or their order change.
///
///     lookup.Build(count, [&](quint32 i) { return key.HashOf(rowAt(i)); },
///                  [&](quint32 a, quint32 b) { return key.AreSame(rowAt(a), rowAt(b)); });
///     lookup.Find(key.Hash(), [&](quint32 i) { return key.Matches(rowAt(i)); });
class TKeyLookup
{
public:
    static constexpr quint32 NotFound = 0xFFFFFFFF;

    /// Takes in the rows numbered from 0 up to below count.
    template <class HashOf, class AreSame> void Build(quint32 count, HashOf hashOf, AreSame areSame)
    {
        size_t size = 16;
        while (size < size_t(count) + count / 2)
            size *= 2;
        FSlots.assign(size, TSlot());
        FRowCount = count;
        for (quint32 row = 0; row < count; ++row)
            Put(row, hashOf(row), areSame);
    }

    /// Takes in one more row, behind all others. Amortised constant.
    template <class HashOf, class AreSame> void Add(HashOf hashOf, AreSame areSame)
    {
        if (FSlots.size() < size_t(FRowCount) + 1 + (FRowCount + 1) / 2)
            return Build(FRowCount + 1, hashOf, areSame);
        Put(FRowCount, hashOf(FRowCount), areSame);
        ++FRowCount;
    }

    /// How many rows have been taken in.
    qsizetype RowCount() const { return FRowCount; }

    /// The first row for which isKey(row) holds among those of the hash; NotFound if none.
    template <class IsKey> quint32 Find(quint64 hash, IsKey isKey) const
    {
        return FSlots.empty() ? NotFound : FSlots[FindSlot(hash, isKey)].Row;
    }

private:
    struct TSlot
    {
        quint32 HighHash = 0;
        quint32 Row = NotFound;
    };

    template <class AreSame> void Put(quint32 row, quint64 hash, AreSame areSame)
    {
        TSlot &slot = FSlots[FindSlot(hash, [&](quint32 other) { return areSame(other, row); })];
        if (slot.Row == NotFound)
            slot = {quint32(hash >> 32), row};
    }

    /// The slot of the key, or the free one where it would go.
    template <class IsKey> size_t FindSlot(quint64 hash, IsKey isKey) const
    {
        const size_t mask = FSlots.size() - 1;
        size_t at = hash & mask;
        while (FSlots[at].Row != NotFound && (FSlots[at].HighHash != hash >> 32 || !isKey(FSlots[at].Row)))
            at = (at + 1) & mask;
        return at;
    }

    std::vector<TSlot> FSlots; // a power of two of them, never full
    quint32 FRowCount = 0;
};

} // namespace Korvane
