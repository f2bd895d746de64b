// SPDX-License-Identifier: MIT
#include "platform/data/RowSearches.h"

#include "platform/core/Exceptions.h"
#include "platform/core/Variants.h"

namespace Korvane {

namespace {

/// Kinds of search that are remembered beside each other.
constexpr size_t MaxSearchCount = 8;

} // namespace

TRowSearches::TSearch &TRowSearches::Of(std::span<const int> columns, TLocateOptions options,
                                        const QList<TPacketField> &fields)
{
    for (TSearch &search : FSearches)
        if (search.Key.Options() == options && std::ranges::equal(search.Key.Columns(), columns))
            return search;
    std::vector<TFieldType> types;
    for (const int column : columns)
        types.push_back(fields[column].Type);
    if (FSearches.size() == MaxSearchCount)
        FSearches.erase(FSearches.begin());
    FSearches.push_back({TRowKey({columns.begin(), columns.end()}, std::move(types), options)});
    return FSearches.back();
}

void TRowSearches::SetKey(TSearch &search, const QString &names, const QVariant &values)
{
    const size_t count = search.Key.Columns().size();
    if (count == 0)
        throw EDatabaseError(QStringLiteral("没有给出要查找的字段"));
    const QVariantList list = VarIsArray(values) ? values.toList() : QVariantList{values};
    if (size_t(list.size()) != count)
        throw EDatabaseError(QStringLiteral("字段“%1”与给出的 %2 个值不符").arg(names).arg(list.size()));
    for (size_t i = 0; i < count; ++i)
        search.Key.Set(i, list[qsizetype(i)]);
}

} // namespace Korvane
