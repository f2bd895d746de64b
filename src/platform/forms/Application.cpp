// SPDX-License-Identifier: MIT
#include "platform/forms/Application.h"

#include "platform/core/ApplicationTitle.h"
#include "platform/forms/Action.h"
#include "platform/forms/ChineseTexts.h"
#include "platform/forms/Cursors.h"
#include "platform/forms/ExceptionBoxes.h"
#include "platform/forms/Form.h"
#include "platform/forms/IdleEvent.h"
#include "platform/forms/WindowPrompts.h"

#include <QAbstractEventDispatcher>
#include <QScopeGuard>
#include <QThread>

#include <new>
#include <utility>

namespace Korvane {

using namespace Qt::StringLiterals;

namespace {

QString TextOf(const std::exception &error)
{
    if (const auto *own = dynamic_cast<const Exception *>(&error))
        return own->Message();
    if (dynamic_cast<const std::bad_alloc *>(&error) != nullptr)
        return u"内存不足，操作没有完成"_s;
    return u"程序内部错误：%1"_s.arg(QString::fromUtf8(error.what()));
}

bool IsSilent(const std::exception &error) { return dynamic_cast<const EAbort *>(&error) != nullptr; }

/// What holds the mouse would keep the user from answering a box.
void LetGoOfTheMouse()
{
    if (QWidget *grabber = QWidget::mouseGrabber())
        grabber->releaseMouse();
    for (QWidget *popup; (popup = QApplication::activePopupWidget()) != nullptr;) {
        popup->close();
        if (QApplication::activePopupWidget() == popup)
            break;
    }
}

} // namespace

TApplication *TApplication::FInstance = nullptr;

TApplication::TApplication(int &argc, char **argv)
    : QApplication(argc, argv), FBoxes(std::make_unique<TExceptionBoxes>())
{
    FInstance = this;
    InstallChineseTexts(*this);
    FPromptsBefore = Prompts::Install(std::make_shared<TWindowPrompts>());
    FCursorBefore = InstallCursorHook(ShowCursor);
    ShowCursor(ScreenCursor());
    connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::aboutToBlock, this, [this] {
        if (std::exchange(FIsIdleDue, false))
            postEvent(this, new QEvent(IdleEvent()), std::numeric_limits<int>::min());
    });
}

TApplication::~TApplication()
{
    while (!FOwned.isEmpty())
        delete FOwned.takeLast().data();
    ShowCursor(crDefault);
    InstallCursorHook(std::move(FCursorBefore));
    Prompts::Install(std::move(FPromptsBefore));
    FInstance = nullptr;
}

QString TApplication::Title() const { return ApplicationTitle(); }

void TApplication::SetTitle(const QString &title)
{
    SetApplicationTitle(title);
    setApplicationDisplayName(title);
}

TForm *TApplication::MainForm() const { return FMainForm; }

void TApplication::SetMainForm(TForm *form)
{
    FMainForm = form;
    setQuitOnLastWindowClosed(form == nullptr);
}

void TApplication::Own(TForm *form)
{
    FOwned.removeAll(nullptr);
    FOwned.append(form);
    if (!FMainForm)
        SetMainForm(form);
}

QList<TForm *> TApplication::Components() const
{
    QList<TForm *> forms;
    for (const QPointer<QObject> &owned : FOwned)
        if (auto *form = qobject_cast<TForm *>(owned))
            forms.append(form);
    return forms;
}

int TApplication::Run()
{
    FIsRunning = true;
    const auto end = qScopeGuard([this] { FIsRunning = FIsTerminated = false; });
    if (FIsTerminated)
        return 0;
    if (FMainForm) {
        FMainForm->Show();
    } else {
        const QWidgetList windows = topLevelWidgets();
        if (std::none_of(windows.begin(), windows.end(), [](const QWidget *w) { return w->isVisible(); }))
            return 0;
    }
    return FIsTerminated ? 0 : exec(); // a handler of the main form may have ended it
}

void TApplication::Terminate()
{
    FIsTerminated = true;
    FBoxes->Clear();
    // NOTE: not quit(), which asks the windows and may be refused. Without a loop it would end the next one.
    if (thread()->loopLevel() > 0)
        exit(0);
}

void TApplication::HandleFormGone(const TForm *form)
{
    if (FIsRunning && FMainForm == form)
        Terminate();
}

void TApplication::ProcessMessages() { processEvents(); }

int TApplication::MessageBox(const QString &text, const QString &caption, int flags)
{
    return Prompts::Current().MessageBox(text, caption, flags);
}

void TApplication::HandleException(const std::exception &error)
{
    if (IsSilent(error))
        return;
    LetGoOfTheMouse();
    if (!OnException) {
        ShowException(error);
        return;
    }
    try {
        OnException(error);
    } catch (const std::exception &second) {
        if (!IsSilent(second))
            ShowException(second);
    }
}

void TApplication::ShowException(const std::exception &error)
{
    if (!closingDown())
        FBoxes->Show(TextOf(error));
}

/// Called while the exception is handled.
void TApplication::HandleFailure(QObject *receiver, QEvent::Type type)
{
    try {
        throw;
    } catch (const std::exception &error) {
        const bool isHere = QThread::currentThread() == thread();
        if (IsSilent(error) ||
            (isHere && FBoxes->ComesByItself(type) && !FBoxes->IsNews(receiver, type, TextOf(error))))
            return;
        // NOTE: no box out of another thread, nor while a window is being painted.
        if (isHere && type != QEvent::Paint)
            HandleException(error);
        else
            QMetaObject::invokeMethod(
                this, [failure = std::current_exception()] { std::rethrow_exception(failure); },
                Qt::QueuedConnection);
    }
}

bool TApplication::notify(QObject *receiver, QEvent *event)
{
    const QEvent::Type type = event->type();
    const bool isHere = receiver->thread() == thread();
    if (isHere && type != IdleEvent())
        FIsIdleDue = true;
    try {
        const bool isHandled = QApplication::notify(receiver, event);
        if (isHere)
            FBoxes->Succeeded(receiver, type);
        return isHandled;
    } catch (const std::exception &) {
        HandleFailure(receiver, type);
        return true;
    }
}

bool TApplication::event(QEvent *event)
{
    if (event->type() != IdleEvent())
        return QApplication::event(event);
    RunIdle();
    return true;
}

void TApplication::RunIdle()
{
    TAction::UpdateAll();
    if (!FIsIdling) {
        FIsIdling = true;
        const auto end = qScopeGuard([this] { FIsIdling = false; });
        bool isDone = true;
        OnIdle(isDone);
        if (!isDone)
            postEvent(this, new QEvent(IdleEvent()), std::numeric_limits<int>::min());
    }
    FIsIdleDue = false; // by what the updates themselves have sent
}

} // namespace Korvane
