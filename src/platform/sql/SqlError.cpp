// SPDX-License-Identifier: MIT
#include "platform/sql/SqlError.h"

namespace Korvane {

ESqlError::ESqlError(const QString &description, int nativeError, const QString &sqlState)
    : ESqlError(QList<TSqlError>{{description, nativeError, sqlState}})
{
}

ESqlError::ESqlError(QList<TSqlError> errors)
    : EDatabaseError(errors.isEmpty() ? QString() : errors.first().Description), FErrors(std::move(errors))
{
}

} // namespace Korvane
