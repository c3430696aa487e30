// What a process holds, and the most that it held.
#pragma once

#include <cstdlib>
#include <fstream>
#include <stdexcept>
#include <string>

namespace bench {

/// A line of the process's state, in megabytes: "VmRSS:" what it holds, "VmHWM:" the most that it held.
inline double Resident(std::string const& what) {
    std::ifstream state("/proc/self/status");
    for (std::string line; std::getline(state, line);)
        if (line.starts_with(what)) return std::atof(line.c_str() + what.size()) / 1024.0;
    throw std::runtime_error("the system doesn't say what is resident");
}

inline void ForgetPeak() {
    std::ofstream references("/proc/self/clear_refs");
    if (!(references << 5 << std::flush)) throw std::runtime_error("the system doesn't reset the peak");
}

} // namespace bench
