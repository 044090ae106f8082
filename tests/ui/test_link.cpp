#include "session/Session.h"

#include <gtest/gtest.h>

namespace knjige {
QString componentVersion();
}

// The window library carries the core: a host process holds exactly one session.
TEST(Component, SharesOneSessionWithTheHost)
{
    knjige::session().RadnaGodina = 2016;
    EXPECT_EQ(knjige::componentVersion(), QStringLiteral("17.0"));
    EXPECT_EQ(knjige::session().RadnaGodina, 2016);
}
