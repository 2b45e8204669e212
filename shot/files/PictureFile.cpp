#include "shot/files/PictureFile.h"

#include "shot/files/Formats.h"
#include "shot/openexr/ExrFile.h"

namespace veloxa {

std::unique_ptr<PictureInput> open_picture(const std::string& path, std::string& error) {
    return is_exr(path) ? open_exr(path, error) : formats().open(path, error);
}

std::unique_ptr<PictureOutput> picture_writer(const std::string& path, std::string& error) {
    return has_exr_extension(path) ? exr_writer() : formats().writer(path, error);
}

}  // namespace veloxa
