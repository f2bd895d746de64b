// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArrayView>
#include <QString>

namespace Korvane {

/// The file version "a.b.c.d" in the version resource of a Windows program or library,
/// given the bytes of the whole file; empty if they are something else, are damaged, or
/// have no version resource. Layout: PE format, "The .rsrc Section", and the structures
/// VS_VERSIONINFO and VS_FIXEDFILEINFO.
QString FileVersionOf(QByteArrayView image);

} // namespace Korvane
