// SPDX-License-Identifier: MIT
#include "platform/graphics/ImageList.h"

#include "platform/graphics/Icon.h"

#include <QPainter>

namespace Korvane {

using namespace Qt::StringLiterals;

void TImageList::SetSize(QSize size)
{
    if (size.width() < 1 || size.height() < 1)
        throw Exception(u"图像列表的大小不能是 %1×%2"_s.arg(size.width()).arg(size.height()));
    if (size == FSize)
        return;
    FSize = size;
    NotifyChange();
}

int TImageList::Add(const QIcon &icon)
{
    FIcons.append(icon);
    NotifyChange();
    return Count() - 1;
}

int TImageList::Add(const TGraphic &graphic)
{
    if (const auto *icon = dynamic_cast<const TIcon *>(&graphic); icon && !icon->Empty())
        return Add(icon->ToQIcon());
    const QImage image = graphic.ToImage();
    if (image.isNull())
        throw EInvalidGraphic(u"图像列表不能加入没有像素的图片"_s);
    return Add(QPixmap::fromImage(image));
}

void TImageList::CheckIndex(int index) const
{
    if (index < 0 || index >= Count())
        throw EListError(u"图像列表没有第 %1 个图像，共有 %2 个"_s.arg(index).arg(Count()));
}

void TImageList::Replace(int index, const QIcon &icon)
{
    CheckIndex(index);
    FIcons[index] = icon;
    NotifyChange();
}

void TImageList::Delete(int index)
{
    CheckIndex(index);
    FIcons.removeAt(index);
    NotifyChange();
}

void TImageList::Clear()
{
    if (FIcons.isEmpty())
        return;
    FIcons.clear();
    NotifyChange();
}

QIcon TImageList::Icon(int index) const { return FIcons.value(index); }

void TImageList::Draw(QPainter &painter, const QRect &rect, int index, bool enabled) const
{
    QRect place(QPoint(), FSize.boundedTo(rect.size()));
    place.moveCenter(rect.center());
    Icon(index).paint(&painter, place, Qt::AlignCenter, enabled ? QIcon::Normal : QIcon::Disabled);
}

void TImageList::Draw(QPainter &painter, QPoint place, int index, bool enabled) const
{
    Draw(painter, QRect(place, FSize), index, enabled);
}

void TImageList::NotifyChange()
{
    OnChange();
    Q_EMIT Changed();
}

} // namespace Korvane
