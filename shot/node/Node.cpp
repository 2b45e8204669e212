#include "shot/node/Node.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <iterator>
#include <locale>
#include <sstream>
#include <utility>

#include "ZoImage/NearestName.h"
#include "ZoImage/PluginLoader.h"
#include "ZoImage/Script.h"
#include "shot/Errors.h"

namespace veloxa {

using namespace Zo::Image;

namespace {

constexpr const char* kClassName = "Veloxa";

// Where each knob got its value, as messages say it: all but the value.
using Origins = std::vector<std::pair<Knob*, std::string>>;

Origins apply_script_text(KnobPanel& panel, const std::string& text, const std::string& path) {
    Origins origins;
    try {
        const std::vector<ScriptGroup> groups = read_script(text, path);
        const ScriptGroup* const ours = find_group(groups, kClassName, path);
        if (ours == nullptr) throw Error(path, "has no Veloxa { ... } group");
        apply_script(panel, *ours, path);
        for (const ScriptEntry& entry : ours->entries) {
            Knob& knob = panel.get(entry.name).target();
            knob.set_flag(kKnobScripted, true);
            origins.emplace_back(&knob, path + ":" + std::to_string(entry.line) + ": " + entry.name + " ");
        }
    } catch (const ScriptError& error) {
        throw Error(error.what());
    }
    return origins;
}

// The knob that it names, and where.
Origins::value_type apply_set(KnobPanel& panel, const std::string& setting) {
    const std::size_t equals = setting.find('=');
    if (equals == std::string::npos || equals == 0) {
        throw UsageError("--set " + setting + ": expected KNOB=VALUE");
    }
    try {
        const std::string name = setting.substr(0, equals);
        panel.set_from_text(name, setting.substr(equals + 1));
        return {&panel.get(name).target(), "--set " + name + "="};
    } catch (const KnobError& error) {
        throw UsageError("--set " + setting + ": " + error.what());
    }
}

bool beyond_range(const Knob& knob) {
    if (!knob.range()) return false;
    for (int i = 0; i < knob.value_count(); ++i) {
        // The range is of doubles, the value may be a float's.
        const auto narrow = [](double v) { return static_cast<float>(v); };
        const float value = narrow(knob.get_value(i));
        if (value < narrow(knob.range()->low) || value > narrow(knob.range()->high)) return true;
    }
    return false;
}

std::string plain(double number) {
    std::ostringstream text;
    text.imbue(std::locale::classic());
    text << number;
    return text.str();
}

}  // namespace

std::string read_text(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) throw Error(path, std::strerror(errno));
    std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    if (file.bad()) throw Error(path, "cannot be read");
    return text;
}

Node::Node(const AbortFlag* abort)
    : op_(load_plugin(kClassName).construct({kClassName, nullptr, abort})),
      image_(op_ ? op_->as_iop() : nullptr) {
    if (!image_) throw Error("the keyer could not be made");
    panel_ = std::make_unique<KnobPanel>(*op_);
}

void Node::apply(const KnobSettings& settings, const Caller& caller) {
    Origins origins;
    if (!settings.script.empty()) {
        applied_text_ = read_text(settings.script);
        origins = apply_script_text(*panel_, applied_text_, settings.script);
    }
    for (const std::string& setting : settings.sets) origins.push_back(apply_set(*panel_, setting));
    for (auto origin = origins.begin(); origin != origins.end(); ++origin) {
        Knob& knob = *origin->first;
        named_.insert(&knob);
        const bool last = std::none_of(origin + 1, origins.end(), [&](auto& o) { return o.first == &knob; });
        if (!last || !beyond_range(knob)) continue;
        caller.warn("warning: " + origin->second + knob.text() + ": beyond the panel's range " +
                    plain(knob.range()->low) + " to " + plain(knob.range()->high) + "; taken as it is");
    }
}

std::vector<ToolReport> Node::use_tool(Knob& button) const {
    button.changed();
    const AbortFlag* const abort = op_->context().abort;
    if (abort != nullptr && abort->raised()) throw Interrupted();
    return op_->tool_reports();
}

std::string Node::script() const {
    return write_script(*panel_);
}

Iop& Node::member(const std::string& name) const {
    Op* op = op_->child(name);
    if (op && op->as_iop()) return *op->as_iop();
    throw UsageError("--stage " + name + ": there is no such operator" + choices(name, members()));
}

std::vector<std::string> Node::members() const {
    std::vector<std::string> names;
    for (Op* child : op_->children()) {
        if (child->as_iop()) names.push_back(child->member_name());
    }
    return names;
}

}  // namespace veloxa
