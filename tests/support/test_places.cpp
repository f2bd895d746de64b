// SPDX-License-Identifier: MIT
#include "support/TestPlace.h"

using namespace Korvane::Testing;

// CTest keeps its list of tests until the program is built anew; the program itself does not.
TEST(Places, include_SqlServer)
{
    if (!TestServer::SqlServer())
        GTEST_SKIP() << MissingServer(ServerKind::SqlServer);
}
