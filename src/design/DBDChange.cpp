// SPDX-License-Identifier: MIT
#include "design/DBDChange.h"

#include "design/DBDFile.h"

namespace Korvane {

TDBDChange::TDBDChange(QObject *owner) : TDBDObject(owner), FChangeObject(std::make_shared<TChangesObject>())
{
}

void TDBDChange::SetChangeNo(int number)
{
    if (number == FChangeNo)
        return;
    FChangeNo = number;
    FChangeObject = File().GetChange(number);
}

int TDBDChange::GetMaxChangeNo() const { return File().GetMaxChangeNo(); }

} // namespace Korvane
