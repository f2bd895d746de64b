// SPDX-License-Identifier: MIT
#pragma once

#include "platform/core/Component.h"
#include "platform/core/Event.h"
#include "platform/graphics/ImageList.h"

#include <QPointer>

class QWidget;

namespace Korvane {

class TAction;

/// The actions of a form in their order, with their pictures. Their short cuts work in the window that owns
/// the list.
class TActionList : public TComponent
{
    Q_OBJECT
    Q_PROPERTY(Korvane::TImageList *Images READ Images WRITE SetImages)
    Q_PROPERTY(TActionListState State READ State WRITE SetState)

public:
    enum TActionListState {
        asNormal,
        asSuspended ///< no action executes or updates; what is seen of them stays
    };
    Q_ENUM(TActionListState)

    explicit TActionList(QObject *owner = nullptr);
    ~TActionList() override;

    TImageList *Images() const { return FImages; }
    void SetImages(TImageList *images);
    TActionListState State() const { return FState; }
    void SetState(TActionListState state) { FState = state; }

    const QList<TAction *> &Actions() const { return FActions; }
    qsizetype ActionCount() const { return FActions.size(); }
    /// Raises EListError for an index that is not there.
    TAction *Action(qsizetype index) const;

    /// Runs OnUpdate of the list; whether that has handled the action.
    bool UpdateAction(TAction *action);

    /// Both before the action's own event, which does not come if the argument is set to true.
    TEvent<TAction *, bool &> OnExecute;
    TEvent<TAction *, bool &> OnUpdate;

private:
    friend class TAction;
    void Add(TAction *action);
    void Remove(TAction *action);
    QWidget *Window() const;
    void ShowImages();

    QPointer<TImageList> FImages;
    QList<TAction *> FActions;
    TActionListState FState = asNormal;
};

using enum TActionList::TActionListState;

} // namespace Korvane
