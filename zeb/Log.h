// The log of zebd: lines on standard error, each on one line whatever the texts in it hold. Whoever reads it
// cannot hold up the server.
#pragma once

#include <memory>
#include <string>

#include <spdlog/logger.h>

#include "tools/program/LineWriter.h"

namespace kq::zeb {

// `level`: one of the setting "log_level". Colours the level when `colours`. What is logged after
// lines->Close() is lost.
std::shared_ptr<spdlog::logger> MakeLog(std::shared_ptr<LineWriter> lines, const std::string& level,
                                        bool colours);
// Whether standard error is a terminal that shows colours.
bool StandardErrorShowsColours();

}  // namespace kq::zeb
