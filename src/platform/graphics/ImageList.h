// SPDX-License-Identifier: MIT
#pragma once

#include "platform/core/Component.h"
#include "platform/core/Event.h"

#include <QIcon>

class QPainter;
class QPixmap;
class QPoint;
class QRect;

namespace Korvane {

class TGraphic;

/// Pictures of one size, by number, for actions, tool bars and the titles of grids. The size is in
/// device-independent pixels: a picture that holds more pixels is drawn with them where the screen has
/// more. A number that the list does not have, -1 above all, means no picture.
class TImageList : public TComponent
{
    Q_OBJECT
    Q_PROPERTY(int Width READ Width WRITE SetWidth)
    Q_PROPERTY(int Height READ Height WRITE SetHeight)
    Q_PROPERTY(int Count READ Count STORED false)

public:
    using TComponent::TComponent;

    int Width() const { return FSize.width(); }
    int Height() const { return FSize.height(); }
    QSize Size() const { return FSize; }
    /// The pictures stay and are drawn in the new size. Raises Exception for less than 1.
    void SetWidth(int width) { SetSize({width, FSize.height()}); }
    void SetHeight(int height) { SetSize({FSize.width(), height}); }
    void SetSize(QSize size);

    int Count() const { return int(FIcons.size()); }
    /// All give the new picture's number.
    int Add(const QIcon &icon);
    int Add(const QPixmap &pixmap) { return Add(QIcon(pixmap)); }
    /// A TIcon with all its sizes, any other picture as its pixels. Raises EInvalidGraphic for one that has
    /// none.
    int Add(const TGraphic &graphic);
    /// Both raise EListError for a number that is not there; those behind a deleted one move up.
    void Replace(int index, const QIcon &icon);
    void Delete(int index);
    void Clear();

    /// Null for a number that is not there.
    QIcon Icon(int index) const;
    /// In the middle of the rectangle, in the list's size or smaller; grey when not enabled.
    void Draw(QPainter &painter, const QRect &rect, int index, bool enabled = true) const;
    /// In the list's size at the place of its upper left corner.
    void Draw(QPainter &painter, QPoint place, int index, bool enabled = true) const;

    TEvent<> OnChange;

Q_SIGNALS:
    /// Pictures or the size have changed; for the controls that show them.
    void Changed();

private:
    void CheckIndex(int index) const;
    void NotifyChange();

    QSize FSize{16, 16};
    QList<QIcon> FIcons;
};

} // namespace Korvane
