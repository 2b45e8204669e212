#include "shot/files/PictureParts.h"

#include <OpenImageIO/strutil.h>

#include <algorithm>
#include <optional>
#include <string_view>
#include <utility>

#include "ZoImage/NearestName.h"
#include "shot/Errors.h"
#include "shot/files/ImageLibrary.h"
#include "shot/files/PictureFile.h"

namespace veloxa {

using Zo::Image::nearest_name;

namespace {

constexpr std::size_t kMostParts = 1000;  // a film has many frames
constexpr std::size_t kNamed = 12;        // in a list for people

// The channels of one layer and view in a part.
struct Group {
    int part = 0;
    const Header* header = nullptr;
    std::string prefix;  // layer and view as the channels' names have them
    std::string layer, view;
    std::vector<std::pair<int, std::string>> channels{};  // by number; the name without the prefix

    bool has(std::string_view letter, std::string_view word) const {
        return std::ranges::any_of(channels, [&](const auto& c) {
            return OIIO::Strutil::iequals(c.second, letter) || OIIO::Strutil::iequals(c.second, word);
        });
    }
    bool has_alpha() const { return has("A", "alpha"); }
    bool has_colour() const {
        if (has("R", "red") || has("G", "green") || has("B", "blue")) return true;
        return layer.empty() && std::ranges::any_of(channels, [](const auto& c) {
                   return c.second != "A" && c.second != "Z" && c.second != "ZBack";
               });
    }
};

using Groups = std::vector<Group>;

std::vector<std::string> views_of(const Header& part) {
    std::vector<std::string> views;
    const OIIO::ParamValue* const all = part.find_attribute("multiView");
    if (all && all->type().basetype == OIIO::TypeDesc::STRING) {
        for (int n = 0; n < static_cast<int>(all->type().numelements()); ++n) {
            views.push_back(all->get_ustring_indexed(n).string());
        }
    }
    return views;
}

void add_groups(const Header& part, int number, Groups& groups) {
    const std::vector<std::string> views = views_of(part);
    const std::string own_view = part.get_string_attribute("view");
    const std::size_t before = groups.size();
    for (int n = 0; n < part.nchannels; ++n) {
        const std::string name(part.channel_name(n));
        const std::size_t dot = name.rfind('.');
        const std::string prefix = name.substr(0, dot == name.npos ? 0 : dot);
        const auto same = std::find_if(groups.begin() + static_cast<std::ptrdiff_t>(before), groups.end(),
                                       [&](const Group& g) { return g.prefix == prefix; });
        if (same != groups.end()) {
            same->channels.emplace_back(n, name.substr(dot == name.npos ? 0 : dot + 1));
            continue;
        }
        Group group{number, &part, prefix, prefix, own_view};
        const std::size_t last = prefix.rfind('.');
        const std::string end = prefix.substr(last == prefix.npos ? 0 : last + 1);
        if (!views.empty() && prefix.empty()) {
            group.view = views.front();
        } else if (std::ranges::find(views, end) != views.end()) {
            group.view = end;
            group.layer = prefix.substr(0, last == prefix.npos ? 0 : last);
        }
        group.channels.emplace_back(n, name.substr(dot == name.npos ? 0 : dot + 1));
        groups.push_back(std::move(group));
    }
}

template <class Value>
std::vector<std::string> values_of(const Groups& groups, const Value& value) {
    std::vector<std::string> values;
    for (const Group& group : groups) {
        const std::string one = value(group);
        if (!one.empty() && std::ranges::find(values, one) == values.end()) values.push_back(one);
    }
    return values;
}

std::string part_of(const Group& group) {
    return part_name(*group.header, group.part);
}

std::vector<std::string> layers_of(const Groups& groups) {
    return values_of(groups, [](const Group& g) { return g.layer; });
}

std::vector<std::string> views_of(const Groups& groups) {
    return values_of(groups, [](const Group& g) { return g.view; });
}

std::string listed(const std::vector<std::string>& names) {
    std::string list;
    for (std::size_t n = 0; n < std::min(names.size(), kNamed); ++n) list += (n > 0 ? ", " : "") + names[n];
    return names.size() > kNamed ? list + ", ..." : list;
}

std::string way_to(const std::string& path, const std::string& key, const std::string& value) {
    return path + '#' + key + '=' + value;
}

// The nearest of the names, else the first.
std::string meant(const std::string& name, const std::vector<std::string>& names) {
    const std::string_view nearest = nearest_name(name, names);
    return nearest.empty() ? names.front() : std::string(nearest);
}

template <class Fits>
void keep_those(Groups& groups, const Fits& fits) {
    std::erase_if(groups, [&](const Group& group) { return !fits(group); });
}

// Keeps the groups that have what was chosen.
template <class Fits>
void narrow(const std::string& path, Groups& groups, const char* key, const std::string& value,
            const std::vector<std::string>& all, const Fits& fits) {
    if (value.empty()) return;
    keep_those(groups, fits);
    if (!groups.empty()) return;
    const std::string none = std::string("has no ") + key + " " + value;
    if (all.empty()) throw Error(path, none + ", nor a name of any " + key);
    if (std::ranges::find(all, value) != all.end()) throw Error(path, none + " where the other choices are");
    throw Error(path, none + "; there are " + listed(all) + ": " + way_to(path, key, meant(value, all)));
}

bool has_layer(const Group& group, const std::string& layer) {
    return group.layer == layer || group.prefix == layer ||
           (!group.view.empty() && group.layer + '.' + group.view == layer) ||
           (group.layer.empty() && group.header->get_string_attribute("oiio:subimagename") == layer);
}

void narrow_all(const std::string& path, const PictureChoice& choice, Groups& groups) {
    const Groups all = groups;
    // A name goes before a number.
    const auto number = [](const Group& g) { return std::to_string(g.part); };
    const bool named =
        std::ranges::any_of(all, [&](const Group& group) { return part_of(group) == choice.part; });
    narrow(path, groups, "part", choice.part, values_of(all, part_of),
           [&](const Group& group) { return (named ? part_of(group) : number(group)) == choice.part; });
    narrow(path, groups, "layer", choice.layer, layers_of(all),
           [&](const Group& group) { return has_layer(group, choice.layer); });
    narrow(path, groups, "view", choice.view, views_of(all),
           [&](const Group& group) { return group.view == choice.view; });
}

// Keeps the channel of the name alone.
void narrow_to_channel(const std::string& path, const std::string& channel, Groups& groups) {
    std::vector<std::string> names;
    Groups whole;  // fit by the name that the file has
    Groups ends;
    for (const Group& group : groups) {
        for (const auto& [n, letter] : group.channels) {
            const std::string name(group.header->channel_name(n));
            if (std::ranges::find(names, name) == names.end()) names.push_back(name);
            Group one = group;
            one.channels = {{n, letter}};
            if (name == channel || group.layer + '.' + letter == channel) {
                whole.push_back(std::move(one));
            } else if (letter == channel) {
                ends.push_back(std::move(one));
            }
        }
    }
    groups = whole.empty() ? std::move(ends) : std::move(whole);
    if (!groups.empty()) return;
    throw Error(path, "has no channel " + channel + "; there are " + listed(names) + ": " +
                          way_to(path, "channel", meant(channel, names)));
}

// What comes first by itself.
const Group& natural(const std::string& path, Groups& groups, const std::string& first_view,
                     const PictureChoice& choice, bool matte) {
    if (choice.view.empty() &&
        std::ranges::any_of(groups, [&](const Group& g) { return g.view == first_view; })) {
        keep_those(groups, [&](const Group& g) { return g.view == first_view; });
    }
    const bool chosen = !choice.layer.empty();
    const bool any = !choice.channel.empty();
    const auto fits = [&](const Group& g) {
        return (chosen || g.layer.empty()) && (chosen || any || g.has_colour() || (matte && g.has_alpha()));
    };
    if (groups.size() == 1) return groups.front();
    for (const Group& group : groups) {
        if (group.part == groups.front().part && fits(group)) return group;
    }
    if (any) {
        const auto names = values_of(groups, [](const Group& g) {
            return std::string(g.header->channel_name(g.channels.front().first));
        });
        if (names.size() == 1) return groups.front();
        throw Error(path, "has several channels " + choice.channel + ": " + listed(names) + "; choose with " +
                              way_to(path, "channel", names.front()));
    }
    const auto colour = [](const Group& g) { return g.has_colour(); };
    if (std::ranges::count_if(groups, colour) == 1) return *std::ranges::find_if(groups, colour);
    const std::vector<std::string> layers = layers_of(groups);
    const std::vector<std::string> parts = values_of(groups, part_of);
    if (!layers.empty() && (layers.size() > 1 || parts.size() == 1)) {
        throw Error(path, "has no plain R, G and B, but layers " + listed(layers) + "; choose with " +
                              way_to(path, "layer", layers.front()));
    }
    throw Error(path, "has several parts and no plain R, G and B in the first: " + listed(parts) +
                          "; choose with " + way_to(path, "part", parts.front()));
}

Sources sources_in(const Group& group) {
    constexpr std::array kWords{"red", "green", "blue", "alpha"};
    Sources from{-1, -1, -1, -1};
    for (const auto& [n, name] : group.channels) {
        for (std::size_t c = 0; c < from.size(); ++c) {
            const bool same = OIIO::Strutil::iequals(name, std::string_view(&"RGBA"[c], 1)) ||
                              OIIO::Strutil::iequals(name, kWords[c]);
            if (same && from[c] < 0) from[c] = n;
        }
    }
    const bool named = from[0] >= 0 || from[1] >= 0 || from[2] >= 0;
    std::vector<int> others;
    for (const auto& [n, name] : group.channels) {
        if (from[3] < 0 && n == group.header->alpha_channel) from[3] = n;
        if (n != from[3]) others.push_back(n);
    }
    if (others.size() == 1) {
        from[0] = from[1] = from[2] = others[0];
    } else if (!named) {
        for (std::size_t c = 0; c < from.size() && c < others.size(); ++c) {
            if (from[c] < 0) from[c] = others[c];
        }
    }
    return from;
}

// What a choice left open.
std::string besides(const std::string& path, const Groups& all, const Groups& fitting, const Group& chosen,
                    const PictureChoice& choice) {
    std::vector<std::string> lists, ways;
    const auto add = [&](const char* key, const char* several, const std::vector<std::string>& names,
                         const std::string& own, std::size_t fewest) {
        std::vector<std::string> others = names;
        std::erase(others, own);
        if (names.size() < fewest || others.empty()) return;
        lists.push_back(several + listed(names));
        ways.push_back(way_to(path, key, others.front()));
    };
    const bool open = !choice.names_channels();
    if (open) {
        add("part", "parts ", values_of(all, part_of), part_of(chosen), 2);
        add("layer", "layers ", layers_of(all), chosen.layer, 1);
    }
    if (choice.view.empty() && choice.channel.empty())
        add("view", "views ", views_of(open ? all : fitting), chosen.view, 2);
    if (lists.empty()) return {};
    std::vector<std::string> read;
    for (const auto& [n, name] : chosen.channels) read.emplace_back(chosen.header->channel_name(n));
    return listed(read) + (values_of(all, part_of).size() > 1 ? " of part " + part_of(chosen) : "") +
           (chosen.view.empty() ? "" : ", view " + chosen.view) + " alone is read; it has " +
           OIIO::Strutil::join(lists, "; ") + ": choose with " + OIIO::Strutil::join(ways, " or ");
}

}  // namespace

std::vector<Header> parts_of(const std::string& path) {
    const Hush hush(path);
    std::vector<Header> parts;
    std::string error;
    const auto input = open_picture(path, error);
    while (input && parts.size() < kMostParts && input->go_to(static_cast<int>(parts.size()))) {
        parts.push_back(input->header());
    }
    return parts;
}

std::string part_name(const Header& part, int number) {
    const std::string name = part.get_string_attribute("oiio:subimagename");
    return name.empty() ? std::to_string(number) : name;
}

Selection select_picture(const std::string& path, const std::vector<Header>& parts,
                         const PictureChoice& choice, bool matte) {
    Groups all;
    for (std::size_t n = 0; n < parts.size(); ++n) add_groups(parts[n], static_cast<int>(n), all);
    if (all.empty()) throw Error(path, "has no channels");
    const std::string first_view = all.front().view;
    Groups groups = all;
    narrow_all(path, choice, groups);
    if (!choice.channel.empty()) narrow_to_channel(path, choice.channel, groups);
    const Groups fitting = groups;
    const Group& group = natural(path, groups, first_view, choice, matte);

    Selection selection{group.part, sources_in(group), besides(path, all, fitting, group, choice)};
    Sources& from = selection.sources;
    const int first = group.channels.front().first;
    if (!choice.channel.empty()) from = {first, first, first, -1};
    if (matte) from = {-1, -1, -1, from[3] >= 0 && choice.channel.empty() ? from[3] : first};
    return selection;
}

Selection select_picture(const std::string& path, const Header& first, const PictureChoice& choice,
                         bool matte) {
    Groups groups;
    add_groups(first, 0, groups);
    const bool plain = !groups.empty() && std::ranges::any_of(groups, [&](const Group& g) {
        return g.layer.empty() && g.view == groups.front().view &&
               (g.has_colour() || (matte && g.has_alpha()));
    });
    Selection selection = plain && !choice.names_channels()
                              ? select_picture(path, std::vector{first}, choice, matte)
                              : select_picture(path, parts_of(path), choice, matte);
    selection.besides.clear();
    return selection;
}

}  // namespace veloxa
