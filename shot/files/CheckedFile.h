// A file for the image library to write to, that knows whether every byte was taken.
//
// Several of the library's writers do not say that a disk is full, or say so only to nobody when they close.
#pragma once

#include <OpenImageIO/filesystem.h>

#include <cstdio>
#include <string>

namespace veloxa {

class CheckedFile final : public OIIO::Filesystem::IOProxy {
  public:
    // Creates or empties the file; see check().
    explicit CheckedFile(const std::string& path);
    ~CheckedFile() override;

    // Throws where the file could not be made or a byte not be written, about the file of that name: TryAgain
    // where that may pass, else Error.
    void check(const std::string& path) const;

    const char* proxytype() const override { return "veloxa"; }
    void close() override;
    bool seek(int64_t offset) override;
    size_t write(const void* bytes, size_t size) override;
    size_t pwrite(const void* bytes, size_t size, int64_t offset) override;
    size_t size() const override { return static_cast<size_t>(end_); }
    void flush() const override {}

  private:
    void note_failure();

    std::FILE* file_;
    int64_t end_ = 0;
    int failure_ = 0;
};

}  // namespace veloxa
