// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QString>

#include <functional>

namespace Bench {

/// What a row of the table must show.
struct TGoal
{
    enum TKind { None, AtLeastTimesAsFast, WithinTimesItsTime };
    TKind Kind = None;
    double Factor = 0;

    QString Text() const;
    /// ratio is the peer's time by ours.
    bool Holds(double ratio) const;
};

inline TGoal AtLeast(double factor) { return {TGoal::AtLeastTimesAsFast, factor}; }
inline TGoal Within(double factor) { return {TGoal::WithinTimesItsTime, factor}; }

/// One comparison: two pieces of work that do the same, ours and a peer's.
struct TComparison
{
    QString What;
    QString Peer;
    TGoal Goal;
    std::function<void()> Ours;
    std::function<void()> Theirs; ///< empty where there is nothing to compare with
    /// Runs before each measured run of either, outside of the measured time.
    std::function<void()> Prepare = {};
    /// How often the peer's work would have to be done to equal ours: a slow peer is measured
    /// on a part, and its time is multiplied by this.
    double PeerScale = 1;
};

/// Runs all comparisons with Google Benchmark, ours and peers in turn, prints the table of
/// medians and writes it to a file: what, ours, peer, ratio (peer's time by ours), goal, holds.
/// Returns false when a goal does not hold.
bool RunComparisons(const QList<TComparison> &comparisons, const QString &tableFile, int argc, char **argv);

/// Keeps a value from being optimised away.
void Use(qint64 value);

} // namespace Bench
