// SPDX-License-Identifier: MIT
#include "platform/forms/Button.h"

#include "platform/forms/Form.h"

namespace Korvane {

TButton::TButton(QWidget *parent) : TButton(QString(), parent) {}

TButton::TButton(const QString &caption, QWidget *parent) : QPushButton(caption, parent)
{
    setAutoDefault(true); // Enter presses the button with the keyboard
    connect(this, &QPushButton::clicked, this, &TButton::HandleClick);
}

TAction *TButton::Action() const { return FAction; }

void TButton::SetAction(TAction *action)
{
    if (FAction == action)
        return;
    if (FAction)
        disconnect(FAction, &QAction::changed, this, &TButton::ShowAction);
    FAction = action;
    if (action == nullptr)
        return;
    connect(action, &QAction::changed, this, &TButton::ShowAction);
    ShowAction();
}

void TButton::ShowAction()
{
    setText(FAction->Caption());
    setToolTip(FAction->Hint());
    setIcon(FAction->icon());
    setEnabled(FAction->Enabled());
    setVisible(FAction->Visible());
}

void TButton::HandleClick()
{
    QWidget *parent = parentWidget();
    while (parent != nullptr && qobject_cast<TForm *>(parent) == nullptr)
        parent = parent->parentWidget();
    if (FModalResult != mrNone && parent != nullptr)
        static_cast<TForm *>(parent)->SetModalResult(FModalResult);
    const QPointer<TButton> self(this);
    const QPointer<TAction> action(FAction);
    OnClick();
    if (self && action)
        action->Execute();
}

} // namespace Korvane
