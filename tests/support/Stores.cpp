// SPDX-License-Identifier: MIT
#include "support/Stores.h"

#include "platform/core/Exceptions.h"

namespace Korvane {

const QList<TPacketField> &StoreFields()
{
    static const QList<TPacketField> fields = {{"CODE", ftString, 10}, {"QTY", ftInteger}};
    return fields;
}

TRowValues StoreRow(std::string_view code, std::optional<int> quantity)
{
    TRowValues row(2);
    row.SetText(0, code);
    if (quantity)
        row.SetInt(1, *quantity);
    return row;
}

std::string TextOfRow(const TRowReader &row)
{
    const std::string code = row.IsNull(0) ? "~" : std::string(row.GetText(0));
    return code + (row.IsNull(1) ? "~" : std::to_string(row.GetInt(1)));
}

std::vector<quint32> OrderOf(const TRecordStore &store)
{
    std::vector<quint32> order;
    if (!store.IsNaturalByNumber())
        order.assign(store.NaturalOrder().begin(), store.NaturalOrder().end());
    else
        for (quint32 record = 0; record < store.RecordLimit(); ++record)
            order.push_back(record);
    std::erase_if(order, [&](quint32 record) { return store.IsGone(record); });
    return order;
}

std::string TextOf(const TRecordStore &store)
{
    std::string text;
    for (const quint32 record : OrderOf(store))
        text += StatusMarks[store.Status(record)] + TextOfRow(store.RowOf(record));
    return text;
}

std::string DeltaOf(const TRecordStore &store)
{
    const TDataPacket delta = store.Delta();
    delta.ValidateFull();
    if (delta.Content() != TPacketContent::Delta)
        throw Exception(QStringLiteral("a delta has the content of another packet"));
    std::string text;
    for (qsizetype row = 0; row < delta.RowCount(); ++row)
        text += StatusMarks[delta.UpdateStatus(row)] + TextOfRow(TPacketRow(delta, row));
    return text;
}

std::unique_ptr<TRecordStore> Reloaded(const TRecordStore &store)
{
    return std::make_unique<TRecordStore>(TDataPacket::FromBytes(store.Data().ToBytes()));
}

} // namespace Korvane
