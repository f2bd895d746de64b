// SPDX-License-Identifier: MIT
#pragma once

#include "ToolStreams.h"
#include "platform/core/Prompts.h"

#include <memory>

namespace Korvane {

/// How the library talks to the user of the tool. Messages are printed; a question is agreed
/// to when the user did so beforehand, otherwise asked on the terminal, and refused where there
/// is none. No other kind of question comes up here, so that those are cancelled.
class TToolPrompts : public Prompts
{
public:
    enum class Answer { Ask, Yes };

    /// The streams must outlive the object.
    TToolPrompts(TToolStreams &streams, Answer answer) : FStreams(streams), FAnswer(answer) {}

    int MessageBox(const QString &text, const QString &caption, int flags) override;
    bool InputText(const QString &, const QString &, QString &) override { return false; }
    QString OpenFileName(const QString &, const QString &, const QString &) override { return {}; }
    QString SaveFileName(const QString &, const QString &, const QString &) override { return {}; }
    QString SelectFolder(const QString &) override { return {}; }

private:
    bool Agrees(const QString &question);
    bool Ask();

    TToolStreams &FStreams;
    Answer FAnswer;
};

/// Installs the tool's prompts for as long as it lives.
class TInstalledPrompts
{
public:
    TInstalledPrompts(TToolStreams &streams, TToolPrompts::Answer answer)
        : FBefore(Prompts::Install(std::make_shared<TToolPrompts>(streams, answer)))
    {
    }
    TInstalledPrompts(const TInstalledPrompts &) = delete;
    TInstalledPrompts &operator=(const TInstalledPrompts &) = delete;
    ~TInstalledPrompts() { Prompts::Install(FBefore); }

private:
    std::shared_ptr<Prompts> FBefore;
};

} // namespace Korvane
