// SPDX-License-Identifier: MIT
// Reads bytes as a data packet. They must be refused, or make a packet that is whole and
// comes back from its own bytes, and a record store, with the packet's log if it has one, whose
// changes merge and cancel. They are read once more with the checksum put right, so that the
// fuzzer gets behind it.
#include "platform/core/Exceptions.h"
#include "platform/data/Crc32.h"
#include "platform/data/store/RecordStore.h"

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

void Require(bool holds)
{
    if (!holds)
        std::abort();
}

qsizetype PresentCount(const TRecordStore &store)
{
    qsizetype count = 0;
    for (quint32 record = 0; record < store.RecordLimit(); ++record) {
        Require(store.IsNaturalByNumber() || store.NaturalOrder()[store.NaturalPlace(record)] == record);
        count += store.IsPresent(record) ? 1 : 0;
    }
    return count;
}

/// A new record and a change, and all of the log undone or merged.
void ChangeStore(const TDataPacket &packet)
{
    TRecordStore store(packet);
    const quint32 first = store.IsNaturalByNumber() ? 0 : store.NaturalOrder()[0];
    const quint32 inserted = store.Insert(store.StoredValues(first), first);
    store.Delete(first);
    const TDataPacket data = store.Data();
    data.ValidateFull();
    const TRecordStore again(data);
    Require(again.ChangeCount() == store.ChangeCount() && PresentCount(again) == PresentCount(store));
    Require(again.Delta().ToBytes() == store.Delta().ToBytes());

    TRecordStore undone(data);
    while (undone.UndoLast() != TRecordStore::NoRecord)
        continue;
    TRecordStore cancelled(data);
    cancelled.CancelUpdates();
    Require(undone.Data().ToBytes() == cancelled.Data().ToBytes());
    store.MergeChangeLog();
    Require(store.IsPresent(inserted) && store.Data().RowCount() == PresentCount(store));
}

void Read(const QByteArray &bytes)
{
    TDataPacket packet;
    try {
        packet = TDataPacket::FromBytes(bytes);
    } catch (const EDatabaseError &) {
        return; // Refused, as it should be.
    }
    packet.ValidateFull();
    for (int field = 0; field < packet.FieldCount(); ++field)
        for (qsizetype row = 0; row < packet.RowCount(); ++row)
            (void)packet.Text(field, row);
    // A name that is no UTF-8 is repaired in reading, and does not come back as it was.
    const QByteArray again = packet.ToBytes();
    Require(TDataPacket::FromBytes(again).ToBytes() == again);
    Require(TRecordStore(packet).Data().ToBytes() == again);
    if (packet.RowCount() != 0)
        ChangeStore(packet);
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
