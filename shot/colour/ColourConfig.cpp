#include "shot/colour/ColourConfig.h"

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <utility>

#include "ZoImage/NearestName.h"
#include "shot/Errors.h"

namespace veloxa {

namespace OCIO = OCIO_NAMESPACE;

namespace {

// The library's messages have several lines, and a full stop.
std::string first_line(const std::exception& error) {
    std::string line(error.what());
    line.resize(std::min(line.find_first_of("\r\n"), line.size()));
    while (!line.empty() && (line.back() == '.' || line.back() == ' ')) line.pop_back();
    return line;
}

OCIO::ConstConfigRcPtr built_in_config() {
    const auto config = OCIO::Config::CreateRaw()->createEditableCopy();
    config->setMajorVersion(2);
    config->removeColorSpace("raw");
    config->clearDisplays();
    for (const KnownSpace& known : known_spaces()) {
        const auto space = OCIO::ColorSpace::Create();
        space->setName(known.name);
        for (const std::string& alias : known.alias_list()) space->addAlias(alias.c_str());
        space->setDescription(known.description);
        space->setIsData(known.name == std::string_view(kRaw));
        if (const auto transform = to_linear(known)) {
            space->setTransform(transform, OCIO::COLORSPACE_DIR_TO_REFERENCE);
        }
        config->addColorSpace(space);
    }
    config->setRole(OCIO::ROLE_SCENE_LINEAR, kLinear);
    config->setRole(OCIO::ROLE_DEFAULT, kRaw);
    for (const char* display : {kSrgb, "Rec.709", "Display-P3", "Rec.2020"}) {
        config->addDisplayView(display, "plain", display, "");
    }
    return config;
}

template <class Work>
auto or_error(const std::string& file, const std::string& what, const Work& work) try {
    return work();
} catch (const OCIO::Exception& error) {
    throw Error(file.empty() ? what : file + ": " + what, first_line(error));
}

}  // namespace

ColourConfig ColourConfig::load() {
    const char* const named = std::getenv("OCIO");
    const std::string file = named ? named : "";
    if (file.empty()) return built_in();
    OCIO::SetLoggingLevel(OCIO::LOGGING_LEVEL_NONE);
    return or_error(file, "the colour configuration that $OCIO names cannot be loaded", [&] {
        const auto config = OCIO::Config::CreateFromFile(file.c_str());
        config->validate();
        return ColourConfig(config, file);
    });
}

ColourConfig ColourConfig::built_in() {
    OCIO::SetLoggingLevel(OCIO::LOGGING_LEVEL_NONE);
    static const OCIO::ConstConfigRcPtr kConfig = built_in_config();
    return {kConfig, ""};
}

std::vector<ColourSpace> ColourConfig::spaces() const {
    std::vector<ColourSpace> list;
    for (int n = 0; n < config_->getNumColorSpaces(); ++n) {
        const auto space = config_->getColorSpace(config_->getColorSpaceNameByIndex(n));
        ColourSpace entry{space->getName(), {}, space->getDescription(), space->isData()};
        for (std::size_t a = 0; a < space->getNumAliases(); ++a)
            entry.aliases.emplace_back(space->getAlias(a));
        const std::size_t start =
            std::min(entry.description.find_first_not_of(" \r\n"), entry.description.size());
        entry.description.erase(0, start);
        entry.description.resize(std::min(entry.description.find_first_of("\r\n"), entry.description.size()));
        list.push_back(std::move(entry));
    }
    return list;
}

std::vector<ColourDisplay> ColourConfig::displays() const {
    std::vector<ColourDisplay> list;
    const auto to_front = [](auto& all, const std::string& first, auto name) {
        const auto found = std::ranges::find(all, first, name);
        if (found != all.end()) std::rotate(all.begin(), found, found + 1);
    };
    for (int n = 0; n < config_->getNumDisplays(); ++n) {
        ColourDisplay display{config_->getDisplay(n), {}};
        const char* const name = display.name.c_str();
        for (int v = 0; v < config_->getNumViews(name); ++v)
            display.views.emplace_back(config_->getView(name, v));
        to_front(display.views, config_->getDefaultView(name), std::identity{});
        list.push_back(std::move(display));
    }
    to_front(list, config_->getDefaultDisplay(), &ColourDisplay::name);
    return list;
}

std::string ColourConfig::space_named(const std::string& asked, const std::string& name) const {
    if (const auto space = config_->getColorSpace(name.c_str())) return space->getName();
    std::vector<std::string> names;
    std::string list;
    for (const ColourSpace& space : spaces()) {
        names.push_back(space.name);
        names.insert(names.end(), space.aliases.begin(), space.aliases.end());
        list += (list.empty() ? "" : ", ") + space.name;
    }
    throw UsageError(asked + name + ": there is no such colour space; there are " + list +
                     (file_.empty() ? "" : " (" + file_ + ")") + Zo::Image::did_you_mean(name, names));
}

std::string ColourConfig::name_of(const KnownSpace& space) const {
    std::vector<std::string> names = space.alias_list();
    // Elsewhere "linear" may have any primaries.
    if (file_.empty() || space.name != std::string_view(kLinear)) names.insert(names.begin(), space.name);
    for (const std::string& name : names) {
        if (const auto found = config_->getColorSpace(name.c_str())) return found->getName();
    }
    return {};
}

const KnownSpace* ColourConfig::known(const std::string& space) const {
    const auto found =
        std::ranges::find_if(known_spaces(), [&](const KnownSpace& one) { return name_of(one) == space; });
    return found == known_spaces().end() ? nullptr : &*found;
}

std::string ColourConfig::space_by_rule(const std::string& path) const {
    if (file_.empty() || config_->filepathOnlyMatchesDefaultRule(path.c_str())) return {};
    const auto space = config_->getColorSpace(config_->getColorSpaceFromFilepath(path.c_str()));
    return space ? space->getName() : "";
}

std::string ColourConfig::scene_linear() const {
    const auto space = config_->getColorSpace(OCIO::ROLE_SCENE_LINEAR);
    if (!space) throw Error(file_, "the colour configuration has no role scene_linear");
    return space->getName();
}

ColourConversion ColourConfig::between(const std::string& from, const std::string& to) const {
    return or_error(file_, "from " + from + " to " + to,
                    [&] { return ColourConversion(config_->getProcessor(from.c_str(), to.c_str())); });
}

ColourConversion ColourConfig::for_display(const std::string& from, const std::string& display,
                                           const std::string& view) const {
    return or_error(file_, "from " + from + " to " + display + ", " + view, [&] {
        return ColourConversion(
            config_->getProcessor(from.c_str(), display.c_str(), view.c_str(), OCIO::TRANSFORM_DIR_FORWARD));
    });
}

}  // namespace veloxa
