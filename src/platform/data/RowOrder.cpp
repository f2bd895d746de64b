// SPDX-License-Identifier: MIT
#include "platform/data/RowOrder.h"

#include "platform/data/NumberText.h"
#include "platform/data/RowSorter.h"

namespace Korvane {

namespace {

/// A cell of a packet. It finds its column once.
class TPacketCell
{
public:
    TPacketCell(const TPacketColumn &column, quint32 row) : FColumn(column), FRow(row) {}

    bool IsNull() const { return FColumn.IsNull(FRow); }
    qint64 Int() const { return FColumn.Int(FRow); }
    double Double() const { return FColumn.Doubles()[FRow]; }
    std::string_view Text() const { return FColumn.Bytes(FRow); }

private:
    const TPacketColumn &FColumn;
    const quint32 FRow;
};

template <class Row> class TRowCell
{
public:
    TRowCell(const Row &row, int column) : FRow(row), FColumn(column) {}

    bool IsNull() const { return FRow.IsNull(FColumn); }
    qint64 Int() const { return FRow.GetInt(FColumn); }
    double Double() const { return FRow.GetDouble(FColumn); }
    std::string_view Text() const { return FRow.GetText(FColumn); }

private:
    const Row &FRow;
    const int FColumn;
};

template <class Cell>
int CompareValues(const Cell &left, const Cell &right, const TOrderPart &part, TColumnKind kind)
{
    if (left.IsNull() || right.IsNull())
        return int(right.IsNull()) - int(left.IsNull());
    if (kind == TColumnKind::Double)
        return CompareNumbers(left.Double(), right.Double());
    if (kind < TColumnKind::Double)
        return CompareNumbers(left.Int(), right.Int());
    if (part.Collation && kind == TColumnKind::Text)
        return part.Collation->Compare(left.Text(), right.Text(), part.Mode);
    return CompareTexts(left.Text(), right.Text(), part.Mode);
}

template <class Cell>
int CompareCells(const Cell &left, const Cell &right, const TOrderPart &part, TColumnKind kind)
{
    const int result = CompareValues(left, right, part, kind);
    return part.Direction == TSortDirection::Descending ? -result : result;
}

} // namespace

int CompareRows(const TDataPacket &packet, std::span<const TOrderPart> order, quint32 left, quint32 right)
{
    for (const TOrderPart &part : order) {
        const TPacketColumn &column = packet.Column(part.Column);
        const int result =
            CompareCells(TPacketCell(column, left), TPacketCell(column, right), part, column.Kind());
        if (result != 0)
            return result;
    }
    return 0;
}

int CompareRows(const TDataPacket &packet, const TRowOverlay &overlay, std::span<const TOrderPart> order,
                quint32 left, quint32 right)
{
    if (!overlay.Find(left) && !overlay.Find(right))
        return CompareRows(packet, order, left, right);
    const TOverlaidRow leftRow(packet, overlay, left), rightRow(packet, overlay, right);
    for (const TOrderPart &part : order) {
        const int result = CompareCells(TRowCell(leftRow, part.Column), TRowCell(rightRow, part.Column), part,
                                        packet.Column(part.Column).Kind());
        if (result != 0)
            return result;
    }
    return 0;
}

int CompareRowToKey(const TRowReader &row, std::span<const TOrderPart> order, const TRowReader &key,
                    size_t parts, std::span<const TColumnKind> kinds)
{
    for (const TOrderPart &part : order.first(std::min(parts, order.size()))) {
        const int result = CompareCells(TRowCell(row, part.Column), TRowCell(key, part.Column), part,
                                        kinds[size_t(part.Column)]);
        if (result != 0)
            return result;
    }
    return 0;
}

void SortRows(const TDataPacket &packet, std::span<const TOrderPart> order, std::vector<quint32> &rows)
{
    TRowSorter(packet, nullptr, order).Sort(rows);
}

void SortRows(const TDataPacket &packet, const TRowOverlay &overlay, std::span<const TOrderPart> order,
              std::vector<quint32> &rows)
{
    TRowSorter(packet, overlay.IsEmpty() ? nullptr : &overlay, order).Sort(rows);
}

} // namespace Korvane
