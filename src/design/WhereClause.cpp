// SPDX-License-Identifier: MIT
#include "design/WhereClause.h"

#include "platform/core/Text.h"
#include "platform/core/Variants.h"

namespace Korvane {

namespace {

QString ConditionValue(const QVariant &value, const QString &fieldType)
{
    const QString text = VarToStr(value);
    switch (GetDataType(fieldType)) {
    case dtInt:
    case dtSmallint:
    case dtDecimal:
    case dtFloat:
    case dtImage:
        return text;
    default:
        return QuotedStr(text);
    }
}

} // namespace

QString WhereClause(TDBType type, const QString &keys, const QVariant &values, TOpenOption option,
                    const std::function<TConditionColumn(const QString &)> &resolve)
{
    const bool like = option == ooLikeAnd || option == ooLikeOr;
    const QString joiner =
        option == ooEqualAnd || option == ooLikeAnd ? QStringLiteral(" and ") : QStringLiteral(" or ");
    const QString comparison = like ? QStringLiteral(" like ") : QStringLiteral("=");
    const QVariant wildcard = type == dbtMSSQL ? QStringLiteral("%") : QStringLiteral("*");
    const QStringList names = SplitFieldNames(keys);

    QList<TConditionColumn> columns;
    for (const QString &name : names)
        columns.append(resolve(name));
    QString conditions;
    for (qsizetype i = 0; i < columns.size(); ++i) {
        if (i > 0)
            conditions += joiner;
        QVariant value = columns.size() == 1 && !VarIsArray(values) ? values : VarArrayGet(values, i);
        if (like)
            value = VarAdd(VarAdd(wildcard, value), wildcard);
        conditions += columns[i].Name + comparison + ConditionValue(value, columns[i].FieldType);
    }
    return conditions;
}

} // namespace Korvane
