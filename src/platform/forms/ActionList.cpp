// SPDX-License-Identifier: MIT
#include "platform/forms/ActionList.h"

#include "platform/core/Exceptions.h"
#include "platform/forms/Action.h"

#include <QWidget>

namespace Korvane {

using namespace Qt::StringLiterals;

TActionList::TActionList(QObject *owner) : TComponent(owner) {}

TActionList::~TActionList()
{
    while (!FActions.isEmpty())
        FActions.last()->SetActionList(nullptr);
}

void TActionList::SetImages(TImageList *images)
{
    if (FImages)
        disconnect(FImages, nullptr, this, nullptr);
    FImages = images;
    if (images != nullptr) {
        connect(images, &TImageList::Changed, this, &TActionList::ShowImages);
        connect(images, &QObject::destroyed, this, &TActionList::ShowImages);
    }
    ShowImages();
}

void TActionList::ShowImages()
{
    for (TAction *action : FActions)
        action->ShowImage();
}

TAction *TActionList::Action(qsizetype index) const
{
    if (index < 0 || index >= FActions.size())
        throw EListError(u"动作列表“%1”没有第 %2 项"_s.arg(Name()).arg(index));
    return FActions[index];
}

bool TActionList::UpdateAction(TAction *action)
{
    bool isHandled = false;
    OnUpdate(action, isHandled);
    return isHandled;
}

QWidget *TActionList::Window() const { return qobject_cast<QWidget *>(Owner()); }

void TActionList::Add(TAction *action)
{
    FActions.append(action);
    if (QWidget *window = Window())
        window->addAction(action);
}

void TActionList::Remove(TAction *action)
{
    FActions.removeAll(action);
    if (QWidget *window = Window())
        window->removeAction(action);
}

} // namespace Korvane
