// SPDX-License-Identifier: MIT
#pragma once

#include "platform/core/Prompts.h"

#include <QList>
#include <QStringList>

#include <gtest/gtest.h>

#include <memory>
#include <utility>

namespace Korvane::Testing {

/// Prompts that answer from a list and record what was shown. A box with nothing but OK
/// needs no answer; any other question without one left fails the test and is refused.
class ScriptedPrompts : public Prompts
{
public:
    struct Box
    {
        QString Text;
        QString Caption;
        int Flags = 0;

        bool operator==(const Box &) const = default;
    };

    int MessageBox(const QString &text, const QString &caption, int flags) override
    {
        Boxes.append({text, caption, flags});
        return (flags & MB_BUTTONS) == MB_OK ? int(IDOK) : Take(Answers, int(IDCANCEL), text);
    }

    bool InputText(const QString &caption, const QString &prompt, QString &value) override
    {
        const QString answer = Ask(caption + u'|' + prompt + u'|' + value);
        if (!answer.isNull())
            value = answer;
        return !answer.isNull();
    }

    QString OpenFileName(const QString &title, const QString &filter, const QString &startName) override
    {
        return Ask(title + u'|' + filter + u'|' + startName);
    }

    QString SaveFileName(const QString &title, const QString &filter, const QString &startName) override
    {
        return Ask(title + u'|' + filter + u'|' + startName);
    }

    QString SelectFolder(const QString &title) override { return Ask(title); }

    /// What the message boxes will answer.
    QList<int> Answers;
    /// What the text, file and folder questions will answer; a null string cancels.
    QStringList Texts;

    /// The message boxes shown.
    QList<Box> Boxes;
    /// The other questions: their arguments with "|" between.
    QStringList Asked;

private:
    QString Ask(const QString &question)
    {
        Asked.append(question);
        return Take(Texts, QString(), question);
    }

    template <class List, class T> static T Take(List &answers, T refusal, const QString &question)
    {
        if (!answers.isEmpty())
            return answers.takeFirst();
        ADD_FAILURE() << "no answer left for: " << qPrintable(question);
        return refusal;
    }
};

/// Installs scripted prompts for as long as it lives. Answers that nobody asked for fail
/// the test.
///
///     PromptScript script({IDYES});
///     …
///     EXPECT_EQ(script->Boxes.size(), 1);
class PromptScript
{
public:
    explicit PromptScript(QList<int> answers = {}, QStringList texts = {})
    {
        FPrompts->Answers = std::move(answers);
        FPrompts->Texts = std::move(texts);
        FPrevious = Prompts::Install(FPrompts);
    }
    PromptScript(const PromptScript &) = delete;
    PromptScript &operator=(const PromptScript &) = delete;
    ~PromptScript()
    {
        Prompts::Install(FPrevious);
        EXPECT_TRUE(FPrompts->Answers.isEmpty()) << "message boxes that did not come";
        EXPECT_TRUE(FPrompts->Texts.isEmpty()) << "questions that did not come";
    }

    ScriptedPrompts *operator->() const { return FPrompts.get(); }

private:
    std::shared_ptr<ScriptedPrompts> FPrompts = std::make_shared<ScriptedPrompts>();
    std::shared_ptr<Prompts> FPrevious;
};

} // namespace Korvane::Testing
