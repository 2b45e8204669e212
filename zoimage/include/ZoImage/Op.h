// The root of every operator: inputs, life cycle, identity of results, knobs.
//
// Who calls what, and on which thread:
//
//   validation thread   constructor, set_input, knobs, knob_changed, validate, request, invalidate, open,
//                       close, destructor. One thread at a time for a graph, never while it renders.
//   render threads      engine (of Iop), many at once, for different rows. It may read the operator and
//                       its inputs' info, and write only the row it was given and what a Lock guards.
//
// validate brings an operator up to date once; it does nothing until something invalidates the operator.
// An operator's hash names the state that its results depend on; equal hash, equal pixels.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "ZoImage/Hash.h"
#include "ZoImage/ToolReport.h"

namespace Zo::Image {

class AbortFlag;
class Iop;
class Knob;
class Knob_Closure;
class Op;
class ThreadSource;
class ToolMemory;

// What a host hands to the constructor of the operators that it creates. Internal operators get the one
// of the node that owns them.
struct NodeContext {
    std::string node_name;  // the node's name in messages; may be empty
    // For the renders that a node's tools make; both outlive the node.
    ThreadSource* threads = nullptr;   // null for threads of their own
    const AbortFlag* abort = nullptr;  // a tool that is given up leaves the node as it was
};

class Op {
  public:
    // Registers a kind of operator under its class name. Plug-in modules hold one as a static object, so
    // loading a module registers its operators and unloading it takes them back.
    class Description {
      public:
        using Constructor = Op* (*)(const NodeContext&);  // returns null when it cannot allocate

        Description(const char* class_name, const char* menu_path, Constructor constructor);
        ~Description();
        Description(const Description&) = delete;
        Description& operator=(const Description&) = delete;

        const char* class_name() const { return class_name_; }
        const char* menu_path() const { return menu_path_; }
        Op* construct(const NodeContext& context) const { return constructor_(context); }

        // The registered operator of this class name; null when there is none. Any thread.
        static const Description* find(std::string_view class_name);

      private:
        const char* class_name_;
        const char* menu_path_;
        Constructor constructor_;
        mutable const Description* before_;  // registered before this one
    };

    explicit Op(const NodeContext& context);
    virtual ~Op();
    Op(const Op&) = delete;
    Op& operator=(const Op&) = delete;

    const NodeContext& context() const { return context_; }
    // Tells operators of this process apart, past ones too, where an address may come again.
    std::uint64_t serial() const { return serial_; }

    // This operator as an image; null when it makes none.
    virtual Iop* as_iop() { return nullptr; }

    virtual const char* class_name() const = 0;
    virtual const char* help_text() const { return ""; }

    // Inputs. An input that is not connected is null here; Iop::input gives black in its place.
    int inputs() const { return static_cast<int>(inputs_.size()); }
    void inputs(int count);
    Op* input_op(int n) const {
        return n >= 0 && n < inputs() ? inputs_[static_cast<std::size_t>(n)] : nullptr;
    }
    bool connected(int n) const { return input_op(n) != nullptr; }
    // Connects an input (null disconnects). Connecting another operator than before invalidates this one.
    // The operator does not own its inputs; they must outlive its last use.
    void set_input(int n, Op* op);
    // What a host connects to an input that the user left open; null for nothing.
    virtual Op* default_input(int n);
    // A short name for an input; `buffer` has room for 64 characters and may be filled and returned.
    virtual const char* input_label(int n, char* buffer) const;

    // Internal operators: makes `owner` the parent of this one, under the name of its member.
    void parent(Op* owner, std::string_view member_name);
    Op* parent() const { return parent_; }
    const std::string& member_name() const { return member_name_; }
    const std::vector<Op*>& children() const { return children_; }
    // The internal operator of this name, null when there is none.
    Op* child(std::string_view member_name) const;

    // Brings the operator up to date: calls _validate unless it is already valid (a validation that was
    // not for real does not count for one that is).
    void validate(bool for_real);
    // Drops what was computed; the next validate calls _validate, here and in everything downstream. The
    // hash changes too.
    void invalidate();
    // As above, but only when `hash` differs from the one given last.
    void invalidate(const Hash& hash);
    // Names the state that the results depend on: the hash given last and the invalidations since. An
    // operator that was never given one takes its inputs' hashes in.
    Hash hash() const;
    bool valid() const { return state_ == State::kReal; }

    // Users of the operator's output: open counts one more, close one less, after _close.
    void open();
    void close();
    int users() const { return users_; }

    // Errors found while validating, for the host to show; cleared by the next validation.
    void error(std::string message) { error_ = std::move(message); }
    const std::string& error() const { return error_; }

    // True when the render that the calling thread works for was aborted.
    bool aborted() const;

    // Describes the panel to a visitor; see Knob.h. The order of calls is the order in the panel.
    virtual void knobs(Knob_Closure&) {}
    // Called after the user changed a knob. Returns non-zero when the change was handled.
    virtual int knob_changed(Knob*) { return 0; }

    // What the latest tool that a button of the panel started did, step by step.
    virtual std::vector<ToolReport> tool_reports() const { return {}; }

    // What the tools remember of their strokes, to be put back later, into this or another operator of the
    // class: with the same knob values and inputs the next stroke then gives what it would have given here.
    // Null, where nothing is remembered and for other operators' memory, forgets every stroke.
    virtual std::shared_ptr<const ToolMemory> tool_memory() const { return nullptr; }
    virtual void recall(const std::shared_ptr<const ToolMemory>& /*memory*/) {}

    // A report in plain text about the operator as it stands, for people and front ends; which there are is
    // up to the operator. Empty for one that it does not know.
    virtual std::string diagnostic(std::string_view /*what*/) const { return {}; }

  protected:
    // Makes this an operator that graphs on several threads may have as an input at once: it is valid from
    // now on and stays as it is, so it need not know its readers.
    void serve_all_graphs();

    virtual void _invalidate() {}
    virtual void _validate(bool for_real) = 0;
    virtual void _open() {}
    virtual void _close() {}

  private:
    enum class State { kInvalid, kNotForReal, kReal };

    void unlink_input(std::size_t n);
    void mark_invalid();
    void drop();

    NodeContext context_;
    std::uint64_t serial_;
    std::vector<Op*> inputs_;
    std::vector<Op*> outputs_;  // operators that have this one as an input, once per input
    Op* parent_ = nullptr;
    std::vector<Op*> children_;
    std::string member_name_;
    State state_ = State::kInvalid;
    std::optional<Hash> setup_hash_;
    std::uint64_t changes_ = 0;  // plain invalidations so far
    bool serves_all_graphs_ = false;
    int users_ = 0;
    std::string error_;
};

}  // namespace Zo::Image
