// SPDX-License-Identifier: MIT
#include "platform/data/FilterNodes.h"

#include "platform/data/FilterSyntax.h"

namespace Korvane {

namespace {

// ---- values ---------------------------------------------------------------------------

class TColumnValue final : public TFilterValue
{
public:
    TColumnValue(int column, TColumnKind kind) : TFilterValue(TypeOf(kind)), FColumn(column) {}

    void Fetch(const TFilterBlock &block, TFilterValues &values) const override
    {
        if (block.Reader)
            FetchFromReader(*block.Reader, values);
        else
            FetchFromPacket(block.Packet->Column(FColumn), block.Rows, values);
    }

private:
    static TFilterType TypeOf(TColumnKind kind)
    {
        if (kind == TColumnKind::Double)
            return TFilterType::Double;
        return kind < TColumnKind::Double ? TFilterType::Int : TFilterType::Text;
    }

    void FetchFromReader(const TRowReader &reader, TFilterValues &values) const
    {
        if (reader.IsNull(FColumn))
            values.Nulls.Append(1);
        if (Type() == TFilterType::Int)
            values.Ints.Append(reader.GetInt(FColumn));
        else if (Type() == TFilterType::Double)
            values.Doubles.Append(reader.GetDouble(FColumn));
        else
            values.Texts.Append(reader.GetText(FColumn));
    }

    static void FetchFromPacket(const TPacketColumn &column, std::span<const quint32> rows,
                                TFilterValues &values)
    {
        if (column.HasNulls())
            Gather(rows, values.Nulls, [&](quint32 row) { return quint8(column.IsNull(row)); });
        switch (column.Kind()) {
        case TColumnKind::Int32:
            return Gather(rows, values.Ints, [v = column.Int32s()](quint32 row) { return qint64(v[row]); });
        case TColumnKind::Int64:
            return Gather(rows, values.Ints, [v = column.Int64s()](quint32 row) { return v[row]; });
        case TColumnKind::Double:
            return Gather(rows, values.Doubles, [v = column.Doubles()](quint32 row) { return v[row]; });
        case TColumnKind::Text:
        case TColumnKind::Blob:
            break;
        }
        Gather(rows, values.Texts, [&](quint32 row) { return column.Bytes(row); });
    }

    template <class T, class ValueOf>
    static void Gather(std::span<const quint32> rows, TPodBuffer<T> &values, ValueOf valueOf)
    {
        values.ResizeForWriting(rows.size());
        T *out = values.Data();
        for (size_t i = 0; i < rows.size(); ++i)
            out[i] = valueOf(rows[i]);
    }

    const int FColumn;
};

class TConstantValue final : public TFilterValue
{
public:
    explicit TConstantValue(qint64 value) : TFilterValue(TFilterType::Int), FInt(value) {}
    explicit TConstantValue(double value) : TFilterValue(TFilterType::Double), FDouble(value) {}
    explicit TConstantValue(std::string value) : TFilterValue(TFilterType::Text), FText(std::move(value)) {}

    void Fetch(const TFilterBlock &, TFilterValues &values) const override
    {
        values.Stride = 0;
        if (Type() == TFilterType::Int)
            values.Ints.Append(FInt);
        else if (Type() == TFilterType::Double)
            values.Doubles.Append(FDouble);
        else
            values.Texts.Append(FText);
    }

private:
    const qint64 FInt = 0;
    const double FDouble = 0;
    const std::string FText;
};

class TAsDouble final : public TFilterValue
{
public:
    explicit TAsDouble(TFilterValuePtr number) : TFilterValue(TFilterType::Double), FNumber(std::move(number))
    {
    }

    void Fetch(const TFilterBlock &block, TFilterValues &values) const override
    {
        FNumber->Fetch(block, values);
        values.Doubles.ResizeForWriting(values.Ints.Size());
        for (size_t i = 0; i < values.Ints.Size(); ++i)
            values.Doubles[i] = double(values.Ints[i]);
    }

private:
    const TFilterValuePtr FNumber;
};

class TAsText final : public TFilterValue
{
public:
    explicit TAsText(TFilterValuePtr number) : TFilterValue(TFilterType::Text), FNumber(std::move(number)) {}

    void Fetch(const TFilterBlock &block, TFilterValues &values) const override
    {
        FNumber->Fetch(block, values);
        if (FNumber->Type() == TFilterType::Int)
            Convert(values.Ints.Values(), values);
        else
            Convert(values.Doubles.Values(), values);
    }

private:
    template <class T> static void Convert(std::span<const T> numbers, TFilterValues &values)
    {
        for (const T number : numbers)
            values.Texts.Append(values.NumberTexts.emplace_back(number).View());
    }

    const TFilterValuePtr FNumber;
};

/// Gives false where the operation has no result.
bool Calculate(char operation, qint64 left, qint64 right, qint64 &result)
{
    switch (operation) {
    case '+':
        return !__builtin_add_overflow(left, right, &result);
    case '-':
        return !__builtin_sub_overflow(left, right, &result);
    default:
        return !__builtin_mul_overflow(left, right, &result);
    }
}

bool Calculate(char operation, double left, double right, double &result)
{
    switch (operation) {
    case '+':
        result = left + right;
        return true;
    case '-':
        result = left - right;
        return true;
    case '*':
        result = left * right;
        return true;
    default:
        result = left / right;
        return right != 0;
    }
}

class TArithmetic final : public TFilterValue
{
public:
    TArithmetic(char operation, TFilterValuePtr left, TFilterValuePtr right)
        : TFilterValue(left->Type()), FOperation(operation), FLeft(std::move(left)), FRight(std::move(right))
    {
    }

    void Fetch(const TFilterBlock &block, TFilterValues &values) const override
    {
        TFilterValues left, right;
        FLeft->Fetch(block, left);
        FRight->Fetch(block, right);
        values.Stride = left.Stride | right.Stride;
        const size_t count = values.Stride == 0 ? 1 : block.Rows.size();
        if (Type() == TFilterType::Int)
            Combine(left, right, &TFilterValues::Ints, count, values);
        else
            Combine(left, right, &TFilterValues::Doubles, count, values);
    }

private:
    template <class T>
    void Combine(const TFilterValues &left, const TFilterValues &right, TPodBuffer<T> TFilterValues::*numbers,
                 size_t count, TFilterValues &values) const
    {
        (values.*numbers).ResizeForWriting(count);
        for (size_t i = 0; i < count; ++i) {
            T result = 0;
            const bool isThere = Calculate(FOperation, (left.*numbers)[i * left.Stride],
                                           (right.*numbers)[i * right.Stride], result);
            (values.*numbers)[i] = result;
            if (!isThere || left.IsNull(i) || right.IsNull(i)) {
                values.Nulls.FillTo(count, 0);
                values.Nulls[i] = 1;
            }
        }
    }

    const char FOperation;
    const TFilterValuePtr FLeft;
    const TFilterValuePtr FRight;
};

// ---- conditions -----------------------------------------------------------------------

quint8 TruthOf(bool value) { return value ? IsTrue : IsFalse; }

class TConstantTruth final : public TFilterCondition
{
public:
    explicit TConstantTruth(bool value) : FTruth(TruthOf(value)) {}

    void Test(const TFilterBlock &block, quint8 *truths) const override
    {
        std::fill_n(truths, block.Rows.size(), FTruth);
    }

private:
    const quint8 FTruth;
};

class TIsNull final : public TFilterCondition
{
public:
    explicit TIsNull(TFilterValuePtr value) : FValue(std::move(value)) {}

    void Test(const TFilterBlock &block, quint8 *truths) const override
    {
        TFilterValues values;
        FValue->Fetch(block, values);
        for (size_t i = 0; i < block.Rows.size(); ++i)
            truths[i] = TruthOf(values.IsNull(i));
    }

private:
    const TFilterValuePtr FValue;
};

/// Asks a predicate about each value that is no NULL: predicate(values, index).
template <class Predicate> class TValueTest final : public TFilterCondition
{
public:
    TValueTest(TFilterValuePtr value, Predicate predicate)
        : FValue(std::move(value)), FPredicate(std::move(predicate))
    {
    }

    void Test(const TFilterBlock &block, quint8 *truths) const override
    {
        TFilterValues values;
        FValue->Fetch(block, values);
        for (size_t i = 0; i < block.Rows.size(); ++i)
            truths[i] = values.IsNull(i) ? quint8(IsUnknown) : TruthOf(FPredicate(values, i * values.Stride));
    }

private:
    const TFilterValuePtr FValue;
    const Predicate FPredicate;
};

template <class Predicate> TFilterConditionPtr MakeValueTest(TFilterValuePtr value, Predicate predicate)
{
    return std::make_unique<TValueTest<Predicate>>(std::move(value), std::move(predicate));
}

/// Asks a predicate about each two values that are no NULL:
/// predicate(left, left index, right, right index).
template <class Predicate> class TPairTest final : public TFilterCondition
{
public:
    TPairTest(TFilterValuePtr left, TFilterValuePtr right, Predicate predicate)
        : FLeft(std::move(left)), FRight(std::move(right)), FPredicate(std::move(predicate))
    {
    }

    void Test(const TFilterBlock &block, quint8 *truths) const override
    {
        TFilterValues left, right;
        FLeft->Fetch(block, left);
        FRight->Fetch(block, right);
        for (size_t i = 0; i < block.Rows.size(); ++i)
            truths[i] = TruthOf(FPredicate(left, i * left.Stride, right, i * right.Stride));
        for (size_t i = 0; (!left.Nulls.IsEmpty() || !right.Nulls.IsEmpty()) && i < block.Rows.size(); ++i)
            if (left.IsNull(i) || right.IsNull(i))
                truths[i] = IsUnknown;
    }

private:
    const TFilterValuePtr FLeft;
    const TFilterValuePtr FRight;
    const Predicate FPredicate;
};

template <class Predicate>
TFilterConditionPtr MakePairTest(TFilterValuePtr left, TFilterValuePtr right, Predicate predicate)
{
    return std::make_unique<TPairTest<Predicate>>(std::move(left), std::move(right), std::move(predicate));
}

template <class T, class U>
TFilterConditionPtr MakeNumberCompare(int outcomes, TFilterValuePtr left, TPodBuffer<T> TFilterValues::*lefts,
                                      TFilterValuePtr right, TPodBuffer<U> TFilterValues::*rights)
{
    return MakePairTest(std::move(left), std::move(right),
                        [=](const TFilterValues &a, size_t i, const TFilterValues &b, size_t j) {
                            const int order = CompareNumbers((a.*lefts)[i], (b.*rights)[j]);
                            return (outcomes >> (order + 1) & 1) != 0;
                        });
}

TFilterConditionPtr MakeTextCompare(int outcomes, TFilterValuePtr left, TFilterValuePtr right, TCaseMode mode)
{
    if (outcomes == coEqual || outcomes == (coLess | coGreater)) {
        const bool wanted = outcomes == coEqual;
        return MakePairTest(std::move(left), std::move(right),
                            [=](const TFilterValues &a, size_t i, const TFilterValues &b, size_t j) {
                                return EqualTexts(a.Texts[i], b.Texts[j], mode) == wanted;
                            });
    }
    return MakePairTest(std::move(left), std::move(right),
                        [=](const TFilterValues &a, size_t i, const TFilterValues &b, size_t j) {
                            const int order = CompareTexts(a.Texts[i], b.Texts[j], mode);
                            return (outcomes >> ((order > 0) - (order < 0) + 1) & 1) != 0;
                        });
}

class TNot final : public TFilterCondition
{
public:
    explicit TNot(TFilterConditionPtr condition) : FCondition(std::move(condition)) {}

    void Test(const TFilterBlock &block, quint8 *truths) const override
    {
        FCondition->Test(block, truths);
        for (size_t i = 0; i < block.Rows.size(); ++i)
            truths[i] = quint8(IsTrue - truths[i]);
    }

private:
    const TFilterConditionPtr FCondition;
};

/// "and" and "or": the least and the greatest truth of the parts. Later parts look only at
/// the rows that earlier ones have not decided.
class TJunction final : public TFilterCondition
{
public:
    /// The decisive truth value is IsFalse for "and", IsTrue for "or".
    TJunction(std::vector<TFilterConditionPtr> conditions, quint8 decisive)
        : FConditions(std::move(conditions)), FDecisive(decisive)
    {
    }

    void Test(const TFilterBlock &block, quint8 *truths) const override
    {
        FConditions.front()->Test(block, truths);
        TPodBuffer<quint32> places;
        TPodBuffer<quint32> rows;
        TPodBuffer<quint8> further;
        for (size_t k = 1; k < FConditions.size(); ++k) {
            places.ResizeForWriting(0);
            rows.ResizeForWriting(0);
            for (size_t i = 0; i < block.Rows.size(); ++i) {
                if (truths[i] != FDecisive) {
                    places.Append(quint32(i));
                    rows.Append(block.Rows[i]);
                }
            }
            if (rows.IsEmpty())
                return;
            further.ResizeForWriting(rows.Size());
            FConditions[k]->Test({block.Packet, block.Reader, rows.Values()}, further.Data());
            for (size_t i = 0; i < places.Size(); ++i) {
                quint8 &truth = truths[places[i]];
                truth = FDecisive == IsFalse ? std::min(truth, further[i]) : std::max(truth, further[i]);
            }
        }
    }

private:
    const std::vector<TFilterConditionPtr> FConditions;
    const quint8 FDecisive;
};

} // namespace

TFilterValuePtr MakeColumn(int column, TColumnKind kind)
{
    return std::make_unique<TColumnValue>(column, kind);
}

TFilterValuePtr MakeConstant(qint64 value) { return std::make_unique<TConstantValue>(value); }

TFilterValuePtr MakeConstant(double value) { return std::make_unique<TConstantValue>(value); }

TFilterValuePtr MakeConstant(std::string value) { return std::make_unique<TConstantValue>(std::move(value)); }

TFilterValuePtr MakeAsDouble(TFilterValuePtr number)
{
    return number->Type() == TFilterType::Double ? std::move(number)
                                                 : std::make_unique<TAsDouble>(std::move(number));
}

TFilterValuePtr MakeAsText(TFilterValuePtr number)
{
    return number->Type() == TFilterType::Text ? std::move(number)
                                               : std::make_unique<TAsText>(std::move(number));
}

TFilterValuePtr MakeArithmetic(char operation, TFilterValuePtr left, TFilterValuePtr right)
{
    return std::make_unique<TArithmetic>(operation, std::move(left), std::move(right));
}

TFilterConditionPtr MakeTruth(bool value) { return std::make_unique<TConstantTruth>(value); }

TFilterConditionPtr MakeIsNull(TFilterValuePtr value) { return std::make_unique<TIsNull>(std::move(value)); }

TFilterConditionPtr MakeIsNonZero(TFilterValuePtr integer)
{
    return MakeValueTest(std::move(integer),
                         [](const TFilterValues &values, size_t i) { return values.Ints[i] != 0; });
}

TFilterConditionPtr MakeCompare(int outcomes, TFilterValuePtr left, TFilterValuePtr right, TCaseMode mode)
{
    const auto ints = &TFilterValues::Ints;
    const auto doubles = &TFilterValues::Doubles;
    if (left->Type() == TFilterType::Text)
        return MakeTextCompare(outcomes, std::move(left), std::move(right), mode);
    if (left->Type() == right->Type()) {
        return left->Type() == TFilterType::Int
                   ? MakeNumberCompare(outcomes, std::move(left), ints, std::move(right), ints)
                   : MakeNumberCompare(outcomes, std::move(left), doubles, std::move(right), doubles);
    }
    if (left->Type() == TFilterType::Double) {
        // The integer goes to the left, so that less and greater change places.
        const int swapped =
            (outcomes & coEqual) | (outcomes & coLess ? coGreater : 0) | (outcomes & coGreater ? coLess : 0);
        return MakeNumberCompare(swapped, std::move(right), ints, std::move(left), doubles);
    }
    return MakeNumberCompare(outcomes, std::move(left), ints, std::move(right), doubles);
}

TFilterConditionPtr MakeStartsWith(TFilterValuePtr text, std::string start, TCaseMode mode)
{
    return MakeValueTest(std::move(text), [=](const TFilterValues &values, size_t i) {
        return StartsWith(values.Texts[i], start, mode);
    });
}

TLikeSyntax LikeSyntaxFor(TCaseMode mode)
{
    return {mode == TCaseMode::Blind ? TLikeSyntax::Blind : TLikeSyntax::Exact};
}

TFilterConditionPtr MakeLike(TFilterValuePtr text, TFilterValuePtr pattern, TCaseMode mode)
{
    return MakePairTest(
        std::move(text), std::move(pattern),
        [=](const TFilterValues &texts, size_t i, const TFilterValues &patterns, size_t j) {
            return TLikePattern(patterns.Texts[j], LikeSyntaxFor(mode)).Matches(texts.Texts[i]);
        });
}

TFilterConditionPtr MakeLike(TFilterValuePtr text, const TLikePattern &pattern)
{
    return MakeValueTest(std::move(text), [=](const TFilterValues &values, size_t i) {
        return pattern.Matches(values.Texts[i]);
    });
}

TFilterConditionPtr MakeInSet(TFilterValuePtr integer, std::vector<qint64> values)
{
    std::sort(values.begin(), values.end());
    return MakeValueTest(std::move(integer),
                         [sorted = std::move(values)](const TFilterValues &row, size_t i) {
                             return std::binary_search(sorted.begin(), sorted.end(), row.Ints[i]);
                         });
}

TFilterConditionPtr MakeInSet(TFilterValuePtr text, std::vector<std::string> values, TCaseMode mode)
{
    const auto isLess = [mode](std::string_view a, std::string_view b) {
        return CompareTexts(a, b, mode) < 0;
    };
    std::sort(values.begin(), values.end(), isLess);
    return MakeValueTest(std::move(text),
                         [sorted = std::move(values), isLess](const TFilterValues &row, size_t i) {
                             return std::binary_search(sorted.begin(), sorted.end(), row.Texts[i], isLess);
                         });
}

TFilterConditionPtr MakeNot(TFilterConditionPtr condition)
{
    return std::make_unique<TNot>(std::move(condition));
}

TFilterConditionPtr MakeAnd(std::vector<TFilterConditionPtr> conditions)
{
    return std::make_unique<TJunction>(std::move(conditions), IsFalse);
}

TFilterConditionPtr MakeOr(std::vector<TFilterConditionPtr> conditions)
{
    return std::make_unique<TJunction>(std::move(conditions), IsTrue);
}

} // namespace Korvane
