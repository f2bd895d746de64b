// SPDX-License-Identifier: MIT
#pragma once

#include "platform/data/store/RowOverlay.h"

#include <QFlags>

namespace Korvane {

class TFilterCondition;
struct TFilterNode;

enum TFilterOption {
    foCaseInsensitive = 1,  ///< texts compare blind to the case of letters
    foNoPartialCompare = 2, ///< a "*" at the end of a text constant is an ordinary character
};
Q_DECLARE_FLAGS(TFilterOptions, TFilterOption)
Q_DECLARE_OPERATORS_FOR_FLAGS(TFilterOptions)

/// A filter bound to the fields of a table, ready to look at rows. A cheap handle. An empty
/// one is true for every row.
class TBoundFilter
{
public:
    TBoundFilter() = default;

    bool IsEmpty() const { return !FCondition; }

    /// Appends the numbers of the packet's rows for which the filter is true, in order. The
    /// packet must have the fields that the filter was bound to, or EDatabaseError is raised.
    void Select(const TDataPacket &packet, std::vector<quint32> &rows) const;
    /// The same for some of the packet's rows, in the order given.
    void Select(const TDataPacket &packet, std::span<const quint32> candidates,
                std::vector<quint32> &rows) const;
    /// The same for rows of a packet with others lying over it and behind its last one.
    void Select(const TDataPacket &packet, const TRowOverlay &overlay, std::span<const quint32> candidates,
                std::vector<quint32> &rows) const;
    /// Whether the filter is true for one row. Its columns are numbered as the bound fields.
    bool Matches(const TRowReader &row) const;

private:
    friend class TFilterExpression;

    void CheckColumns(const TDataPacket &packet) const;

    std::shared_ptr<const TFilterCondition> FCondition;
    std::vector<std::pair<int, TColumnKind>> FColumns; // those that the filter reads
};

/// A filter text, parsed:
///
///     TFilterExpression filter("TableCode='ORDERS' and not (Size < 10 or Remark is null)");
///     filter.Bind(packet.Fields()).Select(packet, rows);
///
/// Names stand bare, in [brackets] or in "quotes"; texts in single quotes, doubled inside.
/// There are = <> < > <= >=, like with % and _, in (…), is null, is not null, = null,
/// <> null, and, or, not, + - * / and brackets, true and false for boolean fields. A text
/// constant that ends in "*" equals all texts that begin so. A comparison with NULL is
/// unknown, and a row is selected only where the whole is true. A text constant next to a
/// number field is read as a number, next to a date field as a date; a number next to a
/// text field is taken as its text.
///
/// All faults raise EDatabaseError with the filter text and the position.
class TFilterExpression
{
public:
    /// An empty one.
    TFilterExpression() = default;
    explicit TFilterExpression(const QString &text, TFilterOptions options = {});

    bool IsEmpty() const { return !FRoot; }
    QString Text() const { return FText; }
    TFilterOptions Options() const { return FOptions; }

    /// Looks the names up, blind to the case of letters, and settles all types.
    TBoundFilter Bind(const QList<TPacketField> &fields) const;

private:
    QString FText;
    TFilterOptions FOptions;
    std::shared_ptr<const TFilterNode> FRoot;
};

} // namespace Korvane
