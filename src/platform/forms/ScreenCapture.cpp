// SPDX-License-Identifier: MIT
#include "platform/forms/ScreenCapture.h"

#include "platform/core/Exceptions.h"
#include "platform/graphics/Bitmap.h"

#include <QApplication>
#include <QImageWriter>
#include <QPainter>
#include <QPixmap>
#include <QScreen>
#include <QWidget>

namespace Korvane {

using namespace Qt::StringLiterals;

namespace {

/// What a screen shows of a rectangle; null if the desktop does not tell.
QPixmap GrabScreen(QScreen &screen, const QRect &rect)
{
    if (QGuiApplication::platformName() == "offscreen"_L1)
        return {}; // it has no screen, and would give what happens to lie in memory
    const QPoint corner = rect.topLeft() - screen.geometry().topLeft();
    return screen.grabWindow(0, corner.x(), corner.y(), rect.width(), rect.height());
}

void DrawOwnWindows(QPainter &painter, const QRect &rect)
{
    QWidgetList windows;
    for (QWidget *window : QApplication::topLevelWidgets())
        if (window->isVisible() && !window->isMinimized() && window->frameGeometry().intersects(rect))
            windows.append(window);
    // Qt does not know which window is above which, but for the active one.
    std::stable_partition(windows.begin(), windows.end(),
                          [](const QWidget *w) { return !w->isActiveWindow(); });
    for (QWidget *window : windows)
        painter.drawPixmap(QRect(window->geometry().topLeft() - rect.topLeft(), window->size()),
                           window->grab());
}

QImage PictureOf(const QRect &rect)
{
    if (rect.isEmpty())
        return {};
    QImage picture(rect.size(), QImage::Format_RGB32);
    if (picture.isNull())
        throw EOutOfResources(u"内存不足，无法截取 %1×%2 的图片"_s.arg(rect.width()).arg(rect.height()));
    picture.fill(Qt::black);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    for (QScreen *screen : QGuiApplication::screens()) {
        const QRect part = rect & screen->geometry();
        if (part.isEmpty())
            continue;
        const QPixmap shown = GrabScreen(*screen, part);
        if (shown.isNull()) {
            DrawOwnWindows(painter, rect);
            break;
        }
        painter.drawPixmap(part.translated(-rect.topLeft()), shown, shown.rect());
    }
    return picture;
}

QRect ActiveWindowRect()
{
    const QWidget *window = QApplication::activeWindow();
    if (window == nullptr)
        throw Exception(u"没有活动窗口，无法截图"_s);
    return window->frameGeometry();
}

} // namespace

std::unique_ptr<TBitmap> CaptureScreenRect(const QRect &rect)
{
    auto bitmap = std::make_unique<TBitmap>();
    bitmap->SetImage(PictureOf(rect));
    return bitmap;
}

std::unique_ptr<TBitmap> CaptureActiveWindow() { return CaptureScreenRect(ActiveWindowRect()); }

void CaptureActiveWindowA(const QString &fileName)
{
    QImageWriter writer(fileName, "jpeg");
    writer.setQuality(90);
    if (!writer.write(PictureOf(ActiveWindowRect())))
        throw EFileError(u"无法保存图片文件：%1\n%2"_s.arg(fileName, writer.errorString()));
}

} // namespace Korvane
