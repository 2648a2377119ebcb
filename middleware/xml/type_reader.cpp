// Definitions are read in the order of the document, includes at their place. A wrong one is recorded under
// its name and reading goes on; what is made of wrong types is found at the end, in type_check.cpp.
#include "middleware/xml/type_reader.h"

#include "middleware/xml/parser.h"

#include <algorithm>
#include <cstdlib>
#include <system_error>
#include <utility>

namespace zul::xml {

const TypeReader::Definition TypeReader::DEFINITIONS[] = {
    {"include", &TypeReader::readInclude, DDS_TK_NULL},
    {"module", &TypeReader::readModule, DDS_TK_NULL},
    {"const", &TypeReader::readConstant, DDS_TK_NULL},
    {"forward_dcl", &TypeReader::readForward, DDS_TK_NULL},
    {"typedef", &TypeReader::readTypedef, DDS_TK_ALIAS},
    {"enum", &TypeReader::readEnum, DDS_TK_ENUM},
    {"struct", &TypeReader::readRecord, DDS_TK_STRUCT},
    {"valuetype", &TypeReader::readRecord, DDS_TK_VALUE},
    {"sparse_valuetype", &TypeReader::readRecord, DDS_TK_SPARSE},
    {"union", &TypeReader::readUnion, DDS_TK_UNION},
};

const TypeReader::Definition* TypeReader::findDefinition(std::string_view tag) {
    const auto* definition = std::ranges::find(DEFINITIONS, tag, &Definition::tag);
    return definition != std::end(DEFINITIONS) ? definition : nullptr;
}

bool TypeReader::read(const TypeSections& sections) {
    const std::unique_ptr<char, void (*)(void*)> real(::realpath(sections.path().c_str(), nullptr),
                                                      std::free);
    if (real != nullptr) {
        included_.insert(real.get());
    }
    types_.byName.reserve(sections.count());
    symbols_.reserve(sections.count());
    readSections(sections, "");
    const NamedTypes found = symbols_.types();
    for (const auto& [name, symbol] : found) {
        if (const auto entry = types_.byName.find(name); entry != types_.byName.end()) {
            entry->second.code = symbol->isDefined && !symbol->isWrong ? symbol->type : nullptr;
        }
    }
    checkTypes(found, [this](const std::string& name, const std::string& reason, bool isOwn) {
        ZULXMLTypeEntry& entry = types_.byName.at(name);
        entry.code = nullptr;
        entry.reason = entry.place + reason;
        if (isOwn && !hasTooLongNames()) { // what was not read is not missing
            first_.set(entry.line, entry.reason);
            observe(nullptr, {entry.line, entry.reason});
        }
    });
    return first_.text.empty();
}

void TypeReader::readSections(const TypeSections& sections, Scope scope) {
    const TypeSections* outer = std::exchange(sections_, &sections);
    for (const TypeElement* section = sections.first(); section != nullptr; section = section->next) {
        try {
            checkForm(*section);
        } catch (ZULXMLError& error) {
            tell(*section, "", nullptr, std::move(error));
        }
        readDefinitions(*section, scope);
    }
    sections_ = outer;
}

void TypeReader::readDefinitions(Element parent, Scope scope) {
    for (const TypeElement* child = parent.first; child != nullptr && !hasTooLongNames();
         child = child->next) {
        const std::string_view ownName = attribute(*child, "name");
        const std::string name = ownName.empty() ? "" : scopedName(scope, ownName);
        ZULXMLTypeEntry* entry = nullptr;
        try {
            if (!name.empty()) {
                std::string place = placeOf(child->line);
                countName(*child, name.size() + place.size());
                entry = beginEntry(*child, name, std::move(place));
            }
            const Definition* definition = findDefinition(child->tag);
            if (definition == nullptr) {
                fail(*child,
                     "<" + std::string(child->tag) + "> cannot stand in <" + std::string(parent.tag) + ">");
            }
            checkForm(*child);
            (this->*definition->read)(*child, scope, name);
        } catch (Consequence& error) {
            tell(*child, name, entry, std::move(error), true);
        } catch (ZULXMLError& error) {
            tell(*child, name, entry, std::move(error));
        }
    }
}

ZULXMLError TypeReader::placed(Element element, const ZULXMLError& error) const {
    const std::int32_t line = error.line != 0 ? error.line : element.line;
    return {lineOf(line), placeOf(line) + error.text};
}

void TypeReader::readParts(Element definition, const TypeElement* first,
                           const std::function<void(Element)>& read) {
    std::optional<ZULXMLError> own;
    std::optional<Consequence> consequence;
    for (const TypeElement* part = first; part != nullptr; part = part->next) {
        try {
            read(*part);
        } catch (Consequence& error) {
            consequence = consequence ? consequence : std::move(error);
        } catch (ZULXMLError& error) {
            if (own) {
                observe(&definition, placed(*part, error));
            } else {
                own = std::move(error);
            }
        }
    }
    if (own) {
        throw *own;
    }
    if (consequence) {
        throw *consequence;
    }
}

void TypeReader::observe(const TypeElement* definition, const ZULXMLError& error) const {
    if (observer_) {
        observer_(definition, error);
    }
}

// Includes put the names of the modules around them before all that they bring.
void TypeReader::countName(Element element, std::size_t bytes) {
    constexpr const char* TOO_LONG = "the names of the types are too long in all, with those of the modules "
                                     "and files that they are in; shorten these";
    if (hasTooLongNames()) {
        throw Consequence{{element.line, TOO_LONG}};
    }
    names_ += bytes;
    if (hasTooLongNames()) {
        fail(element, TOO_LONG);
    }
}

// The first of several counts, and any definition more than an announcement.
ZULXMLTypeEntry* TypeReader::beginEntry(Element element, Name name, std::string place) {
    const auto [known, isNew] = types_.byName.try_emplace(name);
    ZULXMLTypeEntry& entry = known->second;
    const bool counts = isNew || (entry.tag == "forward_dcl" && element.tag != entry.tag);
    if (counts) {
        entry = {.tag = std::string(element.tag), .line = lineOf(element.line), .place = std::move(place)};
    }
    return counts ? &entry : nullptr;
}

// "in '<file>', line <n>: " for each include on the way to that line of the document being read.
std::string TypeReader::placeOf(std::int32_t innermost) const {
    std::string place;
    for (std::size_t i = 0; i < includes_.size(); ++i) {
        const std::int32_t line = i + 1 < includes_.size() ? includes_[i + 1].line : innermost;
        place += "in '" + includes_[i].file + "', line " + std::to_string(line) + ": ";
    }
    return place;
}

// Keeps what is wrong with a definition where its name is looked up, and marks the name for those that use
// it. A failed include has no name: it is what may be missing where a name is not found. So is all that comes
// after names that are too long.
void TypeReader::tell(Element element, Name name, ZULXMLTypeEntry* entry, ZULXMLError error,
                      bool isConsequence) {
    error = placed(element, error);
    first_.set(error.line, error.text);
    if (!isConsequence) {
        observe(&element, error);
    }
    if (hasTooLongNames() || (entry == nullptr && element.tag == "include")) {
        types_.missing.set(error.line, error.text);
    }
    if (entry == nullptr) {
        return;
    }
    entry->line = error.line;
    entry->reason = error.text;
    const Definition* definition = findDefinition(element.tag);
    Symbol* symbol = symbols_.find(name);
    if (symbol == nullptr && definition != nullptr && definition->kind != DDS_TK_NULL) {
        symbol = &symbols_.add(name, {.kind = SymbolKind::TYPE, .line = element.line});
        symbol->type = newCode({.kind = definition->kind, .name = name});
    } else if (symbol == nullptr && element.tag == "const") {
        symbol = &symbols_.add(name, {.kind = SymbolKind::CONSTANT, .line = element.line});
    }
    if (symbol != nullptr && symbol->kind != SymbolKind::MODULE) {
        symbol->isWrong = true;
    }
}

// Each file is taken in once, so that files which include each other come to an end.
void TypeReader::readInclude(Element element, Scope scope, Name) {
    const std::string file(attribute(element, "file"));
    const std::string& including = sections_->path();
    if (including.empty()) {
        fail(element, "include works only in a document that is read from a file");
    }
    const std::size_t slash = including.rfind('/');
    const bool isRelative = !file.starts_with('/') && slash != std::string::npos;
    const std::string path = isRelative ? including.substr(0, slash + 1) + file : file;
    const std::unique_ptr<char, void (*)(void*)> real(::realpath(path.c_str(), nullptr), std::free);
    if (real == nullptr) {
        fail(element, "cannot include '" + file + "': " + std::system_category().message(errno));
    }
    if (included_.size() >= INCLUDES_MAX) {
        fail(element, "more than " + std::to_string(INCLUDES_MAX) + " files are included");
    }
    if (!included_.insert(real.get()).second) {
        return;
    }
    const std::unique_ptr<ZULXMLDocument, void (*)(ZULXMLDocument*)> other(
        ZULXMLParser_readFile(nullptr, real.get()), ZULXMLDocument_delete);
    if (other == nullptr) {
        throw std::bad_alloc();
    }
    includes_.push_back({file, element.line});
    if (other->root != nullptr) {
        readSections(TypeSections(*other), scope);
    } else {
        tell(element, "", nullptr, other->error);
    }
    includes_.pop_back();
}

void TypeReader::readModule(Element element, Scope, Name name) {
    const Symbol* known = symbols_.find(name);
    const bool isReopened = known != nullptr && known->kind == SymbolKind::MODULE;
    if (!isReopened) {
        symbols_.add(name, {.kind = SymbolKind::MODULE, .line = element.line});
    }
    readDefinitions(element, name);
}

void TypeReader::readConstant(Element element, Scope scope, Name name) {
    Symbol constant{.kind = SymbolKind::CONSTANT, .line = element.line, .isDiscrete = true};
    const std::string text(attribute(element, "value"));
    const Symbol* other = symbols_.resolve(scope, text);
    if (other != nullptr && other->isWrong) {
        throw Consequence{{element.line, "'" + text + "' is wrong itself"}};
    }
    const bool namesConstant = other != nullptr && other->kind == SymbolKind::CONSTANT;
    const DDS_TypeCode* type = underlyingType(elementTypeOf(element, scope));
    bool isValid = false;
    if (type->kind == DDS_TK_ENUM) {
        isValid = namesConstant && other->enumeration == type;
        constant.value = isValid ? other->value : Integer{};
        constant.enumeration = type;
    } else if (const TypeWord* word = findTypeWord(attribute(element, "type")); word == nullptr) {
        if (type->kind == DDS_TK_ALIAS) { // of too many levels, which is told at the end
            throw Consequence{{element.line, "the type of this const is wrong itself"}};
        }
        fail(element, "a const is of a basic type or an enum");
    } else if (word->isDiscrete()) {
        const std::optional<Integer> value = valueOf(*word, scope, text);
        isValid = value.has_value();
        constant.value = value.value_or(Integer{});
    } else {
        isValid = namesConstant || isOtherLiteral(*word, text);
        constant.isDiscrete = false;
    }
    if (!isValid) {
        fail(element, "'" + text + "' is no value of the type of this const");
    }
    symbols_.add(name, constant);
}

void TypeReader::readForward(Element element, Scope, Name name) {
    const DDS_TCKind kind = findDefinition(attribute(element, "kind"))->kind;
    const Symbol* known = symbols_.find(name);
    if (known != nullptr && known->kind == SymbolKind::TYPE && known->type->kind == kind) {
        return; // announced once more
    }
    const Symbol symbol{
        .kind = SymbolKind::TYPE, .line = element.line, .type = newCode({.kind = kind, .name = name})};
    symbols_.add(name, symbol);
}

Symbol& TypeReader::beginType(Element element, Name name, DDS_TCKind kind) {
    Symbol* symbol = symbols_.find(name);
    const bool isAnnounced = symbol != nullptr && symbol->kind == SymbolKind::TYPE && !symbol->isDefined &&
                             symbol->type->kind == kind;
    if (isAnnounced) {
        symbol->line = element.line;
    } else {
        symbol = &symbols_.add(name, {.kind = SymbolKind::TYPE, .line = element.line});
        symbol->type = newCode({.kind = kind, .name = name});
    }
    const std::string_view word = attribute(element, "extensibility");
    symbol->type->extensibility = word == "final"     ? DDS_FINAL_EXTENSIBILITY
                                  : word == "mutable" ? DDS_MUTABLE_EXTENSIBILITY
                                                      : DDS_EXTENSIBLE_EXTENSIBILITY;
    return *symbol;
}

void TypeReader::readTypedef(Element element, Scope scope, Name name) {
    const DDS_TypeCode* type = typeOf(element, scope);
    Symbol& symbol = beginType(element, name, DDS_TK_ALIAS);
    symbol.type->content = type;
    symbol.isDefined = true;
}

// Enumerators are names of the scope that their enum is in.
void TypeReader::readEnum(Element element, Scope scope, Name name) {
    Symbol& symbol = beginType(element, name, DDS_TK_ENUM);
    std::vector<DDS_TypeCodeMember>& members = symbol.type->members;
    members.reserve(element.count);
    std::unordered_set<std::int32_t> values;
    std::optional<Integer> next = Integer{}; // nothing after an enumerator that is wrong
    readParts(element, element.first, [&](Element child) {
        const std::optional<Integer> following = std::exchange(next, std::nullopt);
        checkForm(child);
        const bool isGiven = hasAttribute(child, "value");
        if (!isGiven && !following) {
            return;
        }
        const std::optional<Integer> value =
            isGiven ? integerOf(scope, attribute(child, "value")) : following;
        const std::optional<std::int32_t> number = value ? toInt32(*value) : std::nullopt;
        if (!number || !values.insert(*number).second) {
            fail(child,
                 "the value of this enumerator must be a 32-bit integer or a const, used once in the enum");
        }
        members.push_back({.name = std::string(attribute(child, "name")),
                           .id = static_cast<std::int32_t>(members.size()),
                           .value = *number});
        const Symbol enumerator{.kind = SymbolKind::CONSTANT,
                                .line = child.line,
                                .isDiscrete = true,
                                .value = *value,
                                .enumeration = symbol.type};
        const std::string enumeratorName = scopedName(scope, attribute(child, "name"));
        countName(child, enumeratorName.size());
        symbols_.add(enumeratorName, enumerator);
        next = value->negative ? Integer{value->magnitude > 1, value->magnitude - 1}
                               : Integer{false, value->magnitude + 1};
    });
    if (members.empty()) {
        fail(element, "an enum needs an enumerator");
    }
    symbol.isDefined = true;
}

} // namespace zul::xml
