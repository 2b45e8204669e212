// Movies and streams of frames through libav; see shot/movie.
#pragma once

#include <memory>
#include <string>

#include "shot/movie/StreamReader.h"
#include "shot/movie/StreamWriter.h"

namespace veloxa {

std::string read_as_movie(const std::string& path, const std::string& input);
std::string written_as_movie(const std::string& path);
std::unique_ptr<StreamReader::Decoder> make_decoder(int file, std::string name, int first,
                                                    const Zo::Image::AbortFlag* abort);
std::unique_ptr<StreamWriter::Encoder> make_encoder(int file, std::string name, StreamInfo info,
                                                    const WriteOptions& options);

}  // namespace veloxa
