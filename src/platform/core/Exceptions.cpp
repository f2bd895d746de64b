// SPDX-License-Identifier: MIT
#include "platform/core/Exceptions.h"

namespace Korvane {

Exception::Exception(QString message) : FMessage(std::move(message)), FUtf8(FMessage.toUtf8()) {}

EAbort::EAbort() : Exception(QStringLiteral("操作已取消")) {}

void Abort() { throw EAbort(); }

} // namespace Korvane
