#include "shot/node/Node.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <iterator>

#include "ZoImage/PluginLoader.h"
#include "ZoImage/Script.h"
#include "shot/Errors.h"
#include "shot/files/AtomicFile.h"

namespace veloxa {

using namespace Zo::Image;

namespace {

constexpr const char* kClassName = "Veloxa";

// The knobs that it names.
std::set<Knob*> apply_script_file(KnobPanel& panel, const std::string& path) {
    std::set<Knob*> named;
    const ScriptGroup* ours = nullptr;
    try {
        const std::vector<ScriptGroup> groups = read_script(read_text(path), path);
        for (const ScriptGroup& group : groups) {
            if (group.class_name != kClassName) continue;
            if (ours) throw ScriptError(path, group.line, "a second Veloxa group; one node is keyed");
            ours = &group;
        }
        if (!ours) throw Error(path, "has no Veloxa { ... } group");
        apply_script(panel, *ours, path);
        for (const ScriptEntry& entry : ours->entries) {
            Knob& knob = panel.get(entry.name).target();
            knob.set_flag(kKnobScripted, true);
            named.insert(&knob);
        }
    } catch (const ScriptError& error) {
        throw Error(error.what());
    }
    return named;
}

// The knob that it names.
Knob& apply_set(KnobPanel& panel, const std::string& setting) {
    const std::size_t equals = setting.find('=');
    if (equals == std::string::npos || equals == 0) {
        throw UsageError("--set " + setting + ": expected KNOB=VALUE");
    }
    try {
        const std::string name = setting.substr(0, equals);
        panel.set_from_text(name, setting.substr(equals + 1));
        return panel.get(name).target();
    } catch (const KnobError& error) {
        throw UsageError("--set " + setting + ": " + error.what());
    }
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

void Node::apply(const KnobSettings& settings) {
    if (!settings.script.empty()) named_.merge(apply_script_file(*panel_, settings.script));
    for (const std::string& setting : settings.sets) named_.insert(&apply_set(*panel_, setting));
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

void Node::save_script(const std::string& path, bool overwrite) const {
    write_text(path, script(), overwrite);
}

Iop& Node::member(const std::string& name) const {
    Op* op = op_->child(name);
    if (op && op->as_iop()) return *op->as_iop();
    std::string names;
    for (const Op* child : op_->children()) names += (names.empty() ? "" : ", ") + child->member_name();
    throw UsageError("--stage " + name + ": there is no such operator; there are " + names);
}

}  // namespace veloxa
