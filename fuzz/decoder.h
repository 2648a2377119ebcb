// Fuzzing of a decoder: what it accepts goes out again, and comes back as the same bytes.
#pragma once

#include "admin_types/descriptions.h"
#include "middleware/idl/plugin_operations.h"

#include <cstdlib>
#include <memory>
#include <vector>

template <class Record>
class Decoder {
public:
    // Input is a sample with its encapsulation header. Always 0, as libFuzzer wants it.
    int operator()(const std::uint8_t* data, std::size_t size) {
        ZULCdrInput stream{.data = data, .size = size};
        ZULCdrInput skipped = stream;
        if (!Plugin::deserialize(*first_, stream, true, true)) {
            return 0;
        }
        require(stream.position <= size);
        require(Plugin::skipSample(skipped, true, true) && skipped.position == stream.position);
        const std::uint16_t id = static_cast<std::uint16_t>(data[1] & 3);
        const std::vector<std::uint8_t> once = encode(*first_, id);
        ZULCdrInput again{.data = once.data(), .size = once.size()};
        require(Plugin::deserialize(*second_, again, true, true) && again.position == once.size());
        require(encode(*second_, id) == once);
        require(zul::idl::copy(zul::idl::Struct<Record>{}, *first_, *second_));
        require(encode(*first_, id) == once);
        return 0;
    }

private:
    using Plugin = zul::idl::PluginOperations<zul::idl::Struct<Record>>;
    struct Destroy {
        void operator()(Record* record) const { Plugin::destroyData(record); }
    };
    using Sample = std::unique_ptr<Record, Destroy>;

    static void require(bool holds) {
        if (!holds) {
            std::abort();
        }
    }
    static std::vector<std::uint8_t> encode(const Record& record, std::uint16_t id) {
        std::vector<std::uint8_t> bytes(Plugin::exactSize(nullptr, true, id, 0, record));
        require(bytes.size() <=
                zul::idl::boundOf<zul::idl::Bound::MAXIMUM>(zul::idl::Struct<Record>{}, true, id, 0));
        ZULCdrOutput stream{.data = bytes.data(), .capacity = bytes.size()};
        require(Plugin::serializeSample(nullptr, record, stream, true, id, true) &&
                stream.position == bytes.size());
        return bytes;
    }

    Sample first_{Plugin::createData(DDS_TYPE_ALLOCATION_PARAMS_DEFAULT)};
    Sample second_{Plugin::createData(DDS_TYPE_ALLOCATION_PARAMS_DEFAULT)};
};
