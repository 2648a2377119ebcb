// The table. Where an element that is meant once is repeated, the last one counts.
#include "plan/check/relations.h"

#include "plan/check/values.h"
#include "plan/document/xml_nodes.h"

namespace zul::plan {

struct Relation {
    std::string_view holder; // tag of the element that both are in
    std::string_view lesser; // places in it: tags with "/" between them
    std::string_view greater;
    bool isDuration = false;      // false: integers, of which a negative one is no limit
    std::int64_t factor = 1;      // times the lesser must not be above the greater
    std::string_view unless = {}; // a place in the holder: the relation holds only while this has its default
    std::string_view usual = {};  // that default
    std::int64_t lesserSeconds = -1; // of durations the defaults; -1: none is known
    std::int64_t greaterSeconds = -1;
};

namespace {

// clang-format off
constexpr Relation RELATIONS[] = {
    {.holder = "resource_limits",    .lesser = "max_samples_per_instance", .greater = "max_samples"},
    {.holder = "durability_service", .lesser = "max_samples_per_instance", .greater = "max_samples"},
    {.holder = "durability_service", .lesser = "history_depth", .greater = "max_samples_per_instance",
     .unless = "history_kind", .usual = "KEEP_LAST_HISTORY_QOS"},
    {.holder = "topic_qos",      .lesser = "history/depth", .greater = "resource_limits/max_samples_per_instance",
     .unless = "history/kind", .usual = "KEEP_LAST_HISTORY_QOS"},
    {.holder = "datawriter_qos", .lesser = "history/depth", .greater = "resource_limits/max_samples_per_instance",
     .unless = "history/kind", .usual = "KEEP_LAST_HISTORY_QOS"},
    {.holder = "datareader_qos", .lesser = "history/depth", .greater = "resource_limits/max_samples_per_instance",
     .unless = "history/kind", .usual = "KEEP_LAST_HISTORY_QOS"},
    {.holder = "send_window",    .lesser = "min_size", .greater = "max_size"},
    {.holder = "datareader_qos", .lesser = "time_based_filter/minimum_separation", .greater = "deadline/period", .isDuration = true},
    {.holder = "discovery",      .lesser = "announcement_period", .greater = "lease_duration", .isDuration = true, .factor = 3},
    {.holder = "monitoring",     .lesser = "sampling_period", .greater = "status_publication_period", .isDuration = true, .lesserSeconds = 1, .greaterSeconds = 5},
    {.holder = "reporting",      .lesser = "sampling_period", .greater = "status_publication_period", .isDuration = true},
};
// clang-format on

const xmlNode* findAt(const xmlNode* element, std::string_view place) {
    while (element != nullptr && !place.empty()) {
        const std::size_t slash = place.find('/');
        const xmlNode* found = nullptr;
        for (const xmlNode* child : elementsIn(element)) {
            found = tagOf(child) == place.substr(0, slash) ? child : found;
        }
        element = found;
        place.remove_prefix(slash == std::string_view::npos ? place.size() : slash + 1);
    }
    return element;
}

std::optional<std::int64_t> valueAt(const Relation& relation, const xmlNode* element, std::int64_t seconds) {
    if (element == nullptr) {
        return seconds >= 0 ? std::optional(seconds * NANOSECONDS) : std::nullopt;
    }
    const auto value = relation.isDuration ? parseDuration(element) : parseInteger(textOf(element));
    return value && *value >= 0 ? value : std::nullopt;
}

bool isMeant(const Relation& relation, const xmlNode* holder) {
    if (relation.unless.empty()) {
        return true;
    }
    // A base profile may have set what decides.
    const xmlNode* decides = findAt(holder, relation.unless);
    return decides != nullptr ? textOf(decides) == relation.usual : !hasBase(holder);
}

std::string words(std::string_view place) {
    const std::size_t slash = place.find('/');
    return slash == std::string_view::npos
               ? std::string(place)
               : std::string(place.substr(slash + 1)) + " of " + std::string(place.substr(0, slash));
}

std::string byDefault(const xmlNode* element, std::int64_t seconds) {
    return element != nullptr ? "" : " (" + std::to_string(seconds) + " s by default)";
}

} // namespace

std::vector<const Relation*> findRelations(std::string_view tag) {
    std::vector<const Relation*> found;
    for (const Relation& relation : RELATIONS) {
        if (relation.holder == tag) {
            found.push_back(&relation);
        }
    }
    return found;
}

void checkRelation(const Relation& relation, const xmlNode* holder, const Report& report) {
    const xmlNode* lesser = findAt(holder, relation.lesser);
    const xmlNode* greater = findAt(holder, relation.greater);
    const auto low = valueAt(relation, lesser, relation.lesserSeconds);
    const auto high = valueAt(relation, greater, relation.greaterSeconds);
    if (!low || !high || *high == INFINITE || !isMeant(relation, holder)) {
        return;
    }
    if (*low == INFINITE || *low * relation.factor > *high) {
        const std::string times = relation.factor != 1 ? std::to_string(relation.factor) + " times " : "";
        report(lesser != nullptr ? lesser : greater,
               times + "the " + words(relation.lesser) + byDefault(lesser, relation.lesserSeconds) + " in " +
                   describe(holder) + " is above the " + words(relation.greater) +
                   byDefault(greater, relation.greaterSeconds) + "; expected at most as much");
    }
}

} // namespace zul::plan
