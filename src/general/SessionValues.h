// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace Korvane {

// Who is signed in. Empty until the application sets them; macros in stored statements and
// the audit columns of saved rows read them.

/// Code of the signed-in user.
inline QString AUserCode;
/// Name of the signed-in user.
inline QString AUserName;
/// The user's group.
inline QString AUserGroup;
/// The super-user mark. It is text, since it goes into statements as it stands.
inline QString AIsSuper;

} // namespace Korvane
