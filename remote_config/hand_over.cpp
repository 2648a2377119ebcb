// The hand-over as the product uses it.
#include "remote_config/hand_over.h"

template class zul::remote_config::HandOver<zul::remote_config::ClientPlatform>;
