#include "docinfo/readers/properties.h"

#include <new>

namespace vxut {

void SetText(clsVariant& property, const String& text) {
    if (FAILED(property.AssignText({text.Text(), static_cast<size_t>(text.Length())})))
        throw std::bad_alloc();
}

String TextOf(const clsVariant& property) {
    String text;
    if (!IsUnset(property)) property.ToString(text);
    return text;
}

bool IsUnset(const clsVariant& property) { return property.vt == VT_EMPTY || property.vt == VT_ERROR; }

void AppendText(clsVariant& property, const wchar_t* separator, const String& text) {
    String all = TextOf(property);
    all.AppendDelimited(separator, text);
    SetText(property, all);
}

String AnsiText(std::span<const uint8_t> bytes) {
    return bytes.empty()
               ? String()
               : String(reinterpret_cast<const char*>(bytes.data()), 0, static_cast<int64_t>(bytes.size()));
}

size_t ReadSome(clsFile& file, int64_t offset, void* buffer, size_t count) {
    file.ForgetFailure();
    // A failed move returns 0, which may be where it was to go.
    if (file.SetPosition(offset) != offset || file.Failure() != ERROR_SUCCESS) return 0;
    return static_cast<size_t>(file.Read(buffer, static_cast<int64_t>(count)));
}

bool ReadAll(clsFile& file, int64_t offset, std::vector<uint8_t>& bytes, size_t count) {
    bytes.resize(count);
    return ReadAll(file, offset, bytes.data(), count);
}

} // namespace vxut
