// SPDX-License-Identifier: MIT
// Reads a picture from the input and draws it. Nothing but an EInvalidGraphic may come of it.
#include "platform/graphics/Graphic.h"
#include "platform/graphics/GraphicFormats.h"

#include <QGuiApplication>
#include <QImage>
#include <QPainter>

using namespace Korvane;

/// The list of fonts is kept to the end.
extern "C" const char *__lsan_default_suppressions() { return "leak:libfontconfig\n"; }

namespace {

/// Fonts are there for the whole run, without a window; what decoders dislike is not told.
void SetUp()
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
    static int count = 1;
    static char name[] = "fuzz_graphic";
    static char *arguments[] = {name, nullptr};
    static const QGuiApplication application(count, arguments);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    [[maybe_unused]] static const bool isSetUp = (SetUp(), true);
    try {
        const auto graphic = ReadGraphic(QByteArray(reinterpret_cast<const char *>(data), qsizetype(size)));
        QImage canvas(32, 32, QImage::Format_ARGB32_Premultiplied);
        QPainter painter(&canvas);
        graphic->Draw(painter, canvas.rect());
        if (WriteWithHeader(*graphic).isEmpty())
            abort();
    } catch (const EInvalidGraphic &) {
    }
    return 0;
}
