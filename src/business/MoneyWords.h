// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace Korvane {

/// An amount in Chinese capital numerals, as cheques and invoices carry it: "壹仟贰佰叁拾肆元伍角陆分".
/// Empty above 9999999999999.99. The amount has at most two decimals; it is not rounded, and a sign
/// or further decimals are spelt as they come. Never fails; may be called from any thread.
QString CnMoney(double value);

/// An amount in English words: "One Thousand Two Hundred And Thirty-Four And Cents Fifty Only".
/// Cents are rounded, halves to the even neighbour. Empty for 0, negative amounts and those above
/// 4294967295.99. Never fails; may be called from any thread.
QString EnMoney(double value);

} // namespace Korvane
