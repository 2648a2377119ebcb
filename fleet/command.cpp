// Names and pieces as the shell sends them; the rows of admin_types/commands.h say what a kind carries.
#include "fleet/command.h"

#include "admin_types/requests.h"
#include "middleware/base/strings.h"
#include "product/assignment.h"
#include "product/vocabulary.h"

#include <algorithm>
#include <cerrno>
#include <new>

namespace zul::fleet {

using product::FILE_SCHEME;
using product::INLINE_SCHEME;

namespace {

constexpr std::size_t PIECE = admin::XML_CONTENT_BOUND;

// A router would see the text only up to there.
bool holdsNul(std::string_view text) {
    return text.find('\0') != std::string_view::npos;
}

const char* refusePeers(const std::vector<std::string>& peers) {
    if (peers.empty()) {
        return "the list of peers is empty";
    }
    const auto isBad = [](const std::string& peer) {
        return peer.empty() || peer.size() > admin::SHORTER_NAME;
    };
    return peers.size() > admin::PEER_LIST_BOUND ? "peerList too long"
           : std::ranges::any_of(peers, isBad)   ? "a peer is empty or too long"
                                                 : nullptr;
}

} // namespace

std::string inlineUrl(std::string_view xml) {
    return std::string(INLINE_SCHEME).append("\"").append(xml).append("\"");
}

std::string remoteFileUrl(std::string_view path) {
    return std::string(path.starts_with(FILE_SCHEME) ? "" : FILE_SCHEME).append(path);
}

std::string assignmentUrl(const std::string& assignment) {
    errno = 0;
    const ZULStringPtr snippet(ROUTERRemoteConfigClient_convertAssignmentToXmlSnippet(assignment.c_str()));
    if (snippet == nullptr && errno == ENOMEM) {
        throw std::bad_alloc();
    }
    return snippet != nullptr ? snippet.get() : "";
}

const char* refusal(const Command& command, const std::string& router) {
    const admin::Command& row = *admin::findCommand(command.kind);
    if (const char* reason = admin::refuseNames(row, router.c_str(), command.name.c_str())) {
        return reason;
    }
    if (router.empty()) {
        return "target router name is empty";
    }
    if (holdsNul(command.url)) {
        return "the XML holds a NUL byte";
    }
    // A path has to arrive in one piece: it is not told apart from the text of an upload otherwise.
    if (command.url.starts_with(FILE_SCHEME) && command.url.size() > PIECE) {
        return "the path is too long";
    }
    return row.branch == admin::CommandBranch::PEER_DESC ? refusePeers(command.peers) : nullptr;
}

std::vector<std::string_view> piecesOf(std::string_view url) {
    std::vector<std::string_view> pieces;
    for (; url.size() > PIECE; url.remove_prefix(PIECE)) {
        pieces.push_back(url.substr(0, PIECE));
    }
    pieces.push_back(url);
    return pieces;
}

bool fill(ZUL_RoutingService_Administration_CommandRequest& request, const Command& command,
          const std::string& router) {
    const admin::Command& row = *admin::findCommand(command.kind);
    admin::fillNames(request, row, router.c_str(), command.name.c_str());
    if (row.branch != admin::CommandBranch::PEER_DESC) {
        return true;
    }
    auto& peers = request.command._u.peer_desc;
    peers.is_first_participant = command.isFirstParticipant ? 1 : 0;
    const auto count = static_cast<DDS_Long>(command.peers.size());
    if (!ZULSequence::ensure_length(&peers.peer_list, count, count, __func__)) {
        return false;
    }
    for (DDS_Long i = 0; i < count; ++i) {
        char*& element = *ZULSequence::get_reference(&peers.peer_list, i, __func__);
        DDS_String_free(element);
        element = DDS_String_dup(command.peers[static_cast<std::size_t>(i)].c_str());
        if (element == nullptr) {
            return false;
        }
    }
    return true;
}

void fillPiece(ZUL_RoutingService_Administration_CommandRequest& request, std::string_view piece,
               bool isFinal) {
    auto& xmlUrl = request.command._u.entity_desc.xml_url;
    xmlUrl.is_final = isFinal ? 1 : 0;
    ZULString_copyBounded(xmlUrl.content, PIECE + 1, piece);
}

} // namespace zul::fleet
