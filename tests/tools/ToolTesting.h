// SPDX-License-Identifier: MIT
#pragma once

#include "support/DesignStore.h"
#include "tools/korvane/Tool.h"

#include <QBuffer>
#include <QDir>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace Korvane::Testing {

/// What a run of the tool left behind.
struct ToolRun
{
    int Status = -1;
    QString Out;
    QString Err;
};

/// How a run is set up beside its arguments.
struct ToolSetting
{
    QString Input = {};
    bool HasReader = false;
    bool ShowsLines = false;
};

inline ToolRun RunKorvane(const QStringList &arguments, const ToolSetting &setting = {})
{
    QBuffer output, errors, input;
    input.setData(setting.Input.toUtf8());
    output.open(QIODevice::WriteOnly);
    errors.open(QIODevice::WriteOnly);
    input.open(QIODevice::ReadOnly);
    QTextStream out(&output), err(&errors), in(&input);
    TToolStreams streams{out, err, in, setting.HasReader, setting.ShowsLines};
    ToolRun run;
    run.Status = RunTool(arguments, streams);
    run.Out = QString::fromUtf8(output.data());
    run.Err = QString::fromUtf8(errors.data());
    return run;
}

/// A folder of its own, which is the current one as long as the test runs: a failed statement
/// goes to a file there.
class ToolTest : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(FFolder.isValid());
        QDir::setCurrent(FFolder.path());
    }
    void TearDown() override { QDir::setCurrent(FBefore); }

    QString Path(const QString &name) const { return FFolder.filePath(name); }

private:
    QString FBefore = QDir::currentPath();
    QTemporaryDir FFolder;
};

/// Runs once for each dialect, on a database of its own.
class DialectToolTest : public ToolTest, public testing::WithParamInterface<const char *>
{
protected:
    /// The options that name the test's database in its dialect.
    QStringList Database() const
    {
        if (qstrcmp(GetParam(), "access") == 0)
            return {QStringLiteral("--database"), Path(QStringLiteral("data.db"))};
        return {QStringLiteral("--dialect=mssql"), QStringLiteral("--server"),
                QStringLiteral("folder:") + Path({}), QStringLiteral("--database"), QStringLiteral("data")};
    }

    /// Runs a command on the test's database.
    ToolRun OnDatabase(const QStringList &arguments, const ToolSetting &setting = {}) const
    {
        return RunKorvane(arguments + Database(), setting);
    }

    ToolRun Sql(const QString &statement, const QStringList &options = {}) const
    {
        return OnDatabase(QStringList{QStringLiteral("sql"), statement} + options);
    }
};

/// Names the tests by their dialect.
inline std::string DialectName(const testing::TestParamInfo<const char *> &info) { return info.param; }

} // namespace Korvane::Testing
