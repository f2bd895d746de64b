// SPDX-License-Identifier: MIT
#pragma once

#include "platform/core/Exceptions.h"

#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

namespace Korvane {

/// The tool was called in a way it does not know; the message tells the user what is wrong.
class EUsageError : public Exception
{
public:
    using Exception::Exception;
};

/// An option of a command, given as "--name", or as "--name VALUE" or "--name=VALUE".
struct TOption
{
    QString Name;  ///< without the dashes
    QString Value; ///< what the help calls the value; empty for an option without one
    QString Help;

    bool TakesValue() const { return !Value.isEmpty(); }
};

/// What a command was called with: its options, and the other arguments in order. "--" ends
/// the options, a single "-" is an argument, and "-h" is "--help".
///
///     TCommandLine line(options, arguments);
///     const QString design = line.Take("DESIGN");
///     line.CheckEnd();
class TCommandLine
{
public:
    /// Raises EUsageError for an option that is unknown, given twice, or that lacks its value
    /// or has one too many.
    TCommandLine(const QList<TOption> &options, const QStringList &arguments);

    bool Has(const QString &option) const { return FValues.contains(option); }
    /// The option's value; a null string when it was not given.
    QString Value(const QString &option) const { return FValues.value(option); }

    bool HasArgument() const { return !FArguments.isEmpty(); }
    /// The next argument. Raises EUsageError, with the name of what is missing, when there is
    /// none or an empty one.
    QString Take(const QString &name);
    /// Raises EUsageError when arguments are left.
    void CheckEnd() const;

private:
    QHash<QString, QString> FValues;
    QStringList FArguments;
};

} // namespace Korvane
