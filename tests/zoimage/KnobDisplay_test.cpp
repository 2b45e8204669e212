#include "ZoImage/KnobDisplay.h"

#include <gtest/gtest.h>

TEST(KnobDisplay, PlainTextLeavesOutMarkupAndNothingElse) {
    const std::pair<const char*, const char*> cases[] = {
        {"Mode:<ul><li><b>off</b>: none.</li><li>on</li></ul>After.", "Mode:\n- off: none.\n- on\nAfter."},
        {"one<br/>two<p class=\"x\">three</p>", "one\ntwo\nthree"},
        {"a &lt;b&gt; &amp;amp; &quot;c&quot;&nbsp;&#39;&#x20AC;&#128512;", "a <b> &amp; \"c\" '€😀"},
        {"1 < 2 & 3 > 2; a<-b; R&D; &nope; &#xZZ; &#0; &#1114112; <",
         "1 < 2 & 3 > 2; a<-b; R&D; &nope; &#xZZ; &#0; &#1114112; <"},
        {"", ""}};
    for (const auto& [markup, text] : cases) EXPECT_EQ(Zo::Image::plain_text(markup), text);
}

TEST(KnobDisplay, ToolsNameAnIconBeforeTheirWord) {
    const std::array<const char*, 3> cases[] = {
        {"@VlxBrush; add ", "VlxBrush", "add"}, {"plain ", "", "plain"}, {";", "", ""}};
    for (const auto& [label, icon, word] : cases) {
        EXPECT_EQ(Zo::Image::tool_label(label).icon, icon) << label;
        EXPECT_EQ(Zo::Image::tool_label(label).word, word) << label;
    }
}
