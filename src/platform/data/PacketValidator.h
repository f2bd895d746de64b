// SPDX-License-Identifier: MIT
#pragma once

#include "platform/data/DataPacket.h"

namespace Korvane {

/// Checks one column of a packet. Every fault raises EDatabaseError with the field's name.
class TPacketValidator
{
public:
    TPacketValidator(const TPacketField &field, const TPacketColumn &column, qsizetype rowCount);

    /// Kind, lengths, the null bitmap's size, the outer offsets.
    void CheckShape() const;
    /// Every offset, every text, every NULL's value. CheckShape must have passed.
    void CheckCells() const;

private:
    void CheckLengths() const;
    void CheckOffsets() const;
    void CheckTexts() const;
    void CheckNulls() const;
    bool IsBlank(qsizetype row) const;
    [[noreturn]] void Raise(const char *fault) const;

    const TPacketField &FField;
    const TPacketColumn &FColumn;
    const size_t FRowCount;
};

/// Checks that a packet's marks belong to the last of so many rows. Raises EDatabaseError.
void CheckMarkShape(const TPacketMarks &marks, qsizetype rowCount);
/// Checks every mark: each record changes once, each insertion has a place of its own, each
/// modification of a delta follows its stored values. CheckMarkShape must have passed. Raises
/// EDatabaseError.
void CheckMarks(const TPacketMarks &marks);

/// Whether bytes are well-formed UTF-8: no overlong forms, no surrogates, nothing beyond
/// U+10FFFF.
bool IsUtf8(std::string_view bytes);

} // namespace Korvane
