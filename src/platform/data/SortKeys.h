// SPDX-License-Identifier: MIT
#pragma once

#include "platform/data/RowOrder.h"

namespace Korvane {

/// A row on its way to its place.
struct TSortEntry
{
    quint64 Chunk;
    quint32 Place; ///< where the row stood
    quint32 Row;
};

/// The cells of a column, of the packet or lying over it.
class TColumnCells
{
public:
    /// The overlay may be null.
    TColumnCells(const TDataPacket &packet, const TRowOverlay *overlay, int column)
        : FColumn(packet.Column(column)), FOverlay(overlay), FIndex(column)
    {
    }

    TColumnKind Kind() const { return FColumn.Kind(); }
    bool IsNull(quint32 row) const
    {
        const TRowValues *cover = Cover(row);
        return cover ? cover->IsNull(FIndex) : FColumn.IsNull(row);
    }
    qint64 Int(quint32 row) const
    {
        const TRowValues *cover = Cover(row);
        return cover ? cover->GetInt(FIndex) : FColumn.Int(row);
    }
    double Double(quint32 row) const
    {
        const TRowValues *cover = Cover(row);
        return cover ? cover->GetDouble(FIndex) : FColumn.Doubles()[row];
    }
    std::string_view Text(quint32 row) const
    {
        const TRowValues *cover = Cover(row);
        return cover ? cover->GetText(FIndex) : FColumn.Bytes(row);
    }

    /// Calls a value that is soon to be read into the processor's cache.
    void Prefetch(quint32 row) const
    {
        if (FColumn.Kind() >= TColumnKind::Text && !Cover(row))
            __builtin_prefetch(FColumn.Bytes(row).data());
    }

private:
    const TRowValues *Cover(quint32 row) const { return FOverlay ? FOverlay->Find(row) : nullptr; }

    const TPacketColumn &FColumn;
    const TRowOverlay *FOverlay;
    int FIndex;
};

/// The sort keys of a column's texts by a collation, made when they are first asked for, once
/// for equal texts.
class TCollationKeys
{
public:
    TCollationKeys(const TColumnCells &cells, const TTextCollation &collation, TCaseMode mode,
                   size_t rowCount)
        : FCells(cells), FCollation(collation), FMode(mode), FKeyAt(rowCount, None)
    {
    }

    /// Valid until the next call. The row is no NULL.
    std::string_view Of(const TSortEntry &entry)
    {
        quint32 &key = FKeyAt[entry.Place];
        if (key == None)
            key = Find(entry.Row);
        return {FArena.Data() + FKeys[key].Begin, FKeys[key + 1].Begin - FKeys[key].Begin};
    }

private:
    static constexpr quint32 None = 0xFFFFFFFF;
    struct TKey
    {
        size_t Begin = 0;   // in the arena; the end is where the next one begins
        quint32 Row = None; // one that has the text
    };
    struct TSlot
    {
        quint32 Hash = 0;
        quint32 Key = None;
    };

    quint32 Find(quint32 row);
    void Grow();

    TColumnCells FCells;
    const TTextCollation &FCollation;
    TCaseMode FMode;
    std::vector<quint32> FKeyAt; // by place
    std::vector<TKey> FKeys = std::vector<TKey>(1);
    std::vector<TSlot> FSlots; // a power of two of them, at most half full
    TPodBuffer<char> FArena;
    std::vector<char> FBuffer;
};

/// The values of one part of an order, cut into chunks of 64 bits: the chunks of two values
/// are ordered as the values are, or are equal; then the next ones decide, as long as there
/// are more.
class TSortKeys
{
public:
    TSortKeys(const TDataPacket &packet, const TRowOverlay *overlay, const TOrderPart &part, size_t rowCount);

    /// Writes the chunks of a depth. All before it must be equal in all entries, and not the
    /// last.
    void Fetch(std::span<TSortEntry> entries, size_t depth);
    /// Whether values with equal chunks up to this one are equal.
    bool IsLast(quint64 chunk, size_t depth) const
    {
        chunk ^= FMask;
        return IsText() ? (chunk & 0xFF) != MoreFollows : chunk != 0 || depth != 0;
    }
    /// Whether going on by chunks is worth it.
    bool HasChunks(size_t depth) const;

private:
    // The last byte of a text's chunk counts the others that are used, from 1; 0 is NULL.
    static constexpr quint64 MoreFollows = 9;
    static constexpr size_t TextChunkSize = 7;

    bool IsText() const { return FCells.Kind() >= TColumnKind::Text; }
    static quint64 TextChunk(std::string_view text, size_t begin);
    static quint64 FoldedChunk(std::string_view text, size_t begin);
    template <class ChunkOf> void Fill(std::span<TSortEntry> entries, ChunkOf chunkOf);
    void FetchTexts(std::span<TSortEntry> entries, size_t begin);

    TColumnCells FCells;
    TCaseMode FMode;
    quint64 FMask; // all ones for descending
    std::optional<TCollationKeys> FCollationKeys;
};

} // namespace Korvane
