// SPDX-License-Identifier: MIT
#pragma once

#include "platform/core/Cursor.h"
#include "platform/core/Event.h"

#include <QList>
#include <QRect>

class QWidget;

namespace Korvane {

class TForm;

/// What the user sees as a whole: the cursor, the forms, the size of the screen.
class TScreen
{
public:
    TScreen(const TScreen &) = delete;
    TScreen &operator=(const TScreen &) = delete;

    /// The cursor over all windows; crDefault leaves it to each control. THourGlass sets it for a block.
    TCursor Cursor() const { return ScreenCursor(); }
    void SetCursor(TCursor cursor) { SetScreenCursor(cursor); }

    /// The form of the active window; null if that is no form, or none is active.
    TForm *ActiveForm() const;
    /// The control with the keyboard; null if there is none.
    QWidget *ActiveControl() const;

    /// All forms that exist, in the order of their creation.
    const QList<TForm *> &Forms() const { return FForms; }
    qsizetype FormCount() const { return FForms.size(); }

    /// Of the first screen, in pixels. Need the application object.
    int Width() const;
    int Height() const;
    /// What panels and docks of the desktop leave of it.
    QRect WorkArea() const;

    /// When ActiveForm has changed.
    TEvent<> OnActiveFormChange;

private:
    friend class TForm;
    friend TScreen &Screen();
    TScreen() = default;
    void Add(TForm *form);
    void Remove(TForm *form);
    /// Fires OnActiveFormChange if it is another form than last time.
    void CheckActiveForm();

    QList<TForm *> FForms;
    const TForm *FLastActive = nullptr;
};

TScreen &Screen();

} // namespace Korvane
