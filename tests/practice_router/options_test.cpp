// The command line: each kind of option, and what is said about bad ones.
#include "practice_router/endpoints/options.h"

#include <gtest/gtest.h>
#include <vector>

namespace {

using namespace zul::practice;

// What is wrong; empty when nothing is.
std::string parse(std::vector<const char*> arguments, Options& options) {
    std::string error;
    const bool isParsed = options.parse(arguments, error);
    EXPECT_EQ(isParsed, error.empty());
    return error;
}

TEST(Options, OneThatIsNotTaken) {
    Options options;
    EXPECT_EQ(parse({"--domain", "232", "--name=a=b"}, options), "");
    EXPECT_EQ(options.domain, 232);
    EXPECT_EQ(options.name, "a=b");
    EXPECT_NE(Options::help().find("--wrong-invocation"), std::string::npos);
}

TEST(Options, ABadOneThatIsTaken) {
    const std::string longName(255, 'n');
    const std::pair<std::vector<const char*>, const char*> rows[] = {
        {{"--bogus"}, "unknown option --bogus; --help"},
        {{"--domain"}, "needs a value: --domain N"},
        {{"--domain", "233"}, "give an integer from 0 to 232"},
        {{"--domain", "5x"}, "give an integer"},
        {{"--domain="}, "give an integer"},
        {{"--name", ""}, "1 to 254 characters"},
        {{"--name", longName.c_str()}, "1 to 254 characters"},
        {{"--silent=yes"}, "takes no value"},
        {{"--parts", "0"}, "from 1 to"},
    };
    for (const auto& [arguments, message] : rows) {
        Options options;
        const std::string error = parse(arguments, options);
        EXPECT_NE(error.find(message), std::string::npos) << message << ": " << error;
    }
}

} // namespace
