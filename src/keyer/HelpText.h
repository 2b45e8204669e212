// The text that the node shows under its help button, as HTML paragraphs. Hosts reserve its exact length.
#pragma once

#include <string_view>

inline constexpr char kHelpText[] =
    "<p>Veloxa pulls a matte from a foreground shot against a blue, green or red backing, takes "
    "the backing and its spill out of the foreground, and can put the result over a new "
    "background. It is a colour-difference keyer: for every pixel it compares the backing's own "
    "channel with the two others, so hair, smoke, glass and motion blur keep their "
    "transparency.</p>"
    "<p><b>Start</b> by picking the colour of the backing into <i>screen color</i>. Until then "
    "the foreground passes through unchanged. The clean plate (cp), the background (bg), the "
    "garbage matte (gm) and the holdout matte (hm) are optional.</p>"
    "<p><b>Density</b> sets how solid the matte is in bright, dark, warm and cool parts of the "
    "subject; the edge kernel softens edges that came out too dense.</p>"
    "<p><b>Screen Correct</b> finds the area that shows nothing but backing. Show it with the "
    "overlay, then widen or narrow it with the tolerance, the brights and the darks. A clean "
    "plate evens out a badly lit backing.</p>"
    "<p><b>Shadows</b> keeps the shadows that the subject casts on the backing and lays them over"
    " the background, with a density, a range, a blur and a tint of their own.</p>"
    "<p><b>Spill</b> removes backing light from the subject and puts the ambience in its place. "
    "Use cool and warm to balance what it does to skin and to blue or grey objects.</p>"
    "<p><b>Cleanup</b> clears the noise that is left in the backing and can choke and soften the "
    "matte. Recover protects fine detail below a threshold.</p>"
    "<p><b>Color</b> conforms the subject to the background by tone and by hue, saturation and "
    "brightness. <b>Film</b> reduces the red fringes that film leaves at sharp edges.</p>"
    "<p>The output is the composite, or the foreground premultiplied or unpremultiplied; alpha "
    "always holds the opacity of the subject. A holdout matte brings back the foreground where "
    "the key must not touch it, and a garbage matte marks what is backing without question.</p>"
    "<p>The sampling tools in the viewer's toolbar set these controls for you: scrub what should "
    "be screen, subject, clean or free of spill. All of this is saved with the script, and the "
    "tools' samples are stored along with it.</p>";

static_assert(std::string_view(kHelpText).size() == 2137);
