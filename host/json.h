// JSON text.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace vlm {

// Writes objects and arrays from the outside in. A name is needed in objects only.
class JsonWriter {
public:
    void BeginObject(std::wstring_view name = {}) { Begin(name, L'{'); }
    void EndObject() { End(L'}'); }
    void BeginArray(std::wstring_view name = {}) { Begin(name, L'['); }
    void EndArray() { End(L']'); }
    void Text(std::wstring_view name, std::wstring_view value) {
        Name(name);
        Quote(value);
    }
    void Number(std::wstring_view name, uint64_t value) {
        Name(name);
        text_ += std::to_wstring(value);
    }
    const std::wstring& Result() const { return text_; }

private:
    void Begin(std::wstring_view name, wchar_t bracket) {
        Name(name);
        text_ += bracket;
        isFirst_ = true;
    }
    void End(wchar_t bracket) {
        text_ += bracket;
        isFirst_ = false;
    }
    void Name(std::wstring_view name) {
        if (!isFirst_) text_ += L',';
        isFirst_ = false;
        if (name.empty()) return;
        Quote(name);
        text_ += L':';
    }
    void Quote(std::wstring_view value);

    std::wstring text_;
    bool isFirst_ = true;
};

} // namespace vlm
