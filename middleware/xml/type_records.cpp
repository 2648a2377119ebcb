// Structs, value types and unions. A derived type refers to its base; what a base contains is kept once a
// type is derived from it, to refuse names and ids that are taken.
#include "middleware/xml/type_reader.h"

#include <algorithm>
#include <utility>

namespace zul::xml {

// Members of a sparse value type are recognised by their ids and need not be there, keys excepted.
void TypeReader::readRecord(Element element, Scope scope, Name name) {
    Symbol& symbol = beginType(element, name, findDefinition(element.tag)->kind);
    DDS_TypeCode& code = *symbol.type;
    if (code.kind == DDS_TK_SPARSE) {
        code.extensibility = DDS_MUTABLE_EXTENSIBILITY;
    }
    const bool hasMembers = element.count > 0;
    if (hasMembers && attribute(element, "modifier") == "abstract") {
        fail(element, "an abstract value type has no members");
    }
    Record record;
    if (hasAttribute(element, "baseType")) {
        readBase(element, scope, code, record);
    } else if (code.kind == DDS_TK_STRUCT && !hasMembers) {
        fail(element, "a struct without a baseType needs a member");
    }
    code.members.reserve(element.count);
    readParts(element, element.first, [&](Element child) { readMember(child, scope, code, record); });
    symbol.isDefined = true;
}

void TypeReader::readBase(Element element, Scope scope, DDS_TypeCode& code, Record& record) {
    const DDS_TypeCode* base = underlyingType(namedType(element, scope, "baseType", true));
    if (base->kind != code.kind) {
        fail(element, "the baseType of a " + std::string(element.tag) + " must be one itself");
    }
    if (!symbols_.find(base->name)->isDefined) { // but a typedef of it is
        fail(element, "the baseType must be defined before this use, not only announced");
    }
    record.deriveFrom(recordOf(*base));
    code.content = base;
    if (record.bases > BASES_MAX) {
        fail(element, "more than " + std::to_string(BASES_MAX) + " types stand above each other as baseType");
    }
}

const TypeReader::Record& TypeReader::recordOf(const DDS_TypeCode& base) {
    const auto [place, isNew] = bases_.try_emplace(&base);
    Record& record = place->second;
    if (!isNew) {
        return record;
    }
    if (base.content != nullptr) {
        record.deriveFrom(recordOf(*base.content));
    }
    for (const DDS_TypeCodeMember& member : base.members) {
        record.add(member.name, static_cast<std::uint64_t>(member.id));
    }
    return record;
}

// Reads a member of `code`. Inside a union its key and optional marks mean nothing and are ignored.
void TypeReader::readMember(Element element, Scope scope, DDS_TypeCode& code, Record& record) {
    checkForm(element);
    const std::string_view name = attribute(element, "name");
    const std::optional<Integer> id = hasAttribute(element, "id") ? integerOf(scope, attribute(element, "id"))
                                                                  : Integer{false, record.nextId};
    if (!id || id->negative || id->magnitude > MEMBER_ID_MAX) {
        fail(element, "the id of a member must be a number from 0 to " + std::to_string(MEMBER_ID_MAX));
    }
    for (const Record* each = &record; each != nullptr; each = each->base) {
        if (each->names.contains(name) || each->ids.contains(id->magnitude)) {
            fail(element, "the name or id of member '" + std::string(name) + "' is used twice in its type");
        }
    }
    record.add(name, id->magnitude);
    DDS_TypeCodeMember member{.name = std::string(name),
                              .id = static_cast<std::int32_t>(id->magnitude),
                              .type = typeOf(element, scope)};
    if (code.kind != DDS_TK_UNION) {
        member.isKey = isTrue(element, "key");
        if (member.isKey && isTrue(element, "optional")) {
            fail(element, "a key member cannot be optional");
        }
        member.isRequired = member.isKey || (code.kind != DDS_TK_SPARSE && !isTrue(element, "optional"));
    }
    code.members.push_back(std::move(member));
}

void TypeReader::readUnion(Element element, Scope scope, Name name) {
    Symbol& symbol = beginType(element, name, DDS_TK_UNION);
    const TypeElement* child = element.first;
    if (child == nullptr || child->tag != "discriminator" || element.count < 2) {
        fail(element, "a union is a discriminator followed by at least one case");
    }
    Discriminator discriminator = readDiscriminator(*child, scope, *symbol.type);
    Record record;
    symbol.type->members.reserve(element.count);
    readParts(element, child->next,
              [&](Element each) { readCase(each, scope, *symbol.type, discriminator, record); });
    symbol.isDefined = true;
}

TypeReader::Discriminator TypeReader::readDiscriminator(Element element, Scope scope, DDS_TypeCode& code) {
    checkForm(element);
    code.content = elementTypeOf(element, scope);
    const DDS_TypeCode* underlying = underlyingType(code.content);
    const TypeWord* word = findTypeWord(attribute(element, "type"));
    if (word == nullptr) {
        word = discreteTypeWord(underlying->kind);
    }
    const bool isEnum = underlying->kind == DDS_TK_ENUM && !underlying->members.empty();
    if (!isEnum && (word == nullptr || !word->isDiscrete())) {
        fail(element,
             "a discriminator is a boolean, a byte, a character, an integer or an enum defined before it");
    }
    return {.underlying = underlying,
            .word = word,
            .enumerators = isEnum ? &enumeratorsOf(*underlying) : nullptr};
}

const TypeReader::Enumerators& TypeReader::enumeratorsOf(const DDS_TypeCode& enumeration) {
    Enumerators& known = enums_[&enumeration];
    for (; known.count < enumeration.members.size(); ++known.count) {
        const DDS_TypeCodeMember& enumerator = enumeration.members[known.count];
        known.byName.emplace(enumerator.name, enumerator.value);
        known.values.insert(enumerator.value);
    }
    return known;
}

void TypeReader::readCase(Element element, Scope scope, DDS_TypeCode& code, Discriminator& discriminator,
                          Record& record) {
    if (element.tag != "case") {
        fail(element, "a union has one discriminator, which comes first");
    }
    checkForm(element);
    DDS_TypeCodeMember branch;
    const TypeElement* child = element.first;
    for (; child != nullptr && child->tag == "caseDiscriminator"; child = child->next) {
        checkForm(*child);
        readLabel(*child, scope, discriminator, branch);
    }
    if (child == nullptr || child == element.first || child->next != nullptr) {
        fail(element, "a case is one or more caseDiscriminator elements followed by one member");
    }
    readMember(*child, scope, code, record);
    code.members.back().labels = std::move(branch.labels);
    code.members.back().isDefault = branch.isDefault;
}

// Labels are kept in 32 bits; those of an unsigned 32-bit discriminator with the same bits.
void TypeReader::readLabel(Element element, Scope scope, Discriminator& discriminator,
                           DDS_TypeCodeMember& branch) {
    const std::string text(attribute(element, "value"));
    if (text == "default") {
        branch.isDefault = true;
        if (std::exchange(discriminator.hasDefault, true)) {
            fail(element, "a union has one default at most");
        }
        return;
    }
    std::optional<std::int32_t> label;
    if (discriminator.word == nullptr) {
        const Symbol* symbol = symbols_.resolve(scope, text);
        const bool isOwn = symbol != nullptr && symbol->enumeration == discriminator.underlying;
        const std::optional<Integer> number = parseInteger(text);
        const Enumerators& enumerators = *discriminator.enumerators;
        const auto named = enumerators.byName.find(text);
        if (isOwn) {
            label = toInt32(symbol->value);
        } else if (number) {
            label = toInt32(*number);
            label = label && enumerators.values.contains(*label) ? label : std::nullopt;
        } else if (named != enumerators.byName.end()) {
            label = named->second;
        }
    } else if (const std::optional<Integer> value = valueOf(*discriminator.word, scope, text)) {
        label = discriminator.word->kind == DDS_TK_ULONG
                    ? std::optional(static_cast<std::int32_t>(static_cast<std::uint32_t>(value->magnitude)))
                    : toInt32(*value);
    }
    if (!label) {
        fail(element, "'" + text + "' is no value of the discriminator's type that fits in 32 bits");
    }
    if (!discriminator.labels.insert(*label).second) {
        fail(element, "the label '" + text + "' selects two cases");
    }
    branch.labels.push_back(*label);
}

} // namespace zul::xml
