// The other side of every exchange: answers requests on the administration topics and on the baseline's
// alike, straight on the library, so that both clients wait for the same work. A piece of an upload that is
// not the last is only counted; GET is answered in several parts; everything else at once. Prints "ready",
// and ends with its input.
#include "benchmarks/raw_dds.h"

#include <algorithm>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <memory>
#include <mutex>
#include <thread>

namespace {

constexpr std::uint32_t COMMAND_LOAD = 1;
constexpr std::uint32_t COMMAND_GET = 13;
// Room for a full window of the largest requests, so that a busy machine's lost datagrams stay out of
// the figures.
constexpr std::uint32_t RECEIVE_BUFFER = 1024 * 1024;
// How long the library's thread may wait for room.
constexpr std::uint32_t CALLBACK_BLOCKING_NANOSECONDS = 1'000'000;
constexpr int CHARACTERS_MAX = 4096;
constexpr std::size_t ID_SIZE = 12;
constexpr std::size_t REQUEST_ID_AT = 8; // after the encapsulation and one parameter header

// Walks the little-endian parameter list of a request, which both clients are known to send.
class RequestView {
public:
    explicit RequestView(const raw::Bytes& bytes) : bytes_(bytes) {
        const std::size_t target = REQUEST_ID_AT + ID_SIZE;
        discriminator_ = target + 4 + parameterLength(target) + 4 + 4; // then two headers
    }
    const std::uint8_t* id() const { return bytes_.data() + REQUEST_ID_AT; }
    std::uint32_t kind() const { return word(discriminator_); }
    // LOAD only: after the discriminator come a header, the name, and the flag.
    bool isFinalPiece() const {
        const std::size_t name = discriminator_ + 4 + 4;
        const std::size_t flag = name + 4 + word(name);
        return flag < bytes_.size() && bytes_[flag] != 0;
    }

private:
    std::size_t parameterLength(std::size_t header) const {
        const std::size_t length = word(header) >> 16;
        return (length + 3) / 4 * 4;
    }
    std::uint32_t word(std::size_t at) const {
        std::uint32_t value = 0;
        if (at + sizeof(value) > bytes_.size()) {
            raw::fail("a request is too short");
        }
        std::memcpy(&value, bytes_.data() + at, sizeof(value));
        return value;
    }

    const raw::Bytes& bytes_;
    std::size_t discriminator_;
};

// A response in little-endian plain CDR: id, kind OK, message, final flag.
raw::Bytes makeResponse(const std::uint8_t* id, std::uint32_t characters, bool isFinal) {
    constexpr std::size_t ID_AT = 4;
    constexpr std::size_t LENGTH_AT = ID_AT + ID_SIZE + 4; // after the kind, which is 0
    constexpr std::size_t MESSAGE_AT = LENGTH_AT + 4;
    raw::Bytes bytes(MESSAGE_AT + characters + 2); // terminator and flag
    bytes[1] = 1;
    std::memcpy(&bytes[ID_AT], id, ID_SIZE);
    const std::uint32_t length = characters + 1;
    std::memcpy(&bytes[LENGTH_AT], &length, sizeof(length));
    std::memset(&bytes[MESSAGE_AT], 'x', characters);
    bytes.back() = isFinal ? 1 : 0;
    return bytes;
}

// Answers that have to wait for room, which the library's thread must not: acknowledgements arrive on it.
class PatientSender {
public:
    struct Answer {
        eprosima::fastdds::dds::DataWriter* writer;
        raw::Bytes id;
        std::uint32_t parts;
        std::uint32_t characters; // of each part
    };
    PatientSender() = default;
    ~PatientSender() { stop(); }
    PatientSender(const PatientSender&) = delete;
    PatientSender& operator=(const PatientSender&) = delete;

    void send(Answer answer) {
        const std::lock_guard lock(mutex_);
        answers_.push_back(std::move(answer));
        wake_.notify_one();
    }
    // Ends with the answer under way; later requests go unanswered.
    void stop() {
        {
            const std::lock_guard lock(mutex_);
            stopping_ = true;
        }
        wake_.notify_one();
        if (thread_.joinable()) {
            thread_.join();
        }
    }

private:
    void run() {
        std::unique_lock lock(mutex_);
        for (;;) {
            wake_.wait(lock, [this] { return stopping_ || !answers_.empty(); });
            if (stopping_) {
                return;
            }
            const Answer answer = std::move(answers_.front());
            answers_.pop_front();
            lock.unlock();
            for (std::uint32_t part = 1; part <= answer.parts; ++part) {
                raw::write(answer.writer,
                           makeResponse(answer.id.data(), answer.characters, part == answer.parts));
            }
            lock.lock();
        }
    }

    std::mutex mutex_;
    std::condition_variable wake_;
    std::deque<Answer> answers_;
    bool stopping_ = false;
    std::thread thread_{[this] {
        run();
    }};
};

// The answer to GET.
struct Document {
    std::uint32_t parts;
    std::uint32_t characters;
};

// One pair of topics served.
class Service {
public:
    Service(raw::Participant& participant, const raw::TopicPair& topics, const Document& document,
            PatientSender& sender)
        : document_(document),
          sender_(sender),
          writer_(participant.createWriter(topics.response, topics.responseType,
                                           {0, CALLBACK_BLOCKING_NANOSECONDS})),
          listener_([this](const raw::Bytes& request) { answer(request); }) {
        participant.createReader(topics.request, topics.requestType, &listener_);
    }
    Service(const Service&) = delete;
    Service& operator=(const Service&) = delete;

private:
    void answer(const raw::Bytes& bytes) {
        const RequestView request(bytes);
        const bool isGet = request.kind() == COMMAND_GET;
        if (request.kind() == COMMAND_LOAD && !request.isFinalPiece()) {
            return;
        }
        raw::Bytes response = makeResponse(request.id(), 0, true);
        if (isGet || !writer_->write(&response)) {
            sender_.send({.writer = writer_,
                          .id = raw::Bytes(request.id(), request.id() + ID_SIZE),
                          .parts = isGet ? document_.parts : 1,
                          .characters = isGet ? document_.characters : 0});
        }
    }

    Document document_;
    PatientSender& sender_;
    eprosima::fastdds::dds::DataWriter* writer_;
    raw::Listener listener_;
};

} // namespace

int main(int argumentCount, char** arguments) {
    if (argumentCount != 4) {
        std::fprintf(stderr, "usage: %s <domain id> <parts of an answer to GET> <characters of a part>\n",
                     arguments[0]);
        return 2;
    }
    const Document document{
        .parts = static_cast<std::uint32_t>(std::max(std::atoi(arguments[2]), 1)),
        .characters = static_cast<std::uint32_t>(std::clamp(std::atoi(arguments[3]), 0, CHARACTERS_MAX))};
    PatientSender sender;
    std::unique_ptr<Service> services[2]; // their listeners must outlive the participant
    raw::Participant participant(std::atoi(arguments[1]), RECEIVE_BUFFER);
    services[0] = std::make_unique<Service>(participant, raw::ADMINISTRATION, document, sender);
    services[1] = std::make_unique<Service>(participant, raw::BASELINE, document, sender);
    std::printf("ready\n");
    std::fflush(stdout);
    while (std::getchar() != EOF) {
    }
    sender.stop(); // before its writers go
    return 0;
}
