// What is refused before anything is sent.
#include "fleet/command.h"

#include <gtest/gtest.h>

namespace zul::fleet {
namespace {

TEST(Command, WhatDoesNotFitIsRefused) {
    const auto names = [](std::size_t length) {
        return std::string(length, 'n');
    };
    const struct {
        const char* reason; // empty when there is none
        Command command;
        std::string router = "r";
    } rows[] = {
        {"", {ZUL_ROUTING_SERVICE_COMMAND_GET}, names(254)},
        {"target router name is empty", {ZUL_ROUTING_SERVICE_COMMAND_GET}, ""},
        {"", {ZUL_ROUTING_SERVICE_COMMAND_ENABLE, names(255)}},
        {"entityName too long", {ZUL_ROUTING_SERVICE_COMMAND_DELETE, names(255)}},
        {"cfgName too long", {ZUL_ROUTING_SERVICE_COMMAND_LOAD, names(256)}},
        {"parentEntityName too long", {ZUL_ROUTING_SERVICE_COMMAND_CREATE, names(255)}},
        {"", {ZUL_ROUTING_SERVICE_COMMAND_UPDATE, "", remoteFileUrl(names(4089))}},
        {"the path is too long", {ZUL_ROUTING_SERVICE_COMMAND_UPDATE, "", remoteFileUrl(names(4090))}},
        {"the XML holds a NUL byte", {ZUL_ROUTING_SERVICE_COMMAND_UPDATE, "", inlineUrl({"\0", 1})}},
        {"", {.kind = ZUL_ROUTING_SERVICE_COMMAND_ADD_PEER, .peers = {16, names(254)}}},
        {"a peer is empty or too long",
         {.kind = ZUL_ROUTING_SERVICE_COMMAND_ADD_PEER, .peers = {names(255)}}},
        {"the list of peers is empty", {.kind = ZUL_ROUTING_SERVICE_COMMAND_ADD_PEER, .peers = {}}},
    };
    for (const auto& row : rows) {
        const char* reason = refusal(row.command, row.router);
        EXPECT_STREQ(reason != nullptr ? reason : "", row.reason);
    }
}

} // namespace
} // namespace zul::fleet
