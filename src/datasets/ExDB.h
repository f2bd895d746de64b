// SPDX-License-Identifier: MIT
#pragma once

// The unit of the datasets that read and write through a design file, and of its commands; and the records
// that a worksheet file is made of.

#include "datasets/ExCommand.h"
#include "datasets/ExCustomDataSet.h"
#include "datasets/ExDataSource.h"
#include "datasets/ExQuery.h"
#include "datasets/ExTable.h"
#include "datasets/export/XlsTemplates.h"
