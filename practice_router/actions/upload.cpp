#include "practice_router/actions/upload.h"

#include <algorithm>

namespace {

bool isFromClient(const PracticeUpload& upload, const PracticeRequest& request) {
    return upload.writer == request.writer && upload.id.host == request.id.host &&
           upload.id.app == request.id.app;
}

template <class Uploads>
auto findOf(Uploads& pending, const PracticeRequest& request) {
    return std::find_if(pending.begin(), pending.end(),
                        [&request](const PracticeUpload& upload) { return isFromClient(upload, request); });
}

// Takes out the upload that a piece goes on with, or begins a new one; whatever else the client has
// unfinished is dropped.
PracticeUpload continued(PracticeUploads& self, const PracticeRequest& piece) {
    PracticeUpload upload{
        .writer = piece.writer, .id = piece.id, .kind = piece.kind, .entity = piece.entity, .text = {}};
    const auto found = findOf(self.pending, piece);
    if (found != self.pending.end()) {
        if (found->id == piece.id && found->kind == piece.kind) {
            upload = std::move(*found);
        }
        self.pending.erase(found);
    }
    return upload;
}

} // namespace

void PracticeUploads_interrupt(PracticeUploads& self, const PracticeRequest& other) {
    std::erase_if(self.pending,
                  [&other](const PracticeUpload& upload) { return isFromClient(upload, other); });
}

const PracticeUpload* PracticeUploads_find(const PracticeUploads& self, const PracticeRequest& piece) {
    const auto found = findOf(self.pending, piece);
    return found != self.pending.end() ? &*found : nullptr;
}

std::optional<PracticeUpload> PracticeUploads_add(PracticeUploads& self, const PracticeRequest& piece) {
    PracticeUpload upload = continued(self, piece);
    ++upload.pieces;
    upload.bytes += piece.content.size();
    if (!self.countsOnly) {
        upload.isTooLarge = upload.bytes > PRACTICE_UPLOAD_MAX_SIZE;
        if (upload.isTooLarge) {
            upload.text = {}; // the rest is still counted, so that its last piece is answered
        } else {
            upload.text += piece.content;
        }
    }
    if (piece.isFinal) {
        return upload;
    }
    if (self.pending.size() >= PRACTICE_MAX_PENDING_UPLOADS) {
        self.pending.pop_front();
    }
    self.pending.push_back(std::move(upload));
    return std::nullopt;
}
