// SPDX-License-Identifier: MIT
#pragma once

#include "controls/ActionState.h"
#include "platform/forms/Action.h"
#include "platform/forms/ActionList.h"

/// The actions of the window with their captions, pictures and short cuts, kept truthful by what the
/// data allows: those of the page's rows, and those of an order's lines.
class TOrderActions
{
public:
    explicit TOrderActions(QObject *form);

    Korvane::TImageList Images;
    Korvane::TActionList List;
    Korvane::TAction First, Prior, Next, Last;
    Korvane::TAction Insert, Update, Head, Delete;
    Korvane::TAction Save, Cancel;
    Korvane::TAction Refresh, Export;
    Korvane::TAction AddLine, DeleteLine, Up, Down;
    Korvane::TAction Exit;
    /// Of the rows that the page in front shows.
    Korvane::TActionState State;
    /// Of the lines, which can be changed while their order is.
    Korvane::TActionState LineState;

    /// Points State at the rows of a page; the lines have a say only where they are shown.
    void Follow(Korvane::TDataSource &rows, Korvane::TDataSource *lines);
};
