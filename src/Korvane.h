// SPDX-License-Identifier: MIT
#pragma once

// The unit of general routines: types and dialects, session values, text, dates, messages,
// system, run log, money in words and light ciphers.

#include "business/MoneyWords.h"
#include "business/TextCipher.h"
#include "design/FieldValue.h"
#include "general/DateRoutines.h"
#include "general/Messages.h"
#include "general/RunLog.h"
#include "general/SessionValues.h"
#include "general/SystemRoutines.h"
#include "general/TextRoutines.h"
#include "general/Types.h"

#ifdef KORVANE_UI // what needs a window
#include "platform/forms/ButtonGlyphs.h"
#include "platform/forms/ScreenCapture.h"
#endif
