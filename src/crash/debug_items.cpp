#include "crash/debug_items.h"

#include "base/text_conversion.h"

#include <cwchar>

namespace vxut {
namespace {

// Hosts of other builds read the records by these offsets.
static_assert(sizeof(DBGModuleItem) == 832);
static_assert(offsetof(DBGModuleItem, size) == 0);
static_assert(offsetof(DBGModuleItem, path) == 4);
static_assert(offsetof(DBGModuleItem, name) == 264);
static_assert(offsetof(DBGModuleItem, symbolType) == 524);
static_assert(offsetof(DBGModuleItem, base) == 560);
static_assert(offsetof(DBGModuleItem, imageSize) == 568);
static_assert(offsetof(DBGModuleItem, fileVersion) == 572);
static_assert(offsetof(DBGModuleItem, company) == 636);
static_assert(offsetof(DBGModuleItem, productVersion) == 700);

static_assert(sizeof(DBGStackTraceValue) == 80);
static_assert(offsetof(DBGStackTraceValue, type) == 0);
static_assert(offsetof(DBGStackTraceValue, isLocal) == 4);
static_assert(offsetof(DBGStackTraceValue, value) == 8);
static_assert(offsetof(DBGStackTraceValue, name) == 16);
static_assert(offsetof(DBGStackTraceValue, isFilled) == 72);

static_assert(sizeof(DBGStackTraceItem) == 9432);
static_assert(offsetof(DBGStackTraceItem, size) == 0);
static_assert(offsetof(DBGStackTraceItem, isCall) == 4);
static_assert(offsetof(DBGStackTraceItem, address) == 8);
static_assert(offsetof(DBGStackTraceItem, symbol) == 16);
static_assert(offsetof(DBGStackTraceItem, name) == 1040);
static_assert(offsetof(DBGStackTraceItem, fullName) == 2064);
static_assert(offsetof(DBGStackTraceItem, displacement) == 3088);
static_assert(offsetof(DBGStackTraceItem, line) == 3100);
static_assert(offsetof(DBGStackTraceItem, file) == 3104);
static_assert(offsetof(DBGStackTraceItem, moduleBase) == 4392);
static_assert(offsetof(DBGStackTraceItem, module) == 4400);
static_assert(offsetof(DBGStackTraceItem, valueCount) == 5424);
static_assert(offsetof(DBGStackTraceItem, values) == 5432);
static_assert(sizeof(DBGStackTraceItem::values) == kMostValues * sizeof(DBGStackTraceValue));

} // namespace

const wchar_t* clsDBGStackTraceList::Keep(const String& text) {
    if (!texts_->append(text)) throw std::bad_alloc();
    return texts_->get(texts_->entries() - 1).Text();
}

void CopyToField(char* field, size_t bytes, const wchar_t* text) {
    field[0] = '\0';
    int units = static_cast<int>(std::wcslen(text));
    const int most = static_cast<int>(bytes) - 1;
    // A character may take several bytes: what does not fit is left out unit by unit.
    for (units = units < most ? units : most; units > 0; --units) {
        const int length = NarrowText(CP_ACP, text, units, field, most);
        if (length <= 0) continue;
        field[length] = '\0';
        return;
    }
}

} // namespace vxut
