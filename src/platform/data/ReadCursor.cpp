// SPDX-License-Identifier: MIT
#include "platform/data/ReadCursor.h"

#include "platform/core/Exceptions.h"
#include "platform/core/Text.h"
#include "platform/core/Variants.h"
#include "platform/data/CellValues.h"

#include <numeric>

namespace Korvane {

// ---- TFieldHandle ---------------------------------------------------------------------

const QString &TFieldHandle::Name() const { return FCursor->Packet().Field(FIndex).Name; }

TFieldType TFieldHandle::Type() const { return FCursor->Packet().Field(FIndex).Type; }

/// What a reader of the current row's cell gives; empty without a row.
template <class Result> Result TFieldHandle::Read(Result (TCellReader::*get)() const) const
{
    const qsizetype row = FCursor->RowIndex();
    if (row < 0)
        return Result();
    const TPacketRow values(FCursor->Packet(), row);
    return (TCellReader(values, FIndex, Type(), Name()).*get)();
}

bool TFieldHandle::IsNull() const
{
    const qsizetype row = FCursor->RowIndex();
    return row < 0 || FCursor->Packet().Column(FIndex).IsNull(row);
}

QString TFieldHandle::AsString() const { return Read(&TCellReader::AsString); }

qint64 TFieldHandle::AsInteger() const { return Read(&TCellReader::AsInteger); }

double TFieldHandle::AsFloat() const { return Read(&TCellReader::AsFloat); }

QVariant TFieldHandle::AsVariant() const
{
    return FCursor->IsEmpty() ? VarNull() : Read(&TCellReader::Value);
}

QByteArray TFieldHandle::AsBytes() const { return Read(&TCellReader::AsBytes); }

// ---- TReadCursor: opening and walking -------------------------------------------------

void TReadCursor::RaiseClosed() { throw EDatabaseError(QStringLiteral("数据集未打开，无法执行此操作")); }

void TReadCursor::Open(const TDataPacket &packet)
{
    const TDataPacket taken = packet; // may be this cursor's own
    Close();
    const TBoundFilter bound =
        FFiltered ? TFilterExpression(FFilter, FFilterOptions).Bind(taken.Fields()) : TBoundFilter();
    FPacket = taken;
    SelectRows(bound, {});
    FIsOpen = true;
    First();
}

void TReadCursor::Close()
{
    FIsOpen = false;
    FPacket = {};
    FRows = {};
    FCount = 0;
    FBound = {};
    FOrder.clear();
    FSearches.Clear();
}

void TReadCursor::First()
{
    CheckOpen();
    FPosition = 0;
    FBof = true;
    FEof = FCount == 0;
}

void TReadCursor::Last()
{
    CheckOpen();
    FPosition = std::max<qsizetype>(FCount - 1, 0);
    FBof = FCount == 0;
    FEof = true;
}

qsizetype TReadCursor::MoveBy(qsizetype distance)
{
    CheckOpen();
    if (distance == 0 || FCount == 0)
        return 0;
    const qsizetype room = distance > 0 ? FCount - 1 - FPosition : FPosition;
    const bool isShort = distance > 0 ? distance > room : distance < -room;
    const qsizetype moved = isShort ? (distance > 0 ? room : -room) : distance;
    FPosition += moved;
    FBof = isShort && distance < 0;
    FEof = isShort && distance > 0;
    return moved;
}

int TReadCursor::FieldIndex(QStringView name) const
{
    const int index = Packet().IndexOf(name);
    if (index < 0)
        throw EDatabaseError(QStringLiteral("字段“%1”没有找到").arg(name));
    return index;
}

std::vector<int> TReadCursor::FieldIndexes(const QString &names) const
{
    std::vector<int> indexes;
    for (const QString &name : SplitFieldNames(names))
        indexes.push_back(FieldIndex(name));
    return indexes;
}

// ---- TReadCursor: filter and order ----------------------------------------------------

void TReadCursor::ChangeFilter(const QString &text, bool filtered, TFilterOptions options)
{
    const bool isOther = filtered ? text != FFilter || options != FFilterOptions || !FFiltered : FFiltered;
    if (FIsOpen && isOther) {
        SelectRows(filtered ? TFilterExpression(text, options).Bind(FPacket.Fields()) : TBoundFilter(),
                   FOrder);
        First();
    }
    FFilter = text;
    FFiltered = filtered;
    FFilterOptions = options;
}

/// Makes the row vector anew. All that can fail comes before the first change.
void TReadCursor::SelectRows(const TBoundFilter &filter, std::span<const TOrderPart> order)
{
    std::vector<quint32> rows;
    if (!filter.IsEmpty() || !order.empty()) {
        filter.Select(FPacket, rows);
        SortRows(FPacket, order, rows);
    }
    FCount = filter.IsEmpty() ? FPacket.RowCount() : qsizetype(rows.size());
    FRows = std::move(rows);
    FBound = filter;
    FSearches.Clear();
}

void TReadCursor::Sort(const QString &names, TCaseMode mode)
{
    std::vector<TOrderPart> order;
    for (const int index : FieldIndexes(names))
        order.push_back({index, mode, TSortDirection::Ascending});
    CheckOpen();
    SelectRows(FBound, order);
    FOrder = std::move(order);
    First();
}

// ---- TReadCursor: search --------------------------------------------------------------

bool TReadCursor::Locate(const QString &names, const QVariant &values, TLocateOptions options)
{
    CheckOpen();
    TRowSearches::TSearch &search = SearchFor(FieldIndexes(names), options);
    TRowSearches::SetKey(search, names, values);
    return GoToKey(search);
}

bool TReadCursor::Locate(std::span<const int> fields, std::span<const QStringView> texts,
                         TLocateOptions options)
{
    CheckOpen();
    Q_ASSERT(fields.size() == texts.size());
    TRowSearches::TSearch &search = SearchFor(fields, options);
    for (size_t i = 0; i < texts.size(); ++i)
        search.Key.Set(i, texts[i]);
    return GoToKey(search);
}

bool TReadCursor::GoToKey(TRowSearches::TSearch &search)
{
    const qsizetype position = TRowSearches::Find(
        search, FCount, [this](qsizetype place) { return TPacketRow(FPacket, RowAt(place)); });
    if (position < 0)
        return false;
    FPosition = position;
    FBof = FEof = false;
    return true;
}

} // namespace Korvane
