// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <memory>
#include <string>
#include <vector>

namespace Korvane {

enum class TFilterNodeKind : quint8 {
    Name,
    Int,
    Double,
    Text,
    Boolean,
    Add,
    Subtract,
    Multiply,
    Divide,
    Compare,
    IsNull,
    Like,
    In,
    Not,
    And,
    Or
};

/// Which outcomes of a comparison make it true.
enum TCompareOutcome : quint8 { coLess = 1, coEqual = 2, coGreater = 4 };

/// A node of a filter text's syntax tree.
struct TFilterNode
{
    TFilterNodeKind Kind;
    qsizetype Position;    ///< 1-based, where the node's text begins
    int Depth = 1;         ///< of the tree below, this node included
    QString Name = {};     ///< Name: the field's name
    std::string Text = {}; ///< Text: the constant in UTF-8
    qint64 Int = 0;        ///< Int: the constant; Boolean: 0 or 1; Compare: the outcomes that are true
    double Double = 0;     ///< Double: the constant
    std::vector<std::unique_ptr<TFilterNode>> Children = {};
};

/// Parses a filter text. Null for a blank one. Raises EDatabaseError.
///
///     condition  = and-part { OR and-part }
///     and-part   = not-part { AND not-part }
///     not-part   = [ NOT ] ( test | value )
///     test       = value ( = <> < > <= >= ) value | value IS [ NOT ] NULL | value [ NOT ] LIKE value
///                | value [ NOT ] IN ( value { , value } )
///     value      = sums and products of names, [names], "names", 'texts', numbers, TRUE, FALSE
///                  and conditions in brackets
///
/// "= NULL" and "<> NULL" mean the tests for NULL; a NULL in an IN list is one, too.
std::unique_ptr<TFilterNode> ParseFilter(const QString &text);

/// Raises the EDatabaseError for a fault in a filter text.
[[noreturn]] void RaiseFilterError(const QString &text, qsizetype position, const QString &fault);

} // namespace Korvane
