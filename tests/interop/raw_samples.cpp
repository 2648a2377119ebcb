#include "raw_samples.h"

#include <algorithm>
#include <cstdio>
#include <dds/ddsi/q_radmin.h>
#include <utility>

namespace interop {

namespace {

struct RawSample : ddsi_serdata {
    RawSample(const ddsi_sertype* ofType, ddsi_serdata_kind ofKind, Bytes payload)
        : ddsi_serdata{}, bytes(std::move(payload)) {
        ddsi_serdata_init(this, ofType, ofKind);
    }
    const Bytes bytes;
};

// The fragments of a received sample, in order; they may overlap.
ddsi_serdata* fromNetwork(const ddsi_sertype* type, ddsi_serdata_kind kind, const nn_rdata* fragment,
                          std::size_t size) {
    Bytes bytes;
    bytes.reserve(size);
    for (; fragment != nullptr; fragment = fragment->nextfrag) {
        const unsigned char* payload =
            NN_RMSG_PAYLOADOFF(fragment->rmsg, NN_RDATA_PAYLOAD_OFF(fragment)) - fragment->min;
        if (fragment->maxp1 > bytes.size()) {
            bytes.insert(bytes.end(), payload + bytes.size(), payload + fragment->maxp1);
        }
    }
    bytes.resize(size);
    return new RawSample(type, kind, std::move(bytes));
}

std::uint32_t sizeOf(const ddsi_serdata* sample) {
    return static_cast<std::uint32_t>(rawBytes(sample).size());
}

// Received samples may have any length: what is asked for beyond it is padding.
void toNetwork(const ddsi_serdata* sample, std::size_t offset, std::size_t size, void* buffer) {
    const Bytes& bytes = rawBytes(sample);
    auto* to = static_cast<std::uint8_t*>(buffer);
    for (std::size_t i = 0; i < size; ++i) {
        to[i] = offset + i < bytes.size() ? bytes[offset + i] : std::uint8_t{0};
    }
}

ddsi_serdata* toNetworkInPlace(const ddsi_serdata* sample, std::size_t offset, std::size_t size,
                               ddsrt_iovec_t* part) {
    part->iov_base = const_cast<std::uint8_t*>(rawBytes(sample).data() + offset); // only read from
    part->iov_len = size;
    return ddsi_serdata_ref(sample);
}

// A keyless type has one key value, which equals itself.
bool hasEqualKey(const ddsi_serdata*, const ddsi_serdata*) {
    return true;
}

ddsi_serdata* keyOf(const ddsi_serdata* sample) {
    return new RawSample(sample->type, SDK_KEY, {});
}

ddsi_serdata* fromKeyHash(const ddsi_sertype* type, const ddsi_keyhash*) {
    return new RawSample(type, SDK_KEY, {});
}

void keyHashOf(const ddsi_serdata*, ddsi_keyhash* hash, bool) {
    *hash = {};
}

std::size_t print(const ddsi_sertype* type, const ddsi_serdata* sample, char* buffer, std::size_t size) {
    return static_cast<std::size_t>(
        std::snprintf(buffer, size, "%s of %zu bytes", type->type_name, rawBytes(sample).size()));
}

// Samples only come from the network or from newRawSample, so operations on application samples have no
// entry.
ddsi_serdata_ops sampleOperations() {
    ddsi_serdata_ops operations{};
    operations.eqkey = hasEqualKey;
    operations.get_size = sizeOf;
    operations.from_ser = fromNetwork;
    operations.from_keyhash = fromKeyHash;
    operations.to_ser = toNetwork;
    operations.to_ser_ref = toNetworkInPlace;
    operations.to_ser_unref = [](ddsi_serdata* sample, const ddsrt_iovec_t*) {
        ddsi_serdata_unref(sample);
    };
    operations.to_untyped = keyOf;
    operations.free = [](ddsi_serdata* sample) {
        delete static_cast<RawSample*>(sample);
    };
    operations.print = print;
    operations.get_keyhash = keyHashOf;
    return operations;
}

ddsi_sertype_ops typeOperations() {
    ddsi_sertype_ops operations{};
    operations.version = ddsi_sertype_v0;
    operations.free = [](ddsi_sertype* type) {
        ddsi_sertype_fini(type);
        delete type;
    };
    // Name and operations are compared before these two are asked; there is nothing more to a raw type.
    operations.equal = [](const ddsi_sertype*, const ddsi_sertype*) {
        return true;
    };
    operations.hash = [](const ddsi_sertype*) {
        return std::uint32_t{0};
    };
    return operations;
}

} // namespace

dds_entity_t createRawTopic(dds_entity_t participant, const char* topicName, const char* typeName,
                            const ddsi_sertype*& type) {
    static const ddsi_serdata_ops SAMPLE_OPERATIONS = sampleOperations();
    static const ddsi_sertype_ops TYPE_OPERATIONS = typeOperations();
    auto* created = new ddsi_sertype{};
    ddsi_sertype_init_flags(created, typeName, &TYPE_OPERATIONS, &SAMPLE_OPERATIONS,
                            DDSI_SERTYPE_FLAG_TOPICKIND_NO_KEY);
    created->allowed_data_representation = DDS_DATA_REPRESENTATION_FLAG_XCDR1;
    ddsi_sertype* used = created;
    const dds_entity_t topic =
        dds_create_topic_sertype(participant, topicName, &used, nullptr, nullptr, nullptr);
    if (topic < 0) {
        ddsi_sertype_unref(created);
    }
    type = used;
    return topic;
}

ddsi_serdata* newRawSample(const ddsi_sertype* type, Bytes bytes) {
    return new RawSample(type, SDK_DATA, std::move(bytes));
}

const Bytes& rawBytes(const ddsi_serdata* sample) {
    return static_cast<const RawSample*>(sample)->bytes;
}

} // namespace interop
