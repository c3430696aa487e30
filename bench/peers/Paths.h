// Reading, writing and editing doubles by name, in the same order as other programs do it.
#pragma once

#include "bench/peers/Documents.h"

namespace peers {

/// The rows A_read, B_write and F_edit. Each benchmark checks before it starts that reads, writes and commits reach
/// their fields, and raises std::runtime_error otherwise.
///
/// Names are those of paths.txt in PEER_DOC_DIR, each line with the value that it has at first; without that variable
/// the same model's own.
void RegisterPathBenchmarks();

/// Makes these checks alone. Whether the names were the model's own.
bool CheckPaths(Samples samples);

} // namespace peers
