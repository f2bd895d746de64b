// SPDX-License-Identifier: MIT
#pragma once

#include "platform/core/Event.h"
#include "platform/forms/BorderStyle.h"
#include "platform/forms/ModalResult.h"

#include <QMainWindow>

namespace Korvane {

/// A window with controls. The parent is its owner and frees it; a form with one stays above it.
///
/// The main form of the application ends the program when it is closed. What the form owns is found by
/// name; the owner of a control is its parent or a parent of that.
class TForm : public QMainWindow
{
    Q_OBJECT
    Q_PROPERTY(QString Name READ Name WRITE SetName STORED false)
    Q_PROPERTY(qint64 Tag READ Tag WRITE SetTag)
    Q_PROPERTY(QString Caption READ Caption WRITE SetCaption)
    Q_PROPERTY(int ModalResult READ ModalResult WRITE SetModalResult STORED false)
    Q_PROPERTY(bool KeyPreview READ KeyPreview WRITE SetKeyPreview)
    Q_PROPERTY(TPosition Position READ Position WRITE SetPosition)
    Q_PROPERTY(Korvane::TBorderStyle BorderStyle READ BorderStyle WRITE SetBorderStyle)
    Q_PROPERTY(QIcon Icon READ Icon WRITE SetIcon)
    Q_PROPERTY(int Left READ Left WRITE SetLeft)
    Q_PROPERTY(int Top READ Top WRITE SetTop)
    Q_PROPERTY(int Width READ Width WRITE SetWidth)
    Q_PROPERTY(int Height READ Height WRITE SetHeight)
    Q_PROPERTY(bool Visible READ Visible WRITE SetVisible STORED false)
    Q_PROPERTY(bool Enabled READ Enabled WRITE SetEnabled)
    Q_PROPERTY(QWidget *ActiveControl READ ActiveControl WRITE SetActiveControl)

public:
    /// Where the form appears each time it is shown.
    enum TPosition {
        poDesigned,       ///< where Left and Top say
        poDefault,        ///< where the desktop puts it
        poScreenCenter,   ///< on the screen of the active window
        poMainFormCenter, ///< over the main form, or on the screen if that is not seen
        poOwnerFormCenter ///< over the form that owns it, else as poMainFormCenter
    };
    Q_ENUM(TPosition)
    /// What closing does.
    enum TCloseAction { caNone, caHide, caFree, caMinimize };
    Q_ENUM(TCloseAction)

    explicit TForm(QWidget *owner = nullptr);
    ~TForm() override;

    QString Name() const { return objectName(); }
    void SetName(const QString &name) { setObjectName(name); }
    qint64 Tag() const { return FTag; }
    void SetTag(qint64 tag) { FTag = tag; }
    QString Caption() const { return windowTitle(); }
    void SetCaption(const QString &caption) { setWindowTitle(caption); }
    QIcon Icon() const { return windowIcon(); }
    void SetIcon(const QIcon &icon) { setWindowIcon(icon); }

    /// Any other value than mrNone ends ShowModal when the running handler is through, unless OnCloseQuery or
    /// OnClose refuses.
    TModalResult ModalResult() const { return FModalResult; }
    void SetModalResult(TModalResult result);
    /// Shows the form, blocks all other windows until it has a result, and gives that. Closing by the frame
    /// and hiding give mrCancel, so does the end of the application. The form may be freed meanwhile. Raises
    /// if the form is visible or part of another.
    TModalResult ShowModal();
    bool IsModal() const { return FModal != nullptr; }

    /// Whether the form's OnKeyDown and OnKeyPress see all keys before the control with the keyboard.
    bool KeyPreview() const { return FKeyPreview; }
    void SetKeyPreview(bool preview) { FKeyPreview = preview; }
    TPosition Position() const { return FPosition; }
    void SetPosition(TPosition position) { FPosition = position; }
    TBorderStyle BorderStyle() const { return FBorderStyle; }
    void SetBorderStyle(TBorderStyle style);

    // In pixels; the size is without the frame. NOTE: resize() has no effect on a form that the user cannot
    // size while it is shown; these have.
    int Left() const { return x(); }
    void SetLeft(int left) { move(left, y()); }
    int Top() const { return y(); }
    void SetTop(int top) { move(x(), top); }
    int Width() const { return width(); }
    void SetWidth(int width) { SetSize({width, height()}); }
    int Height() const { return height(); }
    void SetHeight(int height) { SetSize({width(), height}); }
    void SetSize(const QSize &size);

    bool Visible() const { return isVisible(); }
    void SetVisible(bool visible) { visible ? Show() : Hide(); }
    bool Enabled() const { return isEnabled(); }
    void SetEnabled(bool enabled) { setEnabled(enabled); }

    /// The control of the form with the keyboard, or the one that gets it when the form is active again; the
    /// first in the tab order unless set.
    QWidget *ActiveControl() const;
    void SetActiveControl(QWidget *control);

    /// Shows the form above the others.
    void Show();
    void Hide() { hide(); }
    /// Asks OnCloseQuery and OnClose. A modal form gets the result mrCancel instead, and they are asked when
    /// the running handler is through.
    void Close();
    /// Frees the form when the running handler is through.
    void Release() { deleteLater(); }
    /// Whether OnCloseQuery has nothing against closing.
    virtual bool CloseQuery();

    /// What the form owns by that name, blind to the case of letters, the nearer before what lies in other
    /// controls, but nothing in other forms; null if there is none.
    QObject *FindComponent(const QString &name) const;
    template <class T> T *FindComponent(const QString &name) const
    {
        return qobject_cast<T *>(FindComponent(name));
    }

    TEvent<> OnShow, OnHide, OnActivate, OnDeactivate;
    TEvent<bool &> OnCloseQuery;
    TEvent<TCloseAction &> OnClose;
    /// The key is one of Qt::Key; 0 eats it, another value takes its place.
    TEvent<int &, Qt::KeyboardModifiers> OnKeyDown;
    /// After OnKeyDown, for keys that write something, Enter (13), Esc (27) and Backspace (8) too. A null
    /// character eats the key, another takes its place.
    TEvent<QChar &> OnKeyPress;

    void setVisible(bool visible) override;
    QMenu *createPopupMenu() override { return nullptr; }

protected:
    /// What closing does; fires OnClose.
    virtual void DoClose(TCloseAction &action);

    bool event(QEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void closeEvent(QCloseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    struct TModal;

    bool CloseModal();
    void Place();
    QWidget *PlaceOver() const;
    void FixSize();
    QWidget *FirstControl() const;
    bool PressDefaultButton();
    bool PressCancelButton();

    TModal *FModal = nullptr; // as long as ShowModal runs
    qint64 FTag = 0;
    TModalResult FModalResult = mrNone;
    TPosition FPosition = poDesigned;
    TBorderStyle FBorderStyle = bsSizeable;
    bool FKeyPreview = false;
    bool FIsClosing = false;
    bool FIsFixed = false;
};

using enum TForm::TPosition;
using enum TForm::TCloseAction;

} // namespace Korvane
