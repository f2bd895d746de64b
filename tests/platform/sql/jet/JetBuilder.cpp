// SPDX-License-Identifier: MIT
#include "JetBuilder.h"

#include <bit>

namespace Korvane::Testing {

namespace {

// Pages: 0 head, 2 catalog, 3 usage maps, 4 catalog rows, 5 table, 6 map page, 8… data.
constexpr quint32 CatalogPage = 2;
constexpr quint32 MapsPage = 3;
constexpr quint32 TablePage = 5;
constexpr quint32 MapPage = 6;
constexpr quint32 LvalOwner = 0x4c41564c;

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

TJetBuilder::TJetBuilder(const QByteArray &samplePage, bool isJet3, QList<TColumn> columns)
    : FSamplePage(samplePage), FIsJet3(isJet3), FColumns(std::move(columns))
{
    FDataPages.append({{}, {}, TablePage});
}

void TJetBuilder::AddRow(const TCells &cells)
{
    AddRawRow(PackRow(FColumns, cells), 0);
    ++FRowCount;
}

void TJetBuilder::AddRawRow(const QByteArray &row, int flags)
{
    int used = RowsOffset() + 2;
    for (const QByteArray &other : FDataPages.last().Rows)
        used += int(other.size()) + 2;
    if (used + row.size() + 2 > PageSize())
        NextPage();
    FDataPages.last().Rows.append(row);
    FDataPages.last().Flags.append(flags);
}

void TJetBuilder::NextPage() { FDataPages.append({{}, {}, TablePage}); }

QByteArray TJetBuilder::ChainedValue(const QByteArray &value)
{
    const int most = PageSize() - RowsOffset() - 8;
    const quint32 first = FirstDataPage + quint32(FDataPages.size());
    for (qsizetype at = 0; at < value.size(); at += most) {
        const bool isLast = at + most >= value.size();
        const quint32 next = isLast ? 0 : (FirstDataPage + quint32(FDataPages.size()) + 1) << 8;
        FDataPages.append({{Int(next, 4) + value.mid(at, most)}, {0}, LvalOwner});
    }
    NextPage();
    return Int(quint64(value.size()), 4) + Int(quint64(first) << 8, 4) + Int(0, 4);
}

QByteArray TJetBuilder::PagedValue(const QByteArray &value)
{
    const quint32 page = FirstDataPage + quint32(FDataPages.size());
    FDataPages.append({{value}, {0}, LvalOwner});
    NextPage();
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

QByteArray TJetBuilder::Definition(const QList<TColumn> &columns, int rows, int mapRow) const
{
    int variable = 0;
    for (const TColumn &column : columns)
        variable += column.IsFixed ? 0 : 1;
    QByteArray page = QByteArray("\2\1\0\0\0\0\0\0", 8);
    page += QByteArray(FIsJet3 ? 4 : 8, 0) + Int(quint64(rows), 4);
    page.append((FIsJet3 ? 21 : 41) - page.size(), 0);
    page += Int(quint64(columns.size()), 2) + Int(quint64(variable), 2) + Int(quint64(columns.size()), 2);
    page += Int(0, 8) + Int(MapsPage << 8 | quint32(mapRow), 4) + Int(MapsPage << 8 | quint32(mapRow), 4);
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
        put(FIsJet3 ? 13 : 15, column.IsFixed ? 3 : 2, 1);
        put(FIsJet3 ? 14 : 21, quint64(offset), 2);
        put(FIsJet3 ? 16 : 23, quint64(column.Size), 2);
        if (column.IsFixed && column.Type != TJetType::Boolean)
            offset += column.Size;
        page += record;
    }
    for (const TColumn &column : columns) {
        const QByteArray name = FIsJet3 ? column.Name.toLatin1() : Utf16(column.Name);
        page += Int(quint64(name.size()), FIsJet3 ? 1 : 2) + name;
    }
    return page.leftJustified(PageSize(), 0);
}

QByteArray TJetBuilder::DataPage(const TPage &page) const
{
    QByteArray bytes(PageSize(), 0);
    bytes.replace(0, 8, QByteArray("\1\1\0\0", 4) + Int(page.Owner, 4));
    bytes.replace(RowsOffset(), 2, Int(quint64(page.Rows.size()), 2));
    auto end = int(bytes.size());
    for (qsizetype i = 0; i < page.Rows.size(); ++i) {
        end -= int(page.Rows[i].size());
        bytes.replace(end, page.Rows[i].size(), page.Rows[i]);
        bytes.replace(RowsOffset() + 2 + 2 * i, 2, Int(quint64(end | page.Flags[i]), 2));
    }
    return bytes;
}

QByteArray TJetBuilder::Bitmap(const QList<quint32> &pages, int size) const
{
    QByteArray bits(size, 0);
    for (const quint32 page : pages)
        bits[page / 8] = char(bits[page / 8] | 1 << (page % 8));
    return bits;
}

QByteArray TJetBuilder::Build() const
{
    QList<quint32> pages;
    for (qsizetype i = 0; i < FDataPages.size(); ++i)
        pages.append(FirstDataPage + quint32(i));
    const QByteArray tableMap =
        FUsesMapPages ? QByteArray(1, 1) + Int(MapPage, 4) + Int(0, 4) : QByteArray(5, 0) + Bitmap(pages, 64);
    const QByteArray catalogMap = QByteArray(5, 0) + Bitmap({4}, 8);

    const QList<TColumn> catalog = {{QStringLiteral("Id"), TJetType::LongInteger, 4, true},
                                    {QStringLiteral("Type"), TJetType::Integer, 2, true},
                                    {QStringLiteral("Name"), TJetType::Text, 100, false}};
    const QByteArray name = FIsJet3 ? QByteArray("T") : Utf16(QStringLiteral("T"));
    const TPage catalogRows = {{PackRow(catalog, {Int(TablePage, 4), Int(1, 2), name})}, {0}, CatalogPage};

    QByteArray file = FSamplePage.left(PageSize());
    file += QByteArray(PageSize(), 0);
    file += Definition(catalog, 1, 0);
    file += DataPage({{catalogMap, tableMap}, {0, 0}, 0});
    file += DataPage(catalogRows);
    file += Definition(FColumns, FRowCount, 1);
    file += QByteArray("\5\1\0\0", 4) + Bitmap(pages, PageSize() - 4);
    file += QByteArray(PageSize(), 0);
    for (const TPage &page : FDataPages)
        file += DataPage(page);
    return file;
}

} // namespace Korvane::Testing
