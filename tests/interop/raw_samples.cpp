#include "raw_samples.h"

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

ddsi_serdata* toNetwork(const ddsi_serdata* sample, std::size_t offset, std::size_t size,
                        ddsrt_iovec_t* part) {
    part->iov_base = const_cast<std::uint8_t*>(rawBytes(sample).data() + offset); // only read from
    part->iov_len = size;
    return ddsi_serdata_ref(sample);
}

// What the library asks of samples that come from the network or from newRawSample; all have the one key of a
// keyless type.
ddsi_serdata_ops sampleOperations() {
    ddsi_serdata_ops operations{};
    operations.eqkey = [](const ddsi_serdata*, const ddsi_serdata*) {
        return true;
    };
    operations.get_size = [](const ddsi_serdata* sample) {
        return static_cast<std::uint32_t>(rawBytes(sample).size());
    };
    operations.from_ser = fromNetwork;
    operations.from_keyhash = [](const ddsi_sertype* type, const ddsi_keyhash*) -> ddsi_serdata* {
        return new RawSample(type, SDK_KEY, {});
    };
    operations.to_ser_ref = toNetwork;
    operations.to_ser_unref = [](ddsi_serdata* sample, const ddsrt_iovec_t*) {
        ddsi_serdata_unref(sample);
    };
    operations.to_untyped = [](const ddsi_serdata* sample) -> ddsi_serdata* {
        return new RawSample(sample->type, SDK_KEY, {});
    };
    operations.free = [](ddsi_serdata* sample) {
        delete static_cast<RawSample*>(sample);
    };
    return operations;
}

// Name and operations of types are compared before `equal`; there is nothing more to a raw type.
ddsi_sertype_ops typeOperations() {
    ddsi_sertype_ops operations{};
    operations.version = ddsi_sertype_v0;
    operations.free = [](ddsi_sertype* type) {
        ddsi_sertype_fini(type);
        delete type;
    };
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
    const dds_entity_t topic =
        dds_create_topic_sertype(participant, topicName, &created, nullptr, nullptr, nullptr);
    type = created;
    return topic;
}

ddsi_serdata* newRawSample(const ddsi_sertype* type, Bytes bytes) {
    bytes.resize((bytes.size() + 3) / 4 * 4);
    return new RawSample(type, SDK_DATA, std::move(bytes));
}

const Bytes& rawBytes(const ddsi_serdata* sample) {
    return static_cast<const RawSample*>(sample)->bytes;
}

} // namespace interop
