// SPDX-License-Identifier: MIT
#pragma once

namespace Korvane {

/// What a form shown with ShowModal answers. Values of the application's own begin above mrYesToAll.
using TModalResult = int;

enum : TModalResult {
    mrNone = 0, ///< not answered yet
    mrOk = 1,
    mrCancel = 2,
    mrAbort = 3,
    mrRetry = 4,
    mrIgnore = 5,
    mrYes = 6,
    mrNo = 7,
    mrAll = 8,
    mrNoToAll = 9,
    mrYesToAll = 10
};

} // namespace Korvane
