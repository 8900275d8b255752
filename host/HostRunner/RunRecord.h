#pragma once

#include <cstddef>
#include <cstdint>

namespace HostRunner {

// Progress callback: percentage, zero-terminated text, the record's user data.
using ProgressCallback = int (*)(double percent, const char* text, void* userData);

// What ExcuteAlgo reads and writes while an algorithm runs. The layout is an
// interface: 280 bytes, fields at 0, 8, 16 and 20.
struct RunRecord
{
    ProgressCallback callback;
    void* userData;
    std::int32_t errorCode;
    char errorMessage[260];
};

static_assert(sizeof(void*) == 8, "the run record is laid out for 64-bit pointers");
static_assert(offsetof(RunRecord, callback) == 0, "callback at 0");
static_assert(offsetof(RunRecord, userData) == 8, "user data at 8");
static_assert(offsetof(RunRecord, errorCode) == 16, "error code at 16");
static_assert(offsetof(RunRecord, errorMessage) == 20, "error message at 20");
static_assert(sizeof(RunRecord) == 280, "the run record is 280 bytes");

} // namespace HostRunner
