// SPDX-License-Identifier: MIT
#include "platform/core/Prompts.h"

#include "platform/core/ConsolePrompts.h"

#include <utility>

namespace Korvane {

namespace {

std::shared_ptr<Prompts> &Installed()
{
    static std::shared_ptr<Prompts> prompts = std::make_shared<TConsolePrompts>();
    return prompts;
}

} // namespace

Prompts &Prompts::Current() { return *Installed(); }

std::shared_ptr<Prompts> Prompts::Install(std::shared_ptr<Prompts> prompts)
{
    if (!prompts)
        prompts = std::make_shared<TConsolePrompts>();
    return std::exchange(Installed(), std::move(prompts));
}

} // namespace Korvane
