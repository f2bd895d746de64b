// SPDX-License-Identifier: MIT
#include "platform/sql/sqlite/StepKind.h"

#include <algorithm>
#include <string_view>

namespace Korvane {

namespace {

/// The first words of a statement in lower case, parted by single blanks, comments left out.
QByteArray LeadingWords(const QByteArray &sql, int count)
{
    const auto isLetter = [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); };
    std::string_view text(sql.constData(), size_t(sql.size()));
    const auto skipPast = [&text](std::string_view end) {
        const size_t found = text.find(end, 2);
        text.remove_prefix(found == text.npos ? text.size() : found + end.size());
    };
    QByteArray words;
    while (!text.empty() && count > 0) {
        if (text.starts_with("--")) {
            skipPast("\n");
        } else if (text.starts_with("/*")) {
            skipPast("*/");
        } else if (isLetter(text.front())) {
            const auto end = std::find_if_not(text.begin(), text.end(), isLetter);
            if (!words.isEmpty())
                words += ' ';
            words += QByteArray(text.data(), end - text.begin()).toLower();
            text.remove_prefix(size_t(end - text.begin()));
            --count;
        } else if (text.front() == ' ' || (text.front() >= '\t' && text.front() <= '\r')) {
            text.remove_prefix(1);
        } else {
            break;
        }
    }
    return words;
}

struct TKindOfWords
{
    const char *Words;
    TStepKind Kind;
};

constexpr TKindOfWords KindsOfWords[] = {
    {"select", TStepKind::Selects},
    {"insert", TStepKind::ChangesRows},
    {"update", TStepKind::ChangesRows},
    {"delete", TStepKind::ChangesRows},
    {"replace", TStepKind::ChangesRows},
    {"with", TStepKind::ChangesRows}, // or reads: the engine tells when the step is prepared
    {"create table", TStepKind::MakesTable},
    {"drop table", TStepKind::DropsTable},
    {"begin", TStepKind::ControlsTransaction},
    {"commit", TStepKind::ControlsTransaction},
    {"rollback", TStepKind::ControlsTransaction},
    {"savepoint", TStepKind::ControlsTransaction},
    {"release", TStepKind::ControlsTransaction},
    {"end", TStepKind::ControlsTransaction},
};

TStepKind KindOf(const TRewrittenStep &step)
{
    if (step.Change)
        return TStepKind::ChangesTable;
    const QByteArray two = LeadingWords(step.Sql, 2);
    const qsizetype blank = two.indexOf(' ');
    const QByteArray one = blank < 0 ? two : two.left(blank);
    for (const TKindOfWords &entry : KindsOfWords)
        if (one == entry.Words || two == entry.Words)
            return entry.Kind;
    return TStepKind::Other;
}

} // namespace

QList<TStepKind> KindsOf(const TRewrittenStatement &rewritten)
{
    QList<TStepKind> kinds;
    kinds.reserve(rewritten.Steps.size());
    for (const TRewrittenStep &step : rewritten.Steps)
        kinds.append(KindOf(step));
    return kinds;
}

} // namespace Korvane
