// The two records that the engine hands to hosts, and the lists of them.
#pragma once

#include "base/owners.h"
#include "containers/list.h"
#include "text/string.h"
#include "util/debug_help.h"

#include <atomic>
#include <cstddef>
#include <cstring>
#include <memory>

namespace vxut {

inline constexpr uint32_t kMostValues = 50;

// A list of records behind one of the public interfaces, counted by references. Built by one thread, which
// then hands it over. The items belong to the list.
template <class Derived, class Interface, class Item>
class clsDBGItemList : public Interface {
public:
    clsDBGItemList& operator=(const clsDBGItemList&) = delete;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override {
        if (!object) return E_POINTER;
        *object = nullptr;
        if (!IsEqualIID(id, IID_IUnknown)) return E_NOINTERFACE;
        AddRef();
        *object = static_cast<Interface*>(this);
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override {
        return references_.fetch_add(1, std::memory_order_relaxed) + 1;
    }
    ULONG STDMETHODCALLTYPE Release() override {
        const ULONG left = references_.fetch_sub(1, std::memory_order_acq_rel) - 1;
        if (left == 0) Destroy();
        return left;
    }

    HRESULT STDMETHODCALLTYPE Next(ULONG count, const Item** items, ULONG* fetched) override {
        ULONG delivered = 0;
        for (; items && delivered < count && next_ < items_.entries(); ++delivered, ++next_)
            items[delivered] = items_.get(next_);
        if (fetched) *fetched = delivered;
        return delivered > 0 ? S_OK : S_FALSE;
    }
    HRESULT STDMETHODCALLTYPE Skip(ULONG count) override {
        const auto left = static_cast<ULONG>(items_.entries() - next_);
        next_ += static_cast<int>(count < left ? count : left);
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE Reset() override {
        next_ = 0;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE Clone(Interface** list) override {
        if (!list) return E_POINTER;
        *list = nullptr;
        try {
            *list = new Derived(static_cast<const Derived&>(*this));
            return S_OK;
        } catch (...) {
            return E_OUTOFMEMORY;
        }
    }
    HRESULT STDMETHODCALLTYPE GetCount(ULONG* count) override {
        if (!count) return E_POINTER;
        *count = static_cast<ULONG>(items_.entries());
        return S_OK;
    }
    void STDMETHODCALLTYPE Destroy() override {
        delete this; // NOLINT(cppcoreguidelines-owning-memory): the list owns itself
    }
    virtual ~clsDBGItemList() {
        for (Item* item : items_) delete item;
    }

    // Adds a zeroed record with its size filled in, which the list owns. Throws std::bad_alloc.
    Item& Add() {
        auto item = std::make_unique<Item>();
        item->size = sizeof(Item);
        if (!items_.append(item.get())) throw std::bad_alloc();
        return *item.release();
    }

protected:
    clsDBGItemList() = default; // NOLINT(bugprone-crtp-constructor-accessibility): derived classes only
    // Copies the items.
    // NOLINTNEXTLINE(bugprone-crtp-constructor-accessibility)
    clsDBGItemList(const clsDBGItemList& other) : Interface(other), next_(other.next_) {
        try {
            for (const Item* item : other.items_) std::memcpy(&Add(), item, sizeof *item);
        } catch (...) {
            for (Item* item : items_) delete item;
            throw;
        }
    }

private:
    std::atomic<ULONG> references_{1};
    WCValDList<Item*> items_;
    int next_ = 0;
};

class clsDBGModuleList final : public clsDBGItemList<clsDBGModuleList, IDBGModuleList, DBGModuleItem> {};

class clsDBGStackTraceList final
    : public clsDBGItemList<clsDBGStackTraceList, IDBGStackTraceList, DBGStackTraceItem> {
public:
    // Keeps a text for the values of the list and its clones. Throws std::bad_alloc.
    const wchar_t* Keep(const String& text);

private:
    std::shared_ptr<WCValSList<String>> texts_ = std::make_shared<WCValSList<String>>();
};

// Copies a text into a field of a record, cut to its size.
template <size_t N>
void CopyToField(char (&field)[N], const char* text) {
    size_t length = 0;
    for (; text && length + 1 < N && text[length]; ++length) field[length] = text[length];
    field[length] = '\0';
}
// The same in the system's code page. A text that cannot be converted leaves the field empty.
void CopyToField(char* field, size_t bytes, const wchar_t* text);
template <size_t N>
void CopyToField(char (&field)[N], const wchar_t* text) {
    CopyToField(field, N, text);
}

} // namespace vxut
