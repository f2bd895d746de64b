// SPDX-License-Identifier: MIT
#pragma once

namespace Korvane {
class TDBDFile;
class TDBSession;
} // namespace Korvane

/// The schema change at which the older database stands.
inline constexpr int OlderVersion = 3;

/// Takes a database of the latest version back to what it looked like at OlderVersion, as an
/// application of that time would have made it, with an order in it.
void MakeOlder(Korvane::TDBSession &session);
