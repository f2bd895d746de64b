// SPDX-License-Identifier: MIT
#pragma once

#include "platform/data/DataPacket.h"

class QIODevice;

namespace Korvane {

/// The rows of a packet as an aligned table, numbers to the right. Dates stand in the short
/// form; of a blob only the size is told.
QString RowsAsTable(const TDataPacket &packet);

/// Writes a packet as CSV, the names of its fields first. Dates are as in the table, a blob is
/// text of hexadecimal digits. Raises EFileError when the device refuses.
void WriteRowsAsCsv(const TDataPacket &packet, QIODevice &device);

} // namespace Korvane
