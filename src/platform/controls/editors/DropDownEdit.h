// SPDX-License-Identifier: MIT
#pragma once

#include "platform/core/Event.h"
#include "platform/data/dataset/Field.h"

#include <QAbstractButton>
#include <QFrame>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMouseEvent>
#include <QScreen>
#include <QStyle>
#include <QStyleOption>
#include <QStylePainter>

namespace Korvane {

/// The arrow on the right of a line that has something to drop down.
class TDropDownButton : public QAbstractButton
{
public:
    explicit TDropDownButton(QWidget *parent) : QAbstractButton(parent)
    {
        setFocusPolicy(Qt::NoFocus);
        setCursor(Qt::ArrowCursor);
    }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QStylePainter painter(this);
        QStyleOption option;
        option.initFrom(this);
        option.state |= isDown() ? QStyle::State_Sunken : QStyle::State_Raised;
        painter.fillRect(rect(), palette().color(QPalette::Button));
        painter.setPen(palette().color(QPalette::Mid));
        painter.drawLine(rect().topLeft(), rect().bottomLeft());
        const int side = qMin(width(), height()) * 2 / 3;
        option.rect = QStyle::alignedRect(layoutDirection(), Qt::AlignCenter, {side, side}, rect());
        painter.drawPrimitive(QStyle::PE_IndicatorArrowDown, option);
    }
};

/// What drops down from a line. Esc, F4, Alt+Up and a click elsewhere close it.
class TDropDownFrame : public QFrame
{
public:
    TDropDownFrame(QLineEdit &line, const QWidget &button)
        : QFrame(&line, Qt::Popup), FLine(line), FButton(button)
    {
        setAttribute(Qt::WA_WindowPropagation); // font and colours are the grid's
        setFrameStyle(QFrame::Box | QFrame::Plain);
    }

    /// Under the line, or over it where the screen ends.
    void Open(QSize size)
    {
        const QRect screen = FLine.screen()->availableGeometry();
        size = size.boundedTo(screen.size());
        const QPoint under = FLine.mapToGlobal(QPoint(0, FLine.height())),
                     over = FLine.mapToGlobal(QPoint(0, 0));
        QPoint place = under;
        if (place.y() + size.height() > screen.bottom() + 1 && over.y() - size.height() >= screen.top())
            place.setY(over.y() - size.height());
        place.setX(qBound(screen.left(), place.x(), screen.right() + 1 - size.width()));
        place.setY(qBound(screen.top(), place.y(), screen.bottom() + 1 - size.height()));
        setAttribute(Qt::WA_NoMouseReplay, false);
        setGeometry(QRect(place, size));
        show();
    }

    /// Does what a key means here; false for a key without a meaning.
    virtual bool TakeKey(QKeyEvent &key)
    {
        const bool closes = key.key() == Qt::Key_Escape || key.key() == Qt::Key_F4 ||
                            (key.key() == Qt::Key_Up && key.modifiers() == Qt::AltModifier);
        if (closes)
            hide();
        return closes;
    }

protected:
    QLineEdit &Line() const { return FLine; }

    void keyPressEvent(QKeyEvent *event) override
    {
        if (!TakeKey(*event))
            QFrame::keyPressEvent(event);
    }
    void mousePressEvent(QMouseEvent *event) override
    {
        // The click that closes it must not press the button, which would open it again.
        const QRect button(FButton.mapToGlobal(QPoint(0, 0)), FButton.size());
        if (button.contains(event->globalPosition().toPoint()))
            setAttribute(Qt::WA_NoMouseReplay);
        QFrame::mousePressEvent(event);
    }

private:
    QLineEdit &FLine;
    const QWidget &FButton;
};

/// A line in a cell with a button that drops something down. It takes the wheel and does nothing.
class TDropDownEdit : public QLineEdit
{
public:
    TDropDownEdit(const TField &field, QWidget *parent)
        : QLineEdit(parent), FButton(new TDropDownButton(this))
    {
        setFrame(false);
        setAutoFillBackground(true);
        setAlignment((field.Alignment() & Qt::AlignHorizontal_Mask) | Qt::AlignVCenter);
        setAccessibleName(field.DisplayLabel());
        connect(FButton, &QAbstractButton::pressed, this,
                [this] { IsDropped() ? FPopup->hide() : OnDrop(); });
        PlaceButton();
    }

    QAbstractButton &Button() const { return *FButton; }
    /// Null for none. The line, being its parent, owns it.
    void SetPopup(TDropDownFrame *popup) { FPopup = popup; }
    bool IsDropped() const { return FPopup && FPopup->isVisible(); }
    void HideButton()
    {
        FButton->hide();
        PlaceButton();
    }
    /// All keys are its own while something is dropped down.
    bool KeepsKey(const QKeyEvent &key) const { return IsDropped() || LineKeepsKey(*this, key); }

    /// The button was pressed.
    TEvent<> OnDrop;

protected:
    void keyPressEvent(QKeyEvent *event) override
    {
        if (!IsDropped() || !FPopup->TakeKey(*event))
            QLineEdit::keyPressEvent(event);
    }
    void wheelEvent(QWheelEvent *event) override { event->accept(); }
    void hideEvent(QHideEvent *event) override
    {
        if (FPopup)
            FPopup->hide();
        QLineEdit::hideEvent(event);
    }
    void resizeEvent(QResizeEvent *event) override
    {
        QLineEdit::resizeEvent(event);
        PlaceButton();
    }
    void changeEvent(QEvent *event) override
    {
        QLineEdit::changeEvent(event);
        if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange)
            PlaceButton();
    }

private:
    void PlaceButton()
    {
        const int side = FButton->isHidden() ? 0 : qMin(width() / 2, qMax(16, fontMetrics().height()));
        setTextMargins(0, 0, side, 0);
        FButton->setGeometry(width() - side, 0, side, height());
    }

    TDropDownButton *const FButton;
    TDropDownFrame *FPopup = nullptr;
};

} // namespace Korvane
