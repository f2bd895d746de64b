// SPDX-License-Identifier: MIT
#pragma once

#include "platform/data/LikePattern.h"
#include "platform/data/NumberText.h"
#include "platform/data/RowReader.h"

#include <deque>

namespace Korvane {

/// The rows that a filter looks at in one go: some of a packet, or the one of a reader.
struct TFilterBlock
{
    const TDataPacket *Packet = nullptr;
    const TRowReader *Reader = nullptr;
    std::span<const quint32> Rows; ///< of the packet; one row of any number for a reader
};

/// The truth values of three-valued logic, ordered so that "and" is the lesser and "or" the
/// greater of two.
enum TTruth : quint8 { IsFalse, IsUnknown, IsTrue };

enum class TFilterType : quint8 { Int, Double, Text };

/// The values of a node for the rows of a block.
struct TFilterValues
{
    // Only the one of the node's type is filled.
    TPodBuffer<qint64> Ints;
    TPodBuffer<double> Doubles;
    TPodBuffer<std::string_view> Texts;
    TPodBuffer<quint8> Nulls;            ///< empty when there is none
    size_t Stride = 1;                   ///< 0 for a constant, which stands here once
    std::deque<TNumberText> NumberTexts; ///< what texts made of numbers refer to

    bool IsNull(size_t row) const { return !Nulls.IsEmpty() && Nulls[row * Stride] != 0; }
};

/// A node that has a value for each row.
class TFilterValue
{
public:
    explicit TFilterValue(TFilterType type) : FType(type) {}
    virtual ~TFilterValue() = default;

    TFilterType Type() const { return FType; }
    virtual void Fetch(const TFilterBlock &block, TFilterValues &values) const = 0;

private:
    const TFilterType FType;
};

/// A node that is true, false or unknown for each row.
class TFilterCondition
{
public:
    virtual ~TFilterCondition() = default;
    /// Writes one truth value for each row of the block.
    virtual void Test(const TFilterBlock &block, quint8 *truths) const = 0;
};

using TFilterValuePtr = std::unique_ptr<TFilterValue>;
using TFilterConditionPtr = std::unique_ptr<TFilterCondition>;

TFilterValuePtr MakeColumn(int column, TColumnKind kind);
TFilterValuePtr MakeConstant(qint64 value);
TFilterValuePtr MakeConstant(double value);
TFilterValuePtr MakeConstant(std::string value);
TFilterValuePtr MakeAsDouble(TFilterValuePtr number);
TFilterValuePtr MakeAsText(TFilterValuePtr number);
/// "+", "-", "*" or "/" of two values of one number type, "/" of floats only. What has no
/// result, division by 0 and integers out of range, is NULL.
TFilterValuePtr MakeArithmetic(char operation, TFilterValuePtr left, TFilterValuePtr right);

TFilterConditionPtr MakeTruth(bool value);
TFilterConditionPtr MakeIsNull(TFilterValuePtr value);
/// Whether an integer is other than 0.
TFilterConditionPtr MakeIsNonZero(TFilterValuePtr integer);
/// True where the comparison has one of the outcomes. Two texts or two numbers.
TFilterConditionPtr MakeCompare(int outcomes, TFilterValuePtr left, TFilterValuePtr right, TCaseMode mode);
TFilterConditionPtr MakeStartsWith(TFilterValuePtr text, std::string start, TCaseMode mode);
TFilterConditionPtr MakeLike(TFilterValuePtr text, TFilterValuePtr pattern, TCaseMode mode);
TFilterConditionPtr MakeLike(TFilterValuePtr text, const TLikePattern &pattern);
/// Patterns of filters know "%" and "_" alone.
TLikeSyntax LikeSyntaxFor(TCaseMode mode);
/// Whether a value is one of many constants.
TFilterConditionPtr MakeInSet(TFilterValuePtr integer, std::vector<qint64> values);
TFilterConditionPtr MakeInSet(TFilterValuePtr text, std::vector<std::string> values, TCaseMode mode);
TFilterConditionPtr MakeNot(TFilterConditionPtr condition);
TFilterConditionPtr MakeAnd(std::vector<TFilterConditionPtr> conditions);
TFilterConditionPtr MakeOr(std::vector<TFilterConditionPtr> conditions);

} // namespace Korvane
