// SPDX-License-Identifier: MIT
#include "platform/data/Crc32.h"

#include <zlib.h>

namespace Korvane {

void TCrc32::Add(const void *bytes, size_t count)
{
    FValue = quint32(crc32_z(FValue, static_cast<const Bytef *>(bytes), count));
}

} // namespace Korvane
