// A router for tests, on Cyclone DDS: answers the shell with what it has decoded, as one JSON object, and
// prints the same text as a line. An upload's pieces are lines of their own; the final one tells the whole.
// The answer to a `get` has a text of the longest message's length in front, so it comes in two parts. An
// entity named "NoSuchEntity" is not found.
//
//   zul_cyclone_router --domain <0..232> --name <router> [--federation] [--big-endian]
//
// Prints "ready" once it may be discovered. Ends on SIGTERM or SIGINT, with status 0.
#include "raw_samples.h"
#include "wire.h"

#include <charconv>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <map>
#include <memory>
#include <thread>

namespace {

using interop::Branch;
using interop::Request;
using interop::Response;

constexpr std::int32_t KIND_GET = 13;
constexpr std::int32_t RESPONSE_OK = 0;
constexpr std::int32_t RESPONSE_ENTITY_NOT_FOUND = 3;
constexpr std::size_t LONGEST_MESSAGE = 4096;
constexpr std::size_t LONGEST_TEXT_SHOWN = 1000;
constexpr std::size_t MOST_SAMPLES_TAKEN = 32;

struct Options {
    std::uint32_t domain = 0;
    std::string name;
    bool isFederation = false;
    bool isBigEndian = false;
};

bool parseOptions(int argumentCount, char** arguments, Options& options) {
    bool hasDomain = false;
    for (int i = 1; i < argumentCount; ++i) {
        const std::string word = arguments[i];
        const std::string value = i + 1 < argumentCount ? arguments[i + 1] : "";
        if (word == "--federation") {
            options.isFederation = true;
        } else if (word == "--big-endian") {
            options.isBigEndian = true;
        } else if (word == "--name" && !value.empty()) {
            options.name = value;
            ++i;
        } else if (word == "--domain") {
            const auto [end, error] =
                std::from_chars(value.data(), value.data() + value.size(), options.domain);
            hasDomain = error == std::errc{} && end == value.data() + value.size() && options.domain <= 232;
            ++i;
        } else {
            return false;
        }
    }
    return hasDomain && !options.name.empty();
}

// One JSON object on one line; bytes outside ASCII are written as the character of the same number.
class JsonLine {
public:
    JsonLine& number(const char* key, long long value) { return raw(key, std::to_string(value)); }
    JsonLine& boolean(const char* key, bool value) { return raw(key, value ? "true" : "false"); }
    JsonLine& text(const char* key, const std::string& value) { return raw(key, quoted(value)); }
    JsonLine& texts(const char* key, const std::vector<std::string>& values) {
        std::string list;
        for (const std::string& value : values) {
            list += (list.empty() ? "" : ",") + quoted(value);
        }
        return raw(key, "[" + list + "]");
    }
    std::string str() const { return "{" + members_ + "}"; }

private:
    JsonLine& raw(const char* key, const std::string& value) {
        members_ += (members_.empty() ? "" : ",") + quoted(key) + ":" + value;
        return *this;
    }
    static std::string quoted(const std::string& value) {
        std::string result = "\"";
        for (const char c : value) {
            const auto code = static_cast<unsigned char>(c);
            if (code >= ' ' && code < 0x7F && c != '"' && c != '\\') {
                result += c;
            } else {
                char escape[8];
                std::snprintf(escape, sizeof escape, "\\u%04X", unsigned{code});
                result += escape;
            }
        }
        return result + "\"";
    }
    std::string members_;
};

std::uint32_t adler32(const std::string& text) {
    std::uint32_t a = 1;
    std::uint32_t b = 0;
    for (const char c : text) {
        a = (a + static_cast<unsigned char>(c)) % 65521;
        b = (b + a) % 65521;
    }
    return b << 16 | a;
}

struct Upload {
    std::string text;
    int pieces = 0;
};

class Router {
public:
    explicit Router(Options options) : options_(std::move(options)) {}
    ~Router() { dds_delete(participant_); }

    Router(const Router&) = delete;
    Router& operator=(const Router&) = delete;

    // Creates every entity; false after a message on standard error.
    bool open() {
        const std::string service = options_.isFederation ? "Federation" : "Routing";
        const std::string type = "ZUL::" + service + "Service::Administration::Command";
        const std::string topic = options_.isFederation ? "zul/federation_service/administration/command_"
                                                        : "zul/routing_service/administration/command_";
        const std::unique_ptr<dds_qos_t, void (*)(dds_qos_t*)> qos(dds_create_qos(), dds_delete_qos);
        dds_qset_reliability(qos.get(), DDS_RELIABILITY_RELIABLE, DDS_SECS(10));
        dds_qset_durability(qos.get(), DDS_DURABILITY_VOLATILE);
        dds_qset_history(qos.get(), DDS_HISTORY_KEEP_ALL, DDS_LENGTH_UNLIMITED);

        const ddsi_sertype* requestType = nullptr;
        return made("participant",
                    participant_ = dds_create_participant(options_.domain, nullptr, nullptr)) &&
               made("request topic",
                    requestTopic_ = interop::createRawTopic(participant_, (topic + "request").c_str(),
                                                            (type + "Request").c_str(), requestType)) &&
               made("response topic",
                    responseTopic_ = interop::createRawTopic(participant_, (topic + "response").c_str(),
                                                             (type + "Response").c_str(), responseType_)) &&
               made("writer",
                    writer_ = dds_create_writer(participant_, responseTopic_, qos.get(), nullptr)) &&
               made("reader", reader_ = dds_create_reader(participant_, requestTopic_, qos.get(), nullptr)) &&
               made("arrival condition", arrival_ = dds_create_readcondition(reader_, DDS_ANY_STATE)) &&
               made("stop condition", stop_ = dds_create_guardcondition(participant_)) &&
               made("wait set", waitSet_ = dds_create_waitset(participant_)) &&
               made("wait set", dds_waitset_attach(waitSet_, arrival_, arrival_)) &&
               made("wait set", dds_waitset_attach(waitSet_, stop_, stop_));
    }

    // Answers until `stop` is called, which another thread may do.
    void serve() {
        bool isStopped = false;
        while (!isStopped && made("wait", dds_waitset_wait(waitSet_, nullptr, 0, DDS_INFINITY))) {
            takeAll();
            made("stop condition", dds_read_guardcondition(stop_, &isStopped));
        }
    }

    void stop() { made("stop condition", dds_set_guardcondition(stop_, true)); }

private:
    static bool made(const char* what, dds_return_t code) {
        if (code < 0) {
            std::fprintf(stderr, "%s: %s\n", what, dds_strretcode(code));
        }
        return code >= 0;
    }

    static void print(const std::string& line) {
        std::printf("%s\n", line.c_str());
        std::fflush(stdout);
    }

    void takeAll() {
        ddsi_serdata* samples[MOST_SAMPLES_TAKEN] = {};
        dds_sample_info_t infos[MOST_SAMPLES_TAKEN];
        const dds_return_t count = dds_takecdr(reader_, samples, MOST_SAMPLES_TAKEN, infos, DDS_ANY_STATE);
        made("take", count);
        for (dds_return_t i = 0; i < count; ++i) {
            if (infos[i].valid_data) {
                handle(interop::rawBytes(samples[i]), writerPrefix(infos[i].publication_handle));
            }
            ddsi_serdata_unref(samples[i]);
        }
    }

    // The first eight bytes of the sender's GUID as discovery told it, in hexadecimal; empty when it has
    // gone.
    std::string writerPrefix(dds_instance_handle_t publication) const {
        std::string result;
        if (dds_builtintopic_endpoint_t* endpoint = dds_get_matched_publication_data(reader_, publication)) {
            for (int i = 0; i < 8; ++i) {
                char digits[3];
                std::snprintf(digits, sizeof digits, "%02x", unsigned{endpoint->participant_key.v[i]});
                result += digits;
            }
            dds_builtintopic_free_endpoint(endpoint);
        }
        return result;
    }

    void handle(const interop::Bytes& payload, const std::string& writer) {
        Request request;
        if (const char* fault = interop::decodeRequest(payload, request)) {
            print(
                JsonLine().text("fault", fault).number("size", static_cast<long long>(payload.size())).str());
            return;
        }
        const std::string line = describe(request, writer);
        print(line);
        const bool isWhole = request.branch != Branch::DESCRIPTION || request.isFinal;
        if (request.target != options_.name || !isWhole) {
            return;
        }
        std::string text;
        while (request.kind == KIND_GET && text.size() < LONGEST_MESSAGE) {
            text += "0123456789abcdef";
        }
        answer(request.id, request.name == "NoSuchEntity" ? RESPONSE_ENTITY_NOT_FOUND : RESPONSE_OK,
               text + line);
    }

    std::string describe(const Request& request, const std::string& writer) {
        JsonLine line;
        line.number("kind", request.kind).text("target", request.target);
        line.number("host", request.id[0]).number("app", request.id[1]).number("invocation", request.id[2]);
        line.text("writer", writer);
        switch (request.branch) {
        case Branch::DESCRIPTION: {
            Upload& upload = uploads_[request.id];
            upload.text += request.content;
            ++upload.pieces;
            line.text("name", request.name).boolean("final", request.isFinal);
            line.number("piece", static_cast<long long>(request.content.size()));
            if (request.isFinal) {
                line.number("pieces", upload.pieces)
                    .number("length", static_cast<long long>(upload.text.size()));
                line.number("adler32", adler32(upload.text));
                line.text("text", upload.text.substr(0, LONGEST_TEXT_SHOWN));
                uploads_.erase(request.id);
            }
            break;
        }
        case Branch::PEERS:
            line.text("name", request.name)
                .boolean("first", request.isFirstParticipant)
                .texts("peers", request.peers);
            break;
        case Branch::NAME:
            line.text("name", request.name);
            break;
        default:
            line.number("dummy", request.dummy);
            break;
        }
        return line.str();
    }

    // In as many parts as the longest message asks for; the last one is final.
    void answer(const interop::RequestId& id, std::int32_t kind, const std::string& text) {
        for (std::size_t at = 0; at < text.size(); at += LONGEST_MESSAGE) {
            const Response part{.id = id,
                                .kind = kind,
                                .message = text.substr(at, LONGEST_MESSAGE),
                                .isFinal = at + LONGEST_MESSAGE >= text.size()};
            interop::Bytes payload = interop::encodeResponse(part, options_.isBigEndian);
            made("write", dds_writecdr(writer_, interop::newRawSample(responseType_, std::move(payload))));
        }
    }

    const Options options_;
    const ddsi_sertype* responseType_ = nullptr;
    dds_entity_t participant_ = 0, requestTopic_ = 0, responseTopic_ = 0, writer_ = 0, reader_ = 0;
    dds_entity_t arrival_ = 0, stop_ = 0, waitSet_ = 0;
    std::map<interop::RequestId, Upload> uploads_; // begun and not yet final
};

} // namespace

int main(int argumentCount, char** arguments) {
    Options options;
    if (!parseOptions(argumentCount, arguments, options)) {
        std::fprintf(stderr, "usage: %s --domain <0..232> --name <router> [--federation] [--big-endian]\n",
                     arguments[0]);
        return 2;
    }
    // Blocked in every thread, so that they end the wait below and nothing else.
    sigset_t ending;
    sigemptyset(&ending);
    sigaddset(&ending, SIGTERM);
    sigaddset(&ending, SIGINT);
    pthread_sigmask(SIG_BLOCK, &ending, nullptr);

    Router router(std::move(options));
    if (!router.open()) {
        return 1;
    }
    std::thread serving(&Router::serve, &router);
    std::printf("ready\n");
    std::fflush(stdout);
    int number = 0;
    sigwait(&ending, &number);
    router.stop();
    serving.join();
    return 0;
}
