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

TEST(Embedded, ADocumentThatIsNotTheFile) {
    for (const auto& [path, chunks] :
         {std::pair<const char*, std::span<const char* const>>{"dtd/routing_service.dtd", ROUTER_DTD},
          {"dtd/federation_service.dtd", FEDERATION_DTD}}) {
        std::string joined;
        for (const char* chunk : chunks) {
            EXPECT_TRUE(std::strlen(chunk) == 1024 || chunk == chunks.back());
            joined += chunk;
        }
        EXPECT_EQ(joined, contents(path));
    }
    EXPECT_EQ(ROUTER_g_routingServiceDefaultConfiguration, contents("xml/ZUL_ROUTING_SERVICE.xml"));
    EXPECT_EQ(ROUTER_g_federationServiceDefaultConfiguration, contents("xml/ZUL_FEDERATION_SERVICE.xml"));
}

} // namespace
