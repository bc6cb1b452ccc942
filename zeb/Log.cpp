#include "zeb/Log.h"

#include <mutex>
#include <string_view>
#include <unistd.h>

#include <spdlog/pattern_formatter.h>
#include <spdlog/sinks/base_sink.h>

#include "tools/program/OneLine.h"

namespace kq::zeb {
namespace {

std::string_view ColourOf(spdlog::level::level_enum level) {
    if (level >= spdlog::level::err) return "\x1b[31m";   // red
    if (level == spdlog::level::warn) return "\x1b[33m";  // yellow
    return level == spdlog::level::info ? "\x1b[32m" : "\x1b[36m";
}

class LineSink final : public spdlog::sinks::base_sink<std::mutex> {
 public:
    LineSink(std::shared_ptr<LineWriter> lines, bool colours) : lines_(std::move(lines)), colours_(colours) {
        set_formatter_(
            std::make_unique<spdlog::pattern_formatter>(spdlog::pattern_time_type::local, std::string()));
    }

 private:
    void sink_it_(const spdlog::details::log_msg& message) override {
        const std::string text = OneLine({message.payload.data(), message.payload.size()});
        auto shown = message;
        shown.payload = text;
        spdlog::memory_buf_t formatted;
        formatter_->format(shown, formatted);
        std::string line(formatted.data(), formatted.size());
        if (colours_ && shown.color_range_end > shown.color_range_start) {
            line.insert(shown.color_range_end, "\x1b[m");
            line.insert(shown.color_range_start, ColourOf(shown.level));
        }
        lines_->Write(line);
    }
    void flush_() override {}

    std::shared_ptr<LineWriter> lines_;
    bool colours_;
};

}  // namespace

std::shared_ptr<spdlog::logger> MakeLog(std::shared_ptr<LineWriter> lines, const std::string& level,
                                        bool colours) {
    auto log =
        std::make_shared<spdlog::logger>("zebd", std::make_shared<LineSink>(std::move(lines), colours));
    log->set_level(spdlog::level::from_str(level));
    return log;
}

bool StandardErrorShowsColours() {
    return isatty(STDERR_FILENO) != 0 && spdlog::details::os::is_color_terminal();
}

}  // namespace kq::zeb
