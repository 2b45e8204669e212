#include "screen/VlxShrinkS.h"

using namespace Zo::Image;

void VlxShrinkS::setup() {
    Hash hash;
    append(hash, {controls::kShrinkSubjectOverlay});
    hash.append(controls().subjectShrinkV);
    append_input(hash, 0);
    invalidate(hash);
}

void VlxShrinkS::configure() {
    horizontal().set_radius(controls().get(controls::kShrinkSubjectOverlay));
    vertical().set_radius(controls().subjectShrinkV);
}
