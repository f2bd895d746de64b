// SPDX-License-Identifier: MIT
#include "general/Messages.h"

#include "general/SystemRoutines.h"
#include "platform/core/ApplicationTitle.h"
#include "support/ScriptedPrompts.h"

#include <QDir>

#include <gtest/gtest.h>

using namespace Korvane;
using namespace Korvane::Testing;
using namespace Qt::StringLiterals;

TEST(Messages, boxes_have_the_applications_title_and_their_flags)
{
    SetApplicationTitle(u"订单"_s);
    PromptScript script({IDYES, IDNO});
    EXPECT_EQ(ShowMsg(u"保存成功"_s), 1);
    EXPECT_EQ(ShowDialog(u"是否覆盖？"_s, 0), 6);
    EXPECT_EQ(ShowDialog(u"是否删除？"_s, 256), 7);
    const QList<ScriptedPrompts::Box> expected = {{u"保存成功"_s, u"订单"_s, 0x40040},
                                                  {u"是否覆盖？"_s, u"订单"_s, 0x40024},
                                                  {u"是否删除？"_s, u"订单"_s, 0x40124}};
    EXPECT_EQ(script->Boxes, expected);
    SetApplicationTitle(QString());
}

TEST(Messages, a_chosen_folder_ends_with_one_separator)
{
    const QString separator = QDir::separator();
    const QString folder = QDir::toNativeSeparators(u"/数据/a"_s);
    PromptScript script({}, {folder, folder + separator, separator, QString()});
    EXPECT_EQ(SelectFolder(), folder + separator);
    EXPECT_EQ(SelectFolder(), folder + separator);
    EXPECT_EQ(SelectFolder(), separator);
    EXPECT_EQ(SelectFolder(), QString());
    EXPECT_EQ(script->Asked, QStringList(4, u"选择路径"_s));
}
