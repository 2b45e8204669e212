// Parts, layers and views of image files, and the channels that are read of them.
//
// A part is an image of its own within the file: a part of OpenEXR, a page of TIFF, a layer of PSD. Channels
// are named LAYER.LETTER, and in a part with several views LAYER.VIEW.LETTER; those of the unnamed layer and
// the first view are plain letters. All views of a part are one where the part itself names it.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "shot/files/PictureChoice.h"
#include "shot/image/Header.h"

namespace veloxa {

// Which channel of a part feeds each of red, green, blue and alpha; -1 for none.
using Sources = std::array<int, 4>;

struct Selection {
    int part = 0;  // from 0
    Sources sources{-1, -1, -1, -1};
    // What the choice left open and the file holds besides, with the way to choose it; empty for nothing.
    std::string besides;
};

// The headers of a file's parts. Decodes none of them, if the format allows.
std::vector<Header> parts_of(const std::string& path);

// A part's name, or its number where it has none.
std::string part_name(const Header& part, int number);

// Chooses by parts' headers. Without a choice that is the unnamed layer of the first part and the first view,
// if it has colour (for a matte: or alpha), else the only layer with colour. `matte` asks for alpha alone, or
// the first channel where there is none. Throws Error, with what there is, when the choice fits nothing or
// leaves several layers of which none comes first.
Selection select_picture(const std::string& path, const std::vector<Header>& parts,
                         const PictureChoice& choice, bool matte);

// The same, given the first part alone; looks at the others only where it must, and then tells of nothing
// besides.
Selection select_picture(const std::string& path, const Header& first, const PictureChoice& choice,
                         bool matte);

}  // namespace veloxa
