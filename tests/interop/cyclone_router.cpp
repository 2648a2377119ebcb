// The DDS side of a router for tests, on Cyclone DDS: prints each request as a line, the first eight bytes of
// its sender's GUID and its payload, and writes each line that it reads as a response. All in hexadecimal.
// Samples go through the library as whole payloads, from the encapsulation header to the padding, which it
// neither interprets nor converts.
//
//   zul_cyclone_router <domain> <head of the topic names> <head of the type names>
//                      [<name of the participant> [xcdr2]]
//
// Prints "ready" once it may be discovered. Ends with its input.
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <dds/dds.h>
#include <dds/ddsi/ddsi_serdata.h>
#include <dds/ddsi/q_radmin.h>
#include <iostream>
#include <string>
#include <utility>
#include <vector>

namespace {

using Bytes = std::vector<std::uint8_t>;

struct RawSample : ddsi_serdata {
    RawSample(const ddsi_sertype* ofType, ddsi_serdata_kind ofKind, Bytes payload)
        : ddsi_serdata{}, bytes(std::move(payload)) {
        ddsi_serdata_init(this, ofType, ofKind);
    }
    const Bytes bytes;
};

const Bytes& bytesOf(const ddsi_serdata* sample) {
    return static_cast<const RawSample*>(sample)->bytes;
}

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
    part->iov_base = const_cast<std::uint8_t*>(bytesOf(sample).data() + offset); // only read from
    part->iov_len = size;
    return ddsi_serdata_ref(sample);
}

// What the library asks of samples from either side; all have the one key of a keyless type.
ddsi_serdata_ops sampleOperations() {
    ddsi_serdata_ops operations{};
    operations.eqkey = [](const ddsi_serdata*, const ddsi_serdata*) {
        return true;
    };
    operations.get_size = [](const ddsi_serdata* sample) {
        return static_cast<std::uint32_t>(bytesOf(sample).size());
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

dds_entity_t checked(const char* what, dds_return_t code) {
    if (code < 0) {
        std::fprintf(stderr, "%s: %s\n", what, dds_strretcode(code));
        std::_Exit(1);
    }
    return code;
}

void printHexadecimal(const std::uint8_t* bytes, std::size_t size, const char* end) {
    for (std::size_t i = 0; i < size; ++i) {
        std::printf("%02x", unsigned{bytes[i]});
    }
    std::printf("%s", end);
}

// Padded to a multiple of 4 bytes.
Bytes parseHexadecimal(const std::string& text) {
    Bytes bytes((text.size() / 2 + 3) / 4 * 4);
    for (std::size_t i = 0; i < text.size() / 2; ++i) {
        std::from_chars(&text[2 * i], &text[2 * i] + 2, bytes[i], 16);
    }
    return bytes;
}

void printRequests(dds_entity_t reader, void*) {
    ddsi_serdata* sample = nullptr;
    dds_sample_info_t info;
    while (checked("take", dds_takecdr(reader, &sample, 1, &info, DDS_ANY_STATE)) > 0) {
        auto* sender = dds_get_matched_publication_data(reader, info.publication_handle);
        if (info.valid_data && sender != nullptr) {
            printHexadecimal(sender->participant_key.v, 8, " ");
            printHexadecimal(bytesOf(sample).data(), bytesOf(sample).size(), "\n");
            std::fflush(stdout);
        }
        if (sender != nullptr) {
            dds_builtintopic_free_endpoint(sender);
        }
        ddsi_serdata_unref(sample);
    }
}

} // namespace

int main(int count, char** arguments) {
    const auto domain = static_cast<dds_domainid_t>(std::atoi(arguments[1]));
    const char* name = count > 4 ? arguments[4] : "";
    const bool isXcdr2 = count > 5; // it reads and writes XCDR version 2 only; else version 1 only
    dds_qos_t* participantQos = dds_create_qos();
    dds_qset_entity_name(participantQos, name);
    const dds_entity_t participant =
        checked("participant", dds_create_participant(domain, participantQos, nullptr));
    dds_delete_qos(participantQos);
    static const ddsi_serdata_ops sampleCalls = sampleOperations();
    static const ddsi_sertype_ops typeCalls = typeOperations();
    ddsi_sertype* type = nullptr; // the topic's
    const auto createTopic = [&](const std::string& topic, const std::string& ofType) {
        type = new ddsi_sertype{};
        ddsi_sertype_init_flags(type, (arguments[3] + ofType).c_str(), &typeCalls, &sampleCalls,
                                DDSI_SERTYPE_FLAG_TOPICKIND_NO_KEY);
        type->allowed_data_representation =
            isXcdr2 ? DDS_DATA_REPRESENTATION_FLAG_XCDR2 : DDS_DATA_REPRESENTATION_FLAG_XCDR1;
        return checked("topic", dds_create_topic_sertype(participant, (arguments[2] + topic).c_str(), &type,
                                                         nullptr, nullptr, nullptr));
    };
    const dds_entity_t requests = createTopic("request", "Request");
    const dds_entity_t responses = createTopic("response", "Response");
    dds_qos_t* qos = dds_create_qos();
    dds_qset_reliability(qos, DDS_RELIABILITY_RELIABLE, DDS_SECS(10));
    dds_qset_history(qos, DDS_HISTORY_KEEP_ALL, DDS_LENGTH_UNLIMITED);
    dds_listener_t* listener = dds_create_listener(nullptr);
    dds_lset_data_available(listener, printRequests);
    const dds_entity_t writer = checked("writer", dds_create_writer(participant, responses, qos, nullptr));
    checked("reader", dds_create_reader(participant, requests, qos, listener));
    dds_delete_listener(listener);
    dds_delete_qos(qos);

    std::cout << "ready" << std::endl;
    for (std::string line; std::getline(std::cin, line);) {
        checked("write", dds_writecdr(writer, new RawSample(type, SDK_DATA, parseHexadecimal(line))));
    }
    return checked("end", dds_delete(participant));
}
