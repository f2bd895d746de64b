// SPDX-License-Identifier: MIT
// Reads bytes as a data packet. They must be refused, or make a packet that is whole and is
// comes back from its own bytes. They are read once more with the checksum put right, so that
// the fuzzer gets behind it.
#include "platform/core/Exceptions.h"
#include "platform/data/Crc32.h"
#include "platform/data/DataPacket.h"

#include <QtEndian>

#include <cstdlib>

using namespace Korvane;

namespace {

constexpr qsizetype ChecksumSize = 4;

void PutChecksumRight(QByteArray &bytes)
{
    TCrc32 crc;
    crc.Add(bytes.constData(), size_t(bytes.size() - ChecksumSize));
    qToLittleEndian(crc.Value(), bytes.data() + bytes.size() - ChecksumSize);
}

void Read(const QByteArray &bytes)
{
    try {
        const TDataPacket packet = TDataPacket::FromBytes(bytes);
        packet.ValidateFull();
        for (int field = 0; field < packet.FieldCount(); ++field)
            for (qsizetype row = 0; row < packet.RowCount(); ++row)
                (void)packet.Text(field, row);
        // A name that is no UTF-8 is repaired in reading, and does not come back as it was.
        const QByteArray again = packet.ToBytes();
        if (TDataPacket::FromBytes(again).ToBytes() != again)
            std::abort();
    } catch (const EDatabaseError &) {
        // Refused, as it should be.
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    QByteArray bytes(reinterpret_cast<const char *>(data), qsizetype(size));
    Read(bytes);
    if (bytes.size() > ChecksumSize) {
        PutChecksumRight(bytes);
        Read(bytes);
    }
    return 0;
}
