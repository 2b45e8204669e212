// Reads a command line from a program's parser and from the node.
#pragma once

#include <CLI/CLI.hpp>

#include "CommandLine.h"
#include "shot/node/Node.h"

namespace veloxa {

CommandLine describe(const CLI::App& app, const Node& node);

}  // namespace veloxa
