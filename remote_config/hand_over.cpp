// The hand-over as the product uses it.
#include "remote_config/hand_over.h"

namespace zul::remote_config {

void ClientPlatform::pause() {
    constexpr std::uint32_t NANOSECONDS = 1'000'000;
    ZULSleep(0, NANOSECONDS);
}

template class HandOver<ClientPlatform>;

} // namespace zul::remote_config
