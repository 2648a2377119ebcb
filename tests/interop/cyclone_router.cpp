// The DDS side of a router for tests, on Cyclone DDS: prints each request as a line, the first eight bytes of
// its sender's GUID and its payload, and writes each line that it reads as a response. All in hexadecimal.
//
//   zul_cyclone_router <domain> <head of the topic names> <head of the type names>
//
// Prints "ready" once it may be discovered. Ends with its input.
#include "raw_samples.h"

#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <string>

namespace {

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

interop::Bytes parseHexadecimal(const std::string& text) {
    interop::Bytes bytes(text.size() / 2);
    for (std::size_t i = 0; i < bytes.size(); ++i) {
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
            printHexadecimal(interop::rawBytes(sample).data(), interop::rawBytes(sample).size(), "\n");
            std::fflush(stdout);
        }
        if (sender != nullptr) {
            dds_builtintopic_free_endpoint(sender);
        }
        ddsi_serdata_unref(sample);
    }
}

} // namespace

int main(int, char** arguments) {
    const auto domain = static_cast<dds_domainid_t>(std::atoi(arguments[1]));
    const dds_entity_t participant = checked("participant", dds_create_participant(domain, nullptr, nullptr));
    const ddsi_sertype* type = nullptr;
    const auto createTopic = [&](const std::string& topic, const std::string& ofType) {
        return checked("topic", interop::createRawTopic(participant, (arguments[2] + topic).c_str(),
                                                        (arguments[3] + ofType).c_str(), type));
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
        checked("write", dds_writecdr(writer, interop::newRawSample(type, parseHexadecimal(line))));
    }
    return checked("end", dds_delete(participant));
}
