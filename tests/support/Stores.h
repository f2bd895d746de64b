// SPDX-License-Identifier: MIT
#pragma once

#include "platform/data/store/RecordStore.h"
#include "support/Packets.h"

#include <optional>

namespace Korvane {

/// The marks of records in the texts below, by TUpdateStatus.
inline constexpr char StatusMarks[] = " *+-";

/// The fields of the stores that tests make: CODE and QTY.
const QList<TPacketField> &StoreFields();
TRowValues StoreRow(std::string_view code, std::optional<int> quantity);
/// Such a row without blanks: "A5", "A~" if its quantity is NULL.
std::string TextOfRow(const TRowReader &row);

/// The records in natural order that are not gone.
std::vector<quint32> OrderOf(const TRecordStore &store);
/// They in one line, each with its mark: " A1*B7-C3".
std::string TextOf(const TRecordStore &store);
/// The delta in one line; a modification is its stored values, and the changed ones: " B2*~7".
std::string DeltaOf(const TRecordStore &store);
/// What a store becomes that goes through the bytes of its data.
std::unique_ptr<TRecordStore> Reloaded(const TRecordStore &store);

} // namespace Korvane
