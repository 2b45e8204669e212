#include "shot/colour/ShotColour.h"

#include <algorithm>

#include "shot/Errors.h"

namespace veloxa {

namespace {

constexpr std::size_t kPlate = 0;

}  // namespace

ShotColour::ShotColour(const ColourOptions& options, std::span<const std::string> own, const Caller& caller)
    : own_(own.begin(), own.end()), taken_(own.size()), caller_(caller) {
    const auto chosen = [](const std::string& space) { return !space.empty(); };
    if (!chosen(options.in_space) && !chosen(options.out_space) && std::ranges::none_of(own, chosen)) return;
    const ColourConfig config = ColourConfig::load();
    working_ = config.scene_linear();
    if (chosen(options.in_space)) in_ = config.space_named("--in-space ", options.in_space);
    if (chosen(options.out_space)) {
        out_ = config.space_named("--out-space ", options.out_space);
        to_output_ = config.between(working_, out_);
    }
    for (std::string& space : own_) {
        if (chosen(space)) space = config.space_named("#space=", space);
    }
    config_ = config;
}

FileSpace ShotColour::space_for(const FileSpace& found, std::size_t input, const std::string& file) const {
    for (const std::string& asked : {own_[input], in_}) {
        if (!asked.empty()) return {asked, "asked"};
    }
    if (std::string ruled = config_->space_by_rule(file); !ruled.empty()) return {ruled, found.why};
    if (!found.sure) {
        throw UsageError(file + ": what space its values are in is not sure, perhaps " + found.name + " (" +
                         found.why + "); say it with --in-space S");
    }
    const KnownSpace* const known = known_space(found.name);
    std::string name = known ? config_->name_of(*known) : "";
    if (!name.empty()) return {name, found.why};
    throw UsageError(
        file + ": its values are " + found.name + " (" + found.why +
        "), which the colour configuration does not have; say with --in-space S what they are there");
}

std::string ShotColour::text(const FileSpace& space) const {
    return space.name + ", as " + space.why + (converts() ? "; converted to " + working_ : "");
}

std::string ShotColour::account(const Header& header, std::size_t input, const std::string& file) const {
    const FileSpace found = space_of(header, file);
    return text(converts() ? space_for(found, input, file) : found);
}

void ShotColour::tell_once(std::size_t input, const std::string& file, const FileSpace& space) {
    if (!taken_[input].file.empty()) return;
    taken_[input] = {file, space};
    const Taken& plate = taken_[kPlate];
    if (converts() || input == kPlate) caller_.tell(file + ": " + text(space));
    if (converts()) return;
    for (std::size_t n = kPlate + 1; n < taken_.size() && !plate.file.empty(); ++n) {
        const Taken& other = taken_[n];
        if ((input != kPlate && input != n) || other.file.empty() || other.space.name == plate.space.name)
            continue;
        const std::string text = "is " + other.space.name + ", but " + plate.file + " is " +
                                 plate.space.name +
                                 ", and both are keyed as they are stored; --out-space S converts them";
        if (other.space.sure && plate.space.sure) {
            caller_.warn(other.file + ": warning: " + text);
        } else {
            caller_.tell(other.file + ": " + text);
        }
    }
}

void ShotColour::take(Image& image, std::size_t input, const std::string& file, Zo::Image::Hash& identity) {
    const FileSpace found = space_of(image.header, file);
    if (!converts()) {
        tell_once(input, file, found);
        tag_space(image.header, found, known_space(found.name));
        return;
    }
    const FileSpace from = space_for(found, input, file);
    tell_once(input, file, from);
    const std::string& space = from.name;
    auto way = to_working_.find(space);
    if (way == to_working_.end()) way = to_working_.emplace(space, config_->between(space, working_)).first;
    // Formats that hold an alpha beside the colour, rather than in it, are read as they are.
    const bool apart = image.header.get_int_attribute("oiio:UnassociatedAlpha") != 0;
    convert(image, way->second, apart ? AlphaIs::kApart : AlphaIs::kMultiplied);
    tag_converted(image.header, space, working_, config_->known(working_));
    identity.append(std::string_view(space));
}

void ShotColour::give(Image& image, AlphaIs alpha) const {
    if (out_.empty()) return;
    convert(image, to_output_, alpha);
    const std::string from = first_space(image.header);
    tag_converted(image.header, from.empty() ? working_ : from, out_, config_->known(out_));
}

}  // namespace veloxa
