// SPDX-License-Identifier: MIT
#pragma once

namespace Korvane {

/// Runs an action and then, whether or not it failed, a cleanup. Unlike a destructor the
/// cleanup may raise, as one does that lets the controls read their rows again.
template <class Action, class Cleanup> void TryFinally(Action action, Cleanup cleanup)
{
    try {
        action();
    } catch (...) {
        cleanup();
        throw;
    }
    cleanup();
}

/// Runs an action while the dataset tells nothing to its controls.
template <class DataSet, class Action> void WithControlsDisabled(DataSet &dataSet, Action action)
{
    dataSet.DisableControls();
    TryFinally(action, [&dataSet] { dataSet.EnableControls(); });
}

} // namespace Korvane
