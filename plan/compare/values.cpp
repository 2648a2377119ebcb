// One table each for elements and attributes, as the comments of the document type definitions have it.
#include "plan/compare/values.h"

#include "middleware/xml/text.h"
#include "plan/document/xml_nodes.h"

#include <algorithm>
#include <charconv>
#include <span>
#include <unordered_map>
#include <vector>

namespace zul::plan {

namespace {

constexpr std::size_t NANOSEC_DIGITS = 9;
constexpr const char* INFINITE = "infinite";
constexpr std::string_view SECONDS = " s";

struct Row {
    std::string_view name;
    ValueRule rule;
    std::string_view parent{}; // empty: any
};

using enum ValueForm;
// clang-format off
constexpr Row ELEMENTS[] = {
    {"enabled",                          {.absent = "true"}, "administration"},
    {"enabled",                          {.absent = "true"}, "monitoring"},
    {"documentation",                    {.absent = ""}},
    {"save_on_update",                   {.absent = "false"}},
    {"publish_with_original_info",       {.absent = "false"}},
    {"keep_source_timestamp",            {.absent = "false"}},
    {"forward_dispose",                  {.absent = "true"}},
    {"forward_unregister",               {.absent = "true"}},
    {"creation_mode",                    {.absent = "IMMEDIATE"}},
    {"propagate",                        {.absent = "false"}},
    {"mask",                             {.form = WORDS, .absent = "MASK_DEFAULT"}},
    {"allow_topic_name",                 {.form = PATTERNS, .absent = "*"}},
    {"allow_type_name",                  {.form = PATTERNS, .absent = "*"}},
    {"allow_stream_name",                {.form = PATTERNS, .absent = "*"}},
    {"deny_topic_name",                  {.form = PATTERNS, .absent = ""}},
    {"deny_type_name",                   {.form = PATTERNS, .absent = ""}},
    {"deny_stream_name",                 {.form = PATTERNS, .absent = ""}},
    {"domain_id",                        {.form = INTEGER}},
    {"depth",                            {.form = INTEGER}},
    {"history_depth",                    {.form = INTEGER}},
    {"max_samples",                      {.form = INTEGER}},
    {"max_instances",                    {.form = INTEGER}},
    {"max_samples_per_instance",         {.form = INTEGER}},
    {"samples_per_heartbeat",            {.form = INTEGER}},
    {"max_retries",                      {.form = INTEGER}},
    {"min_size",                         {.form = INTEGER}},
    {"max_size",                         {.form = INTEGER}},
    {"priority",                         {.form = INTEGER}},
    {"stack_size",                       {.form = INTEGER}},
    {"value",                            {.form = INTEGER}, "transport_priority"},
    {"value",                            {.form = INTEGER}, "ownership_strength"},
    {"value",                            {.isPresent = true}}, // an empty one replaces that of a base profile
    {"status_publication_period",        {.form = DURATION, .absent = "5 s"}, "monitoring"},
    {"sampling_period",                  {.form = DURATION, .absent = "1 s"}, "monitoring"},
    {"status_publication_period",        {.form = DURATION}},
    {"sampling_period",                  {.form = DURATION}},
    {"polling_period",                   {.form = DURATION}},
    {"service_cleanup_delay",            {.form = DURATION}},
    {"period",                           {.form = DURATION}},
    {"duration",                         {.form = DURATION}},
    {"lease_duration",                   {.form = DURATION}},
    {"max_blocking_time",                {.form = DURATION}},
    {"minimum_separation",               {.form = DURATION}},
    {"autopurge_nowriter_samples_delay", {.form = DURATION}},
    {"autopurge_disposed_samples_delay", {.form = DURATION}},
    {"announcement_period",              {.form = DURATION}},
    {"nack_response_delay",              {.form = DURATION}},
    {"heartbeat_response_delay",         {.form = DURATION}},
    {"administration",                   {.isPresent = true}},
    {"monitoring",                       {.isPresent = true}},
    {"participant_1",                    {.isPresent = true}},
    {"participant_2",                    {.isPresent = true}},
    {"connection_1",                     {.isPresent = true}},
    {"connection_2",                     {.isPresent = true}},
    {"input",                            {.isPresent = true}},
    {"output",                           {.isPresent = true}},
    {"transformation",                   {.isPresent = true}},
    {"content_filter",                   {.isPresent = true}},
    {"expression",                       {.isPresent = true}},
    {"parameter",                        {.isPresent = true}},
};
constexpr Row ATTRIBUTES[] = {
    {"enabled",           {.absent = "true"}},
    {"nested",            {.absent = "false"}},
    {"key",               {.absent = "false"}},
    {"optional",          {.absent = "false"}},
    {"visibility",        {.absent = "public"}},
    {"modifier",          {.absent = "none"}},
    {"extensibility",     {.form = EXTENSIBILITY, .absent = "appendable"}},
    {"stringMaxLength",   {.form = INTEGER, .absent = "-1"}},
    {"sequenceMaxLength", {.form = INTEGER}},
    {"id",                {.form = INTEGER}},
};
// clang-format on

std::string integer(std::string_view text) {
    if (text == "LENGTH_UNLIMITED") {
        return "-1";
    }
    std::string_view digits = text;
    int base = 10;
    if (digits.starts_with("0x") || digits.starts_with("0X")) {
        base = 16;
        digits.remove_prefix(2);
    } else if (digits.starts_with('+')) {
        digits.remove_prefix(1);
    }
    std::int64_t value = 0;
    const auto [end, code] = std::from_chars(digits.data(), digits.data() + digits.size(), value, base);
    return code == std::errc{} && end == digits.data() + digits.size() ? std::to_string(value)
                                                                       : std::string(text);
}

// The parts between separators, sorted, each once. A separator in brackets is none.
std::string sorted(std::string_view text, char separator) {
    std::vector<std::string_view> parts;
    std::size_t begin = 0;
    bool isInBrackets = false;
    for (std::size_t i = 0; i <= text.size(); ++i) {
        if (i == text.size() || (text[i] == separator && !isInBrackets)) {
            parts.push_back(xml::trimmed(text.substr(begin, i - begin)));
            begin = i + 1;
        } else {
            isInBrackets = text[i] == '[' || (isInBrackets && text[i] != ']');
        }
    }
    std::ranges::sort(parts);
    parts.erase(std::unique(parts.begin(), parts.end()), parts.end());
    std::string joined;
    for (std::size_t i = 0; i < parts.size(); ++i) {
        joined.append(i == 0 ? "" : std::string(1, separator)).append(parts[i]);
    }
    return joined;
}

std::string words(std::string_view text) {
    std::string upper(text);
    std::ranges::transform(upper, upper.begin(), [](char c) {
        return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    });
    return sorted(upper, '|');
}

// In small letters, the only ones that a document may have.
std::string extensibility(std::string_view text) {
    std::string lower(text);
    std::ranges::transform(lower, lower.begin(), [](char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    });
    return lower == "extensible" ? "appendable" : lower;
}

// The rows of a table by their names. Of those that fit the first counts.
class Index {
public:
    explicit Index(std::span<const Row> rows) {
        for (const Row& row : rows) {
            rows_[row.name].push_back(&row);
        }
    }
    const ValueRule& find(std::string_view name, std::string_view parent) const {
        static constexpr ValueRule NONE{};
        if (const auto found = rows_.find(name); found != rows_.end()) {
            for (const Row* row : found->second) {
                if (row->parent.empty() || row->parent == parent) {
                    return row->rule;
                }
            }
        }
        return NONE;
    }

private:
    std::unordered_map<std::string_view, std::vector<const Row*>> rows_;
};

} // namespace

const ValueRule& ruleOfElement(std::string_view tag, std::string_view parent) {
    static const Index index(ELEMENTS);
    return index.find(tag, parent);
}

const ValueRule& ruleOfAttribute(std::string_view name) {
    static const Index index(ATTRIBUTES);
    return index.find(name, {});
}

std::string canonical(ValueForm form, std::string_view text) {
    text = xml::trimmed(text);
    switch (form) {
    case INTEGER:
        return integer(text);
    case PATTERNS:
        return sorted(text, ',');
    case WORDS:
        return words(text);
    case EXTENSIBILITY:
        return extensibility(text);
    case TEXT:
    case DURATION:
        break;
    }
    return std::string(text);
}

std::string durationOf(const xmlNode* element) {
    std::string sec = "0";
    std::string nanosec = "0";
    for (const xmlNode* part : elementsIn(element)) {
        (tagOf(part) == "sec" ? sec : nanosec) = integer(textOf(part));
    }
    if (sec == "DURATION_INFINITE_SEC") {
        return INFINITE;
    }
    if (nanosec.size() <= NANOSEC_DIGITS) { // a longer one is invalid, and stays as it is
        nanosec.insert(0, NANOSEC_DIGITS - nanosec.size(), '0');
        nanosec.erase(nanosec.find_last_not_of('0') + 1);
    }
    return sec + (nanosec.empty() ? "" : "." + nanosec) + std::string(SECONDS);
}

DurationParts splitDuration(std::string_view duration) {
    if (duration == INFINITE) {
        return {"DURATION_INFINITE_SEC", "DURATION_INFINITE_NSEC"};
    }
    if (!duration.ends_with(SECONDS)) {
        return {};
    }
    duration.remove_suffix(SECONDS.size());
    const std::size_t point = duration.find('.');
    std::string nanosec(point == std::string_view::npos ? "" : duration.substr(point + 1));
    nanosec.resize(std::max(nanosec.size(), NANOSEC_DIGITS), '0');
    nanosec.erase(0, std::min(nanosec.find_first_not_of('0'), nanosec.size() - 1));
    return {std::string(duration.substr(0, point)), nanosec};
}

} // namespace zul::plan
