// SPDX-License-Identifier: MIT
// Takes everything that this process has mapped out of the processor's caches.
#ifndef COLDCACHE_H
#define COLDCACHE_H

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <string>
#include <vector>

#include <emmintrin.h>

/// Flushes the heap, all other writable memory and shared memory. x86 only.
class ColdCache
{
public:
    /// Takes the memory that is mapped now; what is mapped later stays warm.
    ColdCache()
    {
        std::ifstream maps("/proc/self/maps");
        for (std::string line; std::getline(maps, line);) {
            uintptr_t begin = 0;
            uintptr_t end = 0;
            char access[5] = {};
            if (std::sscanf(line.c_str(), "%lx-%lx %4s", &begin, &end, access) == 3
                && (access[1] == 'w' || line.find("/dev/shm/") != std::string::npos)
                && line.find("[stack]") == std::string::npos && end - begin < largest) {
                ranges.push_back({begin, end});
            }
        }
    }

    void flush() const
    {
        for (const Range &range : ranges) {
            for (uintptr_t line = range.begin; line < range.end; line += cacheLine) {
                _mm_clflush(reinterpret_cast<const void *>(line));
            }
        }
        _mm_mfence();
    }

private:
    struct Range
    {
        uintptr_t begin;
        uintptr_t end;
    };
    static constexpr uintptr_t largest = 64 * 1024 * 1024; // bytes; larger ones are only reserved
    static constexpr uintptr_t cacheLine = 64;

    std::vector<Range> ranges;
};

#endif
