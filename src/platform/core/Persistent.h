// SPDX-License-Identifier: MIT
#pragma once

namespace Korvane {

/// Root of the classes that are made by class name and whose reflected properties are
/// reached by property name (see Reflection.h): a derived class declares Q_GADGET and its
/// Q_PROPERTYs and is registered with RegisterClass<T>().
class TPersistent
{
public:
    TPersistent() = default;
    TPersistent(const TPersistent &) = default;
    TPersistent &operator=(const TPersistent &) = default;
    virtual ~TPersistent() = default;
};

} // namespace Korvane
