// SPDX-License-Identifier: MIT
#include "platform/data/FilterExpression.h"

#include "platform/core/Exceptions.h"
#include "platform/core/Variants.h"
#include "platform/data/FilterNodes.h"
#include "platform/data/FilterSyntax.h"

#include <numeric>

namespace Korvane {

namespace {

/// Rows that are looked at in one go: their values stay in the cache of the processor.
constexpr size_t BlockSize = 1024;

bool IsDate(TFieldType type) { return type == ftDate || type == ftTime || type == ftDateTime; }

/// Turns a syntax tree into conditions over the columns of a table.
class TFilterBinder
{
public:
    TFilterBinder(const QString &text, TFilterOptions options, const QList<TPacketField> &fields)
        : FText(text), FMode(options & foCaseInsensitive ? TCaseMode::Blind : TCaseMode::Exact),
          FPartial(!(options & foNoPartialCompare)), FFields(fields)
    {
    }

    TFilterConditionPtr Condition(const TFilterNode &node)
    {
        switch (node.Kind) {
        case TFilterNodeKind::And:
            return MakeAnd(Conditions(node));
        case TFilterNodeKind::Or:
            return MakeOr(Conditions(node));
        case TFilterNodeKind::Not:
            return MakeNot(Condition(*node.Children[0]));
        case TFilterNodeKind::Compare:
            return Compare(int(node.Int), *node.Children[0], *node.Children[1]);
        case TFilterNodeKind::IsNull:
            return MakeIsNull(Value(*node.Children[0]));
        case TFilterNodeKind::Like:
            return Like(*node.Children[0], *node.Children[1]);
        case TFilterNodeKind::In:
            return In(node);
        case TFilterNodeKind::Boolean:
            return MakeTruth(node.Int != 0);
        default:
            return Truth(node);
        }
    }

    std::vector<std::pair<int, TColumnKind>> TakeColumns() { return std::move(FColumns); }

private:
    [[noreturn]] void Raise(const TFilterNode &node, const QString &fault) const
    {
        RaiseFilterError(FText, node.Position, fault);
    }

    std::vector<TFilterConditionPtr> Conditions(const TFilterNode &node)
    {
        std::vector<TFilterConditionPtr> conditions;
        for (const auto &child : node.Children)
            conditions.push_back(Condition(*child));
        return conditions;
    }

    /// A boolean field alone.
    TFilterConditionPtr Truth(const TFilterNode &node)
    {
        TFilterValuePtr value = node.Kind == TFilterNodeKind::Name ? Value(node) : nullptr;
        if (!value || value->Type() != TFilterType::Int)
            Raise(node, QStringLiteral("此处需要一个条件"));
        return MakeIsNonZero(std::move(value));
    }

    TFilterConditionPtr Compare(int outcomes, const TFilterNode &left, const TFilterNode &right)
    {
        if (left.Kind == TFilterNodeKind::Boolean)
            return CompareTruth(outcomes, right, left);
        if (right.Kind == TFilterNodeKind::Boolean)
            return CompareTruth(outcomes, left, right);
        if (IsPartial(right) && IsEquality(outcomes)) {
            TFilterValuePtr value = Value(left);
            if (value->Type() == TFilterType::Text)
                return StartsWith(outcomes, std::move(value), right.Text);
        }
        auto [leftValue, rightValue] = ValuePair(left, right);
        return MakeCompare(outcomes, std::move(leftValue), std::move(rightValue), FMode);
    }

    /// A condition or boolean field, compared with TRUE or FALSE.
    TFilterConditionPtr CompareTruth(int outcomes, const TFilterNode &node, const TFilterNode &constant)
    {
        if (!IsEquality(outcomes))
            Raise(constant, QStringLiteral("TRUE 和 FALSE 只能用 = 或 <> 比较"));
        TFilterConditionPtr condition = Condition(node);
        const bool isAsIs = (outcomes == coEqual) == (constant.Int != 0);
        return isAsIs ? std::move(condition) : MakeNot(std::move(condition));
    }

    static bool IsEquality(int outcomes) { return outcomes == coEqual || outcomes == (coLess | coGreater); }
    bool IsPartial(const TFilterNode &node) const
    {
        return FPartial && node.Kind == TFilterNodeKind::Text && node.Text.ends_with('*');
    }
    TFilterConditionPtr StartsWith(int outcomes, TFilterValuePtr text, std::string start)
    {
        start.pop_back();
        TFilterConditionPtr condition = MakeStartsWith(std::move(text), std::move(start), FMode);
        return outcomes == coEqual ? std::move(condition) : MakeNot(std::move(condition));
    }

    TFilterConditionPtr Like(const TFilterNode &text, const TFilterNode &pattern)
    {
        if (pattern.Kind == TFilterNodeKind::Text)
            return MakeLike(MakeAsText(Value(text)), TLikePattern(pattern.Text, LikeSyntaxFor(FMode)));
        return MakeLike(MakeAsText(Value(text)), MakeAsText(Value(pattern)), FMode);
    }

    /// "in" is short for a chain of equations. Many plain constants are looked up together.
    TFilterConditionPtr In(const TFilterNode &node)
    {
        const TFilterNode &left = *node.Children[0];
        const TFilterType type = Value(left)->Type();
        std::vector<TFilterConditionPtr> parts;
        std::vector<qint64> ints;
        std::vector<std::string> texts;
        for (size_t i = 1; i < node.Children.size(); ++i) {
            const TFilterNode &item = *node.Children[i];
            if (type == TFilterType::Int && item.Kind == TFilterNodeKind::Int)
                ints.push_back(item.Int);
            else if (type == TFilterType::Text && item.Kind == TFilterNodeKind::Text && !IsPartial(item))
                texts.push_back(item.Text);
            else
                parts.push_back(Compare(coEqual, left, item));
        }
        if (!ints.empty())
            parts.push_back(MakeInSet(Value(left), std::move(ints)));
        if (!texts.empty())
            parts.push_back(MakeInSet(Value(left), std::move(texts), FMode));
        if (node.Int != 0)
            parts.push_back(MakeIsNull(Value(left)));
        return parts.size() == 1 ? std::move(parts[0]) : MakeOr(std::move(parts));
    }

    TFilterValuePtr Value(const TFilterNode &node)
    {
        switch (node.Kind) {
        case TFilterNodeKind::Name:
            return Column(node);
        case TFilterNodeKind::Int:
            return MakeConstant(node.Int);
        case TFilterNodeKind::Double:
            return MakeConstant(node.Double);
        case TFilterNodeKind::Text:
            return MakeConstant(node.Text);
        case TFilterNodeKind::Add:
            return Arithmetic('+', node);
        case TFilterNodeKind::Subtract:
            return Arithmetic('-', node);
        case TFilterNodeKind::Multiply:
            return Arithmetic('*', node);
        case TFilterNodeKind::Divide:
            return Arithmetic('/', node);
        default:
            Raise(node, QStringLiteral("此处需要一个值"));
        }
    }

    int FieldOf(const TFilterNode &node) const
    {
        for (int i = 0; i < FFields.size(); ++i)
            if (FFields[i].Name.compare(node.Name, Qt::CaseInsensitive) == 0)
                return i;
        Raise(node, QStringLiteral("字段“%1”没有找到").arg(node.Name));
    }

    TFilterValuePtr Column(const TFilterNode &node)
    {
        const int column = FieldOf(node);
        const TColumnKind kind = ColumnKindOf(FFields[column].Type);
        FColumns.emplace_back(column, kind);
        return MakeColumn(column, kind);
    }

    TFilterValuePtr Arithmetic(char operation, const TFilterNode &node)
    {
        TFilterValuePtr sides[2];
        for (int i = 0; i < 2; ++i) {
            sides[i] = Value(*node.Children[size_t(i)]);
            if (sides[i]->Type() == TFilterType::Text)
                Raise(*node.Children[size_t(i)], QStringLiteral("只有数值才能计算"));
        }
        if (operation == '/' || sides[0]->Type() != sides[1]->Type())
            for (TFilterValuePtr &side : sides)
                side = MakeAsDouble(std::move(side));
        return MakeArithmetic(operation, std::move(sides[0]), std::move(sides[1]));
    }

    /// The two sides of a comparison, made comparable.
    std::pair<TFilterValuePtr, TFilterValuePtr> ValuePair(const TFilterNode &left, const TFilterNode &right)
    {
        TFilterValuePtr leftValue = Value(left);
        TFilterValuePtr rightValue = Value(right);
        const bool isLeftText = leftValue->Type() == TFilterType::Text;
        const bool isRightText = rightValue->Type() == TFilterType::Text;
        if (isLeftText && !isRightText) {
            if (left.Kind == TFilterNodeKind::Text)
                leftValue = NumberConstant(left, right);
            else
                rightValue = MakeAsText(std::move(rightValue));
        } else if (isRightText && !isLeftText) {
            if (right.Kind == TFilterNodeKind::Text)
                rightValue = NumberConstant(right, left);
            else
                leftValue = MakeAsText(std::move(leftValue));
        }
        return {std::move(leftValue), std::move(rightValue)};
    }

    /// A text constant, read as what a number or date is compared with.
    TFilterValuePtr NumberConstant(const TFilterNode &constant, const TFilterNode &other) const
    {
        if (const auto integer = ParseInt(constant.Text))
            return MakeConstant(*integer);
        if (const auto number = ParseDouble(constant.Text))
            return MakeConstant(*number);
        const QString text = QString::fromStdString(constant.Text);
        if (other.Kind != TFilterNodeKind::Name || !IsDate(FFields[FieldOf(other)].Type))
            Raise(constant, QStringLiteral("“%1”不是有效的数值").arg(text));
        try {
            return MakeConstant(double(VarToDateTime(text)));
        } catch (const Exception &) {
            Raise(constant, QStringLiteral("“%1”不是有效的日期").arg(text));
        }
    }

    const QString FText;
    const TCaseMode FMode;
    const bool FPartial;
    const QList<TPacketField> &FFields;
    std::vector<std::pair<int, TColumnKind>> FColumns;
};

} // namespace

TFilterExpression::TFilterExpression(const QString &text, TFilterOptions options)
    : FText(text), FOptions(options), FRoot(ParseFilter(text))
{
}

TBoundFilter TFilterExpression::Bind(const QList<TPacketField> &fields) const
{
    TBoundFilter bound;
    if (FRoot) {
        TFilterBinder binder(FText, FOptions, fields);
        bound.FCondition = binder.Condition(*FRoot);
        bound.FColumns = binder.TakeColumns();
    }
    return bound;
}

void TBoundFilter::CheckColumns(const TDataPacket &packet) const
{
    for (const auto &[column, kind] : FColumns)
        if (column >= packet.FieldCount() || packet.Column(column).Kind() != kind)
            throw EDatabaseError(QStringLiteral("过滤条件与数据包的字段不符"));
}

void TBoundFilter::Select(const TDataPacket &packet, std::vector<quint32> &rows) const
{
    const size_t count = size_t(packet.RowCount());
    quint32 block[BlockSize];
    if (!FCondition)
        rows.reserve(rows.size() + count);
    for (size_t begin = 0; begin < count; begin += BlockSize) {
        const size_t size = std::min(BlockSize, count - begin);
        std::iota(block, block + size, quint32(begin));
        Select(packet, {block, size}, rows);
    }
}

void TBoundFilter::Select(const TDataPacket &packet, std::span<const quint32> candidates,
                          std::vector<quint32> &rows) const
{
    if (!FCondition) {
        rows.insert(rows.end(), candidates.begin(), candidates.end());
        return;
    }
    CheckColumns(packet);
    quint8 truths[BlockSize];
    while (!candidates.empty()) {
        const auto block = candidates.first(std::min(BlockSize, candidates.size()));
        FCondition->Test({&packet, nullptr, block}, truths);
        for (size_t i = 0; i < block.size(); ++i)
            if (truths[i] == IsTrue)
                rows.push_back(block[i]);
        candidates = candidates.subspan(block.size());
    }
}

void TBoundFilter::Select(const TDataPacket &packet, const TRowOverlay &overlay,
                          std::span<const quint32> candidates, std::vector<quint32> &rows) const
{
    if (!FCondition || overlay.IsEmpty())
        return Select(packet, candidates, rows);
    CheckColumns(packet);
    quint32 bare[BlockSize];
    quint8 truths[BlockSize]; // of the bare rows
    while (!candidates.empty()) {
        const auto block = candidates.first(std::min(BlockSize, candidates.size()));
        const auto bareEnd =
            std::ranges::copy_if(block, bare, [&](quint32 row) { return !overlay.Find(row); }).out;
        FCondition->Test({&packet, nullptr, {bare, bareEnd}}, truths);
        const quint8 *truth = truths;
        for (const quint32 row : block) {
            const TRowValues *cover = overlay.Find(row);
            if (cover ? Matches(*cover) : *truth++ == IsTrue)
                rows.push_back(row);
        }
        candidates = candidates.subspan(block.size());
    }
}

bool TBoundFilter::Matches(const TRowReader &row) const
{
    if (!FCondition)
        return true;
    const quint32 only = 0;
    quint8 truth = IsFalse;
    FCondition->Test({nullptr, &row, {&only, 1}}, &truth);
    return truth == IsTrue;
}

} // namespace Korvane
