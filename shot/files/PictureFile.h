// A picture's file that is read or written, whatever its format. One thread at a time; many files at once.
//
// Rows and columns are those of the header's windows. Nothing throws but for want of memory: what went wrong
// is told by error().
#pragma once

#include <OpenImageIO/filesystem.h>

#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "shot/image/Header.h"

namespace veloxa {

class PictureInput {
  public:
    virtual ~PictureInput() = default;

    // "openexr", "png".
    virtual std::string_view format_name() const = 0;
    // Goes to a part, from 0; false when there are fewer, or its header is damaged. Stands on 0 at first.
    virtual bool go_to(int part) = 0;
    // Of the part.
    const Header& header() const { return header_; }
    // Rows from `top` up to and without `bottom`, and channels likewise, interleaved: as floats, halves or
    // whole numbers of the type, or, for an unknown one, each channel's samples as the file has them. Rows of
    // tiles are read whole.
    virtual bool read(int top, int bottom, int first, int last, OIIO::TypeDesc type, void* into) = 0;
    virtual bool close() = 0;
    // Why a call failed, as the format's library says it; once.
    virtual std::string error() = 0;

  protected:
    Header header_;
};

class PictureOutput {
  public:
    virtual ~PictureOutput() = default;

    virtual std::string_view format_name() const = 0;
    // "alpha", "tiles", "ioproxy" and other words of the image library's.
    virtual bool supports(std::string_view feature) const = 0;
    // Where bytes go instead of the file; outlives this. Where "ioproxy" is supported.
    virtual void set_ioproxy(OIIO::Filesystem::IOProxy* bytes) = 0;
    // Opens the file for these parts, one but for formats that hold several, and goes to the first.
    virtual bool open(const std::string& path, std::span<const Header> parts) = 0;
    virtual bool next_part() = 0;
    // What the part was opened with, as far as the format can hold what was asked for.
    const Header& header() const { return header_; }
    // The part's rows in their order, all channels, interleaved; an unknown type stands for each channel's.
    // Rows of tiles are written whole.
    virtual bool write(int top, int bottom, OIIO::TypeDesc type, const void* rows) = 0;
    virtual bool close() = 0;
    virtual std::string error() = 0;

  protected:
    Header header_;
};

// Opens a file that is there, by its content. Null where nothing reads it, with the reason.
std::unique_ptr<PictureInput> open_picture(const std::string& path, std::string& error);
// A writer for a name, by its extension. Null where there is none, with the reason.
std::unique_ptr<PictureOutput> picture_writer(const std::string& path, std::string& error);

}  // namespace veloxa
