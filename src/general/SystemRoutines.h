// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringList>

namespace Korvane {

/// Milliseconds of a clock that never goes back. It begins again at 0 after about 49.7 days.
quint32 TickCount();

/// Waits until more than that many milliseconds are over, and handles messages meanwhile, at
/// least once. Whatever the user does can run inside. It spins at full speed, as it is meant
/// to: it never sleeps through a message.
void Delay(double milliseconds);

/// The computer's name up to its first dot, at most 15 bytes of code page 936.
QString ComputerName();

// The lookup of addresses waits for the network and needs an application object.

/// The last of the computer's own addresses, as 192.168.1.7; empty if it has none.
QString LocalIP();

/// Looks up the first address of a host. False, with the address as it was, if there is none.
bool HostToIP(const QString &host, QString &ip);

/// The file version a.b.c.d of a Windows program or library; empty for a file without one
/// and for one that cannot be read.
QString GetVersionString(const QString &fileName);

/// The names, without paths, of the files and folders that a mask matches, hidden ones too,
/// in the order of the file system. The mask may begin with a folder; in the name behind it
/// "*" is any text and "?" any one character, capitals do not matter, "*.*" matches names
/// without a dot too, and "." and ".." come along if they match.
QStringList FindFileList(const QString &mask);

/// Lets the user choose a folder. The path ends with a separator; empty if cancelled.
QString SelectFolder();

} // namespace Korvane
