// SPDX-License-Identifier: MIT
#include "platform/forms/Form.h"

#include "platform/core/Cursor.h"
#include "platform/core/Exceptions.h"
#include "platform/forms/Application.h"
#include "platform/forms/KeyPreview.h"
#include "platform/forms/Screen.h"

#include <QAbstractEventDispatcher>
#include <QCloseEvent>
#include <QEventLoop>
#include <QKeyEvent>
#include <QPushButton>
#include <QScopeGuard>
#include <QScreen>
#include <QWindow>

#include <utility>

namespace Korvane {

using namespace Qt::StringLiterals;

/// One run of ShowModal. It stands on the stack, so that it is there when the form is gone.
struct TForm::TModal
{
    TModalResult Result = mrNone;
    bool IsOver = false;

    void End(TModalResult result)
    {
        Result = result == mrNone ? mrCancel : result;
        IsOver = true;
    }
};

namespace {

/// The form that a control lies in directly.
const TForm *FormOf(const QWidget *control)
{
    while (control != nullptr && qobject_cast<const TForm *>(control) == nullptr)
        control = control->isWindow() ? nullptr : control->parentWidget();
    return static_cast<const TForm *>(control);
}

bool CanBePressed(const QPushButton &button) { return button.isEnabled() && button.isVisible(); }

} // namespace

TForm::TForm(QWidget *owner) : QMainWindow(owner)
{
    TKeyPreview::Install();
    Screen().Add(this);
}

TForm::~TForm()
{
    Screen().Remove(this);
    if (FModal != nullptr)
        FModal->End(FModalResult);
    if (TApplication *application = TApplication::Instance())
        application->HandleFormGone(this);
}

// ---- modal

void TForm::SetModalResult(TModalResult result) { FModalResult = result; }

TModalResult TForm::ShowModal()
{
    if (isVisible() || !isWindow() || FModal != nullptr)
        throw Exception(u"窗口“%1”已经显示，不能再作为对话框打开"_s.arg(Caption()));
    const TCursor cursor = ScreenCursor();
    SetScreenCursor(crDefault); // what waits for the user shows no hourglass
    const QPointer<QWidget> before(QApplication::activeWindow());
    const QPointer<TForm> self(this);
    TModal modal;
    const auto end = qScopeGuard([this, &self, &before, cursor] {
        if (self) {
            FModal = nullptr;
            hide();
            setWindowModality(Qt::NonModal);
        }
        if (before)
            before->activateWindow();
        SetScreenCursor(cursor);
    });
    FModal = &modal;
    FModalResult = mrNone;
    setWindowModality(Qt::ApplicationModal);
    winId();
    if (before && windowHandle()->transientParent() == nullptr)
        windowHandle()->setTransientParent(before->windowHandle());
    Show();

    // NOTE: the result is looked at between two events and not in an event of its own, which a box that the
    // handler shows would handle too.
    QEventLoop loop;
    for (const TApplication *application = TApplication::Instance();;) {
        if (!modal.IsOver && application != nullptr && application->Terminated())
            modal.End(mrCancel);
        if (modal.IsOver)
            return modal.Result;
        if (FModalResult == mrNone) {
            loop.processEvents(QEventLoop::WaitForMoreEvents | QEventLoop::DialogExec);
            continue;
        }
        try {
            CloseModal();
        } catch (const std::exception &error) {
            if (TApplication::Instance() == nullptr)
                throw;
            TApplication::Instance()->HandleException(error);
        }
    }
}

/// Ends ShowModal unless a handler refuses or raises.
bool TForm::CloseModal()
{
    const QPointer<TForm> self(this);
    TModal &modal = *FModal;
    auto refuse = qScopeGuard([this, &self] {
        if (self)
            FModalResult = mrNone;
    });
    if (!CloseQuery() || !self)
        return !self;
    TCloseAction action = caHide;
    DoClose(action);
    if (!self || action == caNone || FModalResult == mrNone)
        return !self;
    refuse.dismiss();
    if (action == caFree)
        Release();
    modal.End(FModalResult);
    return true;
}

// ---- close

void TForm::Close()
{
    if (FModal != nullptr)
        FModalResult = mrCancel;
    else
        close();
}

bool TForm::CloseQuery()
{
    bool mayClose = true;
    OnCloseQuery(mayClose);
    return mayClose;
}

void TForm::DoClose(TCloseAction &action) { OnClose(action); }

void TForm::closeEvent(QCloseEvent *event)
{
    event->ignore();
    if (FIsClosing)
        return;
    const QPointer<TForm> self(this);
    const auto end = qScopeGuard([this, &self] {
        if (self)
            FIsClosing = false;
    });
    FIsClosing = true;
    if (FModal != nullptr) {
        FModalResult = mrCancel;
        event->setAccepted(CloseModal());
        return;
    }
    if (!CloseQuery() || !self)
        return;
    TCloseAction action = caHide;
    DoClose(action);
    if (!self || action == caNone)
        return;
    if (action == caMinimize) {
        showMinimized();
        return;
    }
    event->accept();
    if (action == caFree)
        Release();
    if (TApplication *application = TApplication::Instance())
        application->HandleFormGone(this);
}

// ---- show

void TForm::Show()
{
    if (isMinimized())
        setWindowState(windowState() & ~Qt::WindowMinimized);
    show();
    if (isWindow()) {
        raise();
        activateWindow();
    }
}

void TForm::setVisible(bool visible)
{
    if (visible && !isVisible() && isWindow())
        Place();
    QMainWindow::setVisible(visible);
}

QWidget *TForm::PlaceOver() const
{
    TForm *mainForm = TApplication::Instance() == nullptr ? nullptr : TApplication::Instance()->MainForm();
    QWidget *owner = parentWidget() == nullptr ? nullptr : parentWidget()->window();
    const auto isSeen = [this](const QWidget *window) {
        return window != nullptr && window != this && window->isVisible() && !window->isMinimized();
    };
    if (FPosition == poOwnerFormCenter && isSeen(owner))
        return owner;
    return FPosition != poScreenCenter && isSeen(mainForm) ? mainForm : nullptr;
}

void TForm::Place()
{
    ensurePolished();
    if (!testAttribute(Qt::WA_Resized))
        adjustSize();
    if (FPosition == poDefault)
        setAttribute(Qt::WA_Moved, false);
    if (FPosition == poDesigned || FPosition == poDefault || isMaximized() || isFullScreen())
        return;
    const QWidget *over = PlaceOver();
    const QWidget *active = QApplication::activeWindow();
    const QScreen *on = over != nullptr ? over->screen() : active != nullptr ? active->screen() : screen();
    const QRect area = on->availableGeometry();
    const QPoint center = (over != nullptr ? over->frameGeometry() : area).center();
    const QPoint corner = center - QPoint(width() / 2, height() / 2);
    move(qMax(area.left(), qMin(corner.x(), area.right() + 1 - width())),
         qMax(area.top(), qMin(corner.y(), area.bottom() + 1 - height())));
}

void TForm::SetBorderStyle(TBorderStyle style)
{
    if (FBorderStyle == style)
        return;
    FBorderStyle = style;
    if (!isWindow())
        return;
    constexpr Qt::WindowFlags titled =
        Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowSystemMenuHint | Qt::WindowCloseButtonHint;
    Qt::WindowFlags flags = Qt::Window;
    if (style == bsNone)
        flags |= Qt::FramelessWindowHint;
    else if (style == bsSingle)
        flags |= titled | Qt::WindowMinimizeButtonHint;
    else if (style == bsDialog)
        flags = Qt::Dialog | titled;
    const bool wasVisible = isVisible();
    setWindowFlags(flags | (windowFlags() & Qt::WindowStaysOnTopHint));
    if (wasVisible || FIsFixed) // else when it is shown, with what it has come to hold
        FixSize();
    setVisible(wasVisible); // new flags hide a window
}

void TForm::FixSize()
{
    const bool isFixed = isWindow() && (FBorderStyle == bsSingle || FBorderStyle == bsDialog);
    if (isFixed) {
        setFixedSize(size());
    } else if (FIsFixed) {
        setMinimumSize(0, 0);
        setMaximumSize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX);
    }
    FIsFixed = isFixed;
}

void TForm::SetSize(const QSize &size)
{
    if (FIsFixed)
        setFixedSize(size);
    resize(size);
}

void TForm::showEvent(QShowEvent *event)
{
    QMainWindow::showEvent(event);
    if (event->spontaneous())
        return;
    FixSize();
    if (focusWidget() == nullptr || focusWidget() == this)
        if (QWidget *first = FirstControl())
            first->setFocus(Qt::ActiveWindowFocusReason);
    OnShow();
}

void TForm::hideEvent(QHideEvent *event)
{
    QMainWindow::hideEvent(event);
    if (event->spontaneous())
        return;
    if (FModal != nullptr && !FModal->IsOver)
        FModal->End(FModalResult);
    OnHide();
}

bool TForm::event(QEvent *event)
{
    const bool isHandled = QMainWindow::event(event);
    if (event->type() == QEvent::WindowActivate || event->type() == QEvent::WindowDeactivate) {
        const QPointer<TForm> self(this);
        Screen().CheckActiveForm();
        if (self)
            event->type() == QEvent::WindowActivate ? OnActivate() : OnDeactivate();
    }
    return isHandled;
}

// ---- controls

QWidget *TForm::FirstControl() const
{
    for (QWidget *next = nextInFocusChain(); next != nullptr && next != this; next = next->nextInFocusChain())
        if ((next->focusPolicy() & Qt::TabFocus) != 0 && next->isEnabled() && next->isVisibleTo(this) &&
            isAncestorOf(next) && !next->isWindow())
            return next;
    return nullptr;
}

QWidget *TForm::ActiveControl() const
{
    QWidget *control = window()->focusWidget();
    return control != nullptr && isAncestorOf(control) ? control : nullptr;
}

void TForm::SetActiveControl(QWidget *control)
{
    if (control != nullptr && !isAncestorOf(control))
        throw Exception(u"窗口“%1”中没有控件“%2”"_s.arg(Caption(), control->objectName()));
    if (control != nullptr)
        control->setFocus(Qt::OtherFocusReason);
    else if (QWidget *active = ActiveControl())
        active->clearFocus();
}

QObject *TForm::FindComponent(const QString &name) const
{
    if (name.isEmpty())
        return nullptr;
    QObjectList objects = children();
    for (qsizetype i = 0; i < objects.size(); ++i) {
        if (objects[i]->objectName().compare(name, Qt::CaseInsensitive) == 0)
            return objects[i];
        if (qobject_cast<TForm *>(objects[i]) == nullptr)
            objects.append(objects[i]->children());
    }
    return nullptr;
}

void TForm::keyPressEvent(QKeyEvent *event)
{
    const bool isPlain = (event->modifiers() & ~Qt::KeypadModifier) == 0;
    const bool isEnter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (isPlain &&
        ((isEnter && PressDefaultButton()) || (event->key() == Qt::Key_Escape && PressCancelButton())))
        event->accept();
    else
        QMainWindow::keyPressEvent(event);
}

bool TForm::PressDefaultButton()
{
    // The button with the keyboard goes before the form's default button.
    if (auto *button = qobject_cast<QPushButton *>(ActiveControl());
        button != nullptr && FormOf(button) == this) {
        button->click();
        return true;
    }
    for (QPushButton *button : findChildren<QPushButton *>())
        if (button->isDefault() && CanBePressed(*button) && FormOf(button) == this) {
            button->click();
            return true;
        }
    return false;
}

bool TForm::PressCancelButton()
{
    for (QPushButton *button : findChildren<QPushButton *>())
        if (button->property("Cancel").toBool() && CanBePressed(*button) && FormOf(button) == this) {
            button->click();
            return true;
        }
    return false;
}

} // namespace Korvane
