// SPDX-License-Identifier: MIT
#include "design/DBDObject.h"

#include "design/DBDFile.h"

namespace Korvane {

TDBDFile *TDBDObject::DBDFile() const { return static_cast<TDBDFile *>(FDBDFile.data()); }

void TDBDObject::SetDBDFile(TDBDFile *file) { FDBDFile = file; }

TDBDFile &TDBDObject::File() const
{
    if (TDBDFile *file = DBDFile())
        return *file;
    throw Exception(QStringLiteral("没有设置正确的DBDFile属性"));
}

} // namespace Korvane
