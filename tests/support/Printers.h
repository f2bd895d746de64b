// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringList>
#include <QVariant>

#include <ostream>

// How GoogleTest shows Qt's values in its messages. Included by every test through the
// precompiled header.

inline void PrintTo(const QString &text, std::ostream *out)
{
    *out << (text.isNull() ? "(null)" : "\"" + text.toStdString() + "\"");
}

inline void PrintTo(const QByteArray &bytes, std::ostream *out) { *out << '"' << bytes.toStdString() << '"'; }

inline void PrintTo(const QVariant &value, std::ostream *out)
{
    *out << (value.metaType().name() ? value.metaType().name() : "invalid") << ": "
         << value.toString().toStdString();
}
