// What becomes of a line that the end of its input or a read that fails cuts off.
#include "zulctl/prompt/input.h"

#include <cerrno>
#include <gtest/gtest.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

namespace zul::ctl::prompt {
namespace {

TEST(Input, ALineThatAFailedReadCutsOffIsRun) {
    for (const bool fails : {false, true}) {
        int ends[2];
        ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM, 0, ends), 0);
        const int bell = eventfd(0, 0);
        const std::string text = "get r1\n\ndelete r1 Plant";
        ASSERT_EQ(write(ends[1], text.data(), text.size()), static_cast<ssize_t>(text.size()));
        if (fails) { // a peer that has not read everything resets the connection
            ASSERT_EQ(write(ends[0], "x", 1), 1);
        }
        close(ends[1]);
        Input input(ends[0], bell, [] { return Got::INPUT; });
        std::string line;
        EXPECT_EQ(input.readLine(line), Got::INPUT);
        EXPECT_EQ(line, "get r1");
        EXPECT_EQ(input.readLine(line), Got::INPUT);
        EXPECT_EQ(line, "");
        EXPECT_EQ(input.readLine(line), fails ? Got::FAILED : Got::INPUT);
        EXPECT_EQ(fails ? errno : 0, fails ? ECONNRESET : 0);
        EXPECT_TRUE(fails || line == "delete r1 Plant") << line;
        EXPECT_EQ(input.readLine(line), Got::END);
        close(ends[0]);
        close(bell);
    }
}

} // namespace
} // namespace zul::ctl::prompt
