// SPDX-License-Identifier: MIT
#include "platform/data/SortKeys.h"

#include <QtEndian>

#include <bit>
#include <cmath>

namespace Korvane {

namespace {

constexpr quint64 SignBit = quint64(1) << 63;

// Folded texts are read from their beginning for every chunk.
constexpr size_t MaxFoldedDepth = 64;

// Entries by which values are called into the cache of the processor before they are read.
constexpr size_t Ahead = 32;

/// NULL has chunk 0. The least integer, which has it too, is told from it at the next depth.
quint64 ChunkOf(qint64 value) { return quint64(value) ^ SignBit; }

quint64 ChunkOf(double value)
{
    if (std::isnan(value))
        return 1;
    const quint64 bits = std::bit_cast<quint64>(value == 0 ? 0.0 : value);
    return bits & SignBit ? ~bits : bits | SignBit;
}

quint64 ByteAt(std::string_view text, size_t i) { return static_cast<unsigned char>(text[i]); }

/// Some bytes of a text, eight at most, as a number of the same order with zeros behind them.
/// Overlapping reads are faster than a copy of any length.
quint64 BigEndian(std::string_view text, size_t begin)
{
    const std::string_view rest = text.substr(begin);
    const size_t size = rest.size();
    if (size >= 8)
        return qFromBigEndian<quint64>(rest.data());
    if (size == 0)
        return 0;
    const size_t unused = 8 * (8 - size);
    if (text.size() >= 8)
        return qFromBigEndian<quint64>(text.data() + text.size() - 8) << unused;
    if (size >= 4)
        return quint64(qFromBigEndian<quint32>(rest.data())) << 32 |
               quint64(qFromBigEndian<quint32>(rest.data() + size - 4)) << unused;
    return ByteAt(rest, 0) << 56 | ByteAt(rest, size / 2) << 8 * (7 - size / 2) |
           ByteAt(rest, size - 1) << unused;
}

constexpr quint64 Bytes(quint64 byte) { return byte * 0x0101010101010101u; }

/// Folds the case of the ASCII characters among eight bytes.
quint64 FoldAscii(quint64 bytes)
{
    const quint64 low = bytes & Bytes(0x7F);
    const quint64 fromA = low + Bytes(0x80 - 'A');
    const quint64 beyondZ = low + Bytes(0x7F - 'Z');
    return bytes | (fromA & ~beyondZ & ~bytes & Bytes(0x80)) >> 2;
}

bool IsContinuation(quint64 byte) { return (byte & 0xC0) == 0x80; }

/// Whether the text is ASCII and characters of U+3000 to U+9FFF, which have no case, as far as
/// the limit.
bool IsPlain(std::string_view text, size_t limit)
{
    limit = std::min(limit, text.size());
    for (size_t i = 0; i < limit;) {
        const quint64 byte = ByteAt(text, i);
        if (i + 8 <= text.size() && (qFromUnaligned<quint64>(text.data() + i) & Bytes(0x80)) == 0)
            i += 8;
        else if (byte < 0x80)
            ++i;
        else if (byte >= 0xE3 && byte <= 0xE9 && i + 3 <= text.size() &&
                 IsContinuation(ByteAt(text, i + 1)) && IsContinuation(ByteAt(text, i + 2)))
            i += 3;
        else
            return false;
    }
    return true;
}

} // namespace

// ---- TCollationKeys -------------------------------------------------------------------

/// The number of the key of a row's text.
quint32 TCollationKeys::Find(quint32 row)
{
    if (FKeys.size() * 2 > FSlots.size())
        Grow();
    const std::string_view text = FCells.Text(row);
    const quint32 hash = quint32(std::hash<std::string_view>()(text));
    const size_t mask = FSlots.size() - 1;
    size_t at = hash & mask;
    for (; FSlots[at].Key != None; at = (at + 1) & mask)
        if (FSlots[at].Hash == hash && FCells.Text(FKeys[FSlots[at].Key].Row) == text)
            return FSlots[at].Key;
    const quint32 key = quint32(FKeys.size() - 1);
    const std::string_view bytes = FCollation.SortKey(text, FMode, FBuffer);
    FArena.Append(bytes.data(), bytes.size());
    FKeys[key].Row = row;
    FKeys.push_back({FArena.Size()});
    FSlots[at] = {hash, key};
    return key;
}

void TCollationKeys::Grow()
{
    std::vector<TSlot> old(std::max<size_t>(FSlots.size() * 2, 256));
    old.swap(FSlots);
    const size_t mask = FSlots.size() - 1;
    for (const TSlot &slot : old) {
        size_t at = slot.Hash & mask;
        while (slot.Key != None && FSlots[at].Key != None)
            at = (at + 1) & mask;
        if (slot.Key != None)
            FSlots[at] = slot;
    }
}

// ---- TSortKeys ------------------------------------------------------------------------

TSortKeys::TSortKeys(const TDataPacket &packet, const TRowOverlay *overlay, const TOrderPart &part,
                     size_t rowCount)
    : FCells(packet, overlay, part.Column), FMode(part.Mode),
      FMask(part.Direction == TSortDirection::Descending ? ~quint64(0) : 0)
{
    if (part.Collation && FCells.Kind() == TColumnKind::Text)
        FCollationKeys.emplace(FCells, *part.Collation, part.Mode, rowCount);
}

bool TSortKeys::HasChunks(size_t depth) const
{
    return !IsText() || FCollationKeys || FMode == TCaseMode::Exact || depth < MaxFoldedDepth;
}

template <class ChunkOf> void TSortKeys::Fill(std::span<TSortEntry> entries, ChunkOf chunkOf)
{
    for (size_t i = 0; i < entries.size(); ++i) {
        if (i + Ahead < entries.size())
            FCells.Prefetch(entries[i + Ahead].Row);
        entries[i].Chunk = (FCells.IsNull(entries[i].Row) ? 0 : chunkOf(entries[i])) ^ FMask;
    }
}

void TSortKeys::Fetch(std::span<TSortEntry> entries, size_t depth)
{
    if (IsText())
        FetchTexts(entries, depth * TextChunkSize);
    else if (depth != 0)
        Fill(entries, [](const TSortEntry &) { return 1; });
    else if (FCells.Kind() == TColumnKind::Double)
        Fill(entries, [this](const TSortEntry &entry) { return ChunkOf(FCells.Double(entry.Row)); });
    else
        Fill(entries, [this](const TSortEntry &entry) { return ChunkOf(FCells.Int(entry.Row)); });
}

void TSortKeys::FetchTexts(std::span<TSortEntry> entries, size_t begin)
{
    if (FCollationKeys)
        Fill(entries, [&](const TSortEntry &entry) { return TextChunk(FCollationKeys->Of(entry), begin); });
    else if (FMode == TCaseMode::Exact)
        Fill(entries, [&](const TSortEntry &entry) { return TextChunk(FCells.Text(entry.Row), begin); });
    else
        Fill(entries, [&](const TSortEntry &entry) { return FoldedChunk(FCells.Text(entry.Row), begin); });
}

quint64 TSortKeys::TextChunk(std::string_view text, size_t begin)
{
    const size_t size = text.size() - begin;
    return size > TextChunkSize ? (BigEndian(text, begin) & ~quint64(0xFF)) | MoreFollows
                                : BigEndian(text, begin) | (size + 1);
}

/// The chunk of the text with its case folded that begins behind some bytes of that.
quint64 TSortKeys::FoldedChunk(std::string_view text, size_t begin)
{
    if (IsPlain(text, begin + TextChunkSize + 1))
        return FoldAscii(TextChunk(text, begin));
    char bytes[TextChunkSize + 5];
    size_t count = 0;
    while (!text.empty() && count <= TextChunkSize) {
        const size_t had = count;
        count += PutUtf8(NextFolded(text), bytes + count);
        if (begin != 0) {
            const size_t skipped = std::min(begin, count - had);
            std::copy(bytes + had + skipped, bytes + count, bytes + had);
            count -= skipped;
            begin -= skipped;
        }
    }
    return TextChunk({bytes, count}, 0);
}

} // namespace Korvane
