// What is refused before anything is sent.
#include "fleet/command.h"

#include <gtest/gtest.h>

namespace zul::fleet {
namespace {

TEST(Command, WhatDoesNotFitIsRefused) {
    const struct {
        const char* reason; // empty when there is none
        Command command;
        std::string router = "r";
    } rows[] = {
        {"", {ZUL_ROUTING_SERVICE_COMMAND_GET}, std::string(254, 'n')},
        {"target router name is empty", {ZUL_ROUTING_SERVICE_COMMAND_GET}, ""},
        {"", {ZUL_ROUTING_SERVICE_COMMAND_ENABLE, std::string(255, 'n')}},
        {"entityName too long", {ZUL_ROUTING_SERVICE_COMMAND_DELETE, std::string(255, 'n')}},
        {"cfgName too long", {ZUL_ROUTING_SERVICE_COMMAND_LOAD, std::string(256, 'n')}},
        {"parentEntityName too long", {ZUL_ROUTING_SERVICE_COMMAND_CREATE, std::string(255, 'n')}},
        {"", {ZUL_ROUTING_SERVICE_COMMAND_UPDATE, "", remoteFileUrl(std::string(4089, 'n'))}},
        {"the path is too long",
         {ZUL_ROUTING_SERVICE_COMMAND_UPDATE, "", remoteFileUrl(std::string(4090, 'n'))}},
        {"the XML holds a NUL byte", {ZUL_ROUTING_SERVICE_COMMAND_UPDATE, "", inlineUrl({"\0", 1})}},
        {"", {.kind = ZUL_ROUTING_SERVICE_COMMAND_ADD_PEER, .peers = {16, std::string(254, 'n')}}},
        {"a peer is empty or too long",
         {.kind = ZUL_ROUTING_SERVICE_COMMAND_ADD_PEER, .peers = {std::string(255, 'n')}}},
        {"the list of peers is empty", {.kind = ZUL_ROUTING_SERVICE_COMMAND_ADD_PEER, .peers = {}}},
    };
    for (const auto& row : rows) {
        const char* reason = refusal(row.command, row.router);
        EXPECT_STREQ(reason != nullptr ? reason : "", row.reason);
    }
}

} // namespace
} // namespace zul::fleet
