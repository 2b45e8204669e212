// The colour spaces that values can be in, and the ways between them.
//
// From the OpenColorIO configuration that $OCIO names, else a set of the program's own, whose reference and
// scene linear space is light with Rec.709's primaries (KnownSpaces.h). Names and aliases count in whatever
// case. Const functions may be called by any thread.
#pragma once

#include <OpenColorIO/OpenColorIO.h>

#include <string>
#include <string_view>
#include <vector>

#include "shot/colour/ColourConversion.h"
#include "shot/colour/KnownSpaces.h"

namespace veloxa {

struct ColourSpace {
    std::string name;
    std::vector<std::string> aliases;
    std::string description;  // a line; may be empty
    bool data = false;        // not colour, never converted
};

struct ColourDisplay {
    std::string name;
    std::vector<std::string> views;  // the default one first
};

class ColourConfig {
  public:
    // Throws Error, with the file's name, where $OCIO's cannot be loaded.
    static ColourConfig load();
    static ColourConfig built_in();

    // The file; empty for the built-in set.
    const std::string& file() const { return file_; }
    std::vector<ColourSpace> spaces() const;
    // Those of the configuration, its default display first.
    std::vector<ColourDisplay> displays() const;

    // The space of this name, alias or role. Throws UsageError, which begins with `asked`, as "--in-space ",
    // and names the nearest and all.
    std::string space_named(const std::string& asked, const std::string& name) const;
    // What this configuration calls the space; empty where it has none such.
    std::string name_of(const KnownSpace& space) const;
    // What the program itself calls the space of the configuration; null for others.
    const KnownSpace* known(const std::string& space) const;
    // What the file rules say of the file; empty where no rule but the default one is for it.
    std::string space_by_rule(const std::string& path) const;
    // The space of the role scene_linear. Throws Error without one.
    std::string scene_linear() const;

    // Names as the functions above return them. Throws Error where there is no way.
    ColourConversion between(const std::string& from, const std::string& to) const;
    // To what a display shows, for viewers: values of 0 to 1 to be written to the screen as they are.
    ColourConversion for_display(const std::string& from, const std::string& display,
                                 const std::string& view) const;

  private:
    ColourConfig(OCIO_NAMESPACE::ConstConfigRcPtr config, std::string file)
        : config_(std::move(config)), file_(std::move(file)) {}

    OCIO_NAMESPACE::ConstConfigRcPtr config_;
    std::string file_;
};

}  // namespace veloxa
