// Hostile response samples: bytes as they would travel, none of which may ever be taken for an answer. The
// sequence is the same in every run.
#pragma once

#include "practice_router/actions/request.h"

#include <cstdint>
#include <random>
#include <vector>

namespace zul::practice {

class Garbage {
public:
    // The next sample. Most carry the id of the request, as an answer to it would; they differ in what is
    // wrong after it: an unknown outcome, the length or the end of the text, the encapsulation. Others are
    // cut short or plain noise.
    std::vector<std::uint8_t> next(const RequestId& id);

private:
    std::mt19937 random_{20240229}; // any fixed seed
    std::size_t made_ = 0;
};

} // namespace zul::practice
