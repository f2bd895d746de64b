// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

namespace Korvane {

/// The CRC-32 of ISO 3309 (polynomial 0xEDB88320, reflected) over bytes that come piece by piece.
class TCrc32
{
public:
    void Add(const void *bytes, size_t count);
    quint32 Value() const { return FValue; }

private:
    quint32 FValue = 0;
};

} // namespace Korvane
