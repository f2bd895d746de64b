// SPDX-License-Identifier: MIT
#include "design/DBDObjects.h"

namespace Korvane {

void RegisterDesignClasses()
{
    RegisterClass<TFieldsQuery>();
    RegisterClass<TTablesQuery>();
    RegisterClass<TChangesObject>();
    RegisterClass<TColumnsObject>();
    RegisterClass<TCommandsObject>();
    RegisterClass<TFieldsObject>();
    RegisterClass<TIndexsObject>();
    RegisterClass<TQuerysObject>();
    RegisterClass<TTablesObject>();
}

void UnRegisterDesignClasses()
{
    UnRegisterClass<TFieldsQuery>();
    UnRegisterClass<TTablesQuery>();
    UnRegisterClass<TChangesObject>();
    UnRegisterClass<TColumnsObject>();
    UnRegisterClass<TCommandsObject>();
    UnRegisterClass<TFieldsObject>();
    UnRegisterClass<TIndexsObject>();
    UnRegisterClass<TQuerysObject>();
    UnRegisterClass<TTablesObject>();
}

} // namespace Korvane
