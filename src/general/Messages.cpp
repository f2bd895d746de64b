// SPDX-License-Identifier: MIT
#include "general/Messages.h"

#include "platform/core/ApplicationTitle.h"
#include "platform/core/Prompts.h"

namespace Korvane {

namespace {

int ShowBox(const QString &text, int flags)
{
    return Prompts::Current().MessageBox(text, ApplicationTitle(), flags);
}

} // namespace

int ShowMsg(const QString &text) { return ShowBox(text, MB_TOPMOST + MB_ICONINFORMATION + MB_OK); }

int ShowDialog(const QString &text, int flags)
{
    return ShowBox(text, flags + MB_TOPMOST + MB_ICONQUESTION + MB_YESNO);
}

} // namespace Korvane
