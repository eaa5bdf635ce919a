#include "ledger.h"

#include <windows.h>

#include <map>
#include <mutex>
#include <utility>

namespace torture {
namespace {

struct Entry {
    const char* function;
    const void* owner;
    unsigned long long serial;
};

struct Book {
    std::mutex lock;
    std::map<std::pair<Kind, const void*>, Entry> entries;
    unsigned long long serial = 0;
    unsigned long long mark = 0;
};

// Lives for ever: the library returns things until the very end of the process.
Book& TheBook() {
    static Book& book = *new Book;
    return book;
}

} // namespace

void Take(Kind kind, const void* resource, const char* function, const void* owner) {
    if (resource == nullptr || resource == INVALID_HANDLE_VALUE) return;
    Book& book = TheBook();
    const std::scoped_lock scope(book.lock);
    book.entries[{kind, resource}] = {function, owner, ++book.serial};
}

void Return(Kind kind, const void* resource) {
    Book& book = TheBook();
    const std::scoped_lock scope(book.lock);
    book.entries.erase({kind, resource});
}

void ReturnAllOf(const void* owner) {
    Book& book = TheBook();
    const std::scoped_lock scope(book.lock);
    std::erase_if(book.entries, [owner](const auto& entry) { return entry.second.owner == owner; });
}

size_t LiveCount() {
    Book& book = TheBook();
    const std::scoped_lock scope(book.lock);
    return book.entries.size();
}

void Mark() {
    Book& book = TheBook();
    const std::scoped_lock scope(book.lock);
    book.mark = book.serial;
}

std::string LiveSinceMark() {
    Book& book = TheBook();
    const std::scoped_lock scope(book.lock);
    std::map<std::string, unsigned> counts;
    for (const auto& entry : book.entries) {
        if (entry.second.serial > book.mark) ++counts[entry.second.function];
    }
    std::string text;
    for (const auto& [function, count] : counts) {
        if (!text.empty()) text += ", ";
        text += std::to_string(count) + " " + function;
    }
    return text;
}

} // namespace torture
