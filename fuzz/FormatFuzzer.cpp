// SPDX-License-Identifier: MIT
// Format texts of any kind: they give a text or one of the library's own exceptions. The input is
// 8 bytes of a number and then the format in UTF-8.
#include "platform/core/Exceptions.h"
#include "platform/core/Format.h"
#include "platform/core/FormatDateTime.h"
#include "platform/core/FormatFloat.h"

#include <cstdint>
#include <cstring>

using namespace Korvane;

namespace {

template <class Action> void Try(Action action)
{
    try {
        action();
    } catch (const Exception &) {
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    double number = 0;
    if (size < sizeof number)
        return 0;
    std::memcpy(&number, data, sizeof number);
    const auto *text = reinterpret_cast<const char *>(data + sizeof number);
    const QString format = QString::fromUtf8(text, qsizetype(size - sizeof number));
    Try([&] { Format(format, {QStringLiteral("中文"), 12, number, qint64(-7), QChar(u'x'), QVariant()}); });
    Try([&] { Format(format, {number, 3, number, number, number}); });
    Try([&] { Format(format, {5, 2, 40000, -1}); });
    FormatFloat(format, number);
    Try([&] { FormatDateTime(format, TDateTime(number)); });
    FormatDateTime(format, TDateTime(45358.75)); // an afternoon within range has no reason to fail
    return 0;
}
