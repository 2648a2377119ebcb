// The documents that programs carry are the files that operators get.
#include "product/default_configuration.h"
#include "product/dtd.h"

#include <cstdlib>
#include <cstring>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <span>
#include <string>

namespace {

std::string contents(const std::string& path) {
    std::ifstream file(std::string(std::getenv("ZUL_SOURCE")) + "/resource/" + path);
    return {std::istreambuf_iterator<char>(file), {}};
}

TEST(Embedded, ChunksJoinToTheFiles) {
    const struct {
        const char* path;
        std::span<const char* const> chunks;
        std::size_t length;
    } rows[] = {{"dtd/routing_service.dtd", ROUTER_DTD, 57464},
                {"dtd/federation_service.dtd", FEDERATION_DTD, 53868}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.path);
        std::string joined;
        for (const char* chunk : row.chunks) {
            EXPECT_TRUE(std::strlen(chunk) == 1024 || chunk == row.chunks.back());
            joined += chunk;
        }
        EXPECT_EQ(joined.size(), row.length);
        EXPECT_EQ(joined, contents(row.path));
    }
    EXPECT_EQ(ROUTER_g_routingServiceDefaultConfiguration, contents("xml/ZUL_ROUTING_SERVICE.xml"));
    EXPECT_EQ(ROUTER_g_federationServiceDefaultConfiguration, contents("xml/ZUL_FEDERATION_SERVICE.xml"));
}

} // namespace
