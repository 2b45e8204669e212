#include "shot/files/EncodingGuess.h"

#include "shot/colour/FileSpace.h"

namespace veloxa {

EncodingGuess guess_encoding(const Header& header, const std::string& file) {
    const FileSpace space = space_of(header, file);
    const KnownSpace* const known = known_space(space.name);
    switch (known ? known->curve : KnownSpace::Curve::kStraight) {
        case KnownSpace::Curve::kDensity:
            return {"logarithmic", space.why};
        case KnownSpace::Curve::kWeb:
        case KnownSpace::Curve::kGamma24:
            return {"sRGB", space.why};
        case KnownSpace::Curve::kStraight:
            break;
    }
    return {"as stored", space.why};
}

}  // namespace veloxa
