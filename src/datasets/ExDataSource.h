// SPDX-License-Identifier: MIT
#pragma once

#include "platform/data/dataset/DataSource.h"

namespace Korvane {

/// The library's own source class, for forms to name.
class TExDataSource : public TDataSource
{
    Q_OBJECT

public:
    using TDataSource::TDataSource;
};

} // namespace Korvane
