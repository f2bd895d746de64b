// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QVariant>

#include <memory>
#include <vector>

namespace Korvane {

class TCustomClientDataSet;

/// One figure over the rows that a dataset shows: "sum(QTY)", "avg(PRICE)", "min(CODE)",
/// "max(DATE)", "count(*)" or "count(QTY)", function names in any case. NULLs do not count.
///
///     TAggregate *total = set.Aggregates().Add();
///     total->SetExpression("sum(AMOUNT)");
///     total->SetActive(true);
///     total->Value();
class TAggregate
{
public:
    explicit TAggregate(TCustomClientDataSet *dataSet) : FDataSet(dataSet) {}
    TAggregate(const TAggregate &) = delete;
    TAggregate &operator=(const TAggregate &) = delete;

    const QString &Expression() const { return FExpression; }
    void SetExpression(const QString &expression);
    bool Active() const { return FActive; }
    /// Raises EDatabaseError for an expression that cannot be read, an unknown field, or a field
    /// of a type that the function does not take, when the dataset is open.
    void SetActive(bool active);
    /// Null when nothing counts: an empty set, NULLs alone, not active, or a closed dataset. A
    /// sum of whole numbers is a qlonglong, all others a double; min and max have the field's type.
    /// Reckoned when asked for after a change: linear in the rows.
    QVariant Value();

private:
    friend class TAggregates;

    TCustomClientDataSet *const FDataSet;
    QString FExpression;
    bool FActive = false;
    quint64 FReckoned = 0; // the state of the view that FValue is for
    QVariant FValue;
};

/// The aggregates of a dataset.
class TAggregates
{
public:
    explicit TAggregates(TCustomClientDataSet *dataSet) : FDataSet(dataSet) {}

    qsizetype Count() const { return qsizetype(FItems.size()); }
    TAggregate *operator[](qsizetype index) const { return FItems[size_t(index)].get(); }
    TAggregate *Add();
    void Remove(TAggregate *aggregate);
    void Clear() { FItems.clear(); }

private:
    TCustomClientDataSet *const FDataSet;
    std::vector<std::unique_ptr<TAggregate>> FItems;
};

} // namespace Korvane
