#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace zelkin {

inline uint32_t byteSwapped(uint32_t word)
{
    return (word >> 24) | ((word >> 8) & 0x0000FF00u) | ((word << 8) & 0x00FF0000u) | (word << 24);
}

// Moves 4-byte words, byte-reversing each when asked. Either side may be unaligned (the caller's bytes, a buffer
// from the caller's allocator), so words only move through memcpy or unaligned vector loads.
inline void copyWords(void* target, const void* source, size_t words, bool swap)
{
    if (!swap) {
        std::memcpy(target, source, words * sizeof(uint32_t));
        return;
    }
    auto* out = static_cast<unsigned char*>(target);
    const auto* in = static_cast<const unsigned char*>(source);
    const unsigned char* const end = in + words * sizeof(uint32_t);
#if defined(__SSE2__)
    // Four words at a time: swap the 16-bit halves of each word, then the bytes of each half.
    for (; end - in >= 16; in += 16, out += 16) {
        __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(in));
        v = _mm_shufflehi_epi16(_mm_shufflelo_epi16(v, _MM_SHUFFLE(2, 3, 0, 1)), _MM_SHUFFLE(2, 3, 0, 1));
        v = _mm_or_si128(_mm_slli_epi16(v, 8), _mm_srli_epi16(v, 8));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out), v);
    }
#endif
    for (; in != end; in += sizeof(uint32_t), out += sizeof(uint32_t)) {
        uint32_t word;
        std::memcpy(&word, in, sizeof word);
        word = byteSwapped(word);
        std::memcpy(out, &word, sizeof word);
    }
}

} // namespace zelkin
