// The table, and the forms that its rows name.
#include "plan/check/fields.h"

#include "middleware/dds/dds.h"
#include "middleware/xml/text.h"
#include "plan/document/entity.h"
#include "plan/document/text.h"
#include "plan/document/xml_nodes.h"

#include <algorithm>
#include <unordered_map>

namespace zul::plan {

namespace {

constexpr std::string_view BOOLEAN = "true false";
constexpr std::string_view HISTORY = "KEEP_LAST_HISTORY_QOS KEEP_ALL_HISTORY_QOS";
constexpr std::string_view UNLIMITED = "LENGTH_UNLIMITED";

// clang-format off
constexpr Field FIELDS[] = {
    // Lengths of time
    {.place = "sec",     .form = Form::INTEGER, .least = 0, .words = "DURATION_INFINITE_SEC", .word = INTEGER_MAX},
    {.place = "nanosec", .form = Form::INTEGER, .least = 0, .most = 999'999'999, .words = "DURATION_INFINITE_NSEC", .word = INTEGER_MAX},
    // Properties and lists
    {.place = "property/value",                  .form = Form::ELEMENTS},
    {.place = "input_parameters/value",          .form = Form::ELEMENTS},
    {.place = "output_parameters/value",         .form = Form::ELEMENTS},
    {.place = "property/value/element",          .form = Form::PAIR},
    {.place = "input_parameters/value/element",  .form = Form::PAIR},
    {.place = "output_parameters/value/element", .form = Form::PAIR},
    {.place = "value/element/name"},
    {.place = "value/element/value"},
    {.place = "propagate",             .form = Form::WORDS, .words = BOOLEAN},
    {.place = "partition/name",        .form = Form::ELEMENTS},
    {.place = "name/element"},
    {.place = "initial_peers/element"},
    // Quality of service
    {.place = "durability/kind",        .form = Form::WORDS, .words = "VOLATILE_DURABILITY_QOS TRANSIENT_LOCAL_DURABILITY_QOS TRANSIENT_DURABILITY_QOS PERSISTENT_DURABILITY_QOS"},
    {.place = "liveliness/kind",        .form = Form::WORDS, .words = "AUTOMATIC_LIVELINESS_QOS MANUAL_BY_PARTICIPANT_LIVELINESS_QOS MANUAL_BY_TOPIC_LIVELINESS_QOS"},
    {.place = "administration/datareader_qos/reliability/kind", .form = Form::WORDS, .words = "RELIABLE_RELIABILITY_QOS"},
    {.place = "administration/datawriter_qos/reliability/kind", .form = Form::WORDS, .words = "RELIABLE_RELIABILITY_QOS"},
    {.place = "reliability/kind",       .form = Form::WORDS, .words = "BEST_EFFORT_RELIABILITY_QOS RELIABLE_RELIABILITY_QOS"},
    {.place = "destination_order/kind", .form = Form::WORDS, .words = "BY_RECEPTION_TIMESTAMP_DESTINATIONORDER_QOS BY_SOURCE_TIMESTAMP_DESTINATIONORDER_QOS"},
    {.place = "history/kind",           .form = Form::WORDS, .words = HISTORY},
    {.place = "history_kind",           .form = Form::WORDS, .words = HISTORY},
    {.place = "ownership/kind",         .form = Form::WORDS, .words = "SHARED_OWNERSHIP_QOS EXCLUSIVE_OWNERSHIP_QOS"},
    {.place = "access_scope",           .form = Form::WORDS, .words = "INSTANCE_PRESENTATION_QOS TOPIC_PRESENTATION_QOS GROUP_PRESENTATION_QOS"},
    {.place = "coherent_access",        .form = Form::WORDS, .words = BOOLEAN},
    {.place = "ordered_access",         .form = Form::WORDS, .words = BOOLEAN},
    {.place = "autodispose_unregistered_instances", .form = Form::WORDS, .words = BOOLEAN},
    {.place = "autoenable_created_entities",        .form = Form::WORDS, .words = BOOLEAN},
    {.place = "accept_unlisted_peers",  .form = Form::WORDS, .words = BOOLEAN},
    {.place = "push_mode",              .form = Form::WORDS, .words = BOOLEAN},
    {.place = "depth",                    .form = Form::INTEGER, .least = 1},
    {.place = "history_depth",            .form = Form::INTEGER, .least = 1},
    {.place = "max_samples",              .form = Form::INTEGER, .least = 1, .words = UNLIMITED, .word = -1},
    {.place = "max_instances",            .form = Form::INTEGER, .least = 1, .words = UNLIMITED, .word = -1},
    {.place = "max_samples_per_instance", .form = Form::INTEGER, .least = 1, .words = UNLIMITED, .word = -1},
    {.place = "samples_per_heartbeat",    .form = Form::INTEGER, .least = 0},
    {.place = "max_retries",              .form = Form::INTEGER, .least = 0},
    {.place = "min_size",                 .form = Form::INTEGER, .least = 1},
    {.place = "max_size",                 .form = Form::INTEGER, .least = 1, .words = UNLIMITED, .word = -1},
    {.place = "transport_priority/value", .form = Form::INTEGER},
    {.place = "ownership_strength/value", .form = Form::INTEGER},
    {.place = "user_data/value",          .form = Form::BASE64},
    {.place = "topic_data/value",         .form = Form::BASE64},
    {.place = "group_data/value",         .form = Form::BASE64},
    {.place = "participant_name/name",    .form = Form::TEXT, .most = MAX_ENTITY_NAME},
    // Libraries of plugins
    {.place = "library_file",     .form = Form::NEEDED},
    {.place = "factory_function", .form = Form::NEEDED},
    // The service
    {.place = "enabled",        .form = Form::WORDS, .words = BOOLEAN},
    {.place = "domain_id",      .form = Form::INTEGER, .least = 0, .most = DDS_DOMAIN_ID_MAX},
    {.place = "save_on_update", .form = Form::WORDS, .words = BOOLEAN},
    {.place = "mask",           .form = Form::FLAGS, .words = "MASK_DEFAULT FLOATING_POINT STDIO REALTIME_PRIORITY PRIORITY_ENFORCE"},
    {.place = "priority",       .form = Form::INTEGER},
    {.place = "stack_size",     .form = Form::INTEGER, .least = 0},
    {.place = "publish_with_original_info", .form = Form::WORDS, .words = BOOLEAN},
    {.place = "keep_source_timestamp",      .form = Form::WORDS, .words = BOOLEAN},
    {.place = "forward_dispose",            .form = Form::WORDS, .words = BOOLEAN},
    {.place = "forward_unregister",         .form = Form::WORDS, .words = BOOLEAN},
    {.place = "creation_mode",  .form = Form::WORDS, .words = "IMMEDIATE ON_WRITER ON_READER ON_EITHER ON_BOTH"},
    // Names of elements
    {.place = "qos_library@name",            .form = Form::NAME},
    {.place = "qos_profile@name",            .form = Form::NAME},
    {.place = "adapter_library@name",        .form = Form::NAME},
    {.place = "adapter_plugin@name",         .form = Form::NAME},
    {.place = "transformation_library@name", .form = Form::NAME},
    {.place = "transformation_plugin@name",  .form = Form::NAME},
    {.place = "const@name",                  .form = Form::NAME},
    {.place = "forward_dcl@name",            .form = Form::NAME},
    {.place = "module@name",                 .form = Form::NAME},
    {.place = "struct@name",                 .form = Form::NAME},
    {.place = "union@name",                  .form = Form::NAME},
    {.place = "enum@name",                   .form = Form::NAME},
    {.place = "enumerator@name",             .form = Form::NAME},
    {.place = "typedef@name",                .form = Form::NAME},
    {.place = "valuetype@name",              .form = Form::NAME},
    {.place = "sparse_valuetype@name",       .form = Form::NAME},
    {.place = "member@name",                 .form = Form::NAME},
    // Names of other elements
    {.place = "qos_profile@base_name",       .form = Form::REFERENCE, .target = Target::PROFILE},
    {.place = "participant_qos@base_name",   .form = Form::REFERENCE, .target = Target::PROFILE},
    {.place = "topic_qos@base_name",         .form = Form::REFERENCE, .target = Target::PROFILE},
    {.place = "publisher_qos@base_name",     .form = Form::REFERENCE, .target = Target::PROFILE},
    {.place = "subscriber_qos@base_name",    .form = Form::REFERENCE, .target = Target::PROFILE},
    {.place = "datawriter_qos@base_name",    .form = Form::REFERENCE, .target = Target::PROFILE},
    {.place = "datareader_qos@base_name",    .form = Form::REFERENCE, .target = Target::PROFILE},
    {.place = "connection_1@plugin_name",    .form = Form::REFERENCE, .target = Target::ADAPTER},
    {.place = "connection_2@plugin_name",    .form = Form::REFERENCE, .target = Target::ADAPTER},
    {.place = "transformation@plugin_name",  .form = Form::REFERENCE, .target = Target::TRANSFORMATION},
    {.place = "register_type@type_ref",      .form = Form::REFERENCE, .target = Target::TYPE},
};
// clang-format on

using Index = std::unordered_map<std::string_view, FieldsOfTag>;

const Index& index() {
    static const Index built = [] {
        Index rows;
        for (const Field& field : FIELDS) {
            FieldsOfTag& ofTag = rows[tagIn(field.place)];
            (attributeIn(field.place).empty() ? ofTag.contents : ofTag.attributes).push_back(&field);
        }
        return rows;
    }();
    return built;
}

// Whether an element is in the place that a row names.
bool isAt(const xmlNode* element, std::string_view place) {
    for (;;) {
        const std::size_t slash = place.rfind('/');
        const std::string_view tag = slash == std::string_view::npos ? place : place.substr(slash + 1);
        if (element == nullptr || element->type != XML_ELEMENT_NODE || tagOf(element) != tag) {
            return false;
        }
        if (slash == std::string_view::npos) {
            return true;
        }
        place = place.substr(0, slash);
        element = element->parent;
    }
}

// Calls `visit` for each part of a list while it returns true; whether it always did.
template <class Visit>
bool forEachPart(std::string_view list, char separator, const Visit& visit) {
    for (;;) {
        const std::size_t end = list.find(separator);
        if (!visit(list.substr(0, end))) {
            return false;
        }
        if (end == std::string_view::npos) {
            return true;
        }
        list.remove_prefix(end + 1);
    }
}

bool isAmong(std::string_view words, std::string_view word) {
    return !forEachPart(words, ' ', [word](std::string_view each) { return each != word; });
}

// The first of the words is the default, which no other goes with.
bool areFlags(std::string_view words, std::string_view value) {
    const std::string_view usual = words.substr(0, words.find(' '));
    const bool isOne = value.find('|') == std::string_view::npos;
    return forEachPart(value, '|', [&](std::string_view part) {
        std::string word(xml::trimmed(part));
        std::ranges::transform(word, word.begin(), [](char c) {
            return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
        });
        return isAmong(words, word) && (isOne || word != usual);
    });
}

std::string listedWords(std::string_view words) {
    std::vector<std::string> list;
    forEachPart(words, ' ', [&list](std::string_view word) {
        list.emplace_back(word);
        return true;
    });
    return listed(list);
}

std::size_t countCharacters(std::string_view text) {
    return static_cast<std::size_t>(
        std::ranges::count_if(text, [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; }));
}

std::string expectedInteger(const Field& field) {
    const bool isAny = field.least == INTEGER_MIN && field.most == INTEGER_MAX;
    return "an integer " +
           (isAny ? "of 32 bits"
                  : "from " + std::to_string(field.least) + " to " + std::to_string(field.most)) +
           (field.words.empty() ? "" : " or " + std::string(field.words));
}

bool isInteger(const Field& field, std::string_view value) {
    const bool hasWord = !field.words.empty(); // an empty value is not the word of a field without one
    const auto number = hasWord && value == field.words ? std::optional(field.word) : parseInteger(value);
    return number &&
           ((*number >= field.least && *number <= field.most) || (hasWord && *number == field.word));
}

bool isPair(const xmlNode* element) {
    std::size_t names = 0;
    std::size_t values = 0;
    std::size_t others = 0;
    for (const xmlNode* part : elementsIn(element)) {
        ++(tagOf(part) == "name" ? names : tagOf(part) == "value" ? values : others);
    }
    return names == 1 && values == 1 && others <= 1 && !holdsText(element);
}

} // namespace

std::string_view tagIn(std::string_view place) {
    place = place.substr(0, place.find('@'));
    return place.substr(place.rfind('/') + 1);
}

std::string_view attributeIn(std::string_view place) {
    const std::size_t at = place.find('@');
    return at != std::string_view::npos ? place.substr(at + 1) : std::string_view();
}

const Field* FieldsOfTag::contentOf(const xmlNode* element) const {
    const auto row =
        std::ranges::find_if(contents, [element](const Field* field) { return isAt(element, field->place); });
    return row != contents.end() ? *row : nullptr;
}

const FieldsOfTag* findFields(std::string_view tag) {
    const auto found = index().find(tag);
    return found != index().end() ? &found->second : nullptr;
}

std::string expectedInstead(const Field& field, std::string_view value) {
    switch (field.form) {
    case Form::INTEGER:
        return isInteger(field, value) ? "" : expectedInteger(field);
    case Form::WORDS:
        return isAmong(field.words, value) ? "" : listedWords(field.words);
    case Form::FLAGS:
        return areFlags(field.words, value) ? "" : listedWords(field.words) + ", with | between them";
    case Form::NAME:
        return isName(value) ? "" : "1 to 254 letters, digits, \"_\" and \"-\"";
    case Form::BASE64:
        return isBase64(value) ? "" : "base64";
    case Form::NEEDED:
        return !value.empty() ? "" : "a text";
    default:
        return countCharacters(value) <= static_cast<std::size_t>(field.most)
                   ? ""
                   : "at most " + std::to_string(field.most) + " characters";
    }
}

std::string expectedInstead(const Field& field, const xmlNode* element) {
    if (field.form == Form::ELEMENTS) {
        return holdsText(element) ? "elements called element, and no text" : "";
    }
    if (field.form == Form::PAIR) {
        return isPair(element) ? "" : "one name, one value and at most one propagate";
    }
    return firstChild(element) != nullptr ? "a text, and no elements"
                                          : expectedInstead(field, textOf(element));
}

} // namespace zul::plan
