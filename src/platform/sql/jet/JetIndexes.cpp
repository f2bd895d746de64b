// SPDX-License-Identifier: MIT
#include "platform/sql/jet/JetIndexes.h"

#include <vector>

namespace Korvane {

namespace {

/// Sizes and offsets of the records; the layout is described in libmdb's HACKING file.
struct TIndexLayout
{
    size_t PhysicalRecord;
    size_t PhysicalColumns; ///< ten entries of three bytes
    size_t PhysicalFlags;
    size_t NamedRecord;
    size_t NamedPhysical; ///< number of the tree that it uses
    size_t NamedType;
};

constexpr TIndexLayout Jet3Index = {39, 0, 38, 20, 4, 19};
constexpr TIndexLayout Jet4Index = {52, 4, 42, 28, 8, 23};

constexpr size_t MaxIndexColumns = 10;
constexpr int NoColumn = 0xffff;
constexpr int UniqueFlag = 1;
constexpr int PrimaryType = 1;
constexpr int RelationType = 2;

TJetIndex ReadPhysical(TJetBytes record, const TIndexLayout &layout, const QHash<int, QString> &columns)
{
    TJetIndex index;
    for (size_t i = 0; i < MaxIndexColumns; ++i) {
        const int number = record.U16(layout.PhysicalColumns + 3 * i);
        if (number == NoColumn)
            continue;
        if (!columns.contains(number))
            throw EJetDamage(QStringLiteral("索引的字段无效"));
        index.Columns.append(columns[number]);
    }
    index.IsUnique = (record.U8(layout.PhysicalFlags) & UniqueFlag) != 0;
    return index;
}

} // namespace

QList<TJetIndex> ReadJetIndexes(TJetBytes definition, const TJetIndexPlaces &places, bool isJet3,
                                const QHash<int, QString> &columns, TJetText &text)
{
    const TIndexLayout &layout = isJet3 ? Jet3Index : Jet4Index;
    size_t at = places.At;
    std::vector<TJetIndex> physical;
    for (size_t i = 0; i < places.PhysicalCount; ++i, at += layout.PhysicalRecord)
        physical.push_back(ReadPhysical(definition.Slice(at, layout.PhysicalRecord), layout, columns));

    // The names follow all the records, in the records' order.
    size_t nameAt = at + places.NamedCount * layout.NamedRecord;
    QList<TJetIndex> indexes;
    for (size_t i = 0; i < places.NamedCount; ++i, at += layout.NamedRecord) {
        const TJetBytes record = definition.Slice(at, layout.NamedRecord);
        const size_t size = isJet3 ? definition.U8(nameAt) : definition.U16(nameAt);
        nameAt += isJet3 ? 1 : 2;
        const QString name = text.Decode(definition.Slice(nameAt, size));
        nameAt += size;
        const quint32 number = record.U32(layout.NamedPhysical);
        if (number >= physical.size())
            throw EJetDamage(QStringLiteral("索引的编号无效"));
        const int type = record.U8(layout.NamedType);
        if (type == RelationType || physical[number].Columns.isEmpty())
            continue;
        indexes.append(physical[number]);
        indexes.last().Name = name;
        indexes.last().IsPrimary = type == PrimaryType;
        indexes.last().IsUnique |= indexes.last().IsPrimary;
    }
    return indexes;
}

} // namespace Korvane
