// What the screen shows of a shot's colours: which display, and what the shot's values are taken for. Nothing
// of it changes what is keyed. Window thread; transforms are made beside it and come by `ready`.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "picture/DisplayTransform.h"
#include "render/Errands.h"

namespace veloxa::viewer {

class ViewColour {
  public:
    using Post = std::function<void(std::function<void()>)>;
    struct Calls {
        std::function<void(DisplayTransform)> ready;
        std::function<void(const std::string&)> told;  // what is wrong with the configuration or a space
    };

    ViewColour(Post post, Calls calls);
    ~ViewColour();

    const std::vector<DisplayChoice>& choices() const { return choices_; }
    std::size_t choice() const { return choice_; }
    void choose(std::size_t choice);
    // The choice of that label, if there is one.
    void choose(const std::string& label);
    // Takes the values of pictures for what this file's header says, again only where that is something else.
    void take(const Header& header, const std::string& file);
    // "sRGB, as uint8 without a linear tag; shown on sRGB"
    std::string account() const;

  private:
    void make();

    Post post_;
    Calls calls_;
    std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
    std::shared_ptr<const ColourConfig> config_;
    std::vector<DisplayChoice> choices_;
    std::size_t choice_ = 0;
    InputSpace space_;
    Errands errands_;
};

}  // namespace veloxa::viewer
