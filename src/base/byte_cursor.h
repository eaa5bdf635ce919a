// A position in foreign bytes that cannot leave them.
//
// Every reader of a byte format works through one. A read that does not fit returns false and changes neither
// the position nor the target: a wrong length in the data is an ordinary result, never a fault. Sizes are
// compared with what remains and are never added to a position first: no sum can wrap.
//
//     clsByteCursor file(data, size);
//     uint16_t kind;
//     uint32_t length;
//     clsByteCursor body;
//     if (!file.ReadLittle(kind) || !file.ReadLittle(length) || !file.ReadPart(length, body)) return false;
//
// Ownership: a cursor refers to the bytes, which must outlive it. It is a value of three words: copy it to
// look ahead. Threads: as any value; the bytes are only read.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <string_view>
#include <type_traits>

namespace vxut {

enum class ByteOrder { kLittle, kBig };

class clsByteCursor {
public:
    constexpr clsByteCursor() noexcept = default;
    constexpr explicit clsByteCursor(std::span<const uint8_t> bytes) noexcept : bytes_(bytes) {}
    clsByteCursor(const void* data, size_t size) noexcept : bytes_(static_cast<const uint8_t*>(data), size) {}

    constexpr size_t Size() const noexcept { return bytes_.size(); }
    constexpr size_t Position() const noexcept { return position_; }
    constexpr size_t Remaining() const noexcept { return bytes_.size() - position_; }
    constexpr bool IsAtEnd() const noexcept { return Remaining() == 0; }
    // The bytes from the position on.
    constexpr std::span<const uint8_t> Rest() const noexcept { return bytes_.subspan(position_); }

    // Moves to a position from the start of the bytes. The end is one.
    [[nodiscard]] constexpr bool Seek(size_t position) noexcept {
        if (position > bytes_.size()) return false;
        position_ = position;
        return true;
    }
    [[nodiscard]] constexpr bool Skip(size_t count) noexcept {
        if (count > Remaining()) return false;
        position_ += count;
        return true;
    }

    // Integers of the size of value, in the byte order of the format.
    template <std::integral T>
    [[nodiscard]] constexpr bool Peek(T& value, ByteOrder order) const noexcept {
        if (sizeof(T) > Remaining()) return false;
        value = Decode<T>(bytes_.data() + position_, order);
        return true;
    }
    template <std::integral T>
    [[nodiscard]] constexpr bool Read(T& value, ByteOrder order) noexcept {
        if (!Peek(value, order)) return false;
        position_ += sizeof(T);
        return true;
    }
    template <std::integral T>
    [[nodiscard]] constexpr bool PeekLittle(T& value) const noexcept {
        return Peek(value, ByteOrder::kLittle);
    }
    template <std::integral T>
    [[nodiscard]] constexpr bool PeekBig(T& value) const noexcept {
        return Peek(value, ByteOrder::kBig);
    }
    template <std::integral T>
    [[nodiscard]] constexpr bool ReadLittle(T& value) noexcept {
        return Read(value, ByteOrder::kLittle);
    }
    template <std::integral T>
    [[nodiscard]] constexpr bool ReadBig(T& value) noexcept {
        return Read(value, ByteOrder::kBig);
    }

    // The next bytes as they are, without a copy.
    [[nodiscard]] constexpr bool PeekBytes(size_t count, std::span<const uint8_t>& bytes) const noexcept {
        if (count > Remaining()) return false;
        bytes = bytes_.subspan(position_, count);
        return true;
    }
    [[nodiscard]] constexpr bool ReadBytes(size_t count, std::span<const uint8_t>& bytes) noexcept {
        return PeekBytes(count, bytes) && Skip(count);
    }
    // Copies the next bytes into a packed structure of the format or into a field of it.
    template <class T>
        requires std::is_trivially_copyable_v<T>
    [[nodiscard]] bool ReadObject(T& target) noexcept {
        if (sizeof(T) > Remaining()) return false;
        std::memcpy(&target, bytes_.data() + position_, sizeof(T));
        position_ += sizeof(T);
        return true;
    }

    // A cursor over the next bytes alone, at their start.
    [[nodiscard]] constexpr bool ReadPart(size_t count, clsByteCursor& part) noexcept {
        std::span<const uint8_t> bytes;
        if (!ReadBytes(count, bytes)) return false;
        part = clsByteCursor(bytes);
        return true;
    }
    // A cursor over bytes anywhere in this one's: offsets count from the start, not from the position.
    [[nodiscard]] constexpr bool Part(size_t offset, size_t count, clsByteCursor& part) const noexcept {
        clsByteCursor whole(bytes_);
        return whole.Seek(offset) && whole.ReadPart(count, part);
    }

    // Whether the next bytes are these, as a format's magic.
    bool StartsWith(std::string_view magic) const noexcept { return RestAsText().starts_with(magic); }
    // Moves past the magic, if it is next.
    [[nodiscard]] bool ReadMagic(std::string_view magic) noexcept {
        return StartsWith(magic) && Skip(magic.size());
    }

    // Moves to the next place, from the position on, where the bytes are these. An empty pattern is
    // everywhere.
    [[nodiscard]] bool Find(std::string_view pattern) noexcept {
        const size_t offset = RestAsText().find(pattern);
        return offset != std::string_view::npos && Skip(offset);
    }

private:
    std::string_view RestAsText() const noexcept {
        return {reinterpret_cast<const char*>(bytes_.data()) + position_, Remaining()};
    }

    template <std::integral T>
    static constexpr T Decode(const uint8_t* bytes, ByteOrder order) noexcept {
        std::array<uint8_t, sizeof(T)> parts;
        std::copy_n(bytes, sizeof(T), parts.begin());
        const auto value = std::bit_cast<T>(parts);
        return order == ByteOrder::kBig ? Swap(value) : value;
    }
    static_assert(std::endian::native == std::endian::little);

    template <std::integral T>
    static constexpr T Swap(T value) noexcept {
        if constexpr (sizeof(T) == 8) return static_cast<T>(__builtin_bswap64(static_cast<uint64_t>(value)));
        if constexpr (sizeof(T) == 4) return static_cast<T>(__builtin_bswap32(static_cast<uint32_t>(value)));
        if constexpr (sizeof(T) == 2) return static_cast<T>(__builtin_bswap16(static_cast<uint16_t>(value)));
        return value;
    }

    std::span<const uint8_t> bytes_;
    size_t position_ = 0; // never beyond the end
};

} // namespace vxut
