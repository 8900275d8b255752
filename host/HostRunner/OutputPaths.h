#pragma once

// How the host names and writes output files: paths as the system resolves them, and
// the hidden staging folders an output is written into before it is published.

#include <QString>

namespace HostRunner {

// The path the system reaches through path: the longest part of it that exists, with
// its symbolic links and ".." resolved by the system, then the rest (folders not made
// yet) as mkdir -p would make them. A relative path starts at the working folder.
QString SystemPath(const QString& path);

// Makes the missing folders of path one component after the other, as mkdir -p does,
// so "x/../y" makes x and then y beside it. False with the system's reason in *error.
bool MakeFolders(const QString& path, QString* error);

// Removes the staging folders of the output at path whose writing process is gone (a
// run killed while it wrote): only those of that output, never one still being written.
// Returns how many were removed.
int RemoveStaleStaging(const QString& path);

// Removes the staging folders of every output this process is writing and refuses to
// publish any of them from now on: for a process about to end on a signal, whose
// steps cannot be waited for. Thread-safe.
void DiscardUnfinishedOutputs();

} // namespace HostRunner
