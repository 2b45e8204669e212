// Loads the modules that operators come in. A module registers its operators when it is loaded and stays
// loaded until the program ends. Any thread.
#pragma once

#include <stdexcept>
#include <string_view>

#include "ZoImage/Op.h"

namespace Zo::Image {

// Why a module could not be loaded, with the places that were looked at.
class PluginError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// The operator of this class name. When none is registered yet, loads CLASS.so from the first of these that
// has it: the directories of the environment variable VELOXA_PLUGIN_PATH (separated by colons), the
// directory "veloxa" beside the engine's library, "../lib/veloxa" seen from the program's directory.
const Op::Description& load_plugin(std::string_view class_name);

// A module by its name, found likewise, that need not register anything: the handle that dlopen gives.
void* load_module(std::string_view name);

}  // namespace Zo::Image
