// SPDX-License-Identifier: MIT
#include "platform/data/RowOrder.h"

#include "platform/data/NumberText.h"

#include <bit>
#include <cmath>
#include <numeric>

namespace Korvane {

namespace {

/// A row on its way to its place: most comparisons are decided by the first key's prefix.
struct TSortEntry
{
    quint64 Prefix;
    quint32 Place; // where the row stood
    quint32 Row;
};

constexpr quint64 SignBit = quint64(1) << 63;

quint64 PrefixOf(double value)
{
    if (std::isnan(value))
        return 0;
    const quint64 bits = std::bit_cast<quint64>(value == 0 ? 0.0 : value);
    return bits & SignBit ? ~bits : bits | SignBit;
}

void AppendUtf8(char32_t code, unsigned char *bytes, size_t &count)
{
    if (code < 0x80) {
        bytes[count++] = static_cast<unsigned char>(code);
    } else if (code < 0x800) {
        bytes[count++] = static_cast<unsigned char>(0xC0 | code >> 6);
        bytes[count++] = static_cast<unsigned char>(0x80 | (code & 0x3F));
    } else if (code < 0x10000) {
        bytes[count++] = static_cast<unsigned char>(0xE0 | code >> 12);
        bytes[count++] = static_cast<unsigned char>(0x80 | (code >> 6 & 0x3F));
        bytes[count++] = static_cast<unsigned char>(0x80 | (code & 0x3F));
    } else {
        bytes[count++] = static_cast<unsigned char>(0xF0 | (code >> 18 & 0xF));
        bytes[count++] = static_cast<unsigned char>(0x80 | (code >> 12 & 0x3F));
        bytes[count++] = static_cast<unsigned char>(0x80 | (code >> 6 & 0x3F));
        bytes[count++] = static_cast<unsigned char>(0x80 | (code & 0x3F));
    }
}

/// The first eight bytes of a text as a number of the same order.
quint64 PrefixOf(std::string_view text, TCaseMode mode)
{
    unsigned char bytes[12] = {};
    size_t count = 0;
    if (mode == TCaseMode::Exact)
        std::copy_n(text.data(), std::min<size_t>(text.size(), 8), bytes);
    else
        while (!text.empty() && count < 8)
            AppendUtf8(NextFolded(text), bytes, count);
    quint64 prefix = 0;
    for (size_t i = 0; i < 8; ++i)
        prefix = prefix << 8 | bytes[i];
    return prefix;
}

/// A number that orders rows by their first key as far as 64 bits can. NULL counts as the
/// least.
quint64 PrefixOf(const TPacketColumn &column, const TOrderPart &part, quint32 row)
{
    quint64 prefix = 0;
    if (!column.IsNull(row)) {
        if (column.Kind() == TColumnKind::Double)
            prefix = PrefixOf(column.Doubles()[row]);
        else if (column.Kind() < TColumnKind::Double)
            prefix = quint64(column.Int(row)) ^ SignBit;
        else
            prefix = PrefixOf(column.Bytes(row), part.Mode);
    }
    return part.Direction == TSortDirection::Descending ? ~prefix : prefix;
}

int CompareCells(const TPacketColumn &column, TCaseMode mode, quint32 left, quint32 right)
{
    if (column.IsNull(left) || column.IsNull(right))
        return int(column.IsNull(right)) - int(column.IsNull(left));
    if (column.Kind() == TColumnKind::Double)
        return CompareNumbers(column.Doubles()[left], column.Doubles()[right]);
    if (column.Kind() < TColumnKind::Double)
        return CompareNumbers(column.Int(left), column.Int(right));
    return CompareTexts(column.Bytes(left), column.Bytes(right), mode);
}

} // namespace

int CompareRows(const TDataPacket &packet, std::span<const TOrderPart> order, quint32 left, quint32 right)
{
    for (const TOrderPart &part : order) {
        const int result = CompareCells(packet.Column(part.Column), part.Mode, left, right);
        if (result != 0)
            return part.Direction == TSortDirection::Descending ? -result : result;
    }
    return 0;
}

void SortRows(const TDataPacket &packet, std::span<const TOrderPart> order, std::vector<quint32> &rows)
{
    if (order.empty())
        return;
    const TPacketColumn &first = packet.Column(order[0].Column);
    std::vector<TSortEntry> entries(rows.size());
    for (size_t i = 0; i < rows.size(); ++i)
        entries[i] = {PrefixOf(first, order[0], rows[i]), quint32(i), rows[i]};
    std::sort(entries.begin(), entries.end(), [&](const TSortEntry &left, const TSortEntry &right) {
        if (left.Prefix != right.Prefix)
            return left.Prefix < right.Prefix;
        const int result = CompareRows(packet, order, left.Row, right.Row);
        return result != 0 ? result < 0 : left.Place < right.Place;
    });
    for (size_t i = 0; i < rows.size(); ++i)
        rows[i] = entries[i].Row;
}

} // namespace Korvane
