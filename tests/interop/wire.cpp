#include "wire.h"

#include <span>
#include <utility>

namespace interop {

namespace {

constexpr std::uint32_t NAME_BOUND = 255;
constexpr std::uint32_t TEXT_BOUND = 4096;
constexpr std::uint32_t PEERS_BOUND = 16;

// XTypes 1.2, 7.4.1.1: member ids and flags of a parameter header.
constexpr std::uint32_t ID_MASK = 0x3FFF;
constexpr std::uint32_t ID_EXTENDED = 0x3F01;
constexpr std::uint32_t ID_LIST_END = 0x3F02;
constexpr std::uint32_t ID_IGNORE = 0x3F03;
constexpr std::uint32_t EXTENDED_ID_MASK = 0x0FFFFFFF;
constexpr std::uint32_t EXTENDED_HEADER_LENGTH = 8;

// Reads from the start of an alignment scope. The first fault sticks; after it, everything reads as zero.
class Reader {
public:
    Reader() = default;
    Reader(std::span<const std::uint8_t> bytes, bool isBigEndian)
        : bytes_(bytes), isBigEndian_(isBigEndian) {}

    const char* fault() const { return fault_; }
    std::size_t remaining() const { return bytes_.size() - at_; }
    void fail(const char* why) { fault_ = fault_ == nullptr ? why : fault_; }

    std::uint32_t number(std::size_t size) {
        const std::span<const std::uint8_t> raw = take(size, size);
        std::uint32_t value = 0;
        for (std::size_t i = 0; i < raw.size(); ++i) {
            value = value << 8 | raw[isBigEndian_ ? i : raw.size() - 1 - i];
        }
        return value;
    }

    std::int32_t integer() { return static_cast<std::int32_t>(number(4)); }

    bool boolean() {
        const std::uint32_t value = number(1);
        if (value > 1) {
            fail("a boolean is neither 0 nor 1");
        }
        return value == 1;
    }

    std::string text(std::uint32_t bound) {
        const std::uint32_t length = number(4);
        if (fault_ == nullptr && (length == 0 || length > bound + 1)) {
            fail(length == 0 ? "a string has no terminator" : "a string exceeds its bound");
        }
        const std::span<const std::uint8_t> raw = take(length, 1);
        if (raw.empty()) {
            return {};
        }
        std::string result(raw.begin(), raw.end() - 1);
        if (raw.back() != 0 || result.find('\0') != std::string::npos) {
            fail("a string is not terminated where its length says");
        }
        return result;
    }

    // The next member of a parameter list; false at the end of the list and on a fault.
    bool parameter(std::uint32_t& id, Reader& value) {
        do {
            take(0, 4);
            id = number(2) & ID_MASK;
            std::uint32_t length = number(2);
            const bool isListEnd = id == ID_LIST_END;
            if (id == ID_EXTENDED) {
                if (length != EXTENDED_HEADER_LENGTH) {
                    fail("an extended parameter header is not 8 bytes long");
                }
                id = number(4) & EXTENDED_ID_MASK;
                length = number(4);
            }
            if (isListEnd && length != 0) {
                fail("the list end has a length");
            }
            value = Reader(take(length, 1), isBigEndian_);
            if (isListEnd || fault_ != nullptr) {
                return false;
            }
        } while (id == ID_IGNORE);
        return true;
    }

    // A member has been read: nothing of it may be left, and its fault is a fault of the whole.
    void close(const Reader& member) {
        if (member.fault_ != nullptr) {
            fail(member.fault_);
        } else if (member.remaining() != 0) {
            fail("a parameter is longer than its value");
        }
    }

private:
    std::span<const std::uint8_t> take(std::size_t size, std::size_t alignment) {
        const std::size_t padding = (alignment - at_ % alignment) % alignment;
        if (fault_ != nullptr || padding > remaining() || size > remaining() - padding) {
            fail("the payload ends inside a value");
            return {};
        }
        at_ += padding + size;
        return bytes_.subspan(at_ - size, size);
    }

    std::span<const std::uint8_t> bytes_;
    std::size_t at_ = 0;
    bool isBigEndian_ = false;
    const char* fault_ = nullptr;
};

// The member that each command kind selects, by kind; there is no kind 0.
constexpr Branch BRANCHES[] = {
    Branch::NONE,        Branch::DESCRIPTION, Branch::DUMMY, Branch::DESCRIPTION, Branch::DESCRIPTION,
    Branch::NAME,        Branch::NAME,        Branch::NAME,  Branch::NAME,        Branch::DUMMY,
    Branch::DESCRIPTION, Branch::NAME,        Branch::DUMMY, Branch::DUMMY,       Branch::PEERS};

Branch branchOf(std::int32_t kind) {
    return kind > 0 && kind < std::ssize(BRANCHES) ? BRANCHES[kind] : Branch::NONE;
}

void readBranch(Reader& value, Request& request) {
    switch (request.branch) {
    case Branch::DESCRIPTION:
        request.name = value.text(NAME_BOUND);
        request.isFinal = value.boolean();
        request.content = value.text(TEXT_BOUND);
        break;
    case Branch::DUMMY:
        request.dummy = value.integer();
        break;
    case Branch::NAME:
        request.name = value.text(NAME_BOUND);
        break;
    case Branch::PEERS: {
        request.name = value.text(NAME_BOUND);
        request.isFirstParticipant = value.boolean();
        const std::uint32_t count = value.number(4);
        if (count > PEERS_BOUND) {
            value.fail("the peer list exceeds its bound");
        }
        while (value.fault() == nullptr && request.peers.size() < count) {
            request.peers.push_back(value.text(NAME_BOUND));
        }
        break;
    }
    case Branch::NONE:
        value.fail("an unknown member of the command");
        break;
    }
}

void readCommand(Reader& list, Request& request) {
    std::uint32_t id = 0;
    Reader value;
    for (std::uint32_t position = 0; list.parameter(id, value); ++position) {
        if (position == 0 && id == 0) {
            request.kind = value.integer();
        } else if (position == 1 && id == static_cast<std::uint32_t>(branchOf(request.kind))) {
            request.branch = branchOf(request.kind);
            readBranch(value, request);
        } else {
            list.fail("the command is not its kind and the member that the kind selects");
        }
        list.close(value);
    }
    if (request.branch == Branch::NONE) {
        list.fail("the command carries no member");
    }
}

void readRequest(Reader& list, Request& request) {
    std::uint32_t id = 0;
    std::uint32_t seen = 0;
    Reader value;
    while (list.parameter(id, value)) {
        switch (id) {
        case 0:
            for (std::int32_t& part : request.id) {
                part = value.integer();
            }
            break;
        case 1:
            request.target = value.text(NAME_BOUND);
            break;
        case 2:
            readCommand(value, request);
            break;
        default:
            list.fail("an unknown member of the request");
            break;
        }
        list.close(value);
        seen = seen << 4 | (id + 1);
    }
    if (seen != 0x123) {
        list.fail("the request is not id, target and command");
    }
    if (list.remaining() > 3) {
        list.fail("bytes follow the list end");
    }
}

class Writer {
public:
    // The encapsulation header: CDR_BE is 0, CDR_LE 1. Its 4 bytes leave the alignment as it is.
    explicit Writer(bool isBigEndian)
        : bytes_{0, static_cast<std::uint8_t>(isBigEndian ? 0 : 1), 0, 0}, isBigEndian_(isBigEndian) {}

    void octet(std::uint8_t value) { bytes_.push_back(value); }

    void integer(std::uint32_t value) {
        align();
        for (unsigned i = 0; i < 4; ++i) {
            octet(static_cast<std::uint8_t>(value >> 8 * (isBigEndian_ ? 3 - i : i)));
        }
    }

    void text(const std::string& value) {
        integer(static_cast<std::uint32_t>(value.size() + 1));
        bytes_.insert(bytes_.end(), value.begin(), value.end());
        octet(0);
    }

    // The last two bits of the options count the padding.
    Bytes finish() {
        const std::size_t unpadded = bytes_.size();
        align();
        bytes_[3] = static_cast<std::uint8_t>(bytes_.size() - unpadded);
        return std::move(bytes_);
    }

private:
    void align() { bytes_.resize((bytes_.size() + 3) / 4 * 4); }

    Bytes bytes_;
    bool isBigEndian_;
};

} // namespace

const char* decodeRequest(const Bytes& payload, Request& request) {
    // PL_CDR_BE is 2, PL_CDR_LE 3.
    if (payload.size() < 4 || payload[0] != 0 || (payload[1] != 2 && payload[1] != 3)) {
        return "the encapsulation is not a parameter list";
    }
    Reader list(std::span<const std::uint8_t>(payload).subspan(4), payload[1] == 2);
    readRequest(list, request);
    return list.fault();
}

Bytes encodeResponse(const Response& response, bool isBigEndian) {
    Writer writer(isBigEndian);
    for (const std::int32_t part : response.id) {
        writer.integer(static_cast<std::uint32_t>(part));
    }
    writer.integer(static_cast<std::uint32_t>(response.kind));
    writer.text(response.message);
    writer.octet(response.isFinal ? 1 : 0);
    return writer.finish();
}

} // namespace interop
