// SPDX-License-Identifier: MIT
#pragma once

#include "platform/core/Cursor.h"
#include "platform/core/Event.h"
#include "platform/core/Exceptions.h"
#include "platform/core/Prompts.h"

#include <QApplication>
#include <QIcon>
#include <QPointer>

#include <memory>

namespace Korvane {

class TExceptionBoxes;
class TForm;

/// The application object of a program with windows. It brings the windowed prompts, the cursor and
/// Chinese texts for Qt's own dialogs, and it is where every exception ends that an event handler
/// lets out: EAbort in silence, all others in OnException or a message box.
///
///     int main(int argc, char **argv)
///     {
///         TApplication application(argc, argv);
///         application.SetTitle(QStringLiteral("订单录入"));
///         application.CreateForm<TMainForm>();
///         return application.Run();
///     }
class TApplication : public QApplication
{
    Q_OBJECT
    Q_PROPERTY(QString Title READ Title WRITE SetTitle)
    Q_PROPERTY(QIcon Icon READ Icon WRITE SetIcon)
    Q_PROPERTY(QString ExeName READ ExeName STORED false)

public:
    TApplication(int &argc, char **argv);
    /// Frees the forms made by CreateForm, the last first.
    ~TApplication() override;

    /// Null if there is no application object, or one of another class.
    static TApplication *Instance() { return FInstance; }

    /// The caption of message boxes.
    QString Title() const;
    void SetTitle(const QString &title);
    /// The icon of windows without one of their own.
    QIcon Icon() const { return windowIcon(); }
    void SetIcon(const QIcon &icon) { setWindowIcon(icon); }
    /// The program's file with its path.
    QString ExeName() const { return applicationFilePath(); }

    /// The form whose closing ends Run.
    TForm *MainForm() const;
    void SetMainForm(TForm *form);

    /// Makes a form that the application owns. The first one is the main form.
    template <class Form, class... Args> Form *CreateForm(Args &&...args)
    {
        auto *form = new Form(std::forward<Args>(args)...);
        Own(form);
        return form;
    }
    /// Takes a form that has no parent; what Own takes first is the main form.
    void Own(TForm *form);
    /// The forms owned, in the order of their creation.
    QList<TForm *> Components() const;

    /// Shows the main form and handles events until Terminate or until the main form is closed. Without a
    /// main form until the last window is closed, and not at all if there is no window.
    int Run();
    /// Ends Run and all modal forms and boxes, without asking them. Before Run, that returns at once.
    void Terminate();
    bool Terminated() const { return FIsTerminated; }
    /// Handles what waits now.
    void ProcessMessages();

    /// As Prompts::MessageBox.
    int MessageBox(const QString &text, const QString &caption, int flags);

    /// What notify does with an exception. For those that catch one where none may pass.
    void HandleException(const std::exception &error);
    /// An error box with the message. While it is up, further failures wait until it is answered, and one
    /// of the same text is not shown again.
    void ShowException(const std::exception &error);

    bool notify(QObject *receiver, QEvent *event) override;

    /// In place of ShowException.
    TEvent<const std::exception &> OnException;
    /// When all events are handled. Asked again at once if it sets the argument, which comes as true, to
    /// false; else after the next events.
    TEvent<bool &> OnIdle;

protected:
    bool event(QEvent *event) override;

private:
    friend class TForm;
    void HandleFormGone(const TForm *form);
    void HandleFailure(QObject *receiver, QEvent::Type type);
    void RunIdle();

    static TApplication *FInstance;
    std::unique_ptr<TExceptionBoxes> FBoxes;
    std::shared_ptr<Prompts> FPromptsBefore;
    TCursorHook FCursorBefore;
    QPointer<TForm> FMainForm;
    QList<QPointer<QObject>> FOwned;
    bool FIsRunning = false;
    bool FIsTerminated = false;
    bool FIsIdleDue = false;
    bool FIsIdling = false;
};

} // namespace Korvane
