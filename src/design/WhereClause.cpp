// SPDX-License-Identifier: MIT
#include "design/WhereClause.h"

#include "design/StatementText.h"
#include "platform/core/Text.h"
#include "platform/core/Variants.h"

namespace Korvane {

namespace {

constexpr size_t MostLists = 16;

bool IsBare(TDataType type)
{
    switch (type) {
    case dtInt:
    case dtSmallint:
    case dtDecimal:
    case dtFloat:
    case dtImage:
        return true;
    default:
        return false;
    }
}

/// The values of the keys, one after the other.
class TKeyValues
{
public:
    TKeyValues(const QVariant &values, qsizetype count)
        : FValues(values), FIsSingle(count == 1 && !VarIsArray(values))
    {
        if (values.typeId() == QMetaType::QVariantList && !values.isNull())
            FList = static_cast<const QVariantList *>(values.constData());
    }

    /// Calls with the value of a key.
    template <class Call> void With(qsizetype index, Call call) const
    {
        if (FIsSingle)
            call(FValues);
        else if (FList && index < FList->size())
            call(FList->at(index));
        else
            call(VarArrayGet(FValues, index));
    }

private:
    const QVariant &FValues;
    bool FIsSingle;
    const QVariantList *FList = nullptr;
};

void AppendValue(QString &statement, const QVariant &value, TDataType type)
{
    const QString text = value.typeId() == QMetaType::QString ? value.toString() : VarToStr(value);
    if (IsBare(type))
        statement += text;
    else
        AppendQuoted(statement, text);
}

} // namespace

const QList<TConditionColumn> &
TKeyColumns::Of(const QString &keys, quint64 reading,
                const std::function<TConditionColumn(const QString &)> &resolve)
{
    if (reading != FReading) {
        FLists.clear();
        FReading = reading;
    }
    for (const TKeyList &list : FLists)
        if (list.Keys == keys)
            return list.Columns;
    if (FLists.size() >= MostLists)
        FLists.clear();
    TKeyList list{keys, {}};
    for (const QString &name : SplitFieldNames(keys))
        list.Columns.append(resolve(name));
    FLists.push_back(std::move(list));
    return FLists.back().Columns;
}

void AppendConditions(QString &statement, TDBType type, const QList<TConditionColumn> &columns,
                      const QVariant &values, TOpenOption option)
{
    const bool like = option == ooLikeAnd || option == ooLikeOr;
    const QLatin1StringView joiner(option == ooEqualAnd || option == ooLikeAnd ? " and " : " or ");
    const QLatin1StringView comparison(like ? " like " : "=");
    const QVariant wildcard = !like ? QVariant() : QString(type == dbtMSSQL ? u'%' : u'*');
    const TKeyValues keyValues(values, columns.size());

    for (qsizetype i = 0; i < columns.size(); ++i) {
        if (i > 0)
            statement += joiner;
        statement += columns[i].Name;
        statement += comparison;
        keyValues.With(i, [&](const QVariant &value) {
            AppendValue(statement, like ? VarAdd(VarAdd(wildcard, value), wildcard) : value, columns[i].Type);
        });
    }
}

} // namespace Korvane
