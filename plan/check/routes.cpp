// An end is on a side by its attribute or by default; the domain route tells whether that side is a
// participant or an adapter's connection.
#include "plan/check/routes.h"

#include "plan/document/text.h"
#include "plan/document/xml_nodes.h"

namespace zul::plan {

namespace {

constexpr std::string_view PARTICIPANTS[] = {"participant_1", "participant_2"};
constexpr std::string_view CONNECTIONS[] = {"connection_1", "connection_2"};

struct End {
    const xmlNode* element = nullptr;
    std::string participant{}; // the attributes
    std::string connection{};
    // 1 or 2; 0 where it does not say, -1 where it says something else, which is reported elsewhere.
    int side = 0;
};

End findEnd(const xmlNode* route, std::string_view tag) {
    End end;
    for (const xmlNode* child : elementsIn(route)) {
        if (tagOf(child) == tag) {
            end.element = child;
        }
    }
    if (end.element != nullptr) {
        end.participant = attributeOf(end.element, "participant");
        end.connection = attributeOf(end.element, "connection");
        const std::string& side = end.participant.empty() ? end.connection : end.participant;
        end.side = side.empty() ? 0 : side == "1" ? 1 : side == "2" ? 2 : -1;
    }
    return end;
}

bool namesTopic(const End& end) {
    for (const xmlNode* child : elementsIn(end.element)) {
        if (tagOf(child) == "topic_name" && !textOf(child).empty()) {
            return true;
        }
    }
    return false;
}

// Whether the end itself is as it should be.
bool checkEnd(const End& end, const Sides& sides, const Report& report) {
    const std::string own = std::string(tagOf(end.element)) + " of " + describe(end.element->parent);
    if (!end.participant.empty() && !end.connection.empty()) {
        report(end.element, "the " + own + " has a participant and a connection; expected one of them");
        return false;
    }
    if (end.side <= 0 || !sides.areKnown()) {
        return end.side == 0;
    }
    const bool isConnection = sides.hasConnection[end.side - 1];
    if (isConnection == end.participant.empty()) {
        return true;
    }
    const std::string side = std::to_string(end.side);
    report(end.element, "the " + own + " is at " + (isConnection ? "participant " : "connection ") + side +
                            "; expected " + (isConnection ? "connection " : "participant ") + side +
                            ", which is what the domain_route has");
    return false;
}

} // namespace

bool Sides::areKnown() const {
    return hasParticipant[0] != hasConnection[0] && hasParticipant[1] != hasConnection[1];
}

Sides sidesOf(const xmlNode* domainRoute) {
    Sides sides;
    for (const xmlNode* child : elementsIn(domainRoute)) {
        for (std::size_t i = 0; i < std::size(PARTICIPANTS); ++i) {
            sides.hasParticipant[i] = sides.hasParticipant[i] || tagOf(child) == PARTICIPANTS[i];
            sides.hasConnection[i] = sides.hasConnection[i] || tagOf(child) == CONNECTIONS[i];
        }
    }
    return sides;
}

void checkRoute(const xmlNode* route, const Sides& sides, const Report& report) {
    const End input = findEnd(route, "input");
    const End output = findEnd(route, "output");
    if (input.element == nullptr || output.element == nullptr) {
        return;
    }
    const bool isForTopics = tagOf(route) == "topic_route" || tagOf(route) == "auto_topic_route";
    const bool hasAdapter = sides.hasConnection[0] || sides.hasConnection[1];
    if (sides.areKnown() && isForTopics == hasAdapter) {
        report(route, describe(route) +
                          (isForTopics ? " has an end at an adapter's connection; expected participants "
                                         "at both, or a route or auto_route"
                                       : " has no end at an adapter's connection; expected one, or a "
                                         "topic_route or auto_topic_route"));
        return;
    }
    const bool isInputRight = checkEnd(input, sides, report);
    const bool isOutputRight = checkEnd(output, sides, report);
    if (isInputRight && isOutputRight && output.side == (input.side == 0 ? 1 : input.side)) {
        report(output.element, "both ends of " + describe(route) + " are on side " +
                                   std::to_string(output.side) + "; expected the output on side " +
                                   std::to_string(3 - output.side));
    }
    if (tagOf(route) == "topic_route" && !namesTopic(input) && !namesTopic(output)) {
        report(route, describe(route) + " names no topic; expected a topic_name in its input or its output");
    }
}

} // namespace zul::plan
