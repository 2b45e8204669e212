#include "PlainText.h"

#include <gtest/gtest.h>

namespace veloxa {
namespace {

TEST(PlainText, LeavesOutMarkupAndNothingElse) {
    struct Case {
        const char* markup;
        const char* text;
    };
    for (const Case& c :
         {Case{"Mode:<ul><li><b>off</b>: none.</li><li>on</li></ul>After.",
               "Mode:\n- off: none.\n- on\nAfter."},
          Case{"one<br/>two<p class=\"x\">three</p>", "one\ntwo\nthree"},
          Case{"a &lt;b&gt; &amp;amp; &quot;c&quot;&nbsp;&#39;&#x20AC;&#128512;", "a <b> &amp; \"c\" '€😀"},
          Case{"1 < 2 & 3 > 2; a<-b; R&D; &nope; &#xZZ; &#0; &#1114112; <",
               "1 < 2 & 3 > 2; a<-b; R&D; &nope; &#xZZ; &#0; &#1114112; <"},
          Case{"", ""}}) {
        EXPECT_EQ(plain_text(c.markup), c.text);
    }
}

}  // namespace
}  // namespace veloxa
