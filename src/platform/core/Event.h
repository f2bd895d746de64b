// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <utility>

namespace Korvane {

/// An event property: holds at most one handler, is assigned, tested, called, saved and
/// restored like a value. Calling an empty event does nothing.
///
///     TEvent<int, int> OnProgress;
///     OnProgress = [](int count, int no) { … };
///     const auto saved = std::exchange(OnProgress, nullptr);
template <class... Args> class TEvent
{
public:
    TEvent() = default;
    TEvent(std::nullptr_t) {}
    template <class Handler>
    requires std::is_invocable_v<Handler &, Args...> TEvent(Handler handler) : FHandler(std::move(handler)) {}
    /// A method of an object; the object must outlive the assignment.
    template <class Object>
    TEvent(Object *object, void (Object::*method)(Args...))
        : FHandler([object, method](Args... args) { (object->*method)(std::forward<Args>(args)...); })
    {
    }

    explicit operator bool() const { return static_cast<bool>(FHandler); }

    void operator()(Args... args) const
    {
        // NOTE: called through a copy, since a handler may reassign the event that runs it.
        if (const auto handler = FHandler)
            handler(std::forward<Args>(args)...);
    }

private:
    std::function<void(Args...)> FHandler;
};

} // namespace Korvane
