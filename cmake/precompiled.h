// SPDX-License-Identifier: MIT
// What nearly every source file includes anyway, compiled once per target.
#pragma once

#include <QByteArray>
#include <QFile>
#include <QHash>
#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <algorithm>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>
