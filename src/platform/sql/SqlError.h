// SPDX-License-Identifier: MIT
#pragma once

#include "platform/core/Exceptions.h"

#include <QList>

namespace Korvane {

/// One entry of a provider's error list.
struct TSqlError
{
    QString Description;
    int NativeError = 0; ///< the engine's own code
    QString SQLState;    ///< five characters where the engine has them
};

/// A driver failed. The message is the description of the first entry.
class ESqlError : public EDatabaseError
{
public:
    explicit ESqlError(const QString &description, int nativeError = 0, const QString &sqlState = {});
    explicit ESqlError(QList<TSqlError> errors);

    const QList<TSqlError> &Errors() const { return FErrors; }

private:
    QList<TSqlError> FErrors;
};

} // namespace Korvane
