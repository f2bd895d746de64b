// SPDX-License-Identifier: MIT
#include "platform/sql/jet/JetTable.h"

#include <QSet>

namespace Korvane {

namespace {

constexpr int MaxColumns = 255;
constexpr size_t LongValueHeader = 12;
constexpr quint32 LvalOwner = 0x4c41564c; // "LVAL" in place of a table's page

/// Bytes of a fixed value by its type, 0 where the column record tells them.
size_t FixedSize(TJetType type)
{
    switch (type) {
    case TJetType::Byte:
        return 1;
    case TJetType::Integer:
        return 2;
    case TJetType::LongInteger:
    case TJetType::Single:
        return 4;
    case TJetType::Money:
    case TJetType::Double:
    case TJetType::DateTime:
        return 8;
    case TJetType::Guid:
        return 16;
    case TJetType::Decimal:
        return 17;
    default:
        return 0;
    }
}

std::string_view View(TJetBytes bytes)
{
    return {reinterpret_cast<const char *>(bytes.Data()), bytes.Size()};
}

} // namespace

// --- The definition

TJetTable::TJetTable(TJetPages &pages, quint32 definitionPage) : FPages(pages), FPage(definitionPage)
{
    FDefinition = DefinitionBytes(definitionPage);
    ReadColumns({FDefinition.data(), FDefinition.size()});
    FCells.resize(FPlaces.size());
    FBuffers.resize(FPlaces.size());
}

int TJetTable::IndexOf(QStringView name) const
{
    for (int i = 0; i < FColumns.size(); ++i) {
        if (name.compare(FColumns[i].Name, Qt::CaseInsensitive) == 0)
            return i;
    }
    return -1;
}

// A long definition goes on in other pages, behind their eight bytes of head.
std::vector<quint8> TJetTable::DefinitionBytes(quint32 page) const
{
    constexpr size_t pageHead = 8;
    std::vector<quint8> all;
    QSet<quint32> seen;
    while (page != 0) {
        if (seen.contains(page))
            throw EJetDamage(QStringLiteral("表定义页 %1 循环").arg(page));
        seen.insert(page);
        const TJetBytes bytes = FPages.Page(page);
        if (bytes.U8(0) != TJetPages::DefinitionPage)
            throw EJetDamage(QStringLiteral("第 %1 页不是表定义").arg(page));
        const TJetBytes part = all.empty() ? bytes : bytes.From(pageHead);
        all.insert(all.end(), part.Data(), part.Data() + part.Size());
        page = bytes.U32(4);
    }
    return all;
}

void TJetTable::ReadColumns(TJetBytes definition)
{
    const TJetLayout &layout = FPages.Layout();
    FRowCount = definition.U32(layout.TableRows);
    FVariableCount = definition.U16(layout.TableColumns - 2);
    FUsageMap = definition.U32(layout.TableUsageMap);
    const int count = definition.U16(layout.TableColumns);
    if (count == 0 || count > MaxColumns)
        throw EJetDamage(QStringLiteral("表的字段数无效"));

    FIndexPlaces.PhysicalCount = definition.U32(layout.TableIndexes);
    FIndexPlaces.NamedCount = definition.U32(layout.TableIndexes - 4);
    size_t at = layout.TableHeader + FIndexPlaces.PhysicalCount * layout.IndexRecord;
    for (int i = 0; i < count; ++i, at += layout.ColumnRecord) {
        TPlace place;
        FColumns.append(ReadColumn(definition.Slice(at, layout.ColumnRecord), place));
        FPlaces.push_back(place);
    }
    FIndexPlaces.At = ReadNames(definition, at);
}

QList<TJetIndex> TJetTable::Indexes()
{
    QHash<int, QString> names;
    for (size_t i = 0; i < FPlaces.size(); ++i)
        names.insert(FPlaces[i].Number, FColumns[qsizetype(i)].Name);
    return ReadJetIndexes({FDefinition.data(), FDefinition.size()}, FIndexPlaces, FPages.Layout().IsJet3,
                          names, TextOf(0));
}

TJetColumn TJetTable::ReadColumn(TJetBytes record, TPlace &place)
{
    const TJetLayout &layout = FPages.Layout();
    TJetColumn column;
    column.Type = TJetType(record.U8(0));
    const int flags = record.U8(layout.ColumnFlags);
    column.IsFixed = (flags & 1) != 0;
    column.IsNullable = (flags & 2) != 0;
    column.IsAuto = (flags & 4) != 0 && column.Type == TJetType::LongInteger;
    place.Number = record.U16(layout.ColumnNumber);
    place.IsFixed = column.IsFixed;
    place.Offset = record.U16(layout.ColumnFixed);
    place.Variable = record.U16(layout.ColumnVariable);
    const int size = record.U16(layout.ColumnSize);
    const size_t fixedSize = FixedSize(column.Type);
    place.Size = fixedSize != 0 ? fixedSize : size_t(size);

    const bool isText = column.Type == TJetType::Text;
    if (isText || column.Type == TJetType::Memo)
        place.Text = &TextOf(layout.IsJet3 ? record.U16(layout.ColumnCodePage) : 0);
    if (isText || column.Type == TJetType::Binary)
        column.Size = isText && !layout.IsJet3 ? size / 2 : size;
    if (column.Type == TJetType::Decimal) {
        column.Precision = record.U8(layout.ColumnPrecision);
        column.Scale = record.U8(layout.ColumnPrecision + 1);
        if (column.Precision > 28 || column.Scale > column.Precision)
            throw EJetDamage(QStringLiteral("字段的小数位数无效"));
    }
    return column;
}

// Names follow the records in their order; the columns' own order is that of their numbers.
// Gives the place behind the names.
size_t TJetTable::ReadNames(TJetBytes definition, size_t at)
{
    const bool isJet3 = FPages.Layout().IsJet3;
    TJetText &text = TextOf(0);
    QSet<QString> seen;
    for (TJetColumn &column : FColumns) {
        const size_t size = isJet3 ? definition.U8(at) : definition.U16(at);
        at += isJet3 ? 1 : 2;
        column.Name = text.Decode(definition.Slice(at, size));
        at += size;
        if (column.Name.isEmpty() || column.Name.contains(QChar(0)) || seen.contains(column.Name.toUpper()))
            throw EJetDamage(QStringLiteral("字段名无效"));
        seen.insert(column.Name.toUpper());
    }

    std::vector<int> order(FPlaces.size());
    for (size_t i = 0; i < order.size(); ++i)
        order[i] = int(i);
    std::stable_sort(order.begin(), order.end(),
                     [this](int a, int b) { return FPlaces[size_t(a)].Number < FPlaces[size_t(b)].Number; });
    QList<TJetColumn> columns;
    std::vector<TPlace> places;
    for (const int i : order) {
        columns.append(FColumns[i]);
        places.push_back(FPlaces[size_t(i)]);
    }
    FColumns = std::move(columns);
    FPlaces = std::move(places);
    return at;
}

// A Jet 3 text without a code page of its own has the one of the file.
TJetText &TJetTable::TextOf(int codePage)
{
    if (codePage == 0 && FPages.Layout().IsJet3)
        codePage = FPages.CodePage();
    return FTexts.try_emplace(codePage, codePage).first->second;
}

// --- The pages of the table

// The usage map has a bit for each page from some page on, or it names pages that hold
// nothing but such bits.
std::vector<quint32> TJetTable::DataPages()
{
    const TJetBytes row = FPages.Row(FUsageMap);
    const std::vector<quint8> copy(row.Data(), row.Data() + row.Size());
    const TJetBytes map(copy.data(), copy.size());
    std::vector<quint32> pages;
    switch (map.U8(0)) {
    case 0:
        AddMappedPages(map.From(5), map.U32(1), pages);
        break;
    case 1: {
        constexpr size_t pageHead = 4;
        const auto pagesPerMap = quint32(FPages.Layout().PageSize - pageHead) * 8;
        for (size_t i = 0; 1 + 4 * i + 4 <= map.Size(); ++i) {
            const quint32 mapPage = map.U32(1 + 4 * i);
            if (mapPage == 0)
                continue;
            const TJetBytes bytes = FPages.Page(mapPage);
            if (bytes.U8(0) != TJetPages::UsageMapPage)
                throw EJetDamage(QStringLiteral("第 %1 页不是分配图").arg(mapPage));
            AddMappedPages(bytes.From(pageHead), quint32(i) * pagesPerMap, pages);
        }
        break;
    }
    default:
        throw EJetDamage(QStringLiteral("分配图的类型无效"));
    }
    return pages;
}

void TJetTable::AddMappedPages(TJetBytes bitmap, quint32 firstPage, std::vector<quint32> &pages) const
{
    for (size_t i = 0; i < bitmap.Size(); ++i) {
        const quint8 bits = bitmap.U8(i);
        for (quint32 bit = 0; bits >> bit != 0; ++bit) {
            if ((bits >> bit & 1) == 0)
                continue;
            const quint64 page = quint64(firstPage) + 8 * i + bit;
            if (page == 0 || page >= FPages.PageCount())
                throw EJetDamage(QStringLiteral("第 %1 页不存在").arg(page));
            pages.push_back(quint32(page));
        }
    }
}

void TJetTable::ReadRows(const TJetRowFunction &row)
{
    // No byte of the file belongs to two long values.
    FLongBytesLeft = size_t(FPages.PageCount()) * FPages.Layout().PageSize;
    std::vector<quint8> page;
    size_t rows = 0;
    bool passedOver = false;
    for (const quint32 number : DataPages()) {
        const TJetBytes bytes = FPages.Page(number);
        if (!HoldsRows(bytes, number)) {
            passedOver = true;
            continue;
        }
        // Long values are read while the rows of the page are, so the page is kept apart.
        page.assign(bytes.Data(), bytes.Data() + bytes.Size());
        rows += ReadPage({page.data(), page.size()}, row);
    }
    // Either alone may happen in a sound file: a map that also has pages of other use, a
    // count that is behind after the program was killed.
    if (passedOver && rows < FRowCount)
        throw EJetDamage(QStringLiteral("缺少记录"));
}

// Pages of long values and of indexes are in the maps of some tables.
bool TJetTable::HoldsRows(TJetBytes page, quint32 number) const
{
    if (page.U8(0) != TJetPages::DataPage || page.U32(4) == LvalOwner)
        return false;
    if (page.U32(4) != FPage)
        throw EJetDamage(QStringLiteral("第 %1 页属于别的表").arg(number));
    return true;
}

size_t TJetTable::ReadPage(TJetBytes page, const TJetRowFunction &row)
{
    size_t rows = 0;
    const int count = FPages.RowCount(page);
    for (int i = 0; i < count; ++i) {
        int flags = 0;
        const TJetBytes bytes = FPages.Row(page, i, flags);
        if ((flags & TJetPages::RowIsDeleted) != 0)
            continue;
        if ((flags & TJetPages::RowIsElsewhere) != 0) {
            const TJetBytes moved = FPages.Row(bytes.U32(0));
            const std::vector<quint8> copy(moved.Data(), moved.Data() + moved.Size());
            DecodeRow({copy.data(), copy.size()});
        } else {
            DecodeRow(bytes);
        }
        row(FCells);
        ++rows;
    }
    return rows;
}

// --- A row

// A row is its number of columns, the fixed values, the variable values, their offsets from
// the last to the first, their number, and the mask with a bit set for each value there is.
TJetTable::TRow TJetTable::Frame(TJetBytes bytes)
{
    TRow row;
    row.Bytes = bytes;
    row.ColumnCount = FPages.Layout().IsJet3 ? bytes.U8(0) : bytes.U16(0);
    const size_t maskSize = (size_t(row.ColumnCount) + 7) / 8;
    if (row.ColumnCount > MaxColumns || maskSize >= bytes.Size())
        throw EJetDamage(QStringLiteral("记录的字段数无效"));
    row.MaskBegin = row.ValuesEnd = bytes.Size() - maskSize;
    FVariableOffsets.clear();
    if (FVariableCount > 0)
        ReadVariableOffsets(row, row.MaskBegin);
    return row;
}

void TJetTable::ReadVariableOffsets(TRow &row, size_t end)
{
    const bool isJet3 = FPages.Layout().IsJet3;
    const size_t width = isJet3 ? 1 : 2;
    const int count = isJet3 ? row.Bytes.U8(end - width) : row.Bytes.U16(end - width);
    if (count > row.ColumnCount)
        throw EJetDamage(QStringLiteral("记录的字段数无效"));
    if (isJet3) {
        ReadVariableOffsets3(row, end - width, count);
    } else {
        for (size_t i = 0; i <= size_t(count); ++i)
            FVariableOffsets.push_back(row.Bytes.U16(end - 2 * width - width * i));
    }
    // The last entry is the end of the values.
    row.ValuesEnd = FVariableOffsets.back();
    if (row.ValuesEnd > end)
        throw EJetDamage(QStringLiteral("字段的位置无效"));
}

// Offsets of one byte: in a row of more than 256 bytes a jump table, behind the offsets,
// names the columns at which the next 256 bytes begin, the first jump last. Its size goes by
// the length of the whole row, so that it may have one entry too many.
void TJetTable::ReadVariableOffsets3(TRow &row, size_t end, int count)
{
    const TJetBytes bytes = row.Bytes;
    size_t jumps = (bytes.Size() - 1) / 256;
    if (end < jumps + size_t(count) + 1)
        throw EJetDamage(QStringLiteral("字段的位置无效"));
    const size_t first = end - 1 - jumps;
    if (jumps > 0 && (first - size_t(count)) / 256 < jumps)
        --jumps;
    size_t used = 0;
    for (size_t i = 0; i <= size_t(count); ++i) {
        while (used < jumps && bytes.U8(end - 1 - used) == i)
            ++used;
        FVariableOffsets.push_back(bytes.U8(first - i) + 256 * used);
    }
}

void TJetTable::DecodeRow(TJetBytes bytes)
{
    const TRow row = Frame(bytes);
    for (size_t i = 0; i < FPlaces.size(); ++i) {
        TJetCell &cell = FCells[i];
        cell = {};
        const TPlace &place = FPlaces[i];
        // A row that is older than a column does not have it.
        const bool isSet =
            place.Number < row.ColumnCount &&
            (row.Bytes.U8(row.MaskBegin + size_t(place.Number) / 8) >> (place.Number % 8) & 1) != 0;
        if (FColumns[qsizetype(i)].Type == TJetType::Boolean) {
            cell.Kind = TJetCell::Integer;
            cell.Int = isSet ? 1 : 0;
            continue;
        }
        TJetBytes value;
        if (isSet && FindValue(row, place, value))
            DecodeValue(i, value);
    }
}

// False for a variable value that a row older than its column does not have.
bool TJetTable::FindValue(const TRow &row, const TPlace &place, TJetBytes &value) const
{
    const TJetBytes values(row.Bytes.Data(), row.ValuesEnd);
    const size_t countSize = FPages.Layout().IsJet3 ? 1 : 2;
    if (place.IsFixed) {
        value = values.Slice(countSize + place.Offset, place.Size);
        return true;
    }
    const auto index = size_t(place.Variable);
    if (index + 1 >= FVariableOffsets.size())
        return false;
    const size_t begin = FVariableOffsets[index];
    const size_t end = FVariableOffsets[index + 1];
    if (begin < countSize || end < begin)
        throw EJetDamage(QStringLiteral("字段的位置无效"));
    value = values.Slice(begin, end - begin);
    return true;
}

void TJetTable::DecodeValue(size_t column, TJetBytes value)
{
    TJetCell &cell = FCells[column];
    std::string &buffer = FBuffers[column];
    const auto setInteger = [&cell](qint64 number) {
        cell.Kind = TJetCell::Integer;
        cell.Int = number;
    };
    const auto setReal = [&cell](double number) {
        cell.Kind = TJetCell::Real;
        cell.Number = number;
    };
    cell.Kind = TJetCell::Text;
    switch (FColumns[qsizetype(column)].Type) {
    case TJetType::Byte:
        return setInteger(value.U8(0));
    case TJetType::Integer:
        return setInteger(qint16(value.U16(0)));
    case TJetType::LongInteger:
        return setInteger(qint32(value.U32(0)));
    case TJetType::Single:
        return setReal(double(value.Single(0)));
    case TJetType::Double:
        return setReal(value.Double(0));
    case TJetType::Money:
        JetMoneyToText(value, buffer);
        break;
    case TJetType::Decimal:
        JetDecimalToText(value, FColumns[qsizetype(column)].Scale, buffer);
        break;
    case TJetType::DateTime:
        cell.Number = value.Double(0);
        JetDateToText(cell.Number, buffer);
        break;
    case TJetType::Guid:
        JetGuidToText(value, buffer);
        break;
    case TJetType::Text:
        FPlaces[column].Text->Decode(value, buffer);
        break;
    case TJetType::Memo:
        FPlaces[column].Text->Decode(LongValue(value), buffer);
        break;
    case TJetType::Ole:
        cell.Kind = TJetCell::Blob;
        buffer = View(LongValue(value));
        break;
    default:
        cell.Kind = TJetCell::Blob;
        buffer = View(value);
        break;
    }
    cell.Bytes = buffer;
}

// --- Memos and OLE objects

// Length and kind in four bytes, a row pointer, four unknown bytes: the value follows at
// once, stands in a row of its own, or in a chain of rows.
TJetBytes TJetTable::LongValue(TJetBytes reference)
{
    if (reference.Size() == 0)
        return {};
    constexpr quint32 inlineValue = 0x80000000;
    constexpr quint32 rowValue = 0x40000000;
    const quint32 head = reference.U32(0);
    const size_t size = head & ~(inlineValue | rowValue);
    if ((head & inlineValue) != 0)
        return reference.Slice(LongValueHeader, size);
    if (size == 0)
        return {};
    if (size > FLongBytesLeft)
        throw EJetDamage(QStringLiteral("备注或图片的长度无效"));
    FLongBytesLeft -= size;
    const quint32 pointer = reference.U32(4);
    if ((head & rowValue) != 0)
        return FPages.Row(pointer).Slice(0, size);
    return ChainedValue(pointer, size);
}

// Each row of the chain begins with the pointer to the next one. A chain that runs in a
// circle ends with its length.
TJetBytes TJetTable::ChainedValue(quint32 pointer, size_t size)
{
    FLongValue.clear();
    while (FLongValue.size() < size) {
        const TJetBytes row = FPages.Row(pointer);
        pointer = row.U32(0);
        const TJetBytes part = row.Slice(4, qMin(row.Size() - 4, size - FLongValue.size()));
        if (part.Size() == 0)
            throw EJetDamage(QStringLiteral("备注或图片不完整"));
        FLongValue.insert(FLongValue.end(), part.Data(), part.Data() + part.Size());
    }
    return {FLongValue.data(), FLongValue.size()};
}

} // namespace Korvane
