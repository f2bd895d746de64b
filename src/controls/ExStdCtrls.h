// SPDX-License-Identifier: MIT
#pragma once

#include "controls/ExDBImage.h"
