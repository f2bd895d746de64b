// SPDX-License-Identifier: MIT
#include "platform/data/ReadCursor.h"

#include "platform/core/Exceptions.h"
#include "platform/core/FormatDateTime.h"
#include "platform/core/Text.h"
#include "platform/core/Variants.h"

#include <cmath>
#include <numeric>

namespace Korvane {

namespace {

/// Kinds of search that are remembered beside each other.
constexpr size_t MaxSearchCount = 8;

QString DateText(TFieldType type, double days)
{
    if (type == ftTime)
        return TimeToStr(TDateTime(days));
    return type == ftDate ? DateToStr(TDateTime(days)) : DateTimeToStr(TDateTime(days));
}

[[noreturn]] void RaiseConvert(const QString &field, const QString &value, const QString &what)
{
    throw EConvertError(QStringLiteral("字段“%1”的值“%2”不是有效的%3").arg(field, value, what));
}

} // namespace

// ---- TFieldHandle ---------------------------------------------------------------------

const QString &TFieldHandle::Name() const { return FCursor->Packet().Field(FIndex).Name; }

TFieldType TFieldHandle::Type() const { return FCursor->Packet().Field(FIndex).Type; }

/// The field's column if the current row has a value there; null otherwise.
const TPacketColumn *TFieldHandle::ColumnWithValue() const
{
    const qsizetype row = FCursor->RowIndex();
    const TPacketColumn &column = FCursor->Packet().Column(FIndex);
    return row < 0 || column.IsNull(row) ? nullptr : &column;
}

bool TFieldHandle::IsNull() const { return !ColumnWithValue(); }

QString TFieldHandle::AsString() const
{
    const TPacketColumn *column = ColumnWithValue();
    if (!column)
        return {};
    const qsizetype row = FCursor->RowIndex();
    const TFieldType type = Type();
    if (type == ftDate || type == ftTime || type == ftDateTime)
        return DateText(type, column->Doubles()[size_t(row)]);
    return FCursor->Packet().Text(FIndex, row);
}

qint64 TFieldHandle::AsInteger() const
{
    const TPacketColumn *column = ColumnWithValue();
    if (!column)
        return 0;
    const qsizetype row = FCursor->RowIndex();
    if (column->Kind() < TColumnKind::Double)
        return column->Int(row);
    if (column->Kind() == TColumnKind::Double) {
        if (const auto whole = ExactInt(std::nearbyint(column->Doubles()[size_t(row)]) + 0.0))
            return *whole;
    } else if (const auto integer = ParseInt(column->Bytes(row))) {
        return *integer;
    }
    RaiseConvert(Name(), AsString(), QStringLiteral("整数"));
}

double TFieldHandle::AsFloat() const
{
    const TPacketColumn *column = ColumnWithValue();
    if (!column)
        return 0;
    const qsizetype row = FCursor->RowIndex();
    if (column->Kind() == TColumnKind::Double)
        return column->Doubles()[size_t(row)];
    if (column->Kind() < TColumnKind::Double)
        return double(column->Int(row));
    if (const auto number = ParseDouble(column->Bytes(row)))
        return *number;
    RaiseConvert(Name(), AsString(), QStringLiteral("数值"));
}

QVariant TFieldHandle::AsVariant() const
{
    const qsizetype row = FCursor->RowIndex();
    return row < 0 ? VarNull() : FCursor->Packet().Value(FIndex, row);
}

QByteArray TFieldHandle::AsBytes() const
{
    const TPacketColumn *column = ColumnWithValue();
    if (!column)
        return {};
    if (column->Kind() < TColumnKind::Text)
        return AsString().toUtf8();
    const std::string_view bytes = column->Bytes(FCursor->RowIndex());
    return {bytes.data(), qsizetype(bytes.size())};
}

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
    FSearches.clear();
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
    FSearches.clear();
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
    TSearch &search = SearchFor(names, options);
    const size_t count = search.Key.Columns().size();
    if (VarIsArray(values)) {
        const QVariantList list = values.toList();
        if (size_t(list.size()) != count)
            throw EDatabaseError(QStringLiteral("字段“%1”与给出的 %2 个值不符").arg(names).arg(list.size()));
        for (size_t i = 0; i < count; ++i)
            search.Key.Set(i, list[qsizetype(i)]);
    } else {
        if (count != 1)
            throw EDatabaseError(QStringLiteral("字段“%1”与给出的 %2 个值不符").arg(names).arg(1));
        search.Key.Set(0, values);
    }
    return GoToKey(search);
}

bool TReadCursor::Locate(std::span<const int> fields, std::span<const QStringView> texts,
                         TLocateOptions options)
{
    CheckOpen();
    Q_ASSERT(fields.size() == texts.size());
    TSearch &search = SearchFor(fields, options);
    for (size_t i = 0; i < texts.size(); ++i)
        search.Key.Set(i, texts[i]);
    return GoToKey(search);
}

TReadCursor::TSearch &TReadCursor::SearchFor(const QString &names, TLocateOptions options)
{
    for (TSearch &search : FSearches)
        if (search.Key.Options() == options && search.Names == names)
            return search;
    std::vector<int> fields = FieldIndexes(names);
    if (fields.empty())
        throw EDatabaseError(QStringLiteral("没有给出要查找的字段"));
    TSearch &search = SearchFor(fields, options);
    search.Names = names;
    return search;
}

TReadCursor::TSearch &TReadCursor::SearchFor(std::span<const int> fields, TLocateOptions options)
{
    for (TSearch &search : FSearches)
        if (search.Key.Options() == options && std::ranges::equal(search.Key.Columns(), fields))
            return search;
    return AddSearch({}, {fields.begin(), fields.end()}, options);
}

TReadCursor::TSearch &TReadCursor::AddSearch(const QString &names, std::vector<int> fields,
                                             TLocateOptions options)
{
    std::vector<TFieldType> types;
    for (const int field : fields)
        types.push_back(FPacket.Field(field).Type);
    if (FSearches.size() == MaxSearchCount)
        FSearches.erase(FSearches.begin());
    FSearches.push_back({names, TRowKey(std::move(fields), std::move(types), options), {}});
    return FSearches.back();
}

bool TReadCursor::GoToKey(TSearch &search)
{
    const qsizetype position = Find(search);
    if (position < 0)
        return false;
    FPosition = position;
    FBof = FEof = false;
    return true;
}

qsizetype TReadCursor::Find(TSearch &search) const
{
    // A partial key has no hash; and one search alone is not worth an index.
    if (search.WasUsed && !(search.Key.Options() & loPartialKey))
        return FindByLookup(search);
    search.WasUsed = true;
    for (qsizetype position = 0; position < FCount; ++position)
        if (search.Key.Matches(TPacketRow(FPacket, RowAt(position))))
            return position;
    return -1;
}

qsizetype TReadCursor::FindByLookup(TSearch &search) const
{
    const TRowKey &key = search.Key;
    const auto rowAt = [this](quint32 position) { return TPacketRow(FPacket, RowAt(position)); };
    if (!search.IsIndexed) {
        search.Lookup.Build(
            quint32(FCount), [&](quint32 i) { return key.HashOf(rowAt(i)); },
            [&](quint32 a, quint32 b) { return key.AreSame(rowAt(a), rowAt(b)); });
        search.IsIndexed = true;
    }
    const quint32 found = search.Lookup.Find(key.Hash(), [&](quint32 i) { return key.Matches(rowAt(i)); });
    return found == TKeyLookup::NotFound ? -1 : qsizetype(found);
}

} // namespace Korvane
