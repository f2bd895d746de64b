// SPDX-License-Identifier: MIT
// Parses a text as a filter and runs it over a few rows. It must be refused with a
// EDatabaseError, or select the same rows in bulk and one by one.
#include "platform/core/Exceptions.h"
#include "platform/data/DataPacket.h"
#include "platform/data/FilterExpression.h"

#include <cstdlib>

using namespace Korvane;

namespace {

TDataPacket Rows()
{
    TDataPacketBuilder builder({{QStringLiteral("CODE"), ftString, 10},
                                {QStringLiteral("QTY"), ftInteger},
                                {QStringLiteral("PRICE"), ftFloat},
                                {QStringLiteral("DAY"), ftDateTime}});
    for (int i = 0; i < 6; ++i) {
        if (i != 2)
            builder.AppendText(0, i % 2 ? "A1" : "北京 b*");
        if (i != 3)
            builder.AppendInt(1, i - 3);
        if (i != 4)
            builder.AppendDouble(2, i / 4.0);
        builder.AppendDouble(3, 45000 + i);
        builder.EndRow();
    }
    return std::move(builder).Build();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static const TDataPacket packet = Rows();
    const QString text = QString::fromUtf8(reinterpret_cast<const char *>(data), qsizetype(size));
    try {
        const TBoundFilter filter = TFilterExpression(text, foCaseInsensitive).Bind(packet.Fields());
        std::vector<quint32> bulk, single;
        filter.Select(packet, bulk);
        for (qsizetype i = 0; i < packet.RowCount(); ++i)
            if (filter.Matches(TPacketRow(packet, i)))
                single.push_back(quint32(i));
        if (bulk != single)
            std::abort();
    } catch (const EDatabaseError &) {
        // Refused, as it should be.
    }
    return 0;
}
