#pragma once

#include <QString>

namespace HostRunner {

// A Markdown list of the registry's algorithms (test ones left out), grouped by
// category: key, display text, help and parameters. For READMEs and --help texts.
QString AlgorithmListMarkdown();

} // namespace HostRunner
