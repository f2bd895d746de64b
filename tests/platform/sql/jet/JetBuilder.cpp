// SPDX-License-Identifier: MIT
#include "JetBuilder.h"

#include <algorithm>
#include <bit>

namespace Korvane::Testing {

namespace {

// Pages: 0 head, 1 empty, 2 definition of the catalog, 3 usage maps; tables and their pages follow.
constexpr quint32 CatalogPage = 2;
constexpr quint32 MapsPage = 3;
constexpr quint32 FirstFreePage = 4;
constexpr quint32 LvalOwner = 0x4c41564c;

constexpr int MapSize = 64; ///< bytes of a bitmap or of a list of map pages, without their heads

/// A bit for each page from the first on; pages outside are passed over.
QByteArray Bitmap(const QList<quint32> &pages, quint32 first, int size)
{
    QByteArray bits(size, 0);
    const auto end = std::lower_bound(pages.begin(), pages.end(), first + quint32(size) * 8);
    for (auto page = std::lower_bound(pages.begin(), pages.end(), first); page != end; ++page)
        bits[(*page - first) / 8] = char(bits[(*page - first) / 8] | 1 << ((*page - first) % 8));
    return bits;
}

} // namespace

QByteArray TJetBuilder::Int(quint64 value, int bytes)
{
    QByteArray result;
    for (int i = 0; i < bytes; ++i)
        result += char(value >> (8 * i));
    return result;
}

QByteArray TJetBuilder::Utf16(const QString &text)
{
    QByteArray bytes;
    for (const QChar c : text)
        bytes += Int(c.unicode(), 2);
    return bytes;
}

QByteArray TJetBuilder::DoubleBytes(double value) { return Int(std::bit_cast<quint64>(value), 8); }

TJetBuilder::TJetBuilder(const QByteArray &samplePage, bool isJet3)
    : FSamplePage(samplePage), FIsJet3(isJet3), FPages(FirstFreePage)
{
    // LvProp is always empty, but mdb-export refuses a catalog without it.
    TTable catalog;
    catalog.Page = CatalogPage;
    catalog.Columns = {{QStringLiteral("Id"), TJetType::LongInteger, 4, true},
                       {QStringLiteral("Type"), TJetType::Integer, 2, true},
                       {QStringLiteral("Flags"), TJetType::LongInteger, 4, true},
                       {QStringLiteral("Name"), TJetType::Text, 100, false},
                       {QStringLiteral("LvProp"), TJetType::Ole, 0, false}};
    FTables.append(catalog);
}

void TJetBuilder::BeginTable(const QString &name, const QList<TColumn> &columns)
{
    TTable table;
    table.Columns = columns;
    table.Page = quint32(FPages.size());
    FPages.append(TPage());
    FTables.append(table);
    AddRow(FTables.first(), {Int(table.Page, 4), Int(1, 2), Int(0, 4), NameBytes(name), std::nullopt});
}

void TJetBuilder::AddIndex(const QString &name, const QList<int> &columns, TIndexKind kind)
{
    FTables.last().Indexes.append({name, columns, kind});
}

quint32 TJetBuilder::AddPage(TTable &table, const TPage &page)
{
    const auto number = quint32(FPages.size());
    FPages.append(page);
    table.Pages.append(number);
    return number;
}

void TJetBuilder::NextPage(TTable &table) { table.RowPage = AddPage(table, {table.Page, {}, {}}); }

void TJetBuilder::AddRow(TTable &table, const TCells &cells)
{
    AddRawRow(table, PackRow(table.Columns, cells), 0);
    ++table.RowCount;
}

void TJetBuilder::AddRawRow(TTable &table, const QByteArray &row, int flags)
{
    int used = RowsOffset() + 2;
    for (const QByteArray &other : std::as_const(FPages)[table.RowPage].Rows)
        used += int(other.size()) + 2;
    if (table.RowPage == 0 || used + row.size() + 2 > PageSize())
        NextPage(table);
    TPage &page = FPages[table.RowPage];
    page.Rows.append(row);
    page.Flags.append(flags);
}

QByteArray TJetBuilder::ChainedValue(const QByteArray &value)
{
    const int most = PageSize() - RowsOffset() - 8;
    const auto first = quint32(FPages.size());
    for (qsizetype at = 0; at < value.size(); at += most) {
        const bool isLast = at + most >= value.size();
        const quint32 next = isLast ? 0 : (quint32(FPages.size()) + 1) << 8;
        AddPage(FTables.last(), {LvalOwner, {Int(next, 4) + value.mid(at, most)}, {0}});
    }
    return Int(quint64(value.size()), 4) + Int(quint64(first) << 8, 4) + Int(0, 4);
}

QByteArray TJetBuilder::PagedValue(const QByteArray &value)
{
    const quint32 page = AddPage(FTables.last(), {LvalOwner, {value}, {0}});
    return Int(quint64(value.size()) | 0x40000000, 4) + Int(quint64(page) << 8, 4) + Int(0, 4);
}

QByteArray TJetBuilder::InlineValue(const QByteArray &value)
{
    return Int(quint64(value.size()) | 0x80000000, 4) + Int(0, 8) + value;
}

QByteArray TJetBuilder::PackRow(const QList<TColumn> &columns, const TCells &cells) const
{
    const int width = FIsJet3 ? 1 : 2;
    QByteArray row = Int(quint64(columns.size()), width);
    QByteArray mask((columns.size() + 7) / 8, 0);
    for (qsizetype i = 0; i < columns.size(); ++i) {
        if (cells[i])
            mask[i / 8] = char(mask[i / 8] | 1 << (i % 8));
        if (columns[i].IsFixed && columns[i].Type != TJetType::Boolean)
            row += cells[i].value_or(QByteArray()).leftJustified(columns[i].Size, 0);
    }
    QList<int> offsets;
    for (qsizetype i = 0; i < columns.size(); ++i) {
        if (columns[i].IsFixed)
            continue;
        offsets.append(int(row.size()));
        row += cells[i].value_or(QByteArray());
    }
    const auto count = int(offsets.size());
    if (count == 0)
        return row + mask;
    offsets.append(int(row.size()));
    for (qsizetype i = offsets.size() - 1; i >= 0; --i)
        row += Int(quint64(offsets[i]), width);
    if (FIsJet3) {
        // The jumps, the last one first, padded to one for each 256 bytes of the row.
        QByteArray jumps;
        for (qsizetype i = 0, reached = 0; i < offsets.size(); ++i) {
            for (; offsets[i] / 256 > reached; ++reached)
                jumps.prepend(char(i));
        }
        const auto rowSize = [&] { return row.size() + jumps.size() + 1 + mask.size(); };
        while (jumps.size() < (rowSize() - 1) / 256)
            jumps.prepend('\xff');
        row += jumps;
    }
    return row + Int(quint64(count), width) + mask;
}

QByteArray TJetBuilder::Definition(const TTable &table, int mapRow) const
{
    const QList<TColumn> &columns = table.Columns;
    int variable = 0;
    for (const TColumn &column : columns)
        variable += column.IsFixed ? 0 : 1;
    QByteArray page = QByteArray("\2\1\0\0\0\0\0\0", 8);
    page += QByteArray(FIsJet3 ? 4 : 8, 0) + Int(quint64(table.RowCount), 4);
    page.append((FIsJet3 ? 21 : 41) - page.size(), 0);
    page += Int(quint64(columns.size()), 2) + Int(quint64(variable), 2) + Int(quint64(columns.size()), 2);
    page += Int(quint64(table.Indexes.size()), 4) + Int(quint64(table.Indexes.size()), 4);
    page += Int(MapsPage << 8 | quint32(mapRow), 4) + Int(MapsPage << 8 | quint32(mapRow), 4);
    page += QByteArray(table.Indexes.size() * (FIsJet3 ? 8 : 12), 0);
    int offset = 0;
    int nextVariable = 0;
    for (qsizetype i = 0; i < columns.size(); ++i) {
        const TColumn &column = columns[i];
        QByteArray record(FIsJet3 ? 18 : 25, 0);
        const auto put = [&record](int at, quint64 value, int bytes) {
            record.replace(at, bytes, Int(value, bytes));
        };
        put(0, quint64(column.Type), 1);
        put(FIsJet3 ? 1 : 5, quint64(i), 2);
        put(FIsJet3 ? 3 : 7, quint64(column.IsFixed ? 0 : nextVariable++), 2);
        put(FIsJet3 ? 9 : 11, quint64(column.Precision), 1);
        put(FIsJet3 ? 10 : 12, quint64(column.Scale), 1);
        put(FIsJet3 ? 13 : 15,
            (column.IsFixed ? 1 : 0) | (column.IsRequired ? 0 : 2) | (column.IsAuto ? 4 : 0), 1);
        put(FIsJet3 ? 14 : 21, quint64(offset), 2);
        put(FIsJet3 ? 16 : 23, quint64(column.Size), 2);
        if (column.IsFixed && column.Type != TJetType::Boolean)
            offset += column.Size;
        page += record;
    }
    for (const TColumn &column : columns) {
        const QByteArray name = NameBytes(column.Name);
        page += Int(quint64(name.size()), FIsJet3 ? 1 : 2) + name;
    }
    return (page + IndexDefinitions(table.Indexes)).leftJustified(PageSize(), 0);
}

// The trees of keys in order, their names from the last to the first, so that the number of a
// tree is not that of its name.
QByteArray TJetBuilder::IndexDefinitions(const QList<TIndex> &indexes) const
{
    QByteArray trees, records, names;
    for (const TIndex &index : indexes) {
        QByteArray tree(FIsJet3 ? 39 : 52, 0);
        for (qsizetype i = 0; i < 10; ++i) {
            const int column = i < index.Columns.size() ? index.Columns[i] : 0xffff;
            tree.replace((FIsJet3 ? 0 : 4) + 3 * i, 3, Int(quint64(column), 2) + Int(1, 1));
        }
        tree[FIsJet3 ? 38 : 42] = char(index.Kind == TIndexKind::Unique ? 1 : 0);
        trees += tree;
    }
    for (qsizetype i = indexes.size() - 1; i >= 0; --i) {
        QByteArray record(FIsJet3 ? 20 : 28, 0);
        record.replace(FIsJet3 ? 0 : 4, 8, Int(quint64(indexes.size() - 1 - i), 4) + Int(quint64(i), 4));
        record[FIsJet3 ? 19 : 23] = char(indexes[i].Kind == TIndexKind::Primary    ? 1
                                         : indexes[i].Kind == TIndexKind::Relation ? 2
                                                                                   : 0);
        records += record;
        const QByteArray name = NameBytes(indexes[i].Name);
        names += Int(quint64(name.size()), FIsJet3 ? 1 : 2) + name;
    }
    return trees + records + names;
}

QByteArray TJetBuilder::DataPage(const TPage &page) const
{
    QByteArray bytes(PageSize(), 0);
    bytes.replace(0, 8, QByteArray("\1\1\0\0", 4) + Int(page.Owner, 4));
    bytes.replace(RowsOffset(), 2, Int(quint64(page.Rows.size()), 2));
    auto end = int(bytes.size());
    for (qsizetype i = 0; i < page.Rows.size(); ++i) {
        end -= int(page.Rows[i].size());
        if (end < RowsOffset() + 2 + 2 * page.Rows.size())
            qFatal("too many rows for one page of a Jet file");
        bytes.replace(end, page.Rows[i].size(), page.Rows[i]);
        bytes.replace(RowsOffset() + 2 + 2 * i, 2, Int(quint64(end | page.Flags[i]), 2));
    }
    return bytes;
}

// A bitmap from the table's first page on while that reaches its last one, else a list of map
// pages, which go to the end of the file.
QByteArray TJetBuilder::UsageMap(const TTable &table, QByteArray &file) const
{
    const quint32 first = table.Pages.value(0);
    const quint32 last = table.Pages.isEmpty() ? 0 : table.Pages.last();
    if (!table.UsesMapPages && last - first < MapSize * 8)
        return Int(0, 1) + Int(first, 4) + Bitmap(table.Pages, first, MapSize);

    const int mapBytes = PageSize() - 4;
    QByteArray map(1, 1);
    for (quint32 begin = 0; begin <= last; begin += quint32(mapBytes) * 8) {
        const bool isEmpty = begin + quint32(mapBytes) * 8 <= first;
        map += Int(isEmpty ? 0 : quint64(file.size() / PageSize()), 4);
        if (!isEmpty)
            file += QByteArray("\5\1\0\0", 4) + Bitmap(table.Pages, begin, mapBytes);
    }
    return map.leftJustified(1 + MapSize, 0);
}

void TJetBuilder::PutPage(QByteArray &file, quint32 number, const QByteArray &page) const
{
    if (page.size() != PageSize())
        qFatal("page %u of a Jet file is too large", number);
    file.replace(qsizetype(number) * PageSize(), page.size(), page);
}

QByteArray TJetBuilder::Build() const
{
    QByteArray file;
    file.reserve((FPages.size() + FTables.size()) * PageSize());
    for (const TPage &page : FPages)
        file += DataPage(page);
    PutPage(file, 0, FSamplePage.left(PageSize()));
    PutPage(file, 1, QByteArray(PageSize(), 0));
    TPage maps;
    for (qsizetype i = 0; i < FTables.size(); ++i) {
        maps.Rows.append(UsageMap(FTables[i], file));
        maps.Flags.append(0);
        PutPage(file, FTables[i].Page, Definition(FTables[i], int(i)));
    }
    PutPage(file, MapsPage, DataPage(maps));
    return file;
}

} // namespace Korvane::Testing
