// What the panel tells, shows and exchanges.
#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>

#include "ZoImage/Script.h"
#include "ZoImage/StatusColour.h"
#include "ofx/Sampling.h"

namespace ofxtest {
namespace {

using Panel = OfxTest;
using testing::HasSubstr;

TEST_F(Panel, SaysWhatIsMissingAndWhatToolsDid) {
    const auto effect = instance(two_clips(), {});
    EXPECT_THAT(effect->text("report"), HasSubstr("No screen colour is chosen"));
    sample(*effect, "toolbar_addoverlay", kShade);
    EXPECT_THAT(effect->text("report"), HasSubstr("no screen colour is chosen, which the tool needs"));
    effect->set("screen_color", {0, 0.5, 0});
    effect->set("screen_color", {0, 0, 0});
    EXPECT_THAT(effect->text("report"), HasSubstr("No screen colour is chosen"));
    effect->set("screen_color", kScreen);
    EXPECT_EQ(effect->text("report"), "");
    services.time = 3.0;
    sample(*effect, "toolbar_addoverlay", kShade);
    EXPECT_THAT(effect->text("report"), HasSubstr("toolbar_addoverlay @3 12,6,24,16: "));
    EXPECT_THAT(effect->text("report"), HasSubstr("samples satisfied, 0 not"));
    EXPECT_THAT(effect->text("report"), HasSubstr("nothing had to be turned"));
    effect->set("screen_tolerance", {0.1, 0.1, 0.1});
    sample(*effect, "toolbar_addoverlay", kShade);
    EXPECT_THAT(effect->text("report"), HasSubstr("\n  screen_tolerance"));
    effect->connect("bg", nullptr);
    sample(*effect, "toolbar_matchshadow", kShade);
    EXPECT_THAT(effect->text("report"),
                HasSubstr("the background, whose colour the tool needs, is black there"));
    // One step to undo a tool: what is told is none.
    EXPECT_EQ(loaded(effect->saved())->params.undo.size(), 0U);
    shown.take();
}

// Every stage by its name, as the operator within makes it; tiles of some.
TEST_F(Panel, ViewsShowWhatStagesMake) {
    Settings all = look(
        "shadow 1, shadows_blur 2 2, cleanup 1, cleanup_shrink 2 1, cleanup_blur 1 1, film 1, edge_kernel 3, "
        "screen_shrink 1 1, color_conformance 1");
    for (const double method : {0.0, 1.0}) {
        all["unmix_method"] = {method};
        const auto effect = instance(all_clips(), all);
        const auto views = effect->params.get("view").props.strings(kOfxParamPropChoiceOption);
        EXPECT_GT(views.size(), 30U);
        for (std::size_t n = 0; n < views.size(); ++n) {
            SCOPED_TRACE(views[n]);
            effect->set("view", {static_cast<double>(n)});
            Reference reference(all_clips(), all);
            Frame expected = reference.render();
            if (n == 1 || n == 2) {
                for (std::size_t i = 0; i < expected.values.size(); i += 4) {
                    const float alpha = expected.values[i + 3];
                    const std::uint32_t colour = Zo::Image::status_colour(alpha);
                    for (std::size_t c = 0; c < 3; ++c) {
                        const auto level = static_cast<std::uint8_t>(colour >> (16 - 8 * c));
                        expected.values[i + c] = n == 1 ? alpha : Zo::Image::to_float(level);
                    }
                }
            } else if (n > 2) {
                expected = reference.rows_of(*reference.node.child(views[n])->as_iop());
            }
            Frame picture = effect->render();
            EXPECT_EQ(differences(picture, expected), 0);
            EXPECT_EQ(effect->render(picture, {10, 10, 30, 22}), kOfxStatOK);
            EXPECT_EQ(differences(picture, expected), 0) << "with a tile of its own";
        }
    }
}

class Exchange : public OfxTest {
  protected:
    Exchange() { std::filesystem::create_directories(folder_); }
    ~Exchange() override { std::filesystem::remove_all(folder_); }
    void choose(Instance& effect, const std::string& file) {
        effect.params.get("settings_file").assign({{}, file});
    }
    std::string path(const char* name) const { return folder_ / name; }
    static std::string content(const std::string& file) {
        std::ifstream in(file);
        return {std::istreambuf_iterator<char>(in), {}};
    }

    const std::filesystem::path folder_ =
        std::filesystem::path(testing::TempDir()) / ("veloxa-ofx-" + std::to_string(getpid()));
};

TEST_F(Exchange, SettingsGoOutAndComeIn) {
    const Settings settings = look("cleanup 1, cleanup_shrink 2 1, spill_strength 12, output_mode 2");
    const auto effect = instance(two_clips(), settings);
    sample(*effect, "toolbar_addoverlay", kShade);
    const std::string file = path("näme of.veloxa");
    choose(*effect, file);
    // What is animated, as it is in the frame that is shown; hosts need not tell which that is.
    services.time = 4.0;
    effect->params.get("cool").set_keys({{0.0, {0.0}}, {8.0, {50.0}}});
    effect->press("save_settings");
    EXPECT_THAT(content(file), HasSubstr("cool 25\n"));
    Reference node(two_clips(), settings);
    Zo::Image::apply_script(node.panel, Zo::Image::read_script(content(file), file).front(), file);
    EXPECT_EQ(content(file), Zo::Image::write_script(node.panel));
    EXPECT_THAT(effect->text("report"), HasSubstr("settings are saved to"));
    node.node.invalidate();

    // What the file does not name gets its default.
    const auto other = instance(two_clips(), {{"brights", {120}}, {"film", {1}}});
    other->params.get("warm").set_keys({{4.0, {0.0}}, {8.0, {50.0}}});
    choose(*other, file);
    other->params.undo.clear();
    const Instance::Values before = other->saved();
    other->press("load_settings");
    EXPECT_EQ(differences(other->render(), node.render()), 0);
    EXPECT_EQ(other->number("brights"), effect->number("brights"));
    EXPECT_TRUE(other->params.get("warm").content().keys.empty());
    undo_one_step(*other, before);

    // A file that is there is replaced if the user says so.
    other->press("save_settings");
    EXPECT_EQ(content(file), Zo::Image::write_script(node.panel));
    EXPECT_THAT(shown.take(), testing::Contains(HasSubstr("OfxMessageQuestion")));
    services.answer = kOfxStatReplyYes;
    other->press("save_settings");
    EXPECT_THAT(content(file), HasSubstr("brights 120"));
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder_), {}), 1) << "nothing beside it";
    shown.take();
}

TEST_F(Exchange, FilesThatDoNotFitChangeNothing) {
    const auto effect = instance(two_clips(), look("brights 120"));
    const Instance::Values before = effect->saved();
    const auto refuses = [&](const std::string& file, const char* message) {
        choose(*effect, file);
        effect->press("load_settings");
        EXPECT_THAT(shown.take(), testing::ElementsAre(HasSubstr(message)));
        Instance::Values after = effect->saved();
        after["settings_file"] = before.at("settings_file");
        EXPECT_EQ(after, before) << message;
    };
    refuses("", "choose a settings file first");
    const std::string file = path("bad.veloxa");
    refuses(file, "bad.veloxa: No such file");
    const std::pair<const char*, const char*> cases[] = {
        {"Veloxa {\n brights 130\n nonsense 3\n}\n", "bad.veloxa:3: "},
        {"Veloxa {\n brights many\n}\n", "bad.veloxa:2: "},
        {"Veloxa {\n}\nVeloxa {\n}\n", "bad.veloxa:3: a second Veloxa group"},
        {"Other {\n}\n", "bad.veloxa: has no Veloxa { ... } group"}};
    for (const auto& [text, message] : cases) {
        std::ofstream(file) << text;
        refuses(file, message);
    }
    choose(*effect, path("no/such/folder.veloxa"));
    effect->press("save_settings");
    EXPECT_THAT(shown.take(), testing::ElementsAre(HasSubstr("folder.veloxa: No such file")));
    faults.take();
}

}  // namespace
}  // namespace ofxtest
