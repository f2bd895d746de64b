// SPDX-License-Identifier: MIT
#pragma once

#include "platform/data/DataPacket.h"

#include <QVariant>

#include <functional>

namespace Korvane {

/// A packet from literals. An invalid QVariant is NULL; the others are appended by their own
/// type, so that a value may widen its column as a driver's would.
///
///     PacketOf({{"CODE", ftString, 10}, {"QTY", ftInteger}}, {{"A1", 5}, {"A2", {}}})
TDataPacket PacketOf(const QList<TPacketField> &fields, const QList<QVariantList> &rows);

/// A whole packet as text for comparison: the fields with their types, then a line per row,
/// with "|" between the cells, "~" for NULL and blobs as "0x" and digits.
///
///     CODE:string(10)|QTY:integer
///     A1|5
///     A2|~
///
/// A log stands behind a line of its own, each entry with its mark and, where it goes with its
/// records, the number of the row that it changes or the place of the insertion:
///
///     -- log
///     modified 0: A1|6
///     inserted 2: A3|7
QString TextOf(const TDataPacket &packet);

/// The packet's rows alone, some of them by number.
QString TextOfRows(const TDataPacket &packet, const std::vector<quint32> &rows);

/// A short name of a field type.
QString NameOf(TFieldType type);

/// What a call raises, as "class: message" of the library's exceptions; "nothing" if it
/// raises none.
QString RaisedBy(const std::function<void()> &call);

} // namespace Korvane
