// SPDX-License-Identifier: MIT
#include "design/StatementText.h"

#include <algorithm>

namespace Korvane {

void AppendQuoted(QString &statement, QStringView text)
{
    const qsizetype begin = statement.size();
    statement.resize(begin + text.size() + text.count(u'\'') + 2);
    QChar *at = statement.data() + begin;
    *at++ = u'\'';
    for (const QChar c : text) {
        *at++ = c;
        if (c == u'\'')
            *at++ = c;
    }
    *at = u'\'';
}

QStringView Trimmed(QStringView text)
{
    const auto isInk = [](QChar c) { return c > u' '; };
    const auto first = std::find_if(text.begin(), text.end(), isInk);
    const auto last = std::find_if(text.rbegin(), std::make_reverse_iterator(first), isInk).base();
    return {first, last};
}

} // namespace Korvane
