// SPDX-License-Identifier: MIT
#pragma once

namespace Korvane {

/// The type of a dataset's field. The ordinals are part of stored forms and of generated
/// class text, so that new types go to the end.
enum TFieldType {
    ftUnknown,
    ftString,
    ftSmallint,
    ftInteger,
    ftWord,
    ftBoolean,
    ftFloat,
    ftCurrency,
    ftBCD,
    ftDate,
    ftTime,
    ftDateTime,
    ftBytes,
    ftVarBytes,
    ftAutoInc,
    ftBlob,
    ftMemo,
    ftGraphic,
    ftFmtMemo,
    ftParadoxOle,
    ftDBaseOle,
    ftTypedBinary,
    ftCursor,
    ftFixedChar,
    ftWideString,
    ftLargeint,
    ftADT,
    ftArray,
    ftReference,
    ftDataSet,
    ftOraBlob,
    ftOraClob,
    ftVariant,
    ftGuid
};

/// What has become of a row since it was loaded.
enum TUpdateStatus { usUnmodified, usModified, usInserted, usDeleted };

} // namespace Korvane
