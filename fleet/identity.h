// Who is who in a domain: GUIDs of endpoints, prefixes of participants, and the two products.
#pragma once

#include "middleware/dds/dds.h"
#include "product/product_info.h"

#include <array>
#include <cstdint>
#include <string>

namespace zul::fleet {

using Guid = std::array<std::uint8_t, 16>;
using GuidPrefix = std::array<std::uint8_t, DDS_GUID_PREFIX_LENGTH>; // of a participant

Guid guidOf(const std::uint8_t (&value)[16]);
GuidPrefix prefixOf(const Guid& guid);
// Three words of eight hexadecimal digits, with dots between.
std::string textOf(const GuidPrefix& prefix);

enum class Product : std::int32_t {
    ROUTING = ROUTER_PRODUCT_ROUTING_SERVICE,
    FEDERATION = ROUTER_PRODUCT_FEDERATION_SERVICE,
};
constexpr Product PRODUCTS[] = {Product::ROUTING, Product::FEDERATION};

inline const ROUTERProductInfo& infoOf(Product product) {
    return ROUTER_g_productInfo[static_cast<std::int32_t>(product)];
}
constexpr const char* nameOf(Product product) {
    return product == Product::ROUTING ? "routing" : "federation";
}

} // namespace zul::fleet
