// What is refused before anything is sent, and how the rest is cut.
#include "fleet/command.h"

#include <gtest/gtest.h>

namespace zul::fleet {
namespace {

TEST(Command, IsCutAsTheShellCutsALocalFile) {
    for (const auto& [bytes, sizes] : {std::pair{0, std::vector<std::size_t>{8}},
                                       {4088, {4096}},
                                       {4089, {4096, 1}},
                                       {8184, {4096, 4096}},
                                       {8185, {4096, 4096, 1}}}) {
        const std::string url = inlineUrl(std::string(static_cast<std::size_t>(bytes), 'x'));
        std::string joined;
        std::vector<std::size_t> found;
        for (const std::string_view piece : piecesOf(url)) {
            found.push_back(piece.size());
            joined += piece;
        }
        EXPECT_EQ(found, sizes);
        EXPECT_EQ(joined, url);
    }
}

TEST(Command, WhatDoesNotFitIsRefused) {
    const auto names = [](std::size_t length) {
        return std::string(length, 'n');
    };
    const struct {
        Command command;
        std::string router;
        const char* reason; // empty when there is none
    } rows[] = {
        {{ZUL_ROUTING_SERVICE_COMMAND_GET}, names(254), ""},
        {{ZUL_ROUTING_SERVICE_COMMAND_GET}, names(255), "target router name too long"},
        {{ZUL_ROUTING_SERVICE_COMMAND_GET}, "", "target router name is empty"},
        {{ZUL_ROUTING_SERVICE_COMMAND_ENABLE, names(255)}, "r", ""},
        {{ZUL_ROUTING_SERVICE_COMMAND_ENABLE, names(256)}, "r", "entityName too long"},
        {{ZUL_ROUTING_SERVICE_COMMAND_DELETE, names(255)}, "r", "entityName too long"},
        {{ZUL_ROUTING_SERVICE_COMMAND_LOAD, names(256)}, "r", "cfgName too long"},
        {{ZUL_ROUTING_SERVICE_COMMAND_CREATE, names(255)}, "r", "parentEntityName too long"},
        {{.kind = ZUL_ROUTING_SERVICE_COMMAND_UPDATE, .url = remoteFileUrl(names(4089))}, "r", ""},
        {{.kind = ZUL_ROUTING_SERVICE_COMMAND_UPDATE, .url = remoteFileUrl(names(4090))},
         "r",
         "the path is too long"},
        {{.kind = ZUL_ROUTING_SERVICE_COMMAND_UPDATE, .url = inlineUrl({"\0", 1})},
         "r",
         "the XML holds a NUL byte"},
        {{.kind = ZUL_ROUTING_SERVICE_COMMAND_ADD_PEER, .peers = {16, names(254)}}, "r", ""},
        {{.kind = ZUL_ROUTING_SERVICE_COMMAND_ADD_PEER, .peers = {17, "p"}}, "r", "peerList too long"},
        {{.kind = ZUL_ROUTING_SERVICE_COMMAND_ADD_PEER, .peers = {names(255)}},
         "r",
         "a peer is empty or too long"},
        {{.kind = ZUL_ROUTING_SERVICE_COMMAND_ADD_PEER, .peers = {}}, "r", "the list of peers is empty"},
    };
    for (const auto& row : rows) {
        const char* reason = refusal(row.command, row.router);
        EXPECT_STREQ(reason != nullptr ? reason : "", row.reason);
    }
}

} // namespace
} // namespace zul::fleet
