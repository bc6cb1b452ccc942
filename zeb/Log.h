// The log of zebd: entries on standard error, each on one line whatever its texts contain. A slow reader does
// not hold up the server.
#pragma once

#include <memory>
#include <string>

#include <spdlog/logger.h>

#include "tools/program/LineWriter.h"

namespace kq::zeb {

// `level`: one of the setting "log_level". `colours`: the level is coloured. Entries after lines->Close() are
// lost.
std::shared_ptr<spdlog::logger> MakeLog(std::shared_ptr<LineWriter> lines, const std::string& level,
                                        bool colours);
// Whether standard error is a terminal that shows colours.
bool StandardErrorShowsColours();

}  // namespace kq::zeb
