// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QString>

#include <concepts>
#include <functional>
#include <memory>
#include <type_traits>

namespace Bench {

/// What a row of the table must show.
struct TGoal
{
    enum TKind { None, AtLeastTimesAsFast, WithinTimesItsTime, AtMostItsShare };
    TKind Kind = None;
    double Factor = 0;

    QString Text() const;
    /// ratio is the peer's time or amount by ours.
    bool Holds(double ratio) const;
};

inline TGoal AtLeast(double factor) { return {TGoal::AtLeastTimesAsFast, factor}; }
inline TGoal Within(double factor) { return {TGoal::WithinTimesItsTime, factor}; }
inline TGoal AtMost(double share) { return {TGoal::AtMostItsShare, share}; }

/// A piece of work to be measured: by its time; or, if it returns an object that it has made, by
/// the bytes of heap memory that are in use because of that object.
class TWork
{
public:
    TWork() = default;
    template <class Work>
    requires std::invocable<Work &> TWork(Work work)
    {
        if constexpr (std::is_void_v<std::invoke_result_t<Work &>>)
            FRun = std::move(work);
        else
            FMake = std::move(work);
    }

    explicit operator bool() const { return FRun || FMake; }
    bool MeasuresMemory() const { return bool(FMake); }
    /// Does the work and gives seconds or bytes.
    double Measure() const;

private:
    std::function<void()> FRun;
    std::function<std::shared_ptr<void>()> FMake;
};

/// One comparison: two pieces of work that do the same, ours and a peer's.
struct TComparison
{
    QString What;
    QString Peer;
    TGoal Goal;
    TWork Ours;
    TWork Theirs; ///< empty where there is nothing to compare with
    /// Runs before each measured run of either, outside of what is measured.
    std::function<void()> Prepare = {};
    /// How often the peer's work would have to be done to equal ours: a slow peer is measured
    /// on a part, and its time is multiplied by this.
    double PeerScale = 1;
    /// Runs before each measured run of the peer alone, behind Prepare.
    std::function<void()> PreparePeer = {};
    int Repetitions = 7;
    /// Of a peer that takes long; 0 for as many as ours.
    int PeerRepetitions = 0;
    /// Whether both came to the same result. Asked once, when all is measured.
    std::function<bool()> Same = {};
};

/// Runs all comparisons with Google Benchmark, ours and peers in turn, prints the table of
/// medians and writes it to a file: what, ours, peer, ratio (the peer's time or bytes by ours),
/// goal, holds. Returns false when a goal does not hold or two results differ.
bool RunComparisons(const QList<TComparison> &comparisons, const QString &tableFile, int argc, char **argv);

/// Keeps a value from being optimised away.
void Use(qint64 value);

} // namespace Bench
