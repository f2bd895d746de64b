// SPDX-License-Identifier: MIT
#include "design/StatementText.h"

#include <algorithm>

namespace Korvane {

void AppendQuoted(QString &statement, QStringView text)
{
    statement += u'\'';
    for (qsizetype quote; (quote = text.indexOf(u'\'')) >= 0; text = text.sliced(quote + 1)) {
        statement += text.first(quote + 1);
        statement += u'\'';
    }
    statement += text;
    statement += u'\'';
}

QStringView Trimmed(QStringView text)
{
    const auto isInk = [](QChar c) { return c > u' '; };
    const auto first = std::find_if(text.begin(), text.end(), isInk);
    const auto last = std::find_if(text.rbegin(), std::make_reverse_iterator(first), isInk).base();
    return {first, last};
}

} // namespace Korvane
