#include "variant/variant_types.h"

#include <algorithm>
#include <iterator>

namespace vxut {
namespace {

struct KindGroup {
    clsVariant::Kind group;
    VARTYPE kind;
};
constexpr KindGroup kGroups[] = {
    {clsVariant::kNumeric, VT_I2},       {clsVariant::kNumeric, VT_I4},   {clsVariant::kNumeric, VT_R4},
    {clsVariant::kNumeric, VT_R8},       {clsVariant::kNumeric, VT_CY},   {clsVariant::kNumeric, VT_DECIMAL},
    {clsVariant::kNumeric, VT_I1},       {clsVariant::kNumeric, VT_UI1},  {clsVariant::kNumeric, VT_UI2},
    {clsVariant::kNumeric, VT_UI4},      {clsVariant::kNumeric, VT_I8},   {clsVariant::kNumeric, VT_UI8},
    {clsVariant::kNumeric, VT_INT},      {clsVariant::kNumeric, VT_UINT}, {clsVariant::kNumeric, VT_INT_PTR},
    {clsVariant::kNumeric, VT_UINT_PTR}, {clsVariant::kString, VT_BSTR},  {clsVariant::kString, VT_LPSTR},
    {clsVariant::kString, VT_LPWSTR},
};

struct StoredSize {
    VARTYPE type;
    uint8_t bytes;
};
constexpr StoredSize kStoredSizes[] = {
    {VT_I1, 1}, {VT_UI1, 1}, {VT_I2, 2},    {VT_BOOL, 2}, {VT_UI2, 2}, {VT_FILETIME, 2},
    {VT_I4, 4}, {VT_R4, 4},  {VT_ERROR, 4}, {VT_UI4, 4},  {VT_INT, 4}, {VT_UINT, 4},
    {VT_R8, 8}, {VT_CY, 8},  {VT_DATE, 8},  {VT_I8, 8},   {VT_UI8, 8}, {VT_CLSID, 4},
};

} // namespace

clsVariant::Kind GroupOfVariantKind(VARTYPE kind) noexcept {
    const auto* const row = std::find_if(std::begin(kGroups), std::end(kGroups),
                                         [=](const KindGroup& group) { return group.kind == kind; });
    return row == std::end(kGroups) ? clsVariant::kOther : row->group;
}

size_t StoredSizeOfVariant(VARTYPE type) noexcept {
    const auto* const row = std::find_if(std::begin(kStoredSizes), std::end(kStoredSizes),
                                         [=](const StoredSize& size) { return size.type == type; });
    return row == std::end(kStoredSizes) ? 0 : row->bytes;
}

} // namespace vxut
