// SPDX-License-Identifier: MIT
#pragma once

#include "platform/core/Event.h"
#include "platform/forms/Action.h"
#include "platform/forms/ModalResult.h"

#include <QPushButton>

namespace Korvane {

/// A push button. Enter presses the form's default button and Esc its cancel button, when the control with
/// the keyboard has no use for the key.
class TButton : public QPushButton
{
    Q_OBJECT
    Q_PROPERTY(QString Caption READ Caption WRITE SetCaption)
    Q_PROPERTY(bool Default READ Default WRITE SetDefault)
    Q_PROPERTY(bool Cancel READ Cancel WRITE SetCancel)
    Q_PROPERTY(int ModalResult READ ModalResult WRITE SetModalResult)
    Q_PROPERTY(bool Enabled READ Enabled WRITE SetEnabled)
    Q_PROPERTY(bool Visible READ Visible WRITE SetVisible)
    Q_PROPERTY(Korvane::TAction *Action READ Action WRITE SetAction)

public:
    explicit TButton(QWidget *parent = nullptr);
    explicit TButton(const QString &caption, QWidget *parent = nullptr);

    QString Caption() const { return text(); }
    void SetCaption(const QString &caption) { setText(caption); }
    bool Default() const { return isDefault(); }
    void SetDefault(bool isDefaultButton) { setDefault(isDefaultButton); }
    bool Cancel() const { return FIsCancel; }
    void SetCancel(bool isCancelButton) { FIsCancel = isCancelButton; }
    /// What a click makes the result of the form. OnClick runs after that and may take it back.
    TModalResult ModalResult() const { return FModalResult; }
    void SetModalResult(TModalResult result) { FModalResult = result; }
    bool Enabled() const { return isEnabled(); }
    void SetEnabled(bool enabled) { setEnabled(enabled); }
    bool Visible() const { return !isHidden(); }
    void SetVisible(bool visible) { setVisible(visible); }

    /// The button shows the action's caption, hint, picture and state, and a click executes it after OnClick.
    TAction *Action() const;
    void SetAction(TAction *action);

    /// As a click by the user: nothing if the button is disabled.
    void Click() { click(); }

    TEvent<> OnClick;

private:
    void HandleClick();
    void ShowAction();

    QPointer<TAction> FAction;
    TModalResult FModalResult = mrNone;
    bool FIsCancel = false;
};

} // namespace Korvane
