/// The commands of the program.
#pragma once

namespace connector_config {

enum class Command {
    Get,
    Keys,
    Show,
    Explain,
    Watch,
    Set,
    Serve,
    Check,
    Fleet,
    Snapshot,
    Diff,
    Plan
};

} // namespace connector_config
