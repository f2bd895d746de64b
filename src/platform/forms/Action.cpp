// SPDX-License-Identifier: MIT
#include "platform/forms/Action.h"

#include "platform/forms/ActionList.h"
#include "platform/graphics/ImageList.h"

#include <QWidget>

namespace Korvane {

namespace {

QList<TAction *> &AllActions()
{
    static QList<TAction *> actions;
    return actions;
}

} // namespace

TAction::TAction(QObject *owner) : QAction(owner)
{
    AllActions().append(this);
    connect(this, &QAction::triggered, this, &TAction::HandleTriggered);
    connect(this, &QAction::toggled, this, &TAction::HandleToggled);
    connect(this, &QAction::enabledChanged, this, [this](bool enabled) {
        if (isVisible()) // else it is off because nobody sees it
            FIsEnabled = enabled;
    });
    if (auto *list = qobject_cast<TActionList *>(owner))
        SetActionList(list);
    else if (auto *window = qobject_cast<QWidget *>(owner))
        window->addAction(this);
}

TAction::~TAction()
{
    AllActions().removeAll(this);
    SetActionList(nullptr);
}

void TAction::SetEnabled(bool enabled)
{
    FIsEnabled = enabled;
    setEnabled(enabled);
}

void TAction::SetChecked(bool checked)
{
    FIsChecked = checked;
    if (checked)
        setCheckable(true);
    setChecked(checked);
}

void TAction::SetAutoCheck(bool check)
{
    FAutoCheck = check;
    if (check)
        setCheckable(true);
}

void TAction::HandleToggled(bool checked)
{
    // NOTE: Qt toggles what is chosen before it tells so; HandleTriggered takes that back where it is not
    // asked for.
    if (FAutoCheck || actionGroup() != nullptr)
        FIsChecked = checked;
}

void TAction::SetHint(const QString &hint)
{
    FHint = hint;
    setToolTip(hint);
    setStatusTip(hint);
}

QString TAction::HintToShow()
{
    QString hint = FHint;
    bool isShown = !hint.isEmpty();
    OnHint(hint, isShown);
    return isShown ? hint : QString();
}

void TAction::SetImageIndex(int index)
{
    FImageIndex = index;
    ShowImage();
}

void TAction::ShowImage()
{
    TImageList *images = FList == nullptr ? nullptr : FList->Images();
    setIcon(images == nullptr ? QIcon() : images->Icon(FImageIndex));
}

void TAction::SetActionList(TActionList *list)
{
    if (FList == list)
        return;
    if (FList)
        FList->Remove(this);
    FList = list;
    if (list == nullptr)
        return;
    list->Add(this);
    ShowImage();
}

bool TAction::Execute()
{
    const QPointer<TAction> self(this);
    Update();
    if (!self || !isEnabled())
        return false;
    trigger();
    return true;
}

void TAction::HandleTriggered()
{
    if (isCheckable() && isChecked() != FIsChecked)
        setChecked(FIsChecked);
    if (FList && FList->State() == asSuspended)
        return;
    bool isHandled = false;
    if (FList)
        FList->OnExecute(this, isHandled);
    if (!isHandled)
        OnExecute(this);
}

void TAction::Update()
{
    const QPointer<TAction> self(this);
    if (FList && FList->State() == asSuspended)
        return;
    if (!FList || !FList->UpdateAction(this))
        if (self)
            OnUpdate(this);
}

bool TAction::IsSeen() const
{
    const QObject *owner = FList == nullptr ? parent() : FList->Owner();
    while (owner != nullptr && !owner->isWidgetType())
        owner = owner->parent();
    return owner == nullptr || static_cast<const QWidget *>(owner)->isVisible();
}

void TAction::UpdateAll()
{
    QList<QPointer<TAction>> actions;
    for (TAction *action : AllActions())
        if (action->OnUpdate || (action->FList && action->FList->OnUpdate))
            actions.append(action);
    for (const QPointer<TAction> &action : actions)
        if (action && action->IsSeen())
            action->Update();
}

} // namespace Korvane
