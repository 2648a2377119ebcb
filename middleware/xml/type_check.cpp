// Two walks find what is wrong with a type by itself; what is wrong because of its parts is then found
// backwards, from the wrong types to those that use them. All of it is linear in the members, and nothing is
// recursive in the depth.
#include "middleware/xml/type_check.h"

#include <algorithm>
#include <set>
#include <unordered_map>

namespace zul::xml {

namespace {

// The parts of a type: what it contains, then the types of its members. Null where there is none.
std::size_t partCount(const DDS_TypeCode& type) {
    return 1 + type.members.size();
}
const DDS_TypeCode* partAt(const DDS_TypeCode& type, std::size_t index) {
    return index == 0 ? type.content : type.members[index - 1].type;
}
bool hasParts(const DDS_TypeCode& type) {
    return type.content != nullptr || !type.members.empty();
}

// A walk over type codes along what they are made of. By value, a sequence ends the walk, and coming back to
// an open type is the error; through everything, coming back is how recursive types end.
class Walk {
public:
    // `loops` gets the types that contain themselves.
    Walk(bool byValue, std::size_t count, std::set<const DDS_TypeCode*>& loops)
        : byValue_(byValue), loops_(loops) {
        depths_.reserve(count);
    }

    // The levels from `type` down.
    int depthOf(const DDS_TypeCode* type) {
        if (depths_.try_emplace(type, OPEN).second) {
            open_.push_back({type});
        }
        while (!open_.empty()) {
            step();
        }
        return depths_[type];
    }

private:
    static constexpr int OPEN = 0;
    struct Visit {
        const DDS_TypeCode* type;
        std::size_t nextPart = 0;
        int deepest = 0; // of the parts so far
    };

    void step() {
        Visit& visit = open_.back();
        const bool isEnd = byValue_ && visit.type->kind == DDS_TK_SEQUENCE;
        if (isEnd || visit.nextPart == partCount(*visit.type)) {
            depths_[visit.type] = visit.deepest + 1;
            open_.pop_back();
            return;
        }
        const DDS_TypeCode* part = partAt(*visit.type, visit.nextPart);
        if (part == nullptr || !hasParts(*part)) {
            visit.deepest = std::max(visit.deepest, part != nullptr ? 1 : 0);
            ++visit.nextPart;
            return;
        }
        const auto [depth, isNew] = depths_.try_emplace(part, OPEN);
        if (isNew) {
            open_.push_back({part}); // this part is looked at again once its depth is known
            return;
        }
        ++visit.nextPart;
        // An open type is named: nothing but its owner leads to an anonymous one.
        if (depth->second == OPEN && byValue_) {
            loops_.insert(part);
        }
        visit.deepest = std::max({visit.deepest, depth->second, 1});
    }

    bool byValue_;
    std::set<const DDS_TypeCode*>& loops_;
    std::pmr::monotonic_buffer_resource memory_;
    std::pmr::unordered_map<const DDS_TypeCode*, int> depths_{&memory_}; // of those with parts
    std::vector<Visit> open_;                                            // from the outermost in
};

// Which named types use a type directly, through types without a name, in the order of their own names.
using Users = std::unordered_map<const DDS_TypeCode*, std::vector<const DDS_TypeCode*>>;
void addUses(const DDS_TypeCode& user, const DDS_TypeCode& part, Users& users) {
    for (std::size_t i = 0; i < partCount(part); ++i) {
        const DDS_TypeCode* used = partAt(part, i);
        if (used != nullptr && used->name.empty()) {
            addUses(user, *used, users);
        } else if (used != nullptr) {
            users[used].push_back(&user);
        }
    }
}

Users usersIn(const NamedTypes& types) {
    Users users;
    for (const auto& [name, symbol] : types) {
        addUses(*symbol->type, *symbol->type, users);
    }
    return users;
}

} // namespace

void checkTypes(const NamedTypes& types,
                const std::function<void(const std::string&, const std::string&, bool)>& tell) {
    std::set<const DDS_TypeCode*> loops;
    Walk byValue(true, types.size(), loops);
    Walk throughAll(false, types.size(), loops);
    std::vector<const DDS_TypeCode*> wrong;
    std::vector<const DDS_TypeCode*> tooDeep;
    std::set<const DDS_TypeCode*> known; // of the wrong ones
    const auto add = [&](const DDS_TypeCode* type, const std::string& reason, bool isOwn) {
        if (known.insert(type).second) {
            wrong.push_back(type);
            tell(type->name, reason, isOwn);
        }
    };
    bool hasLoop = false;
    for (const auto& [name, symbol] : types) {
        const DDS_TypeCode* type = symbol->type;
        if (symbol->isWrong && known.insert(type).second) {
            wrong.push_back(type);
        } else if (!symbol->isDefined) {
            add(type, "'" + std::string(name) + "' is announced but never defined", true);
        } else if (std::max(byValue.depthOf(type), throughAll.depthOf(type)) > TYPE_DEPTH_MAX) {
            tooDeep.push_back(type);
        }
        for (const DDS_TypeCode* loop : loops) {
            add(loop, "'" + loop->name + "' contains itself; put a sequence of it there", true);
            hasLoop = true;
        }
        loops.clear();
    }
    if (wrong.empty() && tooDeep.empty()) {
        return;
    }
    Users users = usersIn(types);
    // Of types inside each other that are too deep, only the innermost is wrong by itself; in a circle, which
    // has none, the first, unless the circle was told.
    std::set<const DDS_TypeCode*> outer;
    for (const DDS_TypeCode* type : tooDeep) {
        outer.insert(users[type].begin(), users[type].end());
    }
    const auto isInner = [&outer](const DDS_TypeCode* type) {
        return !outer.contains(type);
    };
    const bool goRound = !hasLoop && std::ranges::none_of(tooDeep, isInner);
    for (const DDS_TypeCode* type : tooDeep) {
        add(type, "types stand more than " + std::to_string(TYPE_DEPTH_MAX) + " levels inside each other",
            isInner(type) || (goRound && type == tooDeep.front()));
    }
    for (std::size_t i = 0; i < wrong.size(); ++i) {
        for (const DDS_TypeCode* user : users[wrong[i]]) {
            add(user, "'" + user->name + "' is made of '" + wrong[i]->name + "', which is wrong", false);
        }
    }
}

} // namespace zul::xml
