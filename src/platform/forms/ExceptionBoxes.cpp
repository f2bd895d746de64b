// SPDX-License-Identifier: MIT
#include "platform/forms/ExceptionBoxes.h"

#include "platform/core/ApplicationTitle.h"
#include "platform/core/Prompts.h"
#include "platform/forms/IdleEvent.h"

#include <QScopeGuard>

#include <utility>

namespace Korvane {

namespace {

/// More different failures than anybody reads come from a timer that numbers them.
constexpr qsizetype MostWaiting = 20;

} // namespace

void TExceptionBoxes::Show(const QString &text)
{
    if (FIsShowing) {
        if (text != FShown && !FWaiting.contains(text) && FWaiting.size() < MostWaiting)
            FWaiting.append(text);
        return;
    }
    FIsShowing = true;
    const auto end = qScopeGuard([this] { FIsShowing = false; });
    for (FShown = text;; FShown = FWaiting.takeFirst()) {
        Prompts::Current().MessageBox(FShown, ApplicationTitle(), MB_OK + MB_ICONERROR + MB_TOPMOST);
        if (FWaiting.isEmpty())
            break;
    }
}

bool TExceptionBoxes::ComesByItself(QEvent::Type type)
{
    return type == QEvent::Paint || type == IdleEvent();
}

bool TExceptionBoxes::IsNews(QObject *receiver, QEvent::Type type, const QString &text)
{
    Failure &last = FLast[{receiver, type}];
    if (last.Receiver == receiver && last.Text == text)
        return false;
    last = {receiver, text};
    return true;
}

} // namespace Korvane
