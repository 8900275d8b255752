#pragma once

#include "HostRunner/RunRecord.h"

#include <QString>

namespace HostRunner {

// Runs the named algorithm synchronously on the calling thread. parameters is a
// JSON object text (8-bit, local encoding) of string values. Progress goes to the
// record's callback; the error fields are filled (0 and "" on success). Returns 1 on
// success, 0 on failure. Never throws.
int ExcuteAlgo(const char* name, const char* parameters, RunRecord* record);

// The whole error message (UTF-8, zero-terminated) of the last ExcuteAlgo on the
// calling thread, of which the record holds only the first 259 bytes; "" after a
// success. Valid until the next ExcuteAlgo on this thread.
const char* ExcuteAlgoMessage();

// Judges the parameters of a step of the named algorithm before any run, as far as
// they can be judged without reading a file: the output format's creation options
// against the list its GDAL driver gives, a utility's switches by its own parser.
// parametersJson is the object text ExcuteAlgo takes. False when something is
// refused: *parameter names it and *reason gives GDAL's words. True for an unknown
// algorithm, which its run reports.
bool CheckParameters(const QString& name, const QString& parametersJson, QString* parameter, QString* reason);

// Makes sure the built-in algorithms are in the registry (they also register
// themselves on the registry's first lookup). Idempotent and thread-safe.
void RegisterBuiltinAlgorithms();

// Adds the small deterministic algorithms that tests drive the engine with
// ("test.noop", "test.copyText", "test.fail", "test.sleep", "test.progress",
// "test.appendLine"). Idempotent.
void RegisterTestAlgorithms();

} // namespace HostRunner
