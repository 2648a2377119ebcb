// A command for routers: what a request of it holds, whether it fits, and how it is cut into samples.
#pragma once

#include "admin_types/commands.h"
#include "admin_types/records.h"

#include <string>
#include <string_view>
#include <vector>

namespace zul::fleet {

using CommandKind = ZUL_RoutingService_Administration_CommandKind;

// Words go out as they are. What a kind does not carry stays empty.
struct Command {
    CommandKind kind;
    std::string name{}; // of an entity, a configuration, a parent or a domain route; empty: the router itself
    std::string url{};  // XML: made by one of the functions below
    bool isFirstParticipant = false;
    std::vector<std::string> peers{};
};

// The URL of XML that is sent along, and of a file that the router reads.
std::string inlineUrl(std::string_view xml);
std::string remoteFileUrl(std::string_view path);
// The URL of a dotted assignment; empty when it is none.
std::string assignmentUrl(const std::string& assignment);

// Why a command to a router of that name must not be sent; null when it may.
const char* refusal(const Command& command, const std::string& router);

// Cuts a URL into the pieces of an upload, which refer to it; only the last is final. Never empty.
std::vector<std::string_view> piecesOf(std::string_view url);

// Fills a request, whose strings have room for their bounds. The command must be one that `refusal` lets
// pass. False when memory is exhausted.
bool fill(ZUL_RoutingService_Administration_CommandRequest& request, const Command& command,
          const std::string& router);
// Puts a piece of the command's URL into a request that is filled.
void fillPiece(ZUL_RoutingService_Administration_CommandRequest& request, std::string_view piece,
               bool isFinal);

} // namespace zul::fleet
