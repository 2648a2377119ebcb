// Unfinished uploads are in order: the one that has waited longest for its next piece comes first.
#include "practice_router/actions/upload.h"

#include <algorithm>

namespace zul::practice {

namespace {

// Whether an upload is of the client that has sent the request.
auto isFromSenderOf(const Request& request) {
    return [&request](const Upload& upload) {
        return upload.writer == request.writer && upload.id.host == request.id.host &&
               upload.id.app == request.id.app;
    };
}

} // namespace

// Takes out the upload that a piece goes on with, or begins a new one; whatever else the client has
// unfinished is dropped.
Upload Uploads::continued(const Request& piece) {
    dropAfterLoss(piece);
    Upload upload{
        .writer = piece.writer, .id = piece.id, .kind = piece.kind, .entity = piece.entity, .text = {}};
    const auto found = std::ranges::find_if(pending_, isFromSenderOf(piece));
    if (found != pending_.end()) {
        if (found->id == piece.id && found->kind == piece.kind) {
            upload = std::move(*found);
        }
        pending_.erase(found);
    }
    return upload;
}

void Uploads::dropAfterLoss(const Request& next) {
    if (next.followsLoss) {
        pending_.clear();
    }
}

void Uploads::interrupt(const Request& other) {
    dropAfterLoss(other);
    std::erase_if(pending_, isFromSenderOf(other));
}

const Upload* Uploads::find(const Request& piece) const {
    const auto found = std::ranges::find_if(pending_, isFromSenderOf(piece));
    return found != pending_.end() ? &*found : nullptr;
}

std::optional<Upload> Uploads::add(const Request& piece) {
    Upload upload = continued(piece);
    ++upload.pieces;
    upload.bytes += piece.content.size();
    if (!countsOnly_) {
        upload.isTooLarge = upload.bytes > MAX_UPLOAD_SIZE;
        if (upload.isTooLarge) {
            upload.text = {}; // the rest is still counted, so that its last piece is answered
        } else {
            upload.text += piece.content;
        }
    }
    if (piece.isFinal) {
        return upload;
    }
    if (pending_.size() >= MAX_PENDING_UPLOADS) {
        pending_.pop_front();
    }
    pending_.push_back(std::move(upload));
    return std::nullopt;
}

} // namespace zul::practice
